#include "data/store/sqlite_background_check.h"

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>

#include "data/store/sqlite_guard.h"
#include "data/store/sqlite_open.h"
#include "data/store/sqlite_recordset.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds kBusyTimeout{3000};
constexpr std::chrono::milliseconds kStopTimeout{1000};
constexpr std::chrono::milliseconds kGrace{1000};  // beyond the time limit, for the thread to say so

}  // namespace

struct SqliteBackgroundCheck::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    std::optional<ProviderFailure> finding;  // none: the file is sound
    std::atomic<bool> isToStop = false;
    QDeadlineTimer deadline{kTimeLimit};

    void End(std::optional<ProviderFailure> result) {
        const std::lock_guard lock(mutex);
        finding = std::move(result);
        ended = true;
        changed.notify_all();
    }

    void Run(const CString& path) noexcept;
    void Check(sqlite3* database);
};

void SqliteBackgroundCheck::State::Check(sqlite3* database) {
    const auto look = [](void* state) {
        const auto* check = static_cast<const State*>(state);
        return check->isToStop || check->deadline.hasExpired() ? 1 : 0;
    };
    GuardEngine(database, &deadline);
    sqlite3_busy_timeout(database, static_cast<int>(kBusyTimeout.count()));
    sqlite3_progress_handler(database, 1000, look, this);  // in the place of the guard's own
    const SqliteRecordset report(PrepareSqlite(database, u"PRAGMA integrity_check(1)"_s));
    const FieldValue value = report.Value(0);
    const auto* text = std::get_if<CString>(&value);
    if (text == nullptr || *text != u"ok"_s) {
        throw ProviderError(u"数据库文件已损坏(%1)"_s.arg(text ? *text : CString()), FailureKind::Damaged);
    }
}

// Nothing may leave the thread, the lack of memory for a message neither.
void SqliteBackgroundCheck::State::Run(const CString& path) noexcept {
    sqlite3* database = nullptr;
    std::optional<ProviderFailure> found;
    try {
        try {
            const int result = OpenSqliteFile(path, &database, SQLITE_OPEN_READONLY | SQLITE_OPEN_NOMUTEX);
            if (result != SQLITE_OK) {
                throw ProviderError(QString::fromLatin1(sqlite3_errstr(result)));
            }
            Check(database);
        } catch (const ProviderError& error) {
            found = {.kind = error.Kind(),
                     .message = u"数据库文件不能检查:%1"_s.arg(error.Message()),
                     .column = {}};
        }
    } catch (const std::bad_alloc&) {
        found = {.kind = FailureKind::OutOfMemory, .message = {}, .column = {}};
    }
    sqlite3_close_v2(database);
    End(std::move(found));
}

SqliteBackgroundCheck::SqliteBackgroundCheck(const CString& path) : m_state(std::make_shared<State>()) {
    try {
        std::thread([state = m_state, path] { state->Run(path); }).detach();
    } catch (const std::system_error&) {
        throw ProviderError(u"no thread could be started to check the file"_s, FailureKind::OutOfMemory);
    }
}

SqliteBackgroundCheck::~SqliteBackgroundCheck() {
    m_state->isToStop = true;
    Wait(kStopTimeout);
}

bool SqliteBackgroundCheck::Wait(std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, limit, [&] { return m_state->ended; });
}

void SqliteBackgroundCheck::RequireSoundFile() const {
    if (!Wait(kTimeLimit + kGrace)) {
        throw ProviderError(u"数据库文件检查超时"_s, FailureKind::TimeLimit);
    }
    if (m_state->finding) {
        throw ProviderError(*m_state->finding);
    }
}

}  // namespace quorvane
