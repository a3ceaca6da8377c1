// How the numbers of rows or columns change when some are inserted or removed before or among them.
// Qt::Vertical means rows, Qt::Horizontal columns.
#pragma once

#include "grid/grid_types.h"

namespace quorvane {

// A cell keeps its place in the table; a removed one becomes (-1, -1).
void ShiftForInsert(CCellID& cell, Qt::Orientation lines, int at, int count);
void ShiftForRemove(CCellID& cell, Qt::Orientation lines, int at, int count);

// A range grows when lines are inserted inside it. It has no rows or no columns left when all were removed.
void ShiftForInsert(CCellRange& range, Qt::Orientation lines, int at, int count);
void ShiftForRemove(CCellRange& range, Qt::Orientation lines, int at, int count);

}  // namespace quorvane
