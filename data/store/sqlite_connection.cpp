#include "data/store/sqlite_connection.h"

#include <QFileInfo>
#include <limits>

#include "data/database_path.h"
#include "data/store/connection_string.h"
#include "data/store/dialect.h"
#include "data/store/sqlite_recordset.h"

namespace quorvane {

namespace {

using Database = std::unique_ptr<sqlite3, SqliteCloser>;

// Another program that holds the file for a moment, for one statement say, is waited for, but not so long
// that the window, which waits with us, would seem dead.
constexpr int kBusyTimeoutMs = 100;
constexpr int kWaitAgainMs = 1000;

Database OpenFile(const CString& path) {
    // An absolute path cannot be taken for a URI.
    const QByteArray absolutePath = QFileInfo(path).absoluteFilePath().toUtf8();
    sqlite3* handle = nullptr;
    const int result = sqlite3_open_v2(absolutePath.constData(), &handle, SQLITE_OPEN_READWRITE, nullptr);
    Database database(handle);
    if (handle == nullptr) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    if (result != SQLITE_OK) {
        ThrowSqliteError(handle);
    }
    return database;
}

SqliteStatement Prepare(sqlite3* database, const CString& statement) {
    const QByteArray text = statement.toUtf8();
    if (text.size() > std::numeric_limits<int>::max()) {
        throw ProviderError(QStringLiteral("the statement is too long"));
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
        throw ProviderError(QStringLiteral("there is no statement"));
    }
    const QByteArrayView rest(tail, text.constData() + text.size());
    if (!rest.trimmed().isEmpty()) {
        throw ProviderError(QStringLiteral("text follows the statement"));
    }
    return prepared;
}

// Opening alone reads nothing. This reads the whole file once (9 ms for 100,000 light sources), so that
// damage shows at the start and not after something has been written beside it.
void RefuseDamage(sqlite3* database) {
    const SqliteRecordset report(Prepare(database, QStringLiteral("PRAGMA quick_check(1)")));
    const FieldValue finding = report.Value(0);
    const auto* text = std::get_if<CString>(&finding);
    if (text == nullptr || *text != QStringLiteral("ok")) {
        throw ProviderError(QStringLiteral("the file is damaged: %1").arg(text ? *text : CString()));
    }
}

}  // namespace

// Measured as microseconds an update, each committed by itself, on ext4:
//
//              EXTRA   FULL   NORMAL
//   DELETE       835    690      607
//   TRUNCATE     696    681      509
//   PERSIST      615    634      531
//   WAL          242    237       20
//
// A statement that was reported as done must be in the file whatever happens to the process next, and should
// be there after a power cut too. That needs EXTRA with a journal that is deleted and FULL with the others;
// what NORMAL saves is not worth it. A write-ahead log is the fastest, but it cannot be read in a read-only
// folder, keeps finished statements in a second file that is easily left behind when the database is copied,
// and is switched on by changing the file. Between the other three the difference is some 20 ms for a submit
// of 100 rows, which nobody sees; only a deleted journal leaves the user one single file whenever no
// statement runs, even after a kill. It is also what SQLite does by itself, so nothing is set here: setting
// it would convert a file that another program keeps with a write-ahead log.
const char* const kSqliteJournalSettings = "PRAGMA synchronous=EXTRA";

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
    RefuseDamage(database.get());
    if (sqlite3_exec(database.get(), kSqliteJournalSettings, nullptr, nullptr, nullptr) != SQLITE_OK) {
        ThrowSqliteError(database.get());
    }
    m_database = std::move(database);
}

std::unique_ptr<Recordset> SqliteConnection::Execute(const CString& statement) {
    if (m_database == nullptr) {
        throw ProviderError(QStringLiteral("the connection is not open"));
    }
    LimitWaiting();
    return std::make_unique<SqliteRecordset>(Prepare(m_database.get(), ToSqliteDialect(statement)));
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

void SqliteConnection::Close() {
    if (sqlite3_close(m_database.get()) != SQLITE_OK) {
        ThrowSqliteError(m_database.get());
    }
    static_cast<void>(m_database.release());
}

}  // namespace quorvane
