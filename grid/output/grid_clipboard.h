// Copying the cells of a grid to the clipboard and pasting text into them.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

class CGridCtrl;

// Puts the selected cells, or the focus cell when none is selected, on the clipboard as tab-separated text.
// Rows and columns with nothing selected in them are left out; a merged block has its text at its first cell.
// False, and the clipboard is left alone, when there is nothing to copy.
bool CopySelection(const CGridCtrl& grid);

// Pastes tab-separated text from the clipboard cell by cell, from the focus cell on to the right and down.
// Each cell that the user could edit takes its text as an ended edit; of a list of choices only a choice is
// taken; all others are passed over. The grid gets no rows or columns by it. Whoever is told of a cell may
// change the grid: the rest goes on where the focus cell has gone, and ends when that is lost. False without
// a focus cell or text.
bool PasteAtFocus(CGridCtrl& grid);

}  // namespace quorvane
