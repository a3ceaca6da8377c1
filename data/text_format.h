// Fills the placeholders of the program's own texts, of statements and messages alike.
#pragma once

#include <QStringView>
#include <initializer_list>
#include <variant>

#include "data/records.h"

namespace quorvane {

using TextArgument = std::variant<int, double, QStringView>;

// The text with its placeholders filled in order: "%d" by an integer, "%G" by a real (six significant
// digits), "%s" by a text as it stands, which is never looked into for placeholders; "%%" is one percent
// sign. Placeholders and arguments must agree in number and kind.
CString FormatText(QStringView text, std::initializer_list<TextArgument> arguments);

}  // namespace quorvane
