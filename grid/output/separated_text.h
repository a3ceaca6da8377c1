// Tables as text, in the two forms in which spreadsheets exchange them: separated by tabs on the clipboard,
// and by commas in files.
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

// The same with commas, and "\r\n" after each row. A text with a semicolon stands in quotes as well.
CString WriteCsv(const TextTable& table);
// The reverse, but quotes around a text never belong to it. The separator may also be a semicolon or a tab:
// whichever of the three stands most often outside quotes in the first row that has one, and is not the comma
// if two do.
TextTable ReadCsv(const CString& text);

}  // namespace quorvane
