// How the numbers of rows or columns change when some are inserted or removed before or among them. Which of
// the two is meant is said by the number of a cell that they change: &CCellID::row or &CCellID::col.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

// A cell keeps its place in the table; a removed one becomes none.
void ShiftForInsert(CCellID& cell, int CCellID::*line, int at, int count);
void ShiftForRemove(CCellID& cell, int CCellID::*line, int at, int count);

// A range grows by an insertion into its middle. It has no rows or no columns left when all were removed.
void ShiftForInsert(CCellRange& range, int CCellID::*line, int at, int count);
void ShiftForRemove(CCellRange& range, int CCellID::*line, int at, int count);

}  // namespace quorvane
