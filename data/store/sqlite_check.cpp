#include "data/store/sqlite_check.h"

#include "data/store/sqlite_connection.h"
#include "data/store/sqlite_guard.h"
#include "data/store/sqlite_open.h"
#include "data/store/sqlite_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr int kLockTimeoutMs = 3000;

std::unique_ptr<sqlite3, SqliteCloser> OpenForReading(const QString& path) {
    sqlite3* handle = nullptr;
    const int result = OpenSqliteFile(path, &handle, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX);
    std::unique_ptr<sqlite3, SqliteCloser> database(handle);
    if (result != SQLITE_OK) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    return database;
}

void RequireSound(sqlite3* database, CheckLimits& limits) {
    const auto look = [](void* of) { return static_cast<const CheckLimits*>(of)->AreReached() ? 1 : 0; };
    GuardEngine(database, &limits.deadline);
    sqlite3_busy_timeout(database, kLockTimeoutMs);
    sqlite3_progress_handler(database, 1000, look, &limits);  // in the place of the guard's own
    const SqliteRecordset report(PrepareSqlite(database, u"PRAGMA integrity_check(1)"_s));
    const FieldValue value = report.Value(0);
    const auto* text = std::get_if<CString>(&value);
    if (text == nullptr || *text != u"ok"_s) {
        throw ProviderError(u"数据库文件已损坏(%1)"_s.arg(text ? *text : CString()), FailureKind::Damaged);
    }
}

}  // namespace

QStringList CheckSqliteFile(const QString& path) {
    const auto database = OpenForReading(path);
    const QDeadlineTimer noLimit(QDeadlineTimer::Forever);
    GuardEngine(database.get(), &noLimit);
    RefuseStrangeTables(database.get());
    QStringList findings;
    SqliteRecordset report(PrepareSqlite(database.get(), u"PRAGMA integrity_check"_s));
    for (; !report.AtEnd(); report.MoveNext()) {
        const FieldValue finding = report.Value(0);
        if (const auto* text = std::get_if<CString>(&finding); text != nullptr && *text != u"ok"_s) {
            findings += *text;
        }
    }
    return findings;
}

void RequireSoundSqliteFile(const CString& path, CheckLimits limits) {
    try {
        const auto database = OpenForReading(path);
        RequireSound(database.get(), limits);
    } catch (const ProviderError& error) {
        if (limits.AreReached()) {
            throw ProviderError(u"数据库文件检查超时"_s);
        }
        throw ProviderError(u"数据库文件不能检查:%1"_s.arg(error.Message()), error.Kind());
    }
}

}  // namespace quorvane
