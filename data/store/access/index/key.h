// The key under which an index holds a row: bytes that compare as the values do (docs/access-files.md,
// "Keys").
#pragma once

#include <QByteArray>
#include <QString>
#include <optional>

#include "data/store/access/column_type.h"
#include "data/store/access/index/text_key.h"

namespace quorvane::access {

// What a key has to know of one column of an index.
struct KeyColumn {
    ColumnType type = ColumnType::Long;
    bool ascending = true;
    SortOrder sortOrder;  // of texts and memos
};

// Appends the column's part of a key. The value is given as a row holds it: little-endian bytes, one byte 0
// or 1 for a boolean; nothing for NULL. Throws AccessError for a type whose keys are not known, and for bytes
// that do not have the type's width.
void AppendKey(QByteArray& key, const KeyColumn& column, const std::optional<QByteArray>& value);

// The same for a text or memo, given decoded.
void AppendTextKey(QByteArray& key, const KeyColumn& column, const std::optional<QString>& text);

}  // namespace quorvane::access
