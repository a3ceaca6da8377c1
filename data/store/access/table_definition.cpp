#include "data/store/access/table_definition.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

// On the first page.
constexpr qsizetype kNextPage = 4;
constexpr qsizetype kLength = 8;
constexpr qsizetype kRowCount = 16;
constexpr qsizetype kLastAutoNumber = 20;
constexpr qsizetype kKind = 40;
constexpr qsizetype kMaxColumns = 41;
constexpr qsizetype kVariableColumns = 43;
constexpr qsizetype kColumnCount = 45;
constexpr qsizetype kLogicalCount = 47;
constexpr qsizetype kRealCount = 51;
constexpr qsizetype kOwnedMap = 55;
constexpr qsizetype kWithRoomMap = 59;
constexpr qsizetype kIndexCounters = 63;
constexpr qsizetype kIndexCounterSize = 12;
constexpr qsizetype kUniqueEntries = 4;  // within the counters of one index

constexpr qsizetype kContinuation = 8;  // where a later page of a definition goes on
constexpr quint8 kSystemTable = 0x53;
constexpr int kMostColumns = 255;
constexpr quint32 kMostIndexes = 255;
constexpr int kIndexColumns = 10;
constexpr quint16 kUnused = 0xFFFF;
constexpr quint8 kPrimaryKey = 1;  // kinds of logical indexes
constexpr quint8 kRelationship = 2;

// Takes a definition's parts one after the other.
class Reader {
public:
    Reader(const QByteArray& bytes, qsizetype at) : m_bytes(bytes), m_at(at) {}
    QByteArrayView Next(qsizetype length) {
        const QByteArrayView part = Part(QByteArrayView(m_bytes), m_at, length);
        m_at += length;
        return part;
    }
    QString NextName() {
        const QByteArrayView bytes = Next(ReadU16(Next(2), 0));
        QString name(bytes.size() / 2, Qt::Uninitialized);
        for (qsizetype index = 0; index < name.size(); ++index) {
            name[index] = QChar(ReadU16(bytes, 2 * index));
        }
        return name;
    }

private:
    const QByteArray& m_bytes;
    qsizetype m_at;
};

QByteArray WholeDefinition(const Pages& pages, TableDefinition& table) {
    QByteArray whole;
    for (PageNumber number = table.page; number != 0;) {
        const PagePointer page = pages.Read(number);
        const QByteArrayView bytes(page->data(), kPageSize);
        if (bytes[0] != static_cast<char>(PageKind::Definition)) {
            ThrowDamaged(u"page %1 is no table definition"_s.arg(number));
        }
        if (std::find(table.pages.begin(), table.pages.end(), number) != table.pages.end()) {
            ThrowDamaged(u"a table definition runs in a ring"_s);
        }
        table.pages.push_back(number);
        whole += whole.isEmpty() ? bytes : bytes.sliced(kContinuation);
        number = ReadU32(bytes, kNextPage);
    }
    return whole;
}

Column ReadColumn(QByteArrayView bytes) {
    Column column;
    column.type = static_cast<ColumnType>(ReadU8(bytes, 0));
    column.number = ReadU16(bytes, 5);
    column.variableIndex = ReadU16(bytes, 7);
    column.sortOrder = {ReadU16(bytes, 11), ReadU8(bytes, 14)};
    const quint8 flags = ReadU8(bytes, 15);
    column.fixed = (flags & 0x01) != 0;
    column.autoNumber = (flags & 0x04) != 0;
    column.autoGuid = (flags & 0x40) != 0;
    column.compressed = (ReadU8(bytes, 16) & 0x01) != 0;
    column.calculated = (ReadU8(bytes, 16) & 0xC0) != 0;
    column.fixedOffset = ReadU16(bytes, 21);
    column.length = ReadU16(bytes, 23);
    return column;
}

// Whether the column has bytes of its own in a row.
bool HasPlace(const Column& column, const TableDefinition& table) {
    if (column.type == ColumnType::Boolean) {
        return true;
    }
    if (column.fixed) {
        return column.fixedOffset + column.length <= kPageSize;
    }
    const auto sharesPlace = [&](const Column& other) {
        return !other.fixed && other.type != ColumnType::Boolean &&
               other.variableIndex == column.variableIndex;
    };
    return column.variableIndex < table.variableColumns &&
           std::count_if(table.columns.begin(), table.columns.end(), sharesPlace) == 1;
}

void ReadColumns(Reader& reader, int count, TableDefinition& table) {
    for (int index = 0; index < count; ++index) {
        table.columns.push_back(ReadColumn(reader.Next(25)));
    }
    for (Column& column : table.columns) {
        column.name = reader.NextName();
        if (column.number >= table.maxColumns || table.Find(column.number) != &column ||
            !HasPlace(column, table)) {
            ThrowDamaged(u"column %1 is described wrongly"_s.arg(column.name));
        }
    }
}

IndexDescription ReadRealIndex(QByteArrayView bytes, const TableDefinition& table) {
    IndexDescription index;
    for (int place = 0; place < kIndexColumns; ++place) {
        const int number = ReadU16(bytes, 4 + 3 * place);
        if (number == kUnused) {
            continue;
        }
        if (table.Find(number) == nullptr) {
            ThrowDamaged(u"an index names column %1, which is not there"_s.arg(number));
        }
        index.columns.push_back({number, (ReadU8(bytes, 6 + 3 * place) & 1) != 0});
    }
    index.map = ReadRowAddress(bytes, 34);
    index.root = ReadU32(bytes, 38);
    const quint8 flags = ReadU8(bytes, 46);
    index.unique = (flags & 0x01) != 0;
    index.ignoresNulls = (flags & 0x02) != 0;
    index.required = (flags & 0x08) != 0;
    return index;
}

// Names and purposes stand with the logical indexes.
void ReadLogicalIndexes(Reader& reader, quint32 count, TableDefinition& table) {
    std::vector<IndexDescription*> reals;
    for (quint32 number = 0; number < count; ++number) {
        const QByteArrayView bytes = reader.Next(28);
        const quint32 real = ReadU32(bytes, 8);
        if (real >= table.indexes.size()) {
            ThrowDamaged(u"an index has no entries of its own"_s);
        }
        reals.push_back(&table.indexes[real]);
        const quint8 kind = ReadU8(bytes, 23);
        reals.back()->unique |= kind == kPrimaryKey;
        reals.back()->required |= kind == kPrimaryKey;
        table.hasRelationship |= kind == kRelationship;
    }
    for (IndexDescription* real : reals) {
        const QString name = reader.NextName();
        real->name += real->name.isEmpty() ? name : u'/' + name;
    }
}

void ReadLongValueMaps(Reader& reader, TableDefinition& table) {
    for (;;) {
        const int number = ReadU16(reader.Next(2), 0);
        if (number == kUnused) {
            return;
        }
        const QByteArrayView maps = reader.Next(8);
        table.longValues[number] = {ReadRowAddress(maps, 0), ReadRowAddress(maps, 4)};
    }
}

qsizetype UniqueEntriesAt(const IndexDescription& index) {
    return kIndexCounters + kIndexCounterSize * index.position + kUniqueEntries;
}

quint32 Counter(const Pages& pages, const TableDefinition& table, qsizetype offset) {
    return ReadU32(QByteArrayView(pages.Read(table.page)->data(), kPageSize), offset);
}

}  // namespace

const Column* TableDefinition::Find(int number) const {
    const auto column = std::find_if(columns.begin(), columns.end(),
                                     [number](const Column& other) { return other.number == number; });
    return column == columns.end() ? nullptr : &*column;
}

const Column* TableDefinition::Find(const QString& name) const {
    const auto column = std::find_if(columns.begin(), columns.end(), [&](const Column& other) {
        return other.name.compare(name, Qt::CaseInsensitive) == 0;
    });
    return column == columns.end() ? nullptr : &*column;
}

TableDefinition ReadTableDefinition(const Pages& pages, PageNumber page) {
    TableDefinition table;
    table.page = page;
    const QByteArray bytes = WholeDefinition(pages, table);
    table.system = ReadU8(bytes, kKind) == kSystemTable;
    table.maxColumns = ReadU16(bytes, kMaxColumns);
    table.variableColumns = ReadU16(bytes, kVariableColumns);
    table.owned = ReadRowAddress(bytes, kOwnedMap);
    table.withRoom = ReadRowAddress(bytes, kWithRoomMap);
    const int columnCount = ReadU16(bytes, kColumnCount);
    const quint32 realCount = ReadU32(bytes, kRealCount);
    const quint32 logicalCount = ReadU32(bytes, kLogicalCount);
    if (columnCount > kMostColumns || realCount > kMostIndexes || logicalCount > kMostIndexes) {
        ThrowDamaged(u"a table has too many columns or indexes"_s);
    }
    Reader reader(bytes, kIndexCounters + kIndexCounterSize * static_cast<qsizetype>(realCount));
    ReadColumns(reader, columnCount, table);
    for (quint32 position = 0; position < realCount; ++position) {
        table.indexes.push_back(ReadRealIndex(reader.Next(52), table));
        table.indexes.back().position = static_cast<int>(position);
    }
    ReadLogicalIndexes(reader, logicalCount, table);
    ReadLongValueMaps(reader, table);
    return table;
}

quint32 RowCount(const Pages& pages, const TableDefinition& table) {
    return Counter(pages, table, kRowCount);
}

qint32 LastAutoNumber(const Pages& pages, const TableDefinition& table) {
    return static_cast<qint32>(Counter(pages, table, kLastAutoNumber));
}

quint32 UniqueEntryCount(const Pages& pages, const TableDefinition& table, const IndexDescription& index) {
    return Counter(pages, table, UniqueEntriesAt(index));
}

void SetRowCount(Pages& pages, const TableDefinition& table, quint32 count) {
    WriteU32(pages.Write(table.page), kRowCount, count);
}

void SetLastAutoNumber(Pages& pages, const TableDefinition& table, qint32 number) {
    WriteU32(pages.Write(table.page), kLastAutoNumber, static_cast<quint32>(number));
}

void SetUniqueEntryCount(Pages& pages, const TableDefinition& table, const IndexDescription& index,
                         quint32 count) {
    WriteU32(pages.Write(table.page), UniqueEntriesAt(index), count);
}

}  // namespace quorvane::access
