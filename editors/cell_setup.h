// How the editors set up the cells that are more than text.
#pragma once

#include <memory>
#include <vector>

#include "grid/grid_ctrl.h"

namespace quorvane {

using CellChoices = std::shared_ptr<const std::vector<CString>>;

// Makes the cell a drop-down list of choices. Its text becomes `text` when that is one of the choices, else
// the first choice, or empty when there are none.
void SetUpComboCell(CGridCtrl& grid, CBtnDataBase& buttons, int row, int column, const CellChoices& choices,
                    const CString& text);

// Makes the cell a push button with that caption.
void SetUpButtonCell(CGridCtrl& grid, CBtnDataBase& buttons, int row, int column, const CString& caption);

}  // namespace quorvane
