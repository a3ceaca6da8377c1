// How the numbers of rows or columns change when some are inserted or removed before or among them.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

// A range of lines, both ends inside it; an insertion into the middle makes it longer.
void ShiftForInsert(int& first, int& last, int at, int count);
// Leaves last < first when all lines of the range were removed.
void ShiftForRemove(int& first, int& last, int at, int count);

// The same for one cell, along its row or its column number; a removed cell becomes none.
void ShiftForInsert(CCellID& cell, int CCellID::*line, int at, int count);
void ShiftForRemove(CCellID& cell, int CCellID::*line, int at, int count);

}  // namespace quorvane
