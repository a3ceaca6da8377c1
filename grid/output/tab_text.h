// Tables as tab-separated text, the form in which spreadsheets exchange them.
#pragma once

#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

using TextTable = std::vector<std::vector<CString>>;  // rows, which may differ in length

// Texts with a tab after each but the last of a row and "\n" after each row but the last. A text that holds a
// tab, a line end or a quote stands in quotes, its own quotes doubled; every other is written as it is.
CString WriteTabText(const TextTable& table);

// The reverse. Rows end with "\n", "\r\n" or "\r"; an end of line at the very end begins no further row.
// Quotes that need not have been written belong to the text, as do those without an end.
TextTable ReadTabText(const CString& text);

}  // namespace quorvane
