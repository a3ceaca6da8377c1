// Saving the texts of a grid to a file and loading them: UTF-8, tab-separated, readable by any spreadsheet.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

class GridCore;

// Writes the texts of all cells, headings included; the covered cells of a merged block are written empty.
// The file is replaced as a whole or left as it was. False with a message for the user in failure.
bool SaveGridText(const GridCore& core, const CString& path, CString& failure);

// Gives the grid as many rows and columns as the file has and puts its texts in. Cells that remain keep their
// looks; headings stay fixed as far as there are rows for them. False, with a message for the user in failure
// and the grid as it was, for a file that cannot be read or is not UTF-8 text.
bool LoadGridText(GridCore& core, const CString& path, CString& failure);

}  // namespace quorvane
