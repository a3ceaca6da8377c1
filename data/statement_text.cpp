#include "data/statement_text.h"

#include <algorithm>
#include <cmath>

namespace quorvane {
namespace {

bool IsWritable(const TextArgument& argument) {
    if (const auto* real = std::get_if<double>(&argument)) {
        return std::isfinite(*real);
    }
    const auto* text = std::get_if<QStringView>(&argument);
    return text == nullptr || IsPlainText(*text);
}

}  // namespace

bool IsPlainText(QStringView text) {
    return !text.contains(u'\'') && !text.contains(QChar::Null) && text.isValidUtf16();
}

std::optional<CString> FormatStatement(QStringView statement, const std::vector<TextArgument>& arguments) {
    if (!std::all_of(arguments.begin(), arguments.end(), IsWritable)) {
        return std::nullopt;
    }
    return FormatText(statement, arguments);
}

}  // namespace quorvane
