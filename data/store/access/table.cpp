#include "data/store/access/table.h"

#include <algorithm>
#include <limits>

#include "data/store/access/index/index_writer.h"
#include "data/store/access/index/row_key.h"
#include "data/store/access/rows/long_values.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

StoredValue& At(StoredValues& values, const Column& column) {
    return values[static_cast<std::size_t>(column.number)];
}

const StoredValue& At(const StoredValues& values, const Column& column) {
    return values[static_cast<std::size_t>(column.number)];
}

bool IsAutoNumber(const Column& column) {
    return column.autoNumber && column.type == ColumnType::Long;
}

bool IsKnownType(ColumnType type) {
    return type == ColumnType::Guid || (type >= ColumnType::Boolean && type <= ColumnType::Memo);
}

qint32 ToNumber(const StoredValue& value) {
    return static_cast<qint32>(ReadU32(*value, 0));
}

bool Names(const IndexDescription& index, const std::vector<const Column*>& columns) {
    return std::any_of(index.columns.begin(), index.columns.end(), [&](const IndexColumn& part) {
        return std::any_of(columns.begin(), columns.end(),
                           [&](const Column* column) { return column->number == part.number; });
    });
}

}  // namespace

Table::Table(Pages& pages, PageAllocator& allocator, const CatalogEntry& entry)
    : m_pages(pages),
      m_allocator(allocator),
      m_entry(entry),
      m_definition(ReadTableDefinition(pages, entry.definition)),
      m_rows(pages, allocator, m_definition) {}

Value Table::Read(const FoundRow& row, const Column& column) const {
    return ReadValue(m_pages, RowView(m_definition, row.bytes), column);
}

QByteArray Table::Key(const IndexDescription& index, const std::vector<Value>& values) const {
    StoredValues contents(static_cast<std::size_t>(m_definition.maxColumns));
    for (std::size_t place = 0; place < values.size(); ++place) {
        const Column& column = *m_definition.Find(index.columns[place].number);
        At(contents, column) = ToStored(values[place], column);
    }
    return RowKey(m_definition, index, contents, values.size());
}

RowAddress Table::Insert(const std::vector<Value>& values) {
    StoredValues contents(static_cast<std::size_t>(m_definition.maxColumns));
    try {
        RequireWritable();
        for (std::size_t place = 0; place < values.size(); ++place) {
            const Column& column = Columns()[place];
            At(contents, column) = Checked(column, values[place]);
        }
        std::vector<EntryChange> changes;
        for (const IndexDescription& index : m_definition.indexes) {
            changes.push_back({&index, std::nullopt, NewKey(index, contents)});
            RequireUnique(changes.back(), contents);
        }
        StoredValues stored = contents;
        for (const Column& column : Columns()) {
            if (column.IsLong() && At(stored, column)) {
                At(stored, column) = StoreLongValue(column, *At(contents, column));
            }
        }
        const RowAddress row = m_rows.Add(EncodeRow(m_definition, stored));
        ChangeEntries(changes, row);
        CountRow(contents);
        return row;
    } catch (const AccessError& error) {
        Refuse(contents, error);
    }
}

void Table::Update(RowAddress row, const std::vector<std::optional<Value>>& values) {
    const std::optional<FoundRow> found = Find(row);
    if (!found) {
        throw AccessError(u"表 %1 中已没有该记录"_s.arg(Name()));
    }
    const StoredValues old = RowView(m_definition, found->bytes).All();
    try {
        RequireWritable();
        StoredValues contents = old;  // of the changed columns what a long value holds
        const std::vector<const Column*> changed = Change(contents, values);
        if (changed.empty()) {
            return;
        }
        const std::vector<EntryChange> changes = EntryChanges(old, contents, changed, row);
        for (const Column* column : changed) {
            if (column->IsLong()) {
                ReleaseLongValue(*column, At(old, *column));
                StoredValue& value = At(contents, *column);
                value = value ? StoredValue(StoreLongValue(*column, *value)) : value;
            }
        }
        m_rows.Replace(*found, EncodeRow(m_definition, contents));
        ChangeEntries(changes, row);
    } catch (const AccessError& error) {
        Refuse(old, error);
    }
}

// Puts the new values in. Gives the columns whose value is another one than before.
std::vector<const Column*> Table::Change(StoredValues& contents,
                                         const std::vector<std::optional<Value>>& values) const {
    std::vector<const Column*> changed;
    for (std::size_t place = 0; place < values.size(); ++place) {
        const Column& column = Columns()[place];
        const StoredValue old = At(contents, column);
        if (!values[place] || *values[place] == ReadValue(m_pages, old, column)) {
            continue;
        }
        StoredValue content = Checked(column, *values[place]);
        if (content == Content(column, old)) {
            continue;
        }
        if (IsAutoNumber(column)) {
            throw AccessError(u"自动编号不能更改"_s).InColumn(column.name);
        }
        At(contents, column) = std::move(content);
        changed.push_back(&column);
    }
    return changed;
}

void Table::Delete(RowAddress row) {
    const std::optional<FoundRow> found = Find(row);
    if (!found) {
        throw AccessError(u"表 %1 中已没有该记录"_s.arg(Name()));
    }
    const StoredValues old = RowView(m_definition, found->bytes).All();
    try {
        RequireWritable();
        std::vector<EntryChange> changes;
        for (const IndexDescription& index : m_definition.indexes) {
            changes.push_back({&index, OldKey(index, old, row), std::nullopt});
        }
        ChangeEntries(changes, row);
        for (const Column& column : Columns()) {
            if (column.IsLong()) {
                ReleaseLongValue(column, At(old, column));
            }
        }
        m_rows.Remove(*found);
        SetRowCount(m_pages, m_definition, RowCount(m_pages, m_definition) - 1);
    } catch (const AccessError& error) {
        Refuse(old, error);
    }
}

// --- what a row has to obey --------------------------------------------------------------------------------

void Table::RequireWritable() const {
    const auto refuse = [](const QString& reason) { throw AccessError(reason); };
    if (m_entry.linked || m_entry.system || m_definition.system) {
        refuse(u"该表不是本数据库自己的表"_s);
    }
    if (m_entry.hasRelationship || m_definition.hasRelationship) {
        refuse(u"该表的关系实施了参照完整性"_s);
    }
    if (m_entry.hasValidation) {
        refuse(u"该表设有有效性规则,程序不能检查"_s);
    }
    for (const Column& column : Columns()) {
        const bool isDecimal = column.type == ColumnType::Decimal;
        if (column.calculated || (!IsKnownType(column.type) && !isDecimal) ||
            (column.IsLong() && column.fixed)) {
            refuse(u"字段 %1 的数据类型不能写入"_s.arg(column.name));
        }
    }
    if (std::count_if(Columns().begin(), Columns().end(), IsAutoNumber) > 1) {
        refuse(u"该表有不止一个自动编号字段"_s);
    }
}

void Table::Refuse(const StoredValues& contents, const AccessError& error) const {
    const auto key = std::find_if(Columns().begin(), Columns().end(), IsAutoNumber);
    const bool isNamed = key != Columns().end() && At(contents, *key);
    const QString row = isNamed ? u"%1=%2 的"_s.arg(key->name).arg(ToNumber(At(contents, *key))) : QString();
    throw AccessError(u"表 %1,%2记录:%3"_s.arg(Name(), row, error.Message()), error.Kind(), error.Column());
}

// What the column holds for a value; of a memo or picture, the content of its long value.
StoredValue Table::Checked(const Column& column, const Value& value) const {
    const ColumnRules rules = m_entry.Rules(column.name);
    try {
        if (IsAutoNumber(column) && std::holds_alternative<std::monostate>(value)) {
            return NextAutoNumber();
        }
        StoredValue content = ToStored(value, column);
        if (!content && (rules.required || column.autoGuid)) {
            throw AccessError(u"必填字段不能为空"_s);
        }
        if (content && content->isEmpty() && column.IsText() && !rules.takesEmpty) {
            throw AccessError(u"不允许空字符串"_s, Fault::EmptyText);
        }
        return content;
    } catch (const AccessError& error) {
        throw error.InColumn(column.name);
    }
}

StoredValue Table::NextAutoNumber() const {
    const auto column = std::find_if(Columns().begin(), Columns().end(), IsAutoNumber);
    const qint32 last = LastAutoNumber(m_pages, m_definition);
    if (last == std::numeric_limits<qint32>::max() ||
        m_entry.Rules(column->name).defaultValue.contains(u"GenUniqueID"_s, Qt::CaseInsensitive)) {
        throw AccessError(u"没有下一个自动编号"_s);
    }
    QByteArray number;
    AppendNumber(number, 4, static_cast<quint32>(last + 1));
    return number;
}

void Table::CountRow(const StoredValues& contents) {
    SetRowCount(m_pages, m_definition, RowCount(m_pages, m_definition) + 1);
    const auto column = std::find_if(Columns().begin(), Columns().end(), IsAutoNumber);
    if (column != Columns().end()) {
        const qint32 last = LastAutoNumber(m_pages, m_definition);
        SetLastAutoNumber(m_pages, m_definition, std::max(last, ToNumber(At(contents, *column))));
    }
}

// --- indexes -----------------------------------------------------------------------------------------------

StoredValue Table::Content(const Column& column, const StoredValue& stored) const {
    return column.IsLong() && stored ? StoredValue(ReadLongValue(m_pages, *stored)) : stored;
}

StoredValues Table::ContentsOf(const IndexDescription& index, const StoredValues& stored) const {
    StoredValues contents = stored;
    for (const IndexColumn& part : index.columns) {
        const Column& column = *m_definition.Find(part.number);
        At(contents, column) = Content(column, At(stored, column));
    }
    return contents;
}

// A key that cannot be formed is looked up by the row's address.
std::optional<QByteArray> Table::OldKey(const IndexDescription& index, const StoredValues& stored,
                                        RowAddress row) const {
    const StoredValues contents = ContentsOf(index, stored);
    if (index.ignoresNulls && IsAllNull(index, contents)) {
        return std::nullopt;
    }
    const Index entries(m_pages, m_definition, index);
    try {
        QByteArray key = RowKey(m_definition, index, contents);
        const IndexCursor cursor = entries.Seek(IndexEntry(key, row));
        if (!cursor.AtEnd() && cursor.Entry() == IndexEntry(key, row)) {
            return key;
        }
    } catch (const AccessError& error) {
        if (error.Kind() != Fault::Refused) {
            throw;
        }
    }
    const std::optional<QByteArray> entry = entries.EntryOf(row);
    if (!entry) {
        ThrowDamaged(u"index %1 lacks the row"_s.arg(index.name));
    }
    return KeyOfEntry(*entry).toByteArray();
}

std::optional<QByteArray> Table::NewKey(const IndexDescription& index, const StoredValues& contents) const {
    if (index.required && HasNull(index, contents)) {
        throw AccessError(u"索引 %1 的字段不能为空"_s.arg(index.name));
    }
    if (index.ignoresNulls && IsAllNull(index, contents)) {
        return std::nullopt;
    }
    return RowKey(m_definition, index, contents);
}

std::vector<Table::EntryChange> Table::EntryChanges(const StoredValues& old, const StoredValues& contents,
                                                    const std::vector<const Column*>& changed,
                                                    RowAddress row) const {
    std::vector<EntryChange> changes;
    for (const IndexDescription& index : m_definition.indexes) {
        if (!Names(index, changed)) {
            continue;
        }
        StoredValues indexed = ContentsOf(index, old);
        for (const Column* column : changed) {
            At(indexed, *column) = At(contents, *column);
        }
        EntryChange change{&index, OldKey(index, old, row), NewKey(index, indexed)};
        if (change.removed != change.added) {
            RequireUnique(change, indexed);
            changes.push_back(std::move(change));
        }
    }
    return changes;
}

void Table::RequireUnique(const EntryChange& change, const StoredValues& contents) const {
    const IndexDescription& index = *change.index;
    if (index.unique && change.added && !IsAllNull(index, contents) &&
        Index(m_pages, m_definition, index).Contains(*change.added)) {
        throw AccessError(u"索引 %1 无重复,而其中已有相同的值"_s.arg(index.name));
    }
}

void Table::ChangeEntries(const std::vector<EntryChange>& changes, RowAddress row) {
    for (const EntryChange& change : changes) {
        IndexWriter writer(m_pages, m_allocator, m_definition, *change.index);
        if (change.removed) {
            writer.Remove(*change.removed, row);
        }
        if (change.added) {
            writer.Insert(*change.added, row);
        }
    }
}

// --- long values -------------------------------------------------------------------------------------------

QByteArray Table::StoreLongValue(const Column& column, const QByteArray& content) {
    const auto maps = m_definition.longValues.find(column.number);
    if (maps == m_definition.longValues.end()) {
        ThrowDamaged(u"column %1 has no pages for its values"_s.arg(column.name));
    }
    return LongValueWriter(m_pages, m_allocator, maps->second.owned, maps->second.withRoom).Store(content);
}

void Table::ReleaseLongValue(const Column& column, const StoredValue& head) {
    const auto maps = m_definition.longValues.find(column.number);
    if (head && maps != m_definition.longValues.end()) {
        LongValueWriter(m_pages, m_allocator, maps->second.owned, maps->second.withRoom).Release(*head);
    }
}

}  // namespace quorvane::access
