#include "data/store/access/check/file_check.h"

#include <algorithm>

#include "data/store/access/check/page_claims.h"
#include "data/store/access/index/index.h"
#include "data/store/access/index/row_key.h"
#include "data/store/access/rows/long_values.h"
#include "data/store/access/table.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr RowAddress kGlobalMap{1, 0};

// Bits for the slots of pages, made as pages are met.
class SlotSet {
public:
    // Returns whether it is new.
    bool Insert(RowAddress slot) { return m_slots.insert(slot.page << 8 | slot.row).second; }
    std::size_t Size() const { return m_slots.size(); }

private:
    std::set<quint64> m_slots;
};

// Throws again what is a fault of the disk, of another program or of the time, and not of the file.
void RequireFaultOfFile(const AccessError& error) {
    if (error.Kind() != Fault::Damaged && error.Kind() != Fault::Refused) {
        throw;
    }
}

// The data pages of a table, or the pages of a column's long values.
void CheckDataPages(const Pages& pages, const std::vector<PageNumber>& numbers, quint32 owner) {
    for (const PageNumber number : numbers) {
        const PagePointer page = pages.Read(number);
        if (PageOwner(*page) != owner) {
            ThrowDamaged(u"page %1 belongs to another table"_s.arg(number));
        }
        CheckDataPage(*page);
    }
}

// One table with all that belongs to it. What is found goes into the list of faults.
class TableCheck {
public:
    TableCheck(Database& database, const CatalogEntry& entry, PageClaims& claims, const CheckLimits& limits,
               QStringList& faults)
        : m_database(database),
          m_pages(database.AllPages()),
          m_entry(entry),
          m_claims(claims),
          m_limits(limits),
          m_faults(faults) {}

    void Run() {
        Try(u"表 %1"_s.arg(m_entry.name), [&] {
            const Table& table = m_database.Find(m_entry.name);
            CheckPages(table.Definition());
            CheckRows(table);
            for (const IndexDescription& index : table.Definition().indexes) {
                Try(u"表 %1,索引 %2"_s.arg(m_entry.name, index.name), [&] { CheckIndex(table, index); });
            }
        });
    }

private:
    template <typename Check>
    void Try(const QString& where, const Check& check) {
        try {
            check();
        } catch (const AccessError& error) {
            RequireFaultOfFile(error);
            m_faults += u"%1:%2"_s.arg(where, error.Message());
        }
    }

    void RequireTime() const { RequireTimeLeft(m_limits); }

    void CheckMaps(RowAddress owned, RowAddress withRoom, quint32 owner) {
        m_claims.UseCarriers(owned);
        const std::vector<PageNumber> pages = MappedPages(m_pages, owned);
        m_claims.Use(pages);
        CheckDataPages(m_pages, pages, owner);
        if (withRoom == RowAddress()) {
            return;
        }
        m_claims.UseCarriers(withRoom);
        const std::vector<PageNumber> room = MappedPages(m_pages, withRoom);
        if (!std::includes(pages.begin(), pages.end(), room.begin(), room.end())) {
            ThrowDamaged(u"a page with free space belongs to nothing"_s);
        }
    }

    void CheckPages(const TableDefinition& table) {
        m_claims.Use(table.pages);
        CheckMaps(table.owned, table.withRoom, table.page);
        for (const auto& [column, maps] : table.longValues) {
            CheckMaps(maps.owned, maps.withRoom, kLongValueOwner);
            m_longPages[column] = MappedPages(m_pages, maps.owned);
        }
    }

    void CheckRows(const Table& table) {
        qint64 greatest = 0;
        m_rows = 0;
        SlotSet targets;
        for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
            RequireTime();
            const FoundRow& row = scan.Row();
            ++m_rows;
            if (row.home != row.data && !targets.Insert(row.data)) {
                ThrowDamaged(u"two rows share their bytes"_s);
            }
            const RowView view(table.Definition(), row.bytes);
            for (const Column& column : table.Columns()) {
                if (column.IsLong() && !view.IsNull(column)) {
                    m_claims.UsePieces(LongValuePieces(m_pages, view.Bytes(column)),
                                       m_longPages[column.number]);
                }
                const Value value = ReadValue(m_pages, view, column);
                if (column.autoNumber && std::holds_alternative<qint64>(value)) {
                    greatest = std::max(greatest, std::get<qint64>(value));
                }
            }
        }
        if (!m_entry.system && m_rows != RowCount(m_pages, table.Definition())) {
            ThrowDamaged(u"%1 rows are counted, and %2 are there"_s.arg(RowCount(m_pages, table.Definition()))
                             .arg(m_rows));
        }
        if (greatest > LastAutoNumber(m_pages, table.Definition())) {
            ThrowDamaged(u"the next number has been used already"_s);
        }
    }

    void CheckIndex(const Table& table, const IndexDescription& description) {
        const Index index(m_pages, table.Definition(), description);
        const std::vector<PageNumber> tree = index.CheckedPages();
        const std::vector<PageNumber> mapped = MappedPages(m_pages, description.map);
        m_claims.UseCarriers(description.map);
        m_claims.Use(tree);
        if (!std::includes(mapped.begin(), mapped.end(), tree.begin(), tree.end())) {
            ThrowDamaged(u"its map lacks a page"_s);
        }
        CheckEntries(table, index);
    }

    void CheckEntries(const Table& table, const Index& index) {
        const IndexDescription& description = index.Description();
        quint32 entries = 0;
        SlotSet unknownKeys;
        QByteArray previous;  // entry
        StoredValues values(static_cast<std::size_t>(table.Definition().maxColumns));
        for (IndexCursor cursor = index.First(); !cursor.AtEnd(); cursor.MoveNext(), ++entries) {
            RequireTime();
            QByteArray entry = cursor.Entry();
            const std::optional<FoundRow> row = table.Find(RowOfEntry(entry));
            if (!row) {
                ThrowDamaged(u"it names a row that is not there"_s);
            }
            ReadIndexed(table, description, *row, values);
            const bool allNull = IsAllNull(description, values);
            if ((description.required && HasNull(description, values)) ||
                (description.ignoresNulls && allNull)) {
                ThrowDamaged(u"it holds a NULL"_s);
            }
            const QByteArrayView key = KeyOfEntry(entry);
            if (description.unique && !allNull && !previous.isEmpty() && key == KeyOfEntry(previous)) {
                ThrowDamaged(u"a key stands there twice"_s);
            }
            if (!IsKeyOf(table.Definition(), description, values, key) && !unknownKeys.Insert(row->home)) {
                ThrowDamaged(u"a row stands there twice"_s);
            }
            previous = std::move(entry);
        }
        if (entries != m_rows - RowsWithoutEntry(table, description)) {
            ThrowDamaged(u"it has %1 entries for %2 rows"_s.arg(entries).arg(m_rows));
        }
    }

    // What the row holds in the columns of an index, as its key is made of it. The values are of use as long
    // as the row is.
    void ReadIndexed(const Table& table, const IndexDescription& description, const FoundRow& row,
                     StoredValues& values) const {
        const RowView view(table.Definition(), row.bytes);
        for (const IndexColumn& indexed : description.columns) {
            const Column* column = table.Definition().Find(indexed.number);
            if (column == nullptr) {
                ThrowDamaged(u"it holds a column that the table has not"_s);
            }
            StoredValue& value = values.at(static_cast<std::size_t>(indexed.number));
            if (column->type == ColumnType::Boolean) {
                value = QByteArray(1, view.IsNull(*column) ? '\0' : '\1');
            } else if (view.IsNull(*column)) {
                value.reset();
            } else {
                const QByteArrayView bytes = view.Bytes(*column);
                value = column->IsLong() ? ReadLongValue(m_pages, bytes)
                                         : QByteArray::fromRawData(bytes.data(), bytes.size());
            }
        }
    }

    // False when the key of these values is not known. Throws when it is another one.
    static bool IsKeyOf(const TableDefinition& table, const IndexDescription& description,
                        const StoredValues& values, QByteArrayView key) {
        QByteArray expected;
        try {
            expected = RowKey(table, description, values);
        } catch (const AccessError&) {
            return false;
        }
        if (expected != key) {
            ThrowDamaged(u"a row stands there under a wrong key"_s);
        }
        return true;
    }

    quint32 RowsWithoutEntry(const Table& table, const IndexDescription& description) const {
        quint32 count = 0;
        if (description.ignoresNulls) {
            StoredValues values(static_cast<std::size_t>(table.Definition().maxColumns));
            for (TableScan scan = table.Scan(); !scan.AtEnd(); scan.MoveNext()) {
                ReadIndexed(table, description, scan.Row(), values);
                count += IsAllNull(description, values) ? 1 : 0;
            }
        }
        return count;
    }

    Database& m_database;
    const Pages& m_pages;
    const CatalogEntry& m_entry;
    PageClaims& m_claims;
    const CheckLimits& m_limits;
    QStringList& m_faults;
    std::map<int, std::vector<PageNumber>> m_longPages;  // of the long values, by column
    quint32 m_rows = 0;
};

}  // namespace

void RequireTimeLeft(const CheckLimits& limits) {
    if (limits.AreReached()) {
        throw AccessError(u"数据库文件检查超时"_s, Fault::Failed);
    }
}

QStringList CheckFile(Database& database, const CheckLimits& limits) {
    QStringList faults;
    PageClaims claims(database.AllPages());
    const auto attempt = [&](const auto& check) {
        try {
            check();
        } catch (const AccessError& error) {
            RequireFaultOfFile(error);
            faults += error.Message();
        }
    };
    attempt([&] { claims.UseCarriers(kGlobalMap); });
    for (const CatalogEntry& table : database.Catalog()) {
        if (!table.linked) {
            TableCheck(database, table, claims, limits, faults).Run();
        }
    }
    attempt([&] { claims.RequireNotFree(); });
    return faults;
}

}  // namespace quorvane::access
