#include "data/store/access/sql/virtual_table.h"

#include <QStringList>
#include <algorithm>
#include <limits>

#include "data/store/access/sql/row_cursor.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane::access {

namespace {

constexpr const char* kModuleName = "access";

// How the engine compares a column's values, and what it makes of those given in a statement.
const char* DeclaredType(ColumnType type) {
    switch (type) {
        case ColumnType::Boolean:
        case ColumnType::Byte:
        case ColumnType::Integer:
        case ColumnType::Long:
            return " INTEGER";
        case ColumnType::Currency:
        case ColumnType::Single:
        case ColumnType::Double:
            return " REAL";
        case ColumnType::Text:
        case ColumnType::Memo:
            return " TEXT COLLATE NOCASE";
        default:
            return "";
    }
}

// What the engine can hold. Values of other types keep their bytes when their row is changed.
bool IsShown(const Column& column) {
    return *DeclaredType(column.type) != '\0';
}

QString Quoted(QString name) {
    return u'"' + name.replace(u'"', u"\"\""_s) + u'"';
}

Value ToValue(sqlite3_value* value) {
    switch (sqlite3_value_type(value)) {
        case SQLITE_INTEGER:
            return qint64{sqlite3_value_int64(value)};
        case SQLITE_FLOAT:
            return sqlite3_value_double(value);
        case SQLITE_TEXT: {
            const auto* text = static_cast<const char16_t*>(sqlite3_value_text16(value));
            return QStringView(text, sqlite3_value_bytes16(value) / 2).toString();  // a byte order mark stays
        }
        case SQLITE_BLOB:
            return QByteArray(static_cast<const char*>(sqlite3_value_blob(value)),
                              sqlite3_value_bytes(value));
        default:
            return {};
    }
}

void SetResult(sqlite3_context* context, const Value& value) {
    if (const auto* whole = std::get_if<qint64>(&value)) {
        sqlite3_result_int64(context, *whole);
    } else if (const auto* real = std::get_if<double>(&value)) {
        sqlite3_result_double(context, *real);
    } else if (const auto* text = std::get_if<QString>(&value)) {
        const QByteArray bytes = text->toUtf8();
        sqlite3_result_text64(context, bytes.constData(), static_cast<sqlite3_uint64>(bytes.size()),
                              SQLITE_TRANSIENT, SQLITE_UTF8);
    } else {
        sqlite3_result_null(context);
    }
}

// A whole number in the range of a Long, as a condition gives it; nothing equals any other value.
std::optional<qint64> ToLong(sqlite3_value* value) {
    if (sqlite3_value_numeric_type(value) == SQLITE_INTEGER) {
        const qint64 whole = sqlite3_value_int64(value);
        const bool fits =
            whole >= std::numeric_limits<qint32>::min() && whole <= std::numeric_limits<qint32>::max();
        return fits ? std::optional(whole) : std::nullopt;
    }
    const double real = sqlite3_value_double(value);
    const bool isNumber = sqlite3_value_numeric_type(value) == SQLITE_FLOAT;
    const bool fits =
        real >= std::numeric_limits<qint32>::min() && real <= std::numeric_limits<qint32>::max();
    return isNumber && fits && real == static_cast<double>(static_cast<qint64>(real))
               ? std::optional(static_cast<qint64>(real))
               : std::nullopt;
}

sqlite3_int64 ToRowId(RowAddress row) {
    return sqlite3_int64{row.page} << 8 | row.row;
}

RowAddress FromRowId(sqlite3_int64 id) {
    return {static_cast<PageNumber>(id >> 8), static_cast<quint8>(id & 0xff)};
}

struct VirtualTable : sqlite3_vtab {
    VirtualTable(Database& owner, Table& shown) : sqlite3_vtab{}, database(owner), table(shown) {}
    Database& database;
    Table& table;
    quint64 changes = 0;
};

struct VirtualCursor : sqlite3_vtab_cursor {
    explicit VirtualCursor(VirtualTable& owner) : sqlite3_vtab_cursor{}, rows(owner.table, owner.changes) {}
    RowCursor rows;
};

VirtualTable& Of(sqlite3_vtab* table) {
    return *static_cast<VirtualTable*>(table);
}
VirtualTable& Of(sqlite3_vtab_cursor* cursor) {
    return Of(cursor->pVtab);
}
RowCursor& RowsOf(sqlite3_vtab_cursor* cursor) {
    return static_cast<VirtualCursor*>(cursor)->rows;
}

void SetMessage(char** place, const QString& message) {
    sqlite3_free(*place);
    *place = sqlite3_mprintf("%s", message.toUtf8().constData());
}

// No exception may pass through the engine; it becomes the statement's error.
template <typename Action>
int Run(char** message, const Action& action) {
    try {
        try {
            action();
            return SQLITE_OK;
        } catch (const AccessError& error) {
            SetMessage(message, error.Message());
        } catch (const std::bad_alloc&) {
            throw;
        } catch (const std::exception& error) {
            SetMessage(message, QString::fromLocal8Bit(error.what()));
        }
        return SQLITE_ERROR;
    } catch (const std::bad_alloc&) {
        return SQLITE_NOMEM;
    }
}

void RequireMemory(int result) {
    if (result == SQLITE_NOMEM) {
        throw std::bad_alloc();
    }
}
template <typename Action>
int Run(sqlite3_vtab* table, const Action& action) {
    return Run(&table->zErrMsg, [&] {
        try {
            action();
        } catch (const AccessError& error) {
            Of(table).database.KeepFailure(error);
            throw;
        }
    });
}

// --- declaring

int Connect(sqlite3* engine, void* database, int /*count*/, const char* const* arguments,
            sqlite3_vtab** table, char** message) {
    return Run(message, [&] {
        Database& owner = **static_cast<std::shared_ptr<Database>*>(database);
        auto made = std::make_unique<VirtualTable>(owner, owner.Find(QString::fromUtf8(arguments[2])));
        QStringList columns;
        for (const Column& column : made->table.Columns()) {
            columns += Quoted(column.name) + QLatin1String(DeclaredType(column.type));
        }
        const QString declaration = u"CREATE TABLE x(%1)"_s.arg(columns.join(u','));
        const int declared = sqlite3_declare_vtab(engine, declaration.toUtf8().constData());
        RequireMemory(declared);
        if (declared != SQLITE_OK) {
            throw AccessError(QString::fromUtf8(sqlite3_errmsg(engine)));
        }
        *table = made.release();
    });
}

int Disconnect(sqlite3_vtab* table) {
    delete static_cast<VirtualTable*>(table);
    return SQLITE_OK;
}

// --- choosing a path

const std::vector<IndexDescription>& Indexes(const VirtualTable& table) {
    return table.table.Definition().indexes;
}

// Whether an index orders all rows by one column of whole numbers, from the least upwards.
bool IsUsable(const VirtualTable& table, const IndexDescription& index) {
    const Column* column = table.table.Definition().Find(index.columns.front().number);
    return index.columns.size() == 1 && index.columns.front().ascending && !index.ignoresNulls &&
           column != nullptr && column->type == ColumnType::Long;
}

// The best usable index on a column; -1 when there is none.
int IndexOn(const VirtualTable& table, int column) {
    int best = -1;
    const auto& indexes = Indexes(table);
    const int number = table.table.Columns().at(static_cast<std::size_t>(column)).number;
    for (std::size_t position = 0; position < indexes.size(); ++position) {
        const IndexDescription& index = indexes[position];
        const bool fits = IsUsable(table, index) && index.columns.front().number == number;
        if (fits && (best < 0 || index.unique)) {
            best = static_cast<int>(position);
        }
    }
    return best;
}

// Rows come in the order of their IDs where nothing else is asked for, as they do from the other store.
int IndexOnId(const VirtualTable& table) {
    const auto& columns = table.table.Columns();
    const auto id = std::find_if(columns.begin(), columns.end(), [](const Column& column) {
        return column.name.compare(u"ID", Qt::CaseInsensitive) == 0;
    });
    return id == columns.end() ? -1 : IndexOn(table, static_cast<int>(id - columns.begin()));
}

// A path as the engine carries it from the choice to the start of the walk.
int PathNumber(RowPath::Kind kind, int index) {
    return static_cast<int>(kind) + 4 * (index + 1);
}

RowPath PathOf(const VirtualTable& table, int number) {
    const int index = number / 4 - 1;
    return {static_cast<RowPath::Kind>(number % 4),
            index < 0 ? nullptr : &Indexes(table).at(static_cast<std::size_t>(index))};
}

bool ChooseKey(const VirtualTable& table, sqlite3_index_info* info, double rows) {
    for (int position = 0; position < info->nConstraint; ++position) {
        const auto& constraint = info->aConstraint[position];
        if (constraint.usable == 0 || constraint.op != SQLITE_INDEX_CONSTRAINT_EQ || constraint.iColumn < 0) {
            continue;
        }
        const int index = IndexOn(table, constraint.iColumn);
        if (index < 0) {
            continue;
        }
        const IndexDescription& description = Indexes(table).at(static_cast<std::size_t>(index));
        const double keys = table.table.CountKeys(description);
        const double matches = description.unique ? 1 : std::max(1.0, rows / std::max(1.0, keys));
        info->aConstraintUsage[position].argvIndex = 1;
        info->idxNum = PathNumber(RowPath::Kind::Key, index);
        info->idxFlags = description.unique ? SQLITE_INDEX_SCAN_UNIQUE : 0;
        info->estimatedRows = static_cast<sqlite3_int64>(matches);
        info->estimatedCost = 10 + 3 * matches;
        return true;
    }
    return false;
}

void ChooseOrder(const VirtualTable& table, sqlite3_index_info* info) {
    const int column = info->nOrderBy == 1 ? info->aOrderBy[0].iColumn : -1;
    const int wanted = column < 0 ? -1 : IndexOn(table, column);
    info->orderByConsumed = wanted < 0 ? 0 : 1;
    const int index = wanted < 0 ? IndexOnId(table) : wanted;
    const bool backward = wanted >= 0 && info->aOrderBy[0].desc != 0;
    const auto ordered = backward ? RowPath::Kind::Backward : RowPath::Kind::Forward;
    info->idxNum = PathNumber(index < 0 ? RowPath::Kind::Scan : ordered, index);
}

int BestIndex(sqlite3_vtab* vtab, sqlite3_index_info* info) {
    return Run(vtab, [&] {
        const VirtualTable& table = Of(vtab);
        const double rows = table.table.CountRows();
        if (!ChooseKey(table, info, rows)) {
            ChooseOrder(table, info);
            info->estimatedRows = static_cast<sqlite3_int64>(rows);
            info->estimatedCost = 100 + 2 * rows;
        }
    });
}

// --- reading

int OpenCursor(sqlite3_vtab* vtab, sqlite3_vtab_cursor** cursor) {
    return Run(vtab, [&] { *cursor = std::make_unique<VirtualCursor>(Of(vtab)).release(); });
}

int CloseCursor(sqlite3_vtab_cursor* cursor) {
    delete static_cast<VirtualCursor*>(cursor);
    return SQLITE_OK;
}

int Filter(sqlite3_vtab_cursor* cursor, int pathNumber, const char* /*text*/, int count,
           sqlite3_value** values) {
    return Run(cursor->pVtab, [&] {
        const VirtualTable& table = Of(cursor);
        const RowPath path = PathOf(table, pathNumber);
        if (path.kind != RowPath::Kind::Key) {
            RowsOf(cursor).Start(path, {});
            return;
        }
        const std::optional<qint64> wanted = count == 1 ? ToLong(values[0]) : std::nullopt;
        if (wanted) {
            RowsOf(cursor).Start(path, table.table.Key(*path.index, {*wanted}));
        } else {
            RowsOf(cursor).StartEmpty();
        }
    });
}

int Next(sqlite3_vtab_cursor* cursor) {
    return Run(cursor->pVtab, [&] { RowsOf(cursor).MoveNext(); });
}

int AtEnd(sqlite3_vtab_cursor* cursor) {
    return RowsOf(cursor).AtEnd() ? 1 : 0;
}

int ReadColumn(sqlite3_vtab_cursor* cursor, sqlite3_context* context, int position) {
    if (sqlite3_vtab_nochange(context) != 0) {
        return SQLITE_OK;  // an update that leaves the column as it is
    }
    return Run(cursor->pVtab, [&] {
        const Table& table = Of(cursor).table;
        const Column& column = table.Columns().at(static_cast<std::size_t>(position));
        if (!IsShown(column)) {
            throw AccessError(u"表 %2 的字段 %1 的数据类型不能读取(%3)"_s.arg(column.name, table.Name())
                                  .arg(static_cast<int>(column.type)));
        }
        SetResult(context, RowsOf(cursor).Read(column));
    });
}

int RowId(sqlite3_vtab_cursor* cursor, sqlite3_int64* id) {
    *id = ToRowId(RowsOf(cursor).Address());
    return SQLITE_OK;
}

// --- writing

// The statement's values, in the order of the columns.
template <typename Element>
std::vector<Element> GivenValues(const Table& table, sqlite3_value** values) {
    std::vector<Element> given;
    for (const Column& column : table.Columns()) {
        sqlite3_value* value = values[given.size()];
        if (sqlite3_value_nochange(value) != 0) {
            given.emplace_back();
            continue;
        }
        if (!IsShown(column) && sqlite3_value_type(value) != SQLITE_NULL) {
            throw AccessError(u"表 %2 的字段 %1 的数据类型不能写入(%3)"_s.arg(column.name, table.Name())
                                  .arg(static_cast<int>(column.type)));
        }
        given.emplace_back(ToValue(value));
    }
    return given;
}

int Update(sqlite3_vtab* vtab, int count, sqlite3_value** values, sqlite3_int64* newId) {
    return Run(vtab, [&] {
        VirtualTable& table = Of(vtab);
        ++table.changes;
        const bool isInsert = sqlite3_value_type(values[0]) == SQLITE_NULL;
        if (isInsert) {
            *newId = ToRowId(table.table.Insert(GivenValues<Value>(table.table, values + 2)));
            return;
        }
        const RowAddress row = FromRowId(sqlite3_value_int64(values[0]));
        if (count == 1) {
            table.table.Delete(row);
            return;
        }
        if (sqlite3_value_int64(values[1]) != sqlite3_value_int64(values[0])) {
            throw AccessError(u"a row's place cannot be changed"_s);
        }
        table.table.Update(row, GivenValues<std::optional<Value>>(table.table, values + 2));
    });
}

int Begin(sqlite3_vtab* vtab) {
    return Run(vtab, [&] { Of(vtab).database.BeginStatement(); });
}

int Sync(sqlite3_vtab* vtab) {
    return Run(vtab, [&] { Of(vtab).database.Commit(); });
}

int Commit(sqlite3_vtab* /*vtab*/) {
    return SQLITE_OK;  // Sync has done it, because it may fail
}

int Rollback(sqlite3_vtab* vtab) {
    return Run(vtab, [&] {
        ++Of(vtab).changes;
        Of(vtab).database.Rollback();
    });
}

const sqlite3_module kModule{
    .iVersion = 1,
    .xCreate = Connect,
    .xConnect = Connect,
    .xBestIndex = BestIndex,
    .xDisconnect = Disconnect,
    .xDestroy = Disconnect,
    .xOpen = OpenCursor,
    .xClose = CloseCursor,
    .xFilter = Filter,
    .xNext = Next,
    .xEof = AtEnd,
    .xColumn = ReadColumn,
    .xRowid = RowId,
    .xUpdate = Update,
    .xBegin = Begin,
    .xSync = Sync,
    .xCommit = Commit,
    .xRollback = Rollback,
    .xFindFunction = nullptr,
    .xRename = nullptr,
    .xSavepoint = nullptr,
    .xRelease = nullptr,
    .xRollbackTo = nullptr,
    .xShadowName = nullptr,
};

}  // namespace

std::map<QString, QString> DeclareTables(sqlite3* engine, const std::shared_ptr<Database>& database) {
    using Owner = std::shared_ptr<Database>;
    RequireMemory(sqlite3_create_module_v2(engine, kModuleName, &kModule,
                                           std::make_unique<Owner>(database).release(),
                                           [](void* owner) { delete static_cast<Owner*>(owner); }));
    std::map<QString, QString> leftOut;
    for (const CatalogEntry& entry : database->Catalog()) {
        if (entry.system) {
            continue;
        }
        const QString statement =
            u"CREATE VIRTUAL TABLE %1 USING %2"_s.arg(Quoted(entry.name), QLatin1String(kModuleName));
        const int declared = sqlite3_exec(engine, statement.toUtf8().constData(), nullptr, nullptr, nullptr);
        RequireMemory(declared);
        if (declared != SQLITE_OK) {
            leftOut[entry.name.toLower()] = QString::fromUtf8(sqlite3_errmsg(engine));
        }
    }
    return leftOut;
}

}  // namespace quorvane::access
