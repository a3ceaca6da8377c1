#include "data/store/sqlite_recordset.h"

#include <QFile>
#include <QStringDecoder>
#include <algorithm>
#include <functional>
#include <limits>
#include <string_view>

#include "data/store/sqlite_open.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

CString ColumnName(sqlite3_stmt* statement, int index) {
    return QString::fromUtf8(sqlite3_column_name(statement, index));
}

bool SameName(const CString& left, const CString& right) {
    return left.compare(right, Qt::CaseInsensitive) == 0;
}

// The names of a result's columns; one that stands there twice comes with its table in front.
std::vector<CString> ColumnNames(sqlite3_stmt* statement) {
    std::vector<CString> names(static_cast<std::size_t>(sqlite3_column_count(statement)));
    std::generate(names.begin(), names.end(),
                  [&, index = 0]() mutable { return ColumnName(statement, index++); });
    std::vector<CString> qualified = names;
    for (std::size_t index = 0; index < names.size(); ++index) {
        const auto sameName = [&](const CString& other) { return SameName(other, names[index]); };
        const char* table = sqlite3_column_table_name(statement, static_cast<int>(index));
        if (table != nullptr && std::count_if(names.begin(), names.end(), sameName) > 1) {
            qualified[index] = QString::fromUtf8(table) + u'.' + names[index];
        }
    }
    return qualified;
}

// What the last call that failed said, or 0; the engine's own note of it lacks the calls of a commit.
int LastSystemError(sqlite3* database) {
    sqlite3_vfs* files = nullptr;
    sqlite3_file_control(database, "main", SQLITE_FCNTL_VFS_POINTER, static_cast<void*>(&files));
    return files == nullptr || files->xGetLastError == nullptr ? 0 : files->xGetLastError(files, 0, nullptr);
}

}  // namespace

FailureKind KindOfSqliteError(sqlite3* database) {
    const int result = sqlite3_extended_errcode(database);
    if (result == SQLITE_READONLY_DBMOVED) {
        return FailureKind::FileGone;
    }
    switch (result & 0xff) {
        case SQLITE_FULL:
            return FailureKind::DiskFull;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return FailureKind::Locked;
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return FailureKind::ReadOnly;
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return IsReadError(LastSystemError(database)) ? FailureKind::Other : FailureKind::Damaged;
        case SQLITE_NOMEM:
            return FailureKind::OutOfMemory;
        case SQLITE_INTERRUPT:
            return FailureKind::TimeLimit;
        case SQLITE_CANTOPEN:
        case SQLITE_IOERR: {
            if (KindOfSystemError(LastSystemError(database)) == FailureKind::DiskFull) {
                return FailureKind::DiskFull;
            }
            // After a journal could not be made, the engine looks for one, and tells that there is none.
            const FailureKind kind = KindOfSystemError(sqlite3_system_errno(database));
            const bool isThere = QFile::exists(QString::fromUtf8(sqlite3_db_filename(database, "main")));
            return kind == FailureKind::FileGone && isThere ? FailureKind::ReadOnly : kind;
        }
        default:
            return FailureKind::Other;
    }
}

void ThrowSqliteError(sqlite3* database) {
    const FailureKind kind = KindOfSqliteError(database);
    const bool couldNotRead = kind == FailureKind::Other && sqlite3_errcode(database) == SQLITE_CORRUPT;
    throw ProviderError(
        QString::fromUtf8(couldNotRead ? sqlite3_errstr(SQLITE_IOERR) : sqlite3_errmsg(database)), kind);
}

SqliteStatement PrepareSqlite(sqlite3* database, const CString& statement) {
    const QByteArray text = statement.toUtf8();
    if (text.size() > std::numeric_limits<int>::max()) {
        throw ProviderError(u"the statement is too long"_s);
    }
    sqlite3_stmt* handle = nullptr;
    const char* tail = nullptr;
    const int result =
        sqlite3_prepare_v2(database, text.constData(), static_cast<int>(text.size()), &handle, &tail);
    SqliteStatement prepared(handle);
    if (result != SQLITE_OK) {
        ThrowSqliteError(database);
    }
    if (prepared == nullptr) {
        throw ProviderError(u"there is no statement"_s);
    }
    const QByteArrayView rest(tail, text.constData() + text.size());
    if (!rest.trimmed().isEmpty()) {
        throw ProviderError(u"text follows the statement"_s);
    }
    return prepared;
}

SqliteRecordset::SqliteRecordset(SqliteStatement statement) : m_statement(std::move(statement)) {
    Step();
    if (!AtEnd()) {
        m_columnNames = ColumnNames(m_statement.get());
    }
}

void SqliteRecordset::MoveNext() {
    if (AtEnd()) {
        throw ProviderError(u"the record set is at its end"_s);
    }
    Step();
}

void SqliteRecordset::Step() {
    switch (sqlite3_step(m_statement.get())) {
        case SQLITE_ROW:
            return;
        case SQLITE_DONE:
            m_statement.reset();
            return;
        default:
            ThrowSqliteError(sqlite3_db_handle(m_statement.get()));
    }
}

int SqliteRecordset::Column(const CString& columnName) const {
    const auto column = std::find_if(m_columnNames.begin(), m_columnNames.end(),
                                     [&](const CString& name) { return SameName(name, columnName); });
    if (column == m_columnNames.end()) {
        throw ProviderError(u"the result has no column %1"_s.arg(columnName));
    }
    return static_cast<int>(column - m_columnNames.begin());
}

FieldValue SqliteRecordset::Value(int index) const {
    if (AtEnd()) {
        throw ProviderError(u"the record set is at its end"_s);
    }
    sqlite3_stmt* row = m_statement.get();
    if (index < 0 || index >= sqlite3_column_count(row)) {
        throw ProviderError(u"the result has no column %1"_s.arg(index));
    }
    switch (sqlite3_column_type(row, index)) {
        case SQLITE_NULL:
            return std::monostate();
        case SQLITE_INTEGER:
            return qint64{sqlite3_column_int64(row, index)};
        case SQLITE_FLOAT:
            return sqlite3_column_double(row, index);
        case SQLITE_TEXT:
            return TextValue(index);
        default:
            throw ProviderError(u"column %1 holds neither number nor text"_s.arg(index));
    }
}

// A file may hold bytes that are no text at all. Showing something else in their place would write that back
// with the row's next update, so they are refused. A byte order mark is a character like any other.
CString SqliteRecordset::TextValue(int index) const {
    sqlite3_stmt* row = m_statement.get();
    const auto* first = reinterpret_cast<const char*>(sqlite3_column_text(row, index));
    if (first == nullptr) {
        ThrowSqliteError(sqlite3_db_handle(row));  // out of memory
    }
    const std::string_view bytes(first, static_cast<std::size_t>(sqlite3_column_bytes(row, index)));
    RecentText* recent = nullptr;
    if (bytes.size() <= kLongestSharedText) {
        m_recentTexts.resize(kRecentTexts);
        recent = &m_recentTexts[std::hash<std::string_view>()(bytes) % kRecentTexts];
        if (!recent->text.isNull() && recent->bytes == bytes) {
            return recent->text;
        }
    }
    m_decoded.resize(bytes.size() + 1);
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    const QChar* end = decoder.appendToBuffer(
        m_decoded.data(), QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
    if (decoder.hasError()) {
        throw ProviderError(u"column %1 holds bytes that are no text"_s.arg(index));
    }
    CString text(m_decoded.data(), end - m_decoded.data());
    if (recent != nullptr) {
        recent->bytes = bytes;
        recent->text = text;
    }
    return text;
}

}  // namespace quorvane
