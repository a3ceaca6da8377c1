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

    void End(std::optional<ProviderFailure> result) {
        const std::lock_guard lock(mutex);
        finding = std::move(result);
        ended = true;
        changed.notify_all();
    }

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
        End(std::move(found));
    }
};

BackgroundCheck::BackgroundCheck(std::function<void(const CheckLimits&)> check)
    : m_check(std::move(check)), m_state(std::make_shared<State>()) {}

BackgroundCheck::~BackgroundCheck() {
    m_state->stop.request_stop();
    if (!m_check) {
        Wait(kStopTimeout);
    }
}

void BackgroundCheck::Start() {
    try {
        std::thread([state = m_state, check = m_check] { state->Run(check); }).detach();
    } catch (const std::system_error&) {
        m_state->End(ProviderFailure{.kind = FailureKind::OutOfMemory,
                                     .message = u"no thread could be started to check the file"_s,
                                     .column = {}});
    }
    m_check = {};
}

bool BackgroundCheck::Wait(std::chrono::milliseconds limit) {
    if (m_check) {
        Start();
    }
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, limit, [&] { return m_state->ended; });
}

void BackgroundCheck::RequireSoundFile() {
    if (!Wait(kTimeLimit + kGrace)) {
        throw ProviderError(u"数据库文件检查超时"_s, FailureKind::TimeLimit);
    }
    if (m_state->finding) {
        throw ProviderError(*m_state->finding);
    }
}

}  // namespace quorvane
