// Saving the texts of a grid to a CSV file, and loading such files. Spreadsheets open them by a double click.
#pragma once

#include <optional>

#include "grid/output/separated_text.h"

namespace quorvane {

class GridCore;

// Writes the texts of all rows but the append row, headings included, as UTF-8 with a byte order mark. Each
// covered heading has the text of its merged block. The file is replaced as a whole or left as it was; false
// then.
bool SaveGridText(const GridCore& core, const CString& path);
// How many of these texts a spreadsheet may take for formulas: they begin with "=", "+", "-" or "@" and are
// no numbers.
int CountFormulas(const GridCore& core);

// The texts of a CSV file in UTF-8, or else in the usual encoding of Chinese spreadsheets. Nothing for a file
// that cannot be read, is no text, or is too large.
std::optional<TextTable> LoadTextTable(const CString& path);

// What the user is told when saving or loading fails.
CString SaveFailure();
CString LoadFailure();

}  // namespace quorvane
