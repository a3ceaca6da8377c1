// Fills the placeholders of a statement.
#pragma once

#include <initializer_list>

#include "data/text_format.h"

namespace quorvane {

// The statement with its placeholders filled (see FormatText). Throws ProviderError with the name of the
// column when an argument must not stand in a statement: an infinite or undefined real, or a text that is not
// plain.
CString FormatStatement(QStringView statement, std::initializer_list<TextArgument> arguments);

// Whether a text may stand between single quotes: it holds no single quote, which would end the literal and
// make the rest of the text part of the statement, no U+0000, and no half of a surrogate pair.
bool IsPlainText(QStringView text);

}  // namespace quorvane
