#include "data/store/access/rows/value.h"

#include <QLocale>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <utility>

#include "data/store/access/rows/long_values.h"
#include "data/store/access/rows/text.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr double kCurrencyUnits = 10'000;
constexpr double kGreatestInteger = 9.0e18;
constexpr qsizetype kLongestCompressedMemo = 1024;  // characters
constexpr qsizetype kGuidLength = 16;

[[noreturn]] void Refuse(const QString& reason) {
    throw AccessError(reason);
}

// --- reading

// The shortest decimal number that is nearest to the single, so that 0.74 is 0.74 again.
double FromSingle(float number) {
    std::array<char, 32> text{};
    const auto written = std::to_chars(text.data(), text.data() + text.size(), number);
    double value = 0;
    std::from_chars(text.data(), written.ptr, value);
    return value;
}

Value ReadNumeric(QByteArrayView bytes, ColumnType type) {
    const quint64 bits = ReadNumber(bytes, 0, NumberWidth(type));
    if (bytes.size() != NumberWidth(type)) {
        ThrowDamaged(u"a number has %1 bytes"_s.arg(bytes.size()));
    }
    switch (type) {
        case ColumnType::Byte:
            return static_cast<qint64>(bits);
        case ColumnType::Integer:
            return qint64{static_cast<qint16>(bits)};
        case ColumnType::Long:
            return qint64{static_cast<qint32>(bits)};
        case ColumnType::Currency:
            return static_cast<double>(static_cast<qint64>(bits)) / kCurrencyUnits;
        case ColumnType::Single:
            return FromSingle(std::bit_cast<float>(static_cast<quint32>(bits)));
        default:
            return std::bit_cast<double>(bits);
    }
}

Value FromBytes(const Pages& pages, QByteArrayView bytes, const Column& column) {
    switch (column.type) {
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            return ReadNumeric(bytes, column.type);
        case ColumnType::Text:
            return DecodeText(bytes);
        case ColumnType::Memo:
            return DecodeText(ReadLongValue(pages, bytes));
        case ColumnType::Ole:
            return ReadLongValue(pages, bytes);
        default:
            return bytes.toByteArray();
    }
}

// --- writing

double ToReal(const Value& value) {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        const auto real = static_cast<double>(*whole);
        if (std::abs(real) > kGreatestInteger || static_cast<qint64>(real) != *whole) {
            Refuse(u"数值%1的位数过多"_s.arg(*whole));
        }
        return real;
    }
    if (const auto* text = std::get_if<QString>(&value)) {
        bool isNumber = false;
        const double real = text->toDouble(&isNumber);
        if (!isNumber) {
            Refuse(u"文字“%1”不是数值"_s.arg(*text));
        }
        return ToReal(real);
    }
    const auto* real = std::get_if<double>(&value);
    if (real == nullptr || !std::isfinite(*real)) {
        Refuse(u"内容不是有效的数值"_s);
    }
    return *real == 0 ? 0 : *real;  // never the negative zero
}

qint64 ToWhole(const Value& value, qint64 least, qint64 greatest) {
    const auto* given = std::get_if<qint64>(&value);
    qint64 whole = given != nullptr ? *given : 0;
    if (given == nullptr) {
        const double real = ToReal(value);
        if (std::abs(real) > kGreatestInteger || real != std::nearbyint(real)) {
            Refuse(u"只能存放整数,而%1不是整数"_s.arg(real));
        }
        whole = static_cast<qint64>(real);
    }
    if (whole < least || whole > greatest) {
        Refuse(u"数值%1不在%2至%3之间"_s.arg(whole).arg(least).arg(greatest));
    }
    return whole;
}

template <typename T>
quint64 WholeBits(const Value& value) {
    return static_cast<quint64>(ToWhole(value, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
}

quint64 CurrencyBits(const Value& value) {
    const double real = ToReal(value);
    const double units = std::nearbyint(real * kCurrencyUnits);
    if (std::abs(units) > kGreatestInteger || units / kCurrencyUnits != real) {
        Refuse(u"货币字段不能准确存放%1"_s.arg(real, 0, 'g', 17));
    }
    return static_cast<quint64>(static_cast<qint64>(units));
}

quint64 SingleBits(const Value& value) {
    const double real = ToReal(value);
    const auto single = static_cast<float>(real);
    if (!std::isfinite(single) || FromSingle(single) != real) {
        Refuse(u"单精度字段不能准确存放%1"_s.arg(real, 0, 'g', 17));
    }
    return std::bit_cast<quint32>(single);
}

QString ToText(const Value& value) {
    if (const auto* text = std::get_if<QString>(&value)) {
        return *text;
    }
    if (const auto* whole = std::get_if<qint64>(&value)) {
        return QString::number(*whole);
    }
    if (const auto* real = std::get_if<double>(&value)) {
        return QString::number(*real, 'g', QLocale::FloatingPointShortest);
    }
    Refuse(u"只能存放文字"_s);
}

QByteArray TextBytes(const Value& value, const Column& column) {
    const QString text = ToText(value);
    if (column.type == ColumnType::Memo) {
        return EncodeText(text, column.compressed && text.size() <= kLongestCompressedMemo);
    }
    if (2 * text.size() > column.length) {
        Refuse(u"文字有%1个字符,而字段大小为%2"_s.arg(text.size()).arg(column.length / 2));
    }
    return column.fixed ? EncodeText(text.leftJustified(column.length / 2), false)
                        : EncodeText(text, column.compressed);
}

QByteArray PlainBytes(const Value& value, const Column& column) {
    const auto* bytes = std::get_if<QByteArray>(&value);
    const qsizetype most = column.type == ColumnType::Guid ? kGuidLength : column.length;
    if (bytes == nullptr || (column.type != ColumnType::Ole && bytes->size() > most) ||
        (column.type == ColumnType::Guid && bytes->size() != most)) {
        Refuse(u"只能存放二进制数据,最多%1字节"_s.arg(most));
    }
    return *bytes;
}

QByteArray NumberBytes(quint64 bits, ColumnType type) {
    QByteArray bytes;
    AppendNumber(bytes, NumberWidth(type), bits);
    return bytes;
}

}  // namespace

Value ReadValue(const Pages& pages, const RowView& row, const Column& column) {
    if (column.type == ColumnType::Boolean) {
        return qint64{row.IsNull(column) ? 0 : 1};
    }
    return row.IsNull(column) ? Value() : FromBytes(pages, row.Bytes(column), column);
}

Value ReadValue(const Pages& pages, const StoredValue& stored, const Column& column) {
    if (column.type == ColumnType::Boolean) {
        return qint64{stored && stored->at(0) != 0 ? 1 : 0};
    }
    return stored ? FromBytes(pages, *stored, column) : Value();
}

StoredValue ToStored(const Value& value, const Column& column) {
    const bool isNull = std::holds_alternative<std::monostate>(value);
    if (isNull && column.type != ColumnType::Boolean) {
        return std::nullopt;
    }
    switch (column.type) {
        case ColumnType::Boolean:
            return QByteArray(1, isNull || ToWhole(value, -1, 1) == 0 ? '\0' : '\1');
        case ColumnType::Byte:
            return NumberBytes(WholeBits<quint8>(value), column.type);
        case ColumnType::Integer:
            return NumberBytes(WholeBits<qint16>(value), column.type);
        case ColumnType::Long:
            return NumberBytes(WholeBits<qint32>(value), column.type);
        case ColumnType::Currency:
            return NumberBytes(CurrencyBits(value), column.type);
        case ColumnType::Single:
            return NumberBytes(SingleBits(value), column.type);
        case ColumnType::Double:
        case ColumnType::Date:
            return NumberBytes(std::bit_cast<quint64>(ToReal(value)), column.type);
        case ColumnType::Text:
        case ColumnType::Memo:
            return TextBytes(value, column);
        case ColumnType::Binary:
        case ColumnType::Ole:
        case ColumnType::Guid:
            return PlainBytes(value, column);
        default:
            Refuse(u"数据类型(%1)不能写入"_s.arg(static_cast<int>(column.type)));
    }
}

}  // namespace quorvane::access
