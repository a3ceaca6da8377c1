#include "data/store/sqlite_check.h"

#include "data/store/sqlite_connection.h"
#include "data/store/sqlite_guard.h"
#include "data/store/sqlite_open.h"
#include "data/store/sqlite_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

QStringList CheckSqliteFile(const QString& path) {
    sqlite3* handle = nullptr;
    const int result = OpenSqliteFile(path, &handle, SQLITE_OPEN_READONLY);
    const std::unique_ptr<sqlite3, SqliteCloser> database(handle);
    if (result != SQLITE_OK) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    const QDeadlineTimer noLimit(QDeadlineTimer::Forever);
    GuardEngine(handle, &noLimit);
    RefuseStrangeTables(handle);
    QStringList findings;
    SqliteRecordset report(PrepareSqlite(handle, u"PRAGMA integrity_check"_s));
    for (; !report.AtEnd(); report.MoveNext()) {
        const FieldValue finding = report.Value(0);
        if (const auto* text = std::get_if<CString>(&finding); text != nullptr && *text != u"ok"_s) {
            findings += *text;
        }
    }
    return findings;
}

}  // namespace quorvane
