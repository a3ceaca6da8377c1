// The ways in which a factor table leaves its grid and comes back together with its headings.
#pragma once

#include <functional>

#include "grid/grid_types.h"

namespace quorvane {

class FactorTableEditing;
class FactorTableGrid;

// Adds the command that copies the whole table, and lets a paste bring the headings and row values that the
// table does not have: it is asked once whether they are to be added, and all is one step. rowLabel is the
// name of the row values; show shows the whole table. editing outlives the grid.
void AddBlockCommands(FactorTableGrid& grid, FactorTableEditing& editing, const CString& rowLabel,
                      const std::function<void()>& show);

}  // namespace quorvane
