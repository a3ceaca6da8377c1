#include "data/store/access/catalog.h"

#include <algorithm>

#include "data/store/access/properties.h"
#include "data/store/access/rows/table_scan.h"
#include "data/store/access/rows/value.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr PageNumber kCatalogPage = 2;
constexpr qint64 kLocalTable = 1;  // types of objects
constexpr qint64 kLinkedOdbc = 4;
constexpr qint64 kLinkedTable = 6;
constexpr qint64 kSystemFlags = 0x80000002;
constexpr qint64 kPageMask = 0xFFFFFF;
constexpr qint64 kNotEnforced = 2;

// A row of a system table by the names of its columns.
class NamedRow {
public:
    NamedRow(const Pages& pages, const TableDefinition& table, const FoundRow& row)
        : m_pages(pages), m_table(table), m_view(table, row.bytes) {}
    qint64 Number(const QString& name) const {
        const Value value = Read(name);
        const auto* number = std::get_if<qint64>(&value);
        return number != nullptr ? *number : 0;
    }
    QString Text(const QString& name) const {
        const Value value = Read(name);
        const auto* text = std::get_if<QString>(&value);
        return text != nullptr ? *text : QString();
    }
    QByteArray Bytes(const QString& name) const {
        const Value value = Read(name);
        const auto* bytes = std::get_if<QByteArray>(&value);
        return bytes != nullptr ? *bytes : QByteArray();
    }

private:
    Value Read(const QString& name) const {
        const Column* column = m_table.Find(name);
        if (column == nullptr) {
            ThrowDamaged(u"a system table has no column %1"_s.arg(name));
        }
        return ReadValue(m_pages, m_view, *column);
    }

    const Pages& m_pages;
    const TableDefinition& m_table;
    RowView m_view;
};

CatalogEntry ReadEntry(const NamedRow& row, qint64 type) {
    CatalogEntry entry;
    entry.name = row.Text(u"Name"_s);
    entry.linked = type != kLocalTable;
    entry.definition = static_cast<PageNumber>(row.Number(u"Id"_s) & kPageMask);
    entry.system = (row.Number(u"Flags"_s) & kSystemFlags) != 0;
    const QByteArray properties = entry.linked ? QByteArray() : row.Bytes(u"LvProp"_s);
    if (!entry.system && !properties.isEmpty()) {
        ReadProperties(properties, entry);
    }
    return entry;
}

void MarkRelationships(const Pages& pages, PageNumber definition, std::vector<CatalogEntry>& tables) {
    const TableDefinition relationships = ReadTableDefinition(pages, definition);
    for (TableScan scan(pages, relationships); !scan.AtEnd(); scan.MoveNext()) {
        const NamedRow row(pages, relationships, scan.Row());
        if ((row.Number(u"grbit"_s) & kNotEnforced) != 0) {
            continue;
        }
        const QString referring = row.Text(u"szObject"_s);
        const QString referred = row.Text(u"szReferencedObject"_s);
        for (CatalogEntry& table : tables) {
            table.hasRelationship |= table.name.compare(referring, Qt::CaseInsensitive) == 0 ||
                                     table.name.compare(referred, Qt::CaseInsensitive) == 0;
        }
    }
}

}  // namespace

ColumnRules CatalogEntry::Rules(const QString& column) const {
    const auto found = rules.find(column.toLower());
    return found == rules.end() ? ColumnRules() : found->second;
}

std::vector<CatalogEntry> ReadCatalog(const Pages& pages) {
    std::vector<CatalogEntry> tables;
    const TableDefinition catalog = ReadTableDefinition(pages, kCatalogPage);
    for (TableScan scan(pages, catalog); !scan.AtEnd(); scan.MoveNext()) {
        const NamedRow row(pages, catalog, scan.Row());
        const qint64 type = row.Number(u"Type"_s);
        if (type == kLocalTable || type == kLinkedOdbc || type == kLinkedTable) {
            tables.push_back(ReadEntry(row, type));
        }
    }
    const auto relationships = std::find_if(tables.begin(), tables.end(), [](const CatalogEntry& table) {
        return table.system && table.name == u"MSysRelationships"_s;
    });
    if (relationships != tables.end()) {
        MarkRelationships(pages, relationships->definition, tables);
    }
    return tables;
}

}  // namespace quorvane::access
