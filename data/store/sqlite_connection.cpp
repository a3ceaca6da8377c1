#include "data/store/sqlite_connection.h"

#ifdef __linux__
#include <fcntl.h>
#endif

#include <QFile>
#include <QFileInfo>
#include <utility>

#include "data/database_path.h"
#include "data/store/connection_string.h"
#include "data/store/dialect.h"
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

// The check below reads the file page by page in no order. When the file is not yet in memory this takes 270
// ms for 100,000 light sources, and 39 ms when the system is told to read all of it first.
void ReadAhead(const CString& path) {
#ifdef Q_OS_LINUX
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        posix_fadvise(file.handle(), 0, 0, POSIX_FADV_WILLNEED);
    }
#else
    Q_UNUSED(path)
#endif
}

Database OpenFile(const CString& path) {
    ReadAhead(path);

    // An absolute path cannot be taken for a URI.
    const QByteArray absolutePath = QFileInfo(path).absoluteFilePath().toUtf8();
    sqlite3* handle = nullptr;
    // One thread uses a connection, so SQLite need not lock it for each column of each row.
    const int result = sqlite3_open_v2(absolutePath.constData(), &handle,
                                       SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX, nullptr);
    Database database(handle);
    if (handle == nullptr) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    if (result != SQLITE_OK) {
        ThrowSqliteError(handle);
    }
    return database;
}

// Opening alone reads nothing. This check reads the whole file once (9 ms for 100,000 light sources), so
// damage shows at the start and not after something has been written.
void RefuseDamage(sqlite3* database) {
    const SqliteRecordset report(PrepareSqlite(database, u"PRAGMA quick_check(1)"_s));
    const FieldValue finding = report.Value(0);
    const auto* text = std::get_if<CString>(&finding);
    if (text == nullptr || *text != u"ok"_s) {
        throw ProviderError(u"the file is damaged: %1"_s.arg(text ? *text : CString()), FailureKind::Damaged);
    }
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
    Database database = OpenFile(NativePath(DataSource(connectionString)));
    sqlite3_busy_timeout(database.get(), kBusyTimeoutMs);
    LockSqliteFile(database.get());
    RefuseDamage(database.get());
    PrepareForWriting(database.get());
    m_database = std::move(database);
}

std::unique_ptr<Recordset> SqliteConnection::Execute(const CString& statement) {
    if (m_database == nullptr) {
        throw ProviderError(u"the connection is not open"_s);
    }
    LimitWaiting();
    return std::make_unique<SqliteRecordset>(PrepareSqlite(m_database.get(), ToSqliteDialect(statement)));
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
        BeginSqliteSubmit(m_database.get());
    }
}

void SqliteConnection::EndSubmit() {
    if (std::exchange(m_inSubmit, false)) {
        EndSqliteSubmit(m_database.get());
    }
}

void SqliteConnection::Close() {
    EndSubmit();
    if (sqlite3_close(m_database.get()) != SQLITE_OK) {
        ThrowSqliteError(m_database.get());
    }
    static_cast<void>(m_database.release());
}

}  // namespace quorvane
