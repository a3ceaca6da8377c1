// A column's value as SQL sees it, and as a row stores it (docs/access-files.md, "Values").
#pragma once

#include <variant>

#include "data/store/access/rows/row.h"

namespace quorvane::access {

// NULL, a boolean or whole number, a real, a text, or bytes. Currencies are reals, dates are days since
// 1899-12-30 as a real, GUIDs and pictures are bytes.
using Value = std::variant<std::monostate, qint64, double, QString, QByteArray>;

// The value that a row stores; PAGES hold the long ones.
Value ReadValue(const Pages& pages, const RowView& row, const Column& column);
Value ReadValue(const Pages& pages, const StoredValue& stored, const Column& column);

// What a row stores for a value; of a memo or picture, what its long value holds. Numbers and texts are
// turned into each other where nothing is lost. Throws AccessError with the reason when the column cannot
// take the value. NULL gives nothing, and false for a boolean.
StoredValue ToStored(const Value& value, const Column& column);

}  // namespace quorvane::access
