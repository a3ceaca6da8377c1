#include "data/store/sqlite_submit.h"

#include <QFile>

#include "data/store/sqlite_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

// Measured on ext4 in milliseconds, for submits of 1, 20 and 1,000 updates, while one wait for the disk took
// 4 ms:
//
//                                                1     20   1,000
//   DELETE,   EXTRA                             24    478  21,000
//   DELETE,   FULL                              20    392   9,400
//   TRUNCATE, FULL                              24    492   1,060 (the disk had become quiet by then)
//   WAL,      FULL                               4     85     252
//   WAL for the submit, NORMAL, shared memory   53     72      63
//   WAL for the submit, NORMAL, exclusive       59     64      22
//
// A single statement runs in DELETE mode with EXTRA. This mode needs no second file between statements, can
// be read in a read-only folder and is what SQLite does by default.
//
// A submit switches to a write-ahead log and back. With NORMAL the log is not synced after each statement; it
// is synced before any of it goes into the database, so a power cut leaves a beginning of the log and never
// half a page in the database. A rollback journal cannot offer this: without syncing, the database may reach
// the disk before its journal. A log that is kept between submits would save ten syncs a submit, but leaves
// finished statements in a second file as long as the program runs, and cannot be read in a read-only folder.
//
// The log is used under an exclusive lock. Then it needs no shared memory, which does not work on network
// shares, and no reader can come in and keep the log from being removed at the end. Other programs wait for
// the end of the submit, as they wait for the end of each statement otherwise.
constexpr const char* kSingleStatement = "PRAGMA synchronous=EXTRA";

// The log may grow to 64 MB before it is copied into the database: each copying waits for the disk twice.
constexpr const char* kWithinSubmit = "PRAGMA synchronous=NORMAL; PRAGMA wal_autocheckpoint=16384";

// The lock is given back at the next access only.
constexpr const char* kReleaseLock = "PRAGMA locking_mode=NORMAL; SELECT 1 FROM sqlite_schema LIMIT 1";

bool Run(sqlite3* database, const char* statements) {
    return sqlite3_exec(database, statements, nullptr, nullptr, nullptr) == SQLITE_OK;
}

void RunOrThrow(sqlite3* database, const char* statements) {
    if (!Run(database, statements)) {
        ThrowSqliteError(database);
    }
}

// Whether the journal mode is now the one that the statement asks for or tells.
bool HasJournalMode(sqlite3* database, const CString& pragma, const CString& mode) {
    try {
        const FieldValue value = SqliteRecordset(PrepareSqlite(database, pragma)).Value(0);
        const auto* text = std::get_if<CString>(&value);
        return text != nullptr && *text == mode;
    } catch (const ProviderError&) {
        return false;
    }
}

// Returns to single statements in DELETE mode. False when the log stays, because another program uses it or
// there is no room for its pages in the database. FULL holds for the change of mode itself.
bool LeaveLog(sqlite3* database) {
    RunOrThrow(database, "PRAGMA synchronous=FULL");
    const bool isOneFile = HasJournalMode(database, u"PRAGMA journal_mode=DELETE"_s, u"delete"_s);
    Run(database, kReleaseLock);
    RunOrThrow(database, kSingleStatement);
    return isOneFile || !HasJournalMode(database, u"PRAGMA journal_mode"_s, u"wal"_s);
}

void SyncLog(sqlite3* database) {
    sqlite3_file* log = nullptr;
    if (sqlite3_file_control(database, "main", SQLITE_FCNTL_JOURNAL_POINTER, static_cast<void*>(&log)) !=
            SQLITE_OK ||
        log == nullptr || log->pMethods == nullptr ||
        log->pMethods->xSync(log, SQLITE_SYNC_NORMAL) != SQLITE_OK) {
        throw ProviderError(u"the write-ahead log could not be written to the disk"_s);
    }
}

}  // namespace

void LockSqliteFile(sqlite3* database) {
    RunOrThrow(database, "PRAGMA locking_mode=EXCLUSIVE");
    if (!Run(database, "SELECT 1 FROM sqlite_schema LIMIT 1")) {
        Run(database, kReleaseLock);
    }
}

void PrepareForWriting(sqlite3* database) {
    LeaveLog(database);
    // The engine leaves an empty journal where it is, but deletes it under a lock at this change of mode.
    if (QFile::exists(QString::fromUtf8(sqlite3_filename_journal(sqlite3_db_filename(database, "main"))))) {
        Run(database, "PRAGMA journal_mode=TRUNCATE; PRAGMA journal_mode=DELETE");
    }
}

void BeginSqliteSubmit(sqlite3* database) {
    RunOrThrow(database, "PRAGMA locking_mode=EXCLUSIVE");
    if (HasJournalMode(database, u"PRAGMA journal_mode=WAL"_s, u"wal"_s)) {
        RunOrThrow(database, kWithinSubmit);
    } else {
        Run(database, kReleaseLock);
    }
}

void EndSqliteSubmit(sqlite3* database) {
    if (!LeaveLog(database)) {
        SyncLog(database);
    }
}

}  // namespace quorvane
