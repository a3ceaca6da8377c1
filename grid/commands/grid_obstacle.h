// Why a command of the grid does not apply at the moment.
#pragma once

#include "grid/input/grid_command.h"

namespace quorvane {

class GridCore;

// The reason in the user's words; empty when the command applies. Looks at a limited number of cells, so that
// a menu on a selection of any size opens at once; where these do not decide, the command applies.
CString ObstacleOf(const GridCore& core, GridCommand::Kind command);

}  // namespace quorvane
