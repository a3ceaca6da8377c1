// Tables as tab-separated text, the form in which spreadsheets exchange them.
#pragma once

#include <vector>

#include "grid/grid_types.h"

namespace quorvane {

using TextTable = std::vector<std::vector<CString>>;  // rows, which may differ in length

// Writes a tab between the texts of a row and "\n" between the rows. A text with a tab, a line end or a quote
// is written in quotes, its own quotes doubled; every other text is written as it is.
CString WriteTabText(const TextTable& table);

// The reverse. Rows end with "\n", "\r\n" or "\r"; a line end at the very end begins no further row. Quotes
// that WriteTabText would not have written, and quotes without an end, belong to the text.
TextTable ReadTabText(const CString& text);

}  // namespace quorvane
