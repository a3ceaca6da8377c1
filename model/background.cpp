#include "model/background.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <mutex>
#include <thread>

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// After that long, work is taken to wait for something that may never come.
constexpr std::chrono::milliseconds kPatience = 1s;
// So many threads one object never exceeds, even when all of them hang.
constexpr int kMostThreads = 64;

// Never destroyed, since threads that hang may count down after all else has ended.
std::atomic<int> underWay = 0;
static_assert(std::is_trivially_destructible_v<decltype(underWay)>);

}  // namespace

struct Background::Link {
    std::mutex mutex;
    Background* target;  // null once it has gone
};

Background::Background(int atOnce) : m_link(std::make_shared<Link>()), m_atOnce(atOnce) {
    m_link->target = this;
}

Background::~Background() {
    const std::lock_guard lock(m_link->mutex);
    m_link->target = nullptr;
}

void Background::Begin() {
    while (!m_waiting.empty() && m_counted < m_atOnce && m_threads < kMostThreads) {
        const auto goOn = [this, counts = std::make_shared<bool>(true)] {
            m_counted -= std::exchange(*counts, false) ? 1 : 0;
            Begin();
        };
        ++m_counted;
        ++m_threads;
        QTimer::singleShot(kPatience, this, goOn);
        BeginThread([link = m_link, work = std::move(m_waiting.front()), goOn] {
            const Delivery deliver = work();
            const std::lock_guard lock(link->mutex);
            if (Background* target = link->target) {
                const auto arrive = [target, goOn, deliver] {
                    --target->m_threads;
                    goOn();
                    deliver();  // last, as it may destroy the target
                };
                QMetaObject::invokeMethod(target, arrive, Qt::QueuedConnection);
            }
        });
        m_waiting.pop_front();
    }
}

void Background::BeginThread(std::function<void()> work) {
    ++underWay;
    std::thread([work = std::move(work)]() mutable {
        work();
        work = nullptr;
        --underWay;
    }).detach();
}

bool Background::WaitForAll(std::chrono::milliseconds time) {
    const QDeadlineTimer deadline(time);
    while (underWay > 0 && !deadline.hasExpired()) {
        QThread::msleep(1);
    }
    return underWay == 0;
}

}  // namespace quorvane
