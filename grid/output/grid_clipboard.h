// The cells of a grid as text for the clipboard.
#pragma once

#include <optional>

#include "grid/grid_types.h"

namespace quorvane {

class GridCore;

// The selected cells, or the focus cell when none is selected, as tab-separated text. Rows and columns with
// nothing selected in them are left out; a merged block has its text at its first cell. Nothing without a
// selection and a focus.
std::optional<CString> CopiedText(const GridCore& core);

}  // namespace quorvane
