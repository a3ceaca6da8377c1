// Finding the rows of a table: all of them, or one by its address (docs/access-files.md, "Data pages").
#pragma once

#include <optional>
#include <vector>

#include "data/store/access/rows/data_page.h"
#include "data/store/access/table_definition.h"

namespace quorvane::access {

// A row where it stands. Its address is that of its home slot; the bytes may stand elsewhere.
struct FoundRow {
    RowAddress home;
    RowAddress data;
    PagePointer page;  // keeps the bytes
    QByteArrayView bytes;
};

// Nothing when the row was deleted. Throws when the address leads to no row of the table.
std::optional<FoundRow> FindRow(const Pages& pages, const TableDefinition& table, RowAddress home);

// Stands on a row, or behind the last. The table must outlive the scan; rows that are added while it runs may
// or may not be met.
class TableScan {
public:
    TableScan(const Pages& pages, const TableDefinition& table);

    bool AtEnd() const { return !m_row; }
    const FoundRow& Row() const { return *m_row; }
    void MoveNext();

private:
    const Pages* m_pages;
    const TableDefinition* m_table;
    std::vector<PageNumber> m_numbers;  // of the table's pages
    std::size_t m_position = 0;         // among them
    int m_next = 0;                     // slot of the present page
    PagePointer m_page;
    std::optional<FoundRow> m_row;
};

}  // namespace quorvane::access
