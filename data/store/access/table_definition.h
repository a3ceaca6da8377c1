// What the file says about a table: its columns, its indexes and where its pages are listed
// (docs/access-files.md, "Table definitions").
#pragma once

#include <map>
#include <vector>

#include "data/store/access/column_type.h"
#include "data/store/access/disk/pages.h"
#include "data/store/access/index/text_key.h"

namespace quorvane::access {

struct Column {
    QString name;
    ColumnType type = ColumnType::Long;
    int number = 0;         // its bit in the null mask, and its name in index descriptions
    int variableIndex = 0;  // among the variable values; only when not fixed
    int fixedOffset = 0;    // in the fixed part; only when fixed
    int length = 0;         // bytes; of a text at most
    SortOrder sortOrder;    // of texts and memos
    bool fixed = false;     // stands in the fixed part, whatever its type
    bool autoNumber = false;
    bool autoGuid = false;
    bool compressed = false;  // texts are stored compressed where that is shorter
    bool calculated = false;

    bool IsText() const { return type == ColumnType::Text || type == ColumnType::Memo; }
    bool IsLong() const { return type == ColumnType::Ole || type == ColumnType::Memo; }
};

struct IndexColumn {
    int number = 0;  // of the column
    bool ascending = true;
};

// A real index: several logical ones may share it, and only it has entries.
struct IndexDescription {
    QString name;  // of the logical indexes, joined by "/"
    std::vector<IndexColumn> columns;
    RowAddress map;       // its pages
    PageNumber root = 0;  // never changes
    bool unique = false;
    bool required = false;      // no column may be NULL
    bool ignoresNulls = false;  // no entry for a row whose indexed columns are all NULL
    int position = 0;           // among the real indexes of the table
};

struct LongValueMaps {
    RowAddress owned;
    RowAddress withRoom;
};

struct TableDefinition {
    PageNumber page = 0;            // its first page; what owns the table's pages bears this number
    std::vector<PageNumber> pages;  // all of its pages
    bool system = false;
    int maxColumns = 0;           // columns the table has ever had
    int variableColumns = 0;      // the variable ones among them
    RowAddress owned;             // the table's data pages
    RowAddress withRoom;          // those with free space
    std::vector<Column> columns;  // in the table's design order
    std::vector<IndexDescription> indexes;
    std::map<int, LongValueMaps> longValues;  // by column number
    bool hasRelationship = false;             // an enforced one

    const Column* Find(int number) const;
    const Column* Find(const QString& name) const;  // names do not differ in case alone
};

// Throws AccessError for a definition that is damaged.
TableDefinition ReadTableDefinition(const Pages& pages, PageNumber page);

// The counters on the definition's first page.
quint32 RowCount(const Pages& pages, const TableDefinition& table);
qint32 LastAutoNumber(const Pages& pages, const TableDefinition& table);
quint32 UniqueEntryCount(const Pages& pages, const TableDefinition& table, const IndexDescription& index);
void SetRowCount(Pages& pages, const TableDefinition& table, quint32 count);
void SetLastAutoNumber(Pages& pages, const TableDefinition& table, qint32 number);
void SetUniqueEntryCount(Pages& pages, const TableDefinition& table, const IndexDescription& index,
                         quint32 count);

}  // namespace quorvane::access
