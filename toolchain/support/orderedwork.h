#pragma once

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <functional>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace toolchain {

/// Does pieces of work on all cores and hands their results back in the order in which the work was given.
/// One thread gives the work and takes the results. Work that was given is done before the destructor
/// returns.
template <typename Result>
class OrderedWork {
public:
    /// `mostWorkers` bounds the threads where each piece of work takes much memory.
    explicit OrderedWork(std::size_t mostWorkers = 16)
    {
        const std::size_t cores = std::max<std::size_t>(1, std::thread::hardware_concurrency());
        const std::size_t count = std::min(cores, mostWorkers);
        m_workers.reserve(count);
        for (std::size_t worker = 0; worker < count; ++worker)
            m_workers.emplace_back([this] { workOn(); });
    }
    ~OrderedWork()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_isEnding = true;
        }
        m_changed.notify_all();
        for (std::thread &worker : m_workers)
            worker.join();
    }
    OrderedWork(const OrderedWork &) = delete;
    OrderedWork &operator=(const OrderedWork &) = delete;

    /// Whether as much is under way as keeps all cores busy; a result is to be taken before more is given.
    [[nodiscard]] bool isFull() const { return m_results.size() >= 3 * m_workers.size(); }
    [[nodiscard]] bool isEmpty() const { return m_results.empty(); }

    void give(std::function<Result()> work)
    {
        std::packaged_task<Result()> task(std::move(work));
        m_results.push_back(task.get_future());
        {
            const std::lock_guard lock(m_mutex);
            m_tasks.push_back(std::move(task));
        }
        m_changed.notify_one();
    }

    /// The result of the oldest work that is under way; waits for it.
    [[nodiscard]] Result take()
    {
        Result result = m_results.front().get();
        m_results.pop_front();
        return result;
    }

private:
    void workOn()
    {
        std::unique_lock lock(m_mutex);
        for (;;) {
            m_changed.wait(lock, [this] { return m_isEnding || !m_tasks.empty(); });
            if (m_tasks.empty())
                return;
            auto task = std::move(m_tasks.front());
            m_tasks.pop_front();
            lock.unlock();
            task();
            lock.lock();
        }
    }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::packaged_task<Result()>> m_tasks;
    bool m_isEnding = false;
    std::deque<std::future<Result>> m_results; ///< the giving thread's own
    std::vector<std::thread> m_workers;
};

} // namespace toolchain
