// Runs work that may take for ever, such as reading from a share that has gone, beside the event loop.
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

class Background : public QObject {
public:
    // So many pieces of work run at once; more wait for one to end. One that takes very long is no longer
    // waited for.
    explicit Background(int atOnce);
    // Does not wait: work that has begun goes on alone, and its result is dropped.
    ~Background() override;

    // Runs work() in a thread of its own and then, unless this has gone meanwhile, deliver(result) in the
    // thread of this, from its event loop. The work owns whatever it touches, since it may outlive
    // everything else; nothing that the two hold minds in which thread it is destroyed.
    template <typename Work, typename Deliver>
    void Run(Work work, Deliver deliver) {
        m_waiting.emplace_back([work = std::move(work), deliver = std::move(deliver)]() -> Delivery {
            return [result = work(), deliver]() mutable { deliver(std::move(result)); };
        });
        Begin();
    }
    // Forgets the work that has not begun.
    void DropWaiting() { m_waiting.clear(); }

    // The result of work(), which owns whatever it touches, or nothing when it takes longer than that.
    template <typename Work>
    static auto Within(std::chrono::milliseconds time, Work work) {
        using Result = std::invoke_result_t<Work>;
        const auto promise = std::make_shared<std::promise<Result>>();
        std::future<Result> future = promise->get_future();
        BeginThread([promise, work = std::move(work)] { promise->set_value(work()); });
        return future.wait_for(time) == std::future_status::ready ? std::optional(future.get())
                                                                  : std::nullopt;
    }

    // Waits for all work of the program, but no longer than that. False when some has not ended. The static
    // objects of the program must then stay as they are, since it may go on at any time.
    static bool WaitForAll(std::chrono::milliseconds time);

private:
    using Delivery = std::function<void()>;
    struct Link;

    void Begin();
    static void BeginThread(std::function<void()> work);

    std::shared_ptr<Link> m_link;  // shared with the threads
    std::deque<std::function<Delivery()>> m_waiting;
    int m_atOnce;
    int m_counted = 0;  // threads that count as running
    int m_threads = 0;  // threads that have not delivered
};

}  // namespace quorvane
