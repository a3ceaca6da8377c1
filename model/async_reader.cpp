#include "model/async_reader.h"

#include <QDeadlineTimer>
#include <QThread>
#include <QTimer>
#include <atomic>
#include <mutex>
#include <thread>

namespace quorvane {
namespace {

using namespace std::chrono_literals;

// A read that takes longer is assumed to hang; another one may start in its place.
constexpr std::chrono::milliseconds kPatience = 1s;
// The most threads of one object, even when all of them hang.
constexpr int kMostThreads = 64;

// Threads of the program that have not ended. Never destroyed: a hanging thread may count down very late.
std::atomic<int> underWay = 0;
static_assert(std::is_trivially_destructible_v<decltype(underWay)>);

}  // namespace

struct AsyncReader::Link {
    std::mutex mutex;
    AsyncReader* target;  // null once destroyed
};

AsyncReader::AsyncReader(int atOnce) : m_link(std::make_shared<Link>()), m_atOnce(atOnce) {
    m_link->target = this;
}

AsyncReader::~AsyncReader() {
    const std::lock_guard lock(m_link->mutex);
    m_link->target = nullptr;
}

void AsyncReader::StartWaiting() {
    while (!m_waiting.empty() && m_counted < m_atOnce && m_threads < kMostThreads) {
        const auto stopCounting = [this, counts = std::make_shared<bool>(true)] {
            m_counted -= std::exchange(*counts, false) ? 1 : 0;
            StartWaiting();
        };
        ++m_counted;
        ++m_threads;
        QTimer::singleShot(kPatience, this, stopCounting);
        StartThread([link = m_link, work = std::move(m_waiting.front()), stopCounting] {
            const Delivery deliver = work();
            const std::lock_guard lock(link->mutex);
            if (AsyncReader* target = link->target) {
                const auto arrive = [target, stopCounting, deliver] {
                    --target->m_threads;
                    stopCounting();
                    deliver();  // last: it may destroy the target
                };
                QMetaObject::invokeMethod(target, arrive, Qt::QueuedConnection);
            }
        });
        m_waiting.pop_front();
    }
}

void AsyncReader::StartThread(std::function<void()> work) {
    ++underWay;
    std::thread([work = std::move(work)]() mutable {
        work();
        work = nullptr;
        --underWay;
    }).detach();
}

bool AsyncReader::WaitForAll(std::chrono::milliseconds time) {
    const QDeadlineTimer deadline(time);
    while (underWay > 0 && !deadline.hasExpired()) {
        QThread::msleep(1);
    }
    return underWay == 0;
}

}  // namespace quorvane
