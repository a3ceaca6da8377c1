// The commands by which a grid leaves the program and comes back: printing, PDF, and CSV files.
#pragma once

#include <functional>

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;

// Adds the commands to the grid's context menu. title names what the grid shows; it stands on each printed
// page, in the captions, and is proposed as the name of a file. whyNoImport tells why nothing can be loaded
// now; empty: it can.
void AddOutputCommands(CGridCtrl& grid, const std::function<CString()>& title,
                       const std::function<CString()>& whyNoImport = {});

}  // namespace quorvane
