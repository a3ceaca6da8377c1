// One row's bytes taken apart, and put together (docs/access-files.md, "Rows").
#pragma once

#include <optional>
#include <vector>

#include "data/store/access/table_definition.h"

namespace quorvane::access {

// What a row stores for a column: nothing for NULL. A boolean is one byte, 0 or 1, and is never NULL.
using StoredValue = std::optional<QByteArray>;
// By column number; columns that were deleted have nothing.
using StoredValues = std::vector<StoredValue>;

// The bytes must outlive the view. Every value throws AccessError when the row is damaged where it stands.
class RowView {
public:
    RowView(const TableDefinition& table, QByteArrayView bytes);

    bool IsNull(const Column& column) const;  // of a boolean: whether it is false
    // Not for NULL, and not for booleans.
    QByteArrayView Bytes(const Column& column) const;
    StoredValues All() const;

private:
    QByteArrayView Variable(int index) const;

    const TableDefinition& m_table;
    QByteArrayView m_bytes;
    int m_columns = 0;         // that the table had when the row was written
    qsizetype m_mask = 0;      // where the null mask begins
    int m_variables = 0;       // variable values
    qsizetype m_fixedEnd = 0;  // the fixed part ends here at the latest
};

// Throws when the row would be too long.
QByteArray EncodeRow(const TableDefinition& table, const StoredValues& values);

}  // namespace quorvane::access
