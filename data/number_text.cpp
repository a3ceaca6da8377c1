#include "data/number_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

namespace quorvane {

namespace {

// Long enough for the largest double written out with two decimals.
using Buffer = std::array<char, 512>;

constexpr const char* kBlanks = " \t\n\v\f\r";

CString FromChars(const char* first, const char* last) {
    return QString::fromLatin1(first, static_cast<qsizetype>(last - first));
}

// What a number may be read from: the text as single bytes (anything beyond them can be no digit) from its
// first character that is not a blank.
std::string_view SkipBlanks(const QByteArray& text) {
    const std::string_view all(text.constData(), static_cast<std::size_t>(text.size()));
    const std::size_t start = all.find_first_not_of(kBlanks);
    return start == std::string_view::npos ? std::string_view() : all.substr(start);
}

bool IsDigit(char character) {
    return character >= '0' && character <= '9';
}

}  // namespace

CString FormatInteger(int value) {
    Buffer buffer;
    const auto result = std::to_chars(buffer.begin(), buffer.end(), value);
    return FromChars(buffer.begin(), result.ptr);
}

// QString::number rounds a decimal tie away from zero; to_chars promises what printf does with the exact
// value.
CString FormatReal(double value) {
    Buffer buffer;
    const auto result = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::general, 6);
    return FromChars(buffer.begin(), result.ptr).toUpper();
}

CString FormatFixed2(double value) {
    Buffer buffer;
    const auto result = std::to_chars(buffer.begin(), buffer.end(), value, std::chars_format::fixed, 2);
    return FromChars(buffer.begin(), result.ptr);
}

int ToInteger(const CString& text) {
    const QByteArray bytes = text.toLatin1();
    std::string_view digits = SkipBlanks(bytes);
    if (digits.starts_with('+') && digits.size() > 1 && IsDigit(digits[1])) {
        digits.remove_prefix(1);  // from_chars knows no plus sign
    }
    int value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        return digits.starts_with('-') ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
    }
    return value;
}

double ToReal(const CString& text) {
    const QByteArray bytes = text.toLatin1();
    const std::string_view digits = SkipBlanks(bytes);
    if (digits.empty() || !(IsDigit(digits[0]) || digits[0] == '.')) {
        return 0;  // from_chars would take a sign, "inf" and "nan"
    }
    double value = 0;
    const auto result =
        std::from_chars(digits.data(), digits.data() + digits.size(), value, std::chars_format::fixed);
    if (result.ec == std::errc::result_out_of_range) {
        const std::string_view whole = digits.substr(0, std::min(digits.find('.'), digits.size()));
        const bool tooSmall = whole.find_first_not_of('0') == std::string_view::npos;
        return tooSmall ? 0 : std::numeric_limits<double>::infinity();
    }
    return value;
}

}  // namespace quorvane
