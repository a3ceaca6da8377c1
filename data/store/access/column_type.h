// The types a column of an Access file can have (docs/access-files.md, "Values").
#pragma once

#include <QtGlobal>

namespace quorvane::access {

enum class ColumnType : quint8 {
    Boolean = 0x01,
    Byte = 0x02,
    Integer = 0x03,  // 16 bits
    Long = 0x04,     // 32 bits
    Currency = 0x05,
    Single = 0x06,
    Double = 0x07,
    Date = 0x08,
    Binary = 0x09,
    Text = 0x0A,
    Ole = 0x0B,
    Memo = 0x0C,
    Guid = 0x0F,
    Decimal = 0x10,
};

// The bytes of a number. A boolean stands in the row's null mask; apart from the row it has one byte.
constexpr qsizetype NumberWidth(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
            return 1;
        case ColumnType::Integer:
            return 2;
        case ColumnType::Long:
        case ColumnType::Single:
            return 4;
        default:
            return 8;
    }
}

}  // namespace quorvane::access
