#include "model/text_checks.h"

#include <algorithm>
#include <cmath>

#include "data/number_text.h"

namespace quorvane {
namespace {

bool IsDigit(QChar character) {
    return character >= u'0' && character <= u'9';
}

}  // namespace

std::optional<double> CheckReal(const CString& text) {
    const CString trimmed = text.trimmed();
    const bool allowed = std::all_of(trimmed.begin(), trimmed.end(),
                                     [](QChar character) { return IsDigit(character) || character == u'.'; });
    if (!allowed || trimmed.count(u'.') > 1 || std::none_of(trimmed.begin(), trimmed.end(), IsDigit)) {
        return std::nullopt;
    }
    const double value = ToReal(trimmed);
    return std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<int> CheckInteger(const CString& text) {
    const bool allowed = std::all_of(text.begin(), text.end(), [](QChar character) {
        return IsDigit(character) || character == u'-' || character == u'+';
    });
    if (!allowed || text.indexOf(u'-') > 0 || text.indexOf(u'+') > 0) {
        return std::nullopt;
    }
    return ToInteger(text);
}

double TypedReal(const CString& text, double present) {
    return CheckReal(text).value_or(text == FormatReal(present) ? present : 0);
}

int TypedInteger(const CString& text) {
    return CheckInteger(text).value_or(0);
}

std::vector<CString> Split(const CString& text, QChar separator) {
    std::vector<CString> pieces;
    qsizetype start = 0;
    for (qsizetype end = text.indexOf(separator); end >= 0; end = text.indexOf(separator, start)) {
        pieces.push_back(text.sliced(start, end - start));
        start = end + 1;
    }
    if (start < text.size()) {
        pieces.push_back(text.sliced(start));
    }
    return pieces;
}

}  // namespace quorvane
