#include "data/store/access/index/key.h"

#include <algorithm>
#include <array>

#include "data/store/access/access_error.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr char kTopBit = '\x80';

char Inverted(char byte) {
    return static_cast<char>(~byte);
}

void Invert(QByteArray& bytes) {
    std::transform(bytes.cbegin(), bytes.cend(), bytes.begin(), Inverted);
}

// NULL is its flag alone, and sorts before all values when ascending.
void AppendNull(QByteArray& key, bool ascending) {
    key += ascending ? '\x00' : '\xff';
}

void AppendStart(QByteArray& key, bool ascending) {
    key += ascending ? '\x7f' : '\x80';
}

// An integer with its sign bit flipped sorts as an unsigned number. A negative real sorts backwards besides.
void AppendNumberKey(QByteArray& key, ColumnType type, bool ascending, QByteArrayView value) {
    std::array<char, 9> bytes{ascending ? '\x7f' : '\x80'};
    std::reverse_copy(value.begin(), value.end(), bytes.begin() + 1);
    const bool real = type == ColumnType::Single || type == ColumnType::Double || type == ColumnType::Date;
    char& first = bytes[1];
    bool inverted = !ascending;
    if (type == ColumnType::Boolean) {
        first = first != 0 ? '\x00' : '\xff';
    } else if (real && (first & kTopBit) != 0) {
        inverted = !inverted;
    } else if (type != ColumnType::Byte) {
        first = static_cast<char>(first ^ kTopBit);
    }
    const auto end = bytes.begin() + 1 + value.size();
    if (inverted) {
        std::transform(bytes.begin() + 1, end, bytes.begin() + 1, Inverted);
    }
    key.append(bytes.data(), end - bytes.begin());
}

// Blocks of eight bytes. Each is followed by 9 when more follow, else by the number of its bytes.
QByteArray BlocksKey(const QByteArray& bytes, bool ascending) {
    constexpr qsizetype kBlock = 8;
    constexpr char kMoreFollows = '\x09';
    QByteArray key;
    qsizetype at = 0;
    for (; bytes.size() - at > kBlock; at += kBlock) {
        QByteArray block = bytes.sliced(at, kBlock);
        if (!ascending) {
            Invert(block);
        }
        key += block + kMoreFollows;
    }
    QByteArray last = bytes.sliced(at);
    const auto count = static_cast<char>(last.size());
    last = last.leftJustified(kBlock, '\0') + count;
    if (!ascending) {
        Invert(last);
    }
    return key + last;
}

// The three numbers at the front of a GUID count as numbers.
QByteArray WithNumbersBigEndian(QByteArray guid) {
    std::reverse(guid.begin(), guid.begin() + 4);
    std::reverse(guid.begin() + 4, guid.begin() + 6);
    std::reverse(guid.begin() + 6, guid.begin() + 8);
    return guid;
}

void RequireWidth(const QByteArray& bytes, qsizetype width) {
    if (bytes.size() != width) {
        throw AccessError(u"an indexed value has %1 bytes instead of %2"_s.arg(bytes.size()).arg(width));
    }
}

}  // namespace

void AppendKey(QByteArray& key, const KeyColumn& column, const std::optional<QByteArray>& value) {
    if (!value) {
        AppendNull(key, column.ascending);
        return;
    }
    switch (column.type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
        case ColumnType::Date:
            RequireWidth(*value, NumberWidth(column.type));
            AppendNumberKey(key, column.type, column.ascending, *value);
            return;
        case ColumnType::Binary:
            AppendStart(key, column.ascending);
            key += BlocksKey(*value, column.ascending);
            return;
        case ColumnType::Guid:
            RequireWidth(*value, 16);
            AppendStart(key, column.ascending);
            key += BlocksKey(WithNumbersBigEndian(*value), column.ascending);
            return;
        default:
            throw AccessError(u"此数据类型(%1)的索引不能写入"_s.arg(static_cast<int>(column.type)));
    }
}

void AppendTextKey(QByteArray& key, const KeyColumn& column, const std::optional<QString>& text) {
    if (!text) {
        AppendNull(key, column.ascending);
        return;
    }
    QByteArray bytes = TextKey(*text, column.sortOrder);
    if (!column.ascending) {
        // Its last zero is inverted with the rest; another one closes it.
        Invert(bytes);
        bytes += '\0';
    }
    AppendStart(key, column.ascending);
    key += bytes;
}

}  // namespace quorvane::access
