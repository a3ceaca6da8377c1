// What the keys mean in a grid: moving the focus, extending the selection, starting edits, pressing buttons.
#pragma once

#include <QKeyEvent>

#include "grid/input/grid_command.h"

namespace quorvane {

class GridCore;

enum class GridMove { Up, Down, Left, Right, NextEditable, PreviousEditable };

// What a key asks for while no editor is open.
GridCommand CommandOfKey(const GridCore& core, const QKeyEvent& event);

// The cell that a step leads to; none when there is no further one. A merged block counts as one cell; hidden
// and fixed rows and columns are stepped over.
CCellID Step(const GridCore& core, CCellID from, GridMove move);

// The cell that Enter leads to; none when there is no further one. A table that is typed by columns goes on
// at the head of the next column.
CCellID StepByEnter(const GridCore& core, CCellID from, GridMove move);

using NextCell = CCellID (*)(const GridCore& core, CCellID from, GridMove move);  // one of these two

// The first cell in view that is not fixed.
CCellID FirstVisible(const GridCore& core);

}  // namespace quorvane
