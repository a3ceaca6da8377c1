// AsyncReader: reads from drives that may never answer, such as a lost network share, without blocking the
// event loop.
#pragma once

#include <QObject>
#include <chrono>
#include <deque>
#include <functional>
#include <future>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

namespace quorvane {

class AsyncReader : public QObject {
public:
    // Runs at most `atOnce` reads at a time; more of them wait. A read that takes very long no longer counts.
    explicit AsyncReader(int atOnce);
    // Does not wait: reads that have begun go on alone, and their results are dropped.
    ~AsyncReader() override;

    // Runs work() in a thread of its own and then calls deliver(result) in the thread of this object, from
    // its event loop, unless this object has been destroyed. work must own whatever it touches, because it
    // may outlive everything else; whatever work and deliver hold may be destroyed in either thread.
    template <typename Work, typename Deliver>
    void Run(Work work, Deliver deliver) {
        m_waiting.emplace_back([work = std::move(work), deliver = std::move(deliver)]() -> Delivery {
            return [result = work(), deliver]() mutable { deliver(std::move(result)); };
        });
        StartWaiting();
    }
    // Drops the reads that have not begun.
    void DropWaiting() { m_waiting.clear(); }

    // The result of work(), or nothing when it takes longer than `time`. work must own whatever it touches.
    // Calls meanwhile(), if there is one, several times a second.
    template <typename Work>
    static auto Within(std::chrono::milliseconds time, Work work,
                       const std::function<void()>& meanwhile = {}) {
        using Result = std::invoke_result_t<Work>;
        const auto promise = std::make_shared<std::promise<Result>>();
        std::future<Result> future = promise->get_future();
        StartThread([promise, work = std::move(work)] { promise->set_value(work()); });
        constexpr std::chrono::milliseconds interval(50);
        const auto end = std::chrono::steady_clock::now() + time;
        bool isReady = future.wait_for(meanwhile ? interval : time) == std::future_status::ready;
        while (!isReady && meanwhile && std::chrono::steady_clock::now() < end) {
            meanwhile();
            isReady = future.wait_for(interval) == std::future_status::ready;
        }
        return isReady ? std::optional(future.get()) : std::nullopt;
    }

    // Waits until all reads of the program have ended, but at most `time`. False when some are still running;
    // the program's static objects must then not be destroyed.
    static bool WaitForAll(std::chrono::milliseconds time);

private:
    using Delivery = std::function<void()>;
    struct Link;

    void StartWaiting();
    static void StartThread(std::function<void()> work);

    std::shared_ptr<Link> m_link;  // shared with the threads
    std::deque<std::function<Delivery()>> m_waiting;
    int m_atOnce;
    int m_counted = 0;  // threads that count against m_atOnce
    int m_threads = 0;  // threads that have not delivered yet
};

}  // namespace quorvane
