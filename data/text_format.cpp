#include "data/text_format.h"

#include "data/number_text.h"

namespace quorvane {
namespace {

void Append(CString& result, QChar placeholder, const TextArgument& argument) {
    if (placeholder == u'd') {
        result += FormatInteger(std::get<int>(argument));
    } else if (placeholder == u'G') {
        result += FormatReal(std::get<double>(argument));
    } else {
        Q_ASSERT(placeholder == u's');
        result += std::get<QStringView>(argument);
    }
}

}  // namespace

CString FormatText(QStringView text, std::initializer_list<TextArgument> arguments) {
    CString result;
    const auto* argument = arguments.begin();
    qsizetype start = 0;
    for (qsizetype percent = text.indexOf(u'%'); percent >= 0; percent = text.indexOf(u'%', start)) {
        result += text.sliced(start, percent - start);
        const QChar placeholder = text[percent + 1];
        if (placeholder == u'%') {
            result += u'%';
        } else {
            Q_ASSERT(argument != arguments.end());
            Append(result, placeholder, *argument++);
        }
        start = percent + 2;
    }
    result += text.sliced(start);
    Q_ASSERT(argument == arguments.end());
    return result;
}

}  // namespace quorvane
