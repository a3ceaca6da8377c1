// What an index holds in the place of a text: bytes that sort as the text does (docs/access-files.md, "Keys
// of texts").
#pragma once

#include <QByteArray>
#include <QStringView>

namespace quorvane::access {

// By which rules a column sorts. Only version 0 of two orders is known.
struct SortOrder {
    quint16 language = 0;
    quint8 version = 0;
    bool operator==(const SortOrder&) const = default;
};
inline constexpr SortOrder kGeneralOrder{1033, 0};
inline constexpr SortOrder kChineseOrder{2052, 0};

// The key of a text without its start flag, ascending. Throws AccessError with the first character whose key
// is not known; a key is never guessed, because one wrong key makes the rows behind it unfindable.
QByteArray TextKey(QStringView text, SortOrder order);

}  // namespace quorvane::access
