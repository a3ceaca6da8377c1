#include "data/store/background_check.h"

#include <QElapsedTimer>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <optional>
#include <thread>

#include "data/store/sqlite_guard.h"

using namespace Qt::Literals::StringLiterals;

namespace quorvane {

namespace {

constexpr std::chrono::milliseconds kStopTimeout{1000};
constexpr std::chrono::milliseconds kGrace{1000};  // beyond the time limit, for the thread to say so
constexpr int kAskAgainMs = 1000;

}  // namespace

struct BackgroundCheck::State {
    std::mutex mutex;
    std::condition_variable changed;
    bool ended = false;
    std::optional<ProviderFailure> finding;  // none: the file is sound
    QElapsedTimer sinceEnd;
    std::stop_source stop;

    void End(std::optional<ProviderFailure> result) {
        const std::lock_guard lock(mutex);
        finding = std::move(result);
        sinceEnd.start();
        ended = true;
        changed.notify_all();
    }

    // Without memory a check fails at once, so that it can be tried as often as one likes.
    bool IsToBeAskedAgain() const {
        return finding && (finding->kind == FailureKind::OutOfMemory || sinceEnd.hasExpired(kAskAgainMs));
    }

    // Nothing may leave the thread, the lack of memory for a message neither.
    void Run(const std::function<void(const CheckLimits&)>& check) noexcept {
        std::optional<ProviderFailure> found;
        try {
            try {
                check({stop.get_token(), QDeadlineTimer(kTimeLimit)});
            } catch (const ProviderError& error) {
                found = error.Failure();
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
    if (m_hasBegun) {
        Wait(kStopTimeout);
    }
}

void BackgroundCheck::Begin() {
    m_hasBegun = true;
    m_state->ended = false;  // no thread uses the state now
    m_deadline.setRemainingTime(kTimeLimit + kGrace);
    try {
        std::thread([state = m_state, check = m_check] { state->Run(check); }).detach();
    } catch (const std::exception&) {  // no memory or no thread
        m_state->End(ProviderFailure{.kind = FailureKind::OutOfMemory, .message = {}, .column = {}});
    }
}

bool BackgroundCheck::IsRunning() {
    if (!m_hasBegun) {
        Begin();
    }
    return !Wait({});
}

bool BackgroundCheck::Wait(std::chrono::milliseconds limit) const {
    std::unique_lock lock(m_state->mutex);
    return m_state->changed.wait_for(lock, limit, [&] { return m_state->ended; });
}

void BackgroundCheck::RequireSoundFile() {
    if (!m_hasBegun || (Wait({}) && m_state->IsToBeAskedAgain())) {
        Begin();
    }
    if (!Wait(std::chrono::milliseconds(m_deadline.remainingTime()))) {
        throw ProviderError(u"数据库文件检查超时"_s);
    }
    if (m_state->finding) {
        throw ProviderError(*m_state->finding);
    }
}

}  // namespace quorvane
