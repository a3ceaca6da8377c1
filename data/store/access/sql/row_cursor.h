// Walks the rows of a table in the way that a query has chosen (docs/access-files.md, "How statements run").
#pragma once

#include <optional>

#include "data/store/access/table.h"

namespace quorvane::access {

// How a query meets the rows of a table. With an index, those of one key, or all in its order.
struct RowPath {
    enum class Kind { Scan, Key, Forward, Backward };
    Kind kind = Kind::Scan;
    const IndexDescription* index = nullptr;
};

class RowCursor {
public:
    // CHANGES counts what is changed in the table: a cursor on an index that was changed finds its place
    // anew.
    RowCursor(const Table& table, const quint64& changes) : m_table(table), m_changes(changes) {}

    // Both go to the first row. The key is for a path of that kind.
    void Start(RowPath path, const QByteArray& key);
    void StartEmpty();

    bool AtEnd() const { return !m_row; }
    void MoveNext();
    RowAddress Address() const { return m_row->home; }
    Value Read(const Column& column);

private:
    std::optional<RowAddress> NextInIndex();
    std::optional<RowAddress> NextAddress();
    IndexCursor PlaceAfterChange() const;

    const Table& m_table;
    const quint64& m_changes;

    RowPath m_path;
    std::optional<FoundRow> m_row;
    std::optional<RowView> m_view;  // of the row, once one of its values was read
    std::optional<TableScan> m_scan;
    QByteArray m_key;                // that was sought last on this path; null: none
    std::vector<RowAddress> m_rows;  // of that key
    std::size_t m_next = 0;          // among them
    std::optional<Index> m_index;
    std::optional<IndexCursor> m_place;
    QByteArray m_entry;  // that was met last; null: none yet
    quint64 m_changesAtPlace = 0;
};

}  // namespace quorvane::access
