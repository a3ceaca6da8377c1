// The key of a whole row in an index (docs/access-files.md, "Keys").
#pragma once

#include "data/store/access/rows/row.h"

namespace quorvane::access {

// The values of the index's columns, by column number; a memo is given by what its long value holds.
// COUNT columns of the index make the beginning of a key. Throws AccessError that names the column when a
// text's key is not known.
QByteArray RowKey(const TableDefinition& table, const IndexDescription& index, const StoredValues& contents);
QByteArray RowKey(const TableDefinition& table, const IndexDescription& index, const StoredValues& contents,
                  std::size_t count);

// Whether one of the index's columns is NULL, or all of them are. A boolean never is.
bool HasNull(const IndexDescription& index, const StoredValues& contents);
bool IsAllNull(const IndexDescription& index, const StoredValues& contents);

}  // namespace quorvane::access
