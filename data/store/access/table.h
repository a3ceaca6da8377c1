// One table: its rows, and the statements that change them. Keeps the indexes, the long values, the row count
// and the AutoNumber (docs/access-files.md, "Writing rows").
#pragma once

#include "data/store/access/catalog.h"
#include "data/store/access/index/index.h"
#include "data/store/access/rows/row_store.h"
#include "data/store/access/rows/value.h"

namespace quorvane::access {

class Table {
public:
    Table(Pages& pages, PageAllocator& allocator, const CatalogEntry& entry);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const QString& Name() const { return m_entry.name; }
    const TableDefinition& Definition() const { return m_definition; }
    const std::vector<Column>& Columns() const { return m_definition.columns; }

    TableScan Scan() const { return {m_pages, m_definition}; }
    // Nothing when the row was deleted.
    std::optional<FoundRow> Find(RowAddress row) const { return FindRow(m_pages, m_definition, row); }
    Value Read(const FoundRow& row, const Column& column) const;
    Value Read(const RowView& row, const Column& column) const { return ReadValue(m_pages, row, column); }
    quint32 CountRows() const { return RowCount(m_pages, m_definition); }
    // How many different keys an index has had, at the least; and its entries.
    quint32 CountKeys(const IndexDescription& index) const {
        return UniqueEntryCount(m_pages, m_definition, index);
    }
    Index Entries(const IndexDescription& index) const { return {m_pages, m_definition, index}; }

    // The key, or the beginning of one, under which an index holds rows with these values in its first
    // columns. Throws AccessError for a value that the column cannot hold, and for a text whose key is not
    // known.
    QByteArray Key(const IndexDescription& index, const std::vector<Value>& values) const;

    // Each of these works within a statement, which has to be rolled back after a throw. The reason names
    // table, column and row. Values stand in the order of Columns().

    // NULL for the AutoNumber gives the next one.
    RowAddress Insert(const std::vector<Value>& values);
    // Columns without a value keep their bytes.
    void Update(RowAddress row, const std::vector<std::optional<Value>>& values);
    void Delete(RowAddress row);

    // To be called when a statement was rolled back.
    void Forget() { m_rows.Forget(); }

private:
    // What becomes of a row's entry in one index. No key: no entry.
    struct EntryChange {
        const IndexDescription* index = nullptr;
        std::optional<QByteArray> removed;
        std::optional<QByteArray> added;
    };

    void RequireWritable() const;
    [[noreturn]] void Refuse(const StoredValues& contents, const AccessError& error) const;
    StoredValue Checked(const Column& column, const Value& value) const;
    StoredValue NextAutoNumber() const;
    void CountRow(const StoredValues& contents);

    StoredValue Content(const Column& column, const StoredValue& stored) const;
    StoredValues ContentsOf(const IndexDescription& index, const StoredValues& stored) const;
    std::optional<QByteArray> OldKey(const IndexDescription& index, const StoredValues& stored,
                                     RowAddress row) const;
    std::optional<QByteArray> NewKey(const IndexDescription& index, const StoredValues& contents) const;
    std::vector<const Column*> Change(StoredValues& contents,
                                      const std::vector<std::optional<Value>>& values) const;
    // What an update means for the indexes that hold one of the changed columns.
    std::vector<EntryChange> EntryChanges(const StoredValues& old, const StoredValues& contents,
                                          const std::vector<const Column*>& changed, RowAddress row) const;
    void RequireUnique(const EntryChange& change, const StoredValues& contents) const;
    void ChangeEntries(const std::vector<EntryChange>& changes, RowAddress row);

    QByteArray StoreLongValue(const Column& column, const QByteArray& content);
    void ReleaseLongValue(const Column& column, const StoredValue& head);

    Pages& m_pages;
    PageAllocator& m_allocator;
    CatalogEntry m_entry;
    TableDefinition m_definition;
    RowStore m_rows;
};

}  // namespace quorvane::access
