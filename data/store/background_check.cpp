#include "data/store/background_check.h"

#include <condition_variable>
#include <mutex>
#include <new>
#include <optional>
#include <system_error>
#include <thread>

#include "data/store/sqlite_guard.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds kStopTimeout{1000};
constexpr std::chrono::milliseconds kGrace{1000};  // beyond the time limit, for the thread to say so

}  // namespace

struct BackgroundCheck::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    std::optional<ProviderFailure> finding;  // none: the file is sound
    std::stop_source stop;

    // Nothing may leave the thread, the lack of memory for a message neither.
    void Run(const std::function<void(const CheckLimits&)>& check) noexcept {
        std::optional<ProviderFailure> found;
        try {
            try {
                check({stop.get_token(), QDeadlineTimer(kTimeLimit)});
            } catch (const ProviderError& error) {
                found = {.kind = error.Kind(), .message = error.Message(), .column = {}};
            }
        } catch (const std::bad_alloc&) {
            found = {.kind = FailureKind::OutOfMemory, .message = {}, .column = {}};
        }
        const std::lock_guard lock(mutex);
        finding = std::move(found);
        ended = true;
        changed.notify_all();
    }
};

BackgroundCheck::BackgroundCheck(std::function<void(const CheckLimits&)> check)
    : m_state(std::make_shared<State>()) {
    try {
        std::thread([state = m_state, check = std::move(check)]() mutable { state->Run(check); }).detach();
    } catch (const std::system_error&) {
        throw ProviderError(u"no thread could be started to check the file"_s, FailureKind::OutOfMemory);
    }
}

BackgroundCheck::~BackgroundCheck() {
    m_state->stop.request_stop();
    Wait(kStopTimeout);
}

bool BackgroundCheck::Wait(std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, limit, [&] { return m_state->ended; });
}

void BackgroundCheck::RequireSoundFile() const {
    if (!Wait(kTimeLimit + kGrace)) {
        throw ProviderError(u"数据库文件检查超时"_s, FailureKind::TimeLimit);
    }
    if (m_state->finding) {
        throw ProviderError(*m_state->finding);
    }
}

}  // namespace quorvane
