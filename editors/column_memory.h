// Keeps how a user has arranged the columns of a grid, from one run of the program to the next.
#pragma once

#include "grid/grid_ctrl.h"

namespace quorvane {

// Gives the columns the widths and the frozen columns that the user left last time, and keeps what the user
// changes from now on. Widths are kept as shares of the grid's width, so that they suit another screen. The
// name says which grid it is. What is kept for another number of columns is not used.
void KeepColumns(CGridCtrl& grid, const CString& name);

}  // namespace quorvane
