#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <new>

#include "data/store/ado/variant.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::ado {

namespace {

FieldValue FromNull(const VARIANT& /*value*/) {
    return {};
}

// A null pointer is an empty text.
FieldValue FromText(const VARIANT& value) {
    const auto length = static_cast<qsizetype>(::SysStringLen(value.bstrVal));
    return length == 0 ? u""_s : CString(reinterpret_cast<const QChar*>(value.bstrVal), length);
}

// The shortest decimal number that is nearest to the single, so that 0.74 is 0.74 again.
FieldValue FromSingle(const VARIANT& value) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), value.fltVal);
    double number = 0;
    std::from_chars(text.data(), written.ptr, number);
    return number;
}

FieldValue FromDecimal(const VARIANT& value) {
    DECIMAL decimal = value.decVal;
    LONG64 whole = 0;
    if (decimal.scale == 0 && SUCCEEDED(::VarI8FromDec(&decimal, &whole))) {
        return qint64{whole};
    }
    double number = 0;
    ::VarR8FromDec(&decimal, &number);
    return number;
}

FieldValue FromCurrency(const VARIANT& value) {
    constexpr double units = 10'000;
    return static_cast<double>(value.cyVal.int64) / units;
}

struct Rule {
    VARTYPE type;
    FieldValue (*read)(const VARIANT& value);
};

constexpr std::array kRules{
    Rule{VT_EMPTY, FromNull},
    Rule{VT_NULL, FromNull},
    Rule{VT_BSTR, FromText},
    Rule{VT_UI1, [](const VARIANT& value) -> FieldValue { return qint64{value.bVal}; }},
    Rule{VT_I2, [](const VARIANT& value) -> FieldValue { return qint64{value.iVal}; }},
    Rule{VT_I4, [](const VARIANT& value) -> FieldValue { return qint64{value.lVal}; }},
    Rule{VT_BOOL, [](const VARIANT& value) -> FieldValue { return qint64{value.boolVal != VARIANT_FALSE}; }},
    Rule{VT_R4, FromSingle},
    Rule{VT_R8, [](const VARIANT& value) -> FieldValue { return value.dblVal; }},
    Rule{VT_DECIMAL, FromDecimal},
    Rule{VT_CY, FromCurrency},
    // Days since 30 December 1899, as the file holds them.
    Rule{VT_DATE, [](const VARIANT& value) -> FieldValue { return value.date; }},
};

void Set(VARIANT& variant, qint64 integer) {
    if (integer >= std::numeric_limits<LONG>::min() && integer <= std::numeric_limits<LONG>::max()) {
        variant.vt = VT_I4;
        variant.lVal = static_cast<LONG>(integer);
    } else {
        ::VarDecFromI8(integer, &variant.decVal);
        variant.vt = VT_DECIMAL;  // last: the decimal lies over the type
    }
}

void Set(VARIANT& variant, double real) {
    variant.vt = VT_R8;
    variant.dblVal = real;
}

void Set(VARIANT& variant, const CString& text) {
    variant.bstrVal =
        ::SysAllocStringLen(reinterpret_cast<const OLECHAR*>(text.utf16()), static_cast<UINT>(text.size()));
    if (variant.bstrVal == nullptr) {
        throw std::bad_alloc();
    }
    variant.vt = VT_BSTR;
}

void Set(VARIANT& variant, std::monostate /*null*/) {
    variant.vt = VT_NULL;
}

}  // namespace

Variant::Variant(const FieldValue& value) {
    ::VariantInit(&m_value);
    std::visit([this](const auto& part) { Set(m_value, part); }, value);
}

FieldValue ToFieldValue(const VARIANT& value) {
    const auto* rule =
        std::find_if(kRules.begin(), kRules.end(), [&](const Rule& known) { return known.type == value.vt; });
    if (rule == kRules.end()) {
        throw ProviderError(
            u"a value has the automation type 0x%1, which no column of this database has"_s.arg(
                value.vt, 4, 16, QChar(u'0')));
    }
    return rule->read(value);
}

}  // namespace quorvane::ado
