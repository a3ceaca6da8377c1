#include "data/statement_text.h"

#include <QRegularExpression>
#include <algorithm>
#include <cmath>

#include "data/connection.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {
namespace {

bool IsWritable(const TextArgument& argument) {
    if (const auto* real = std::get_if<double>(&argument)) {
        return std::isfinite(*real);
    }
    const auto* text = std::get_if<QStringView>(&argument);
    return text == nullptr || IsPlainText(*text);
}

// The column that a placeholder's value is written to or compared with, counted from 0. An insert lists its
// columns in front of the values; elsewhere the column stands before "=" or "like".
CString ColumnOfPlaceholder(QStringView statement, qsizetype index) {
    static const QRegularExpression list(u"^insert into \\S+ \\(([^)]*)\\)"_s);
    static const QRegularExpression comparison(u"(\\w+) ?(?:=|like) ?'?(?:%%)?%[dGs]"_s,
                                               QRegularExpression::UseUnicodePropertiesOption);
    const CString text = statement.toString();
    if (const auto columns = list.match(text); columns.hasMatch()) {
        return columns.captured(1).split(u',').value(index).trimmed();
    }
    auto match = comparison.globalMatch(text);
    for (; index > 0 && match.hasNext(); --index) {
        match.next();
    }
    return match.hasNext() ? match.next().captured(1) : CString();
}

}  // namespace

bool IsPlainText(QStringView text) {
    return !text.contains(u'\'') && !text.contains(QChar::Null) && text.isValidUtf16();
}

CString FormatStatement(QStringView statement, std::initializer_list<TextArgument> arguments) {
    const auto* refused = std::find_if_not(arguments.begin(), arguments.end(), IsWritable);
    if (refused != arguments.end()) {
        const auto* text = std::get_if<QStringView>(refused);
        const bool hasQuote = text != nullptr && text->contains(u'\'');
        throw ProviderError(
            ProviderFailure{.kind = hasQuote ? FailureKind::QuoteInText : FailureKind::UnwritableValue,
                            .message = hasQuote ? u"a text with a single quote cannot be written"_s
                                                : u"the value cannot be written"_s,
                            .column = ColumnOfPlaceholder(statement, refused - arguments.begin())});
    }
    return FormatText(statement, arguments);
}

}  // namespace quorvane
