#include "data/field_reader.h"

#include <QLocale>
#include <cmath>
#include <limits>
#include <utility>

namespace quorvane {

namespace {

[[noreturn]] void FailConversion(const char* reason) {
    throw ProviderError(QString::fromLatin1(reason));
}

// The number that a whole text spells. The C locale speaks here, so "1,5" is no number anywhere.
double ParseNumber(const CString& text) {
    bool valid = false;
    const double number = text.toDouble(&valid);
    if (!valid) {
        FailConversion("a text stands where a number is expected");
    }
    return number;
}

}  // namespace

double ToRealField(const FieldValue& value) {
    if (const auto* integer = std::get_if<qint64>(&value)) {
        return static_cast<double>(*integer);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return *real;
    }
    if (const auto* text = std::get_if<CString>(&value)) {
        return ParseNumber(*text);
    }
    FailConversion("NULL stands where a number is expected");
}

int ToIntegerField(const FieldValue& value) {
    // Every 32-bit integer is exact as a double, so the range check holds for all three kinds of value.
    const double number = std::nearbyint(ToRealField(value));
    if (!(number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max())) {
        FailConversion("an integer has more than 32 bits");
    }
    return static_cast<int>(number);
}

CString ToTextField(FieldValue value) {
    if (auto* text = std::get_if<CString>(&value)) {
        return std::move(*text);
    }
    if (const auto* integer = std::get_if<qint64>(&value)) {
        return QString::number(*integer);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return QString::number(*real, 'g', QLocale::FloatingPointShortest);
    }
    FailConversion("NULL stands where a text is expected");
}

int FieldReader::IndexOf(const char16_t* column) const {
    for (std::size_t tried = 0; tried < m_columns.size(); ++tried) {
        const KnownColumn& known = m_columns[m_next];
        m_next = (m_next + 1) % m_columns.size();
        if (known.name == column) {
            return known.index;
        }
    }
    const int index = m_rows.Column(QString::fromUtf16(column));
    m_columns.push_back({column, index});
    m_next = 0;
    return index;
}

}  // namespace quorvane
