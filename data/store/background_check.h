// Checks a file as a whole, indexes included, in a thread beside the one that uses the file.
#pragma once

#include <QDeadlineTimer>
#include <chrono>
#include <functional>
#include <memory>
#include <stop_token>

#include "data/connection.h"

namespace quorvane {

// How long the check of a file may go on.
struct CheckLimits {
    std::stop_token stop;
    QDeadlineTimer deadline = QDeadlineTimer::Forever;

    bool AreReached() const { return stop.stop_requested() || deadline.hasExpired(); }
};

class BackgroundCheck {
public:
    // A check that begins when somebody first asks for it, so that the first window need not share the
    // processor and the drive with it. It owns what it uses, throws ProviderError with what it has found, and
    // looks at the limits, of which the time is kTimeLimit, often.
    explicit BackgroundCheck(std::function<void(const CheckLimits&)> check);
    // Stops the check. A thread that hangs in a drive that does not answer is left behind.
    ~BackgroundCheck();
    BackgroundCheck(const BackgroundCheck&) = delete;
    BackgroundCheck& operator=(const BackgroundCheck&) = delete;

    // Begins the check. True until it has ended.
    bool IsRunning();
    // Waits for the end of the check, and throws what it has thrown, or that it did not come to its end in
    // time. What it has thrown more than a second ago is looked for again: another program may have held the
    // file for a moment, or the disk may be in order again.
    void RequireSoundFile();

private:
    struct State;

    void Begin();
    bool Wait(std::chrono::milliseconds limit) const;

    std::function<void(const CheckLimits&)> m_check;
    std::shared_ptr<State> m_state;
    bool m_hasBegun = false;
    QDeadlineTimer m_deadline;  // for the thread to end
};

}  // namespace quorvane
