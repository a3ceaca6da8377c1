#include "data/store/sqlite_connection.h"

#include <QFileInfo>
#include <utility>

#include "data/database_path.h"
#include "data/store/connection_string.h"
#include "data/store/dialect.h"
#include "data/store/sqlite_check.h"
#include "data/store/sqlite_guard.h"
#include "data/store/sqlite_open.h"
#include "data/store/sqlite_recordset.h"
#include "data/store/sqlite_submit.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

using Database = std::unique_ptr<sqlite3, SqliteCloser>;

// Another program that holds the file for a moment, for one statement say, is waited for, but not so long
// that the window, which waits with us, would seem dead.
constexpr int kBusyTimeoutMs = 100;
constexpr int kWaitAgainMs = 1000;
// At the start nothing is shown yet, and a program that ends with a message must be started again.
constexpr int kStartTimeoutMs = 3000;

Database OpenFile(const CString& path) {
    // The check reads the file page by page in no order. This is several times faster for a file that is not
    // yet in memory when the system is told to read all of it first.
    ReadAhead(path);
    RefuseSuperJournal(path);

    sqlite3* handle = nullptr;
    // One thread uses a connection, so SQLite need not lock it for each column of each row.
    const int result = OpenSqliteFile(path, &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX);
    Database database(handle);
    if (handle == nullptr) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    if (result != SQLITE_OK) {
        ThrowSqliteError(handle);
    }
    return database;
}

}  // namespace

bool IsSqliteFile(const QByteArray& head) {
    static const QByteArray kSignature("SQLite format 3", 16);  // with its final zero
    return head.startsWith(kSignature);
}

std::shared_ptr<Connection> CreateSqliteConnection() {
    return std::make_shared<SqliteConnection>();
}

void SqliteConnection::Open(const CString& connectionString, const CString& /*user*/,
                            const CString& /*password*/, int /*options*/) {
    m_path = NativePath(DataSource(connectionString));
    OpenPath(kStartTimeoutMs);
}

void SqliteConnection::OpenPath(int busyTimeoutMs) {
    m_deadline.setRemainingTime(kTimeLimit);
    Database database = OpenFile(m_path);
    GuardEngine(database.get(), &m_deadline);
    sqlite3_busy_timeout(database.get(), kBusyTimeoutMs);
    LockSqliteFile(database.get());
    sqlite3_busy_timeout(database.get(), busyTimeoutMs);
    RefuseStrangeTables(database.get());
    sqlite3_busy_timeout(database.get(), kBusyTimeoutMs);
    PrepareForWriting(database.get());
    m_check = std::make_unique<BackgroundCheck>(
        [path = m_path](const CheckLimits& limits) { RequireSoundSqliteFile(path, limits); });
    m_database = std::move(database);
}

std::unique_ptr<Recordset> SqliteConnection::Execute(const CString& statement) {
    if (m_database == nullptr) {
        throw ProviderError(u"the connection is not open"_s);
    }
    LimitWaiting();
    m_deadline.setRemainingTime(kTimeLimit);
    SqliteStatement prepared = PrepareSqlite(m_database.get(), ToSqliteDialect(statement));
    if (sqlite3_stmt_readonly(prepared.get()) == 0) {
        if (IsOutdated()) {
            prepared.reset();
            OpenPath(kBusyTimeoutMs);
            prepared = PrepareSqlite(m_database.get(), ToSqliteDialect(statement));
        }
        m_check->RequireSoundFile();
        m_deadline.setRemainingTime(kTimeLimit);
    }
    return std::make_unique<SqliteRecordset>(std::move(prepared));
}

// Whether another file stands at the path now, or none, or this one may be written again.
bool SqliteConnection::IsOutdated() const {
    int hasMoved = 0;
    sqlite3_file_control(m_database.get(), "main", SQLITE_FCNTL_HAS_MOVED, &hasMoved);
    return hasMoved != 0 ||
           (sqlite3_db_readonly(m_database.get(), "main") != 0 && QFileInfo(m_path).isWritable());
}

bool SqliteConnection::IsCheckRunning() const {
    return m_check != nullptr && m_check->IsRunning();
}

void SqliteConnection::RequireSoundFile() {
    if (m_check != nullptr) {
        m_check->RequireSoundFile();
    }
}

// While the file stays locked one statement a second waits. A submit of hundreds of rows would otherwise add
// up to a frozen window.
void SqliteConnection::LimitWaiting() {
    const bool wasBusy = sqlite3_errcode(m_database.get()) == SQLITE_BUSY;
    const bool waitedLately = m_sinceWait.isValid() && m_sinceWait.elapsed() < kWaitAgainMs;
    if (wasBusy && waitedLately) {
        sqlite3_busy_timeout(m_database.get(), 0);
    } else {
        sqlite3_busy_timeout(m_database.get(), kBusyTimeoutMs);
        m_sinceWait.start();
    }
}

void SqliteConnection::BeginSubmit() {
    if (m_database != nullptr && !m_inSubmit) {
        m_inSubmit = true;
        if (IsOutdated()) {
            OpenPath(kBusyTimeoutMs);
        }
        m_check->RequireSoundFile();
        m_deadline.setRemainingTime(kTimeLimit);
        BeginSqliteSubmit(m_database.get());
    }
}

void SqliteConnection::EndSubmit() {
    if (std::exchange(m_inSubmit, false)) {
        m_deadline.setRemainingTime(kTimeLimit);
        EndSqliteSubmit(m_database.get());
    }
}

void SqliteConnection::Close() {
    EndSubmit();
    m_check.reset();
    if (sqlite3_close(m_database.get()) != SQLITE_OK) {
        ThrowSqliteError(m_database.get());
    }
    static_cast<void>(m_database.release());
}

}  // namespace quorvane
