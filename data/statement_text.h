// Fills the placeholders of a statement.
#pragma once

#include <optional>

#include "data/text_format.h"

namespace quorvane {

// The statement with its placeholders filled (see FormatText). Nothing when an argument has no place in a
// statement: an infinite or undefined real, or a text that is not plain.
std::optional<CString> FormatStatement(QStringView statement, const std::vector<TextArgument>& arguments);

// Whether a text may stand between single quotes: it holds no single quote, which would end the literal and
// make the rest of the text part of the statement, no U+0000, and no half of a surrogate pair.
bool IsPlainText(QStringView text);

}  // namespace quorvane
