#include "data/store/access/sql/access_connection.h"

#include <utility>

#include "data/database_path.h"
#include "data/store/access/check/file_check.h"
#include "data/store/access/database.h"
#include "data/store/access/sql/virtual_table.h"
#include "data/store/connection_string.h"
#include "data/store/dialect.h"
#include "data/store/sqlite_guard.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

using namespace access;

FailureKind KindOf(Fault fault) {
    switch (fault) {
        case Fault::EmptyText:
            return FailureKind::EmptyText;
        case Fault::Damaged:
            return FailureKind::Damaged;
        case Fault::ReadOnly:
            return FailureKind::ReadOnly;
        case Fault::InUse:
            return FailureKind::Locked;
        case Fault::Changed:
            return FailureKind::FileChanged;
        case Fault::Gone:
            return FailureKind::FileGone;
        case Fault::NoRoom:
            return FailureKind::DiskFull;
        default:
            return FailureKind::Other;
    }
}

// Runs an action and throws its AccessError as a ProviderError, which is what callers of a Connection catch.
template <typename Action>
auto AsProviderError(const Action& action) {
    try {
        return action();
    } catch (const AccessError& error) {
        throw ProviderError({.kind = KindOf(error.Kind()),
                             .message = error.Message(),
                             .column = error.Column(),
                             .who = error.Kind() == Fault::InUse ? error.Message() : CString()});
    }
}

// Only what is found in the very state of the file that is open says something.
void RequireSound(FileSystem& files, const CString& path, const FileStamp& open, const CheckLimits& limits) {
    AsProviderError([&] {
        Database database(files, path, Database::Use::Read);
        database.BeforeEachRead([&] { RequireTimeLeft(limits); });
        const QStringList faults = CheckFile(database, limits);
        database.RequireUnchanged();
        if (database.Stamp() != open) {
            throw AccessError(u"文件读取后已被其他程序改动"_s, Fault::Changed);
        }
        if (!faults.isEmpty()) {
            const QString& first = faults.first();
            throw AccessError(
                faults.size() == 1 ? first : u"%1(另有%2处)"_s.arg(first, QString::number(faults.size() - 1)),
                Fault::Damaged);
        }
    });
}

}  // namespace

std::shared_ptr<Connection> CreateAccessConnection() {
    return std::make_shared<AccessConnection>(NativeFiles());
}

QStringList CheckAccessFile(const QString& path) {
    return AsProviderError([&] {
        Database database(NativeFiles(), path);
        return CheckFile(database);
    });
}

void AccessConnection::Open(const CString& connectionString, const CString& /*user*/,
                            const CString& /*password*/, int /*options*/) {
    m_path = NativePath(DataSource(connectionString));
    AsProviderError([&] { OpenPath(); });
}

// What was open is closed first, because its lock file keeps everybody else from writing.
void AccessConnection::OpenPath() {
    m_check.reset();
    m_engine.reset();
    m_database.reset();
    auto database = std::make_shared<Database>(m_files, m_path);
    sqlite3* handle = nullptr;
    // One thread uses a connection, so the engine need not lock it for each column of each row.
    const int flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_NOMUTEX;
    const int result = sqlite3_open_v2(":memory:", &handle, flags, nullptr);
    Engine engine(handle);
    if (result != SQLITE_OK) {
        throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
    }
    GuardEngine(handle, &m_deadline);
    m_deadline.setRemainingTime(kTimeLimit);
    m_leftOut = DeclareTables(handle, database);
    m_check = std::make_unique<BackgroundCheck>(
        [files = &m_files, path = m_path, stamp = database->Stamp()](const CheckLimits& limits) {
            RequireSound(*files, path, stamp, limits);
        });
    m_database = std::move(database);
    m_engine = std::move(engine);
    m_changedOutside = false;
}

std::unique_ptr<Recordset> AccessConnection::Execute(const CString& statement) {
    if (m_path.isEmpty()) {
        throw ProviderError(u"the connection is not open"_s);
    }
    return AsProviderError([&] {
        if (m_engine == nullptr) {
            OpenPath();
        }
        SqliteStatement prepared = Prepare(statement);
        const bool writes = sqlite3_stmt_readonly(prepared.get()) == 0;
        if ((m_changedOutside && !writes) || (!m_inSubmit && m_database->IsOutdated(writes))) {
            prepared.reset();
            Reopen();
            prepared = Prepare(statement);
        }
        if (writes) {
            RequireSoundFile();
        }
        m_deadline.setRemainingTime(kTimeLimit);
        RequireUnchanged();
        auto rows = Run(std::move(prepared));
        if (!m_inSubmit) {
            PutOnDisk();
        }
        return rows;
    });
}

// The engine passes on only the text of a table's error, so the error itself is taken from the database.
std::unique_ptr<Recordset> AccessConnection::Run(SqliteStatement statement) {
    m_database->TakeFailure();
    try {
        return std::make_unique<SqliteRecordset>(std::move(statement));
    } catch (const ProviderError&) {
        if (const std::optional<AccessError> failure = m_database->TakeFailure()) {
            throw *failure;
        }
        throw;
    }
}

void AccessConnection::RequireUnchanged() {
    try {
        m_database->RequireUnchanged();
    } catch (const AccessError& error) {
        m_changedOutside = m_changedOutside || error.Kind() == Fault::Changed;
        throw;
    }
}

void AccessConnection::Reopen() {
    if (m_engine != nullptr && sqlite3_next_stmt(m_engine.get(), nullptr) != nullptr) {
        throw ProviderError(u"文件已被其他程序改动,而对原有内容的查询尚未结束"_s, FailureKind::FileChanged);
    }
    OpenPath();
}

void AccessConnection::PutOnDisk() {
    try {
        m_database->EndSubmit();
    } catch (const AccessError& error) {
        m_changedOutside = m_changedOutside || error.Kind() == Fault::Changed;
        throw;
    }
}

// The engine knows nothing of tables that were left out.
SqliteStatement AccessConnection::Prepare(const CString& statement) const {
    try {
        return PrepareSqlite(m_engine.get(), ToSqliteDialect(statement));
    } catch (const ProviderError& error) {
        const CString name = error.Message().section(u"no such table: "_s, 1);
        const auto reason = m_leftOut.find(name.toLower());
        throw reason == m_leftOut.end() ? error : ProviderError(reason->second);
    }
}

void AccessConnection::BeginSubmit() {
    m_inSubmit = true;
    if (m_database != nullptr && m_database->IsOutdated(true)) {
        AsProviderError([&] { Reopen(); });
    }
    RequireSoundFile();
}

void AccessConnection::EndSubmit() {
    m_inSubmit = false;
    if (m_database != nullptr) {
        AsProviderError([&] { PutOnDisk(); });
    }
}

bool AccessConnection::IsCheckRunning() const {
    return m_check != nullptr && m_check->IsRunning();
}

void AccessConnection::RequireSoundFile() {
    if (m_path.isEmpty()) {
        return;
    }
    AsProviderError([&] {
        if (m_engine == nullptr || (!m_inSubmit && m_database->IsOutdated(false))) {
            Reopen();
        }
        try {
            m_check->RequireSoundFile();
        } catch (const ProviderError&) {
            RequireUnchanged();  // else the change is the reason
            throw;
        }
    });
}

CString AccessConnection::ChangesPutAside() const {
    return m_database != nullptr ? m_database->LogAside() : CString();
}

void AccessConnection::Close() {
    EndSubmit();
    if (sqlite3_close(m_engine.get()) != SQLITE_OK) {
        ThrowSqliteError(m_engine.get());
    }
    static_cast<void>(m_engine.release());
    m_check.reset();
    m_database.reset();
    m_path.clear();
}

}  // namespace quorvane
