// SPDX-License-Identifier: Apache-2.0
#include "server/request_team.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "report.h"

namespace org::opensplice::DDS_RMI {

RequestQueue::~RequestQueue() = default;

// Shared by the threads, so that one which outlives the team object still has it.
class RequestTeam::Crew
{
public:
    void add(const Queue& queue, QueuedRequest request)
    {
        bool has_work = false;
        {
            const std::lock_guard lock(m_mutex);
            queue->m_waiting.push_back(std::move(request));
            has_work = put_in_line(queue) && m_idle > 0;
        }
        if (has_work)
            m_work.notify_one();
    }

    void pause(const Queue& queue, bool paused)
    {
        bool has_work = false;
        {
            const std::lock_guard lock(m_mutex);
            queue->m_paused = paused;
            has_work = put_in_line(queue);
        }
        if (has_work)
            m_work.notify_one();
    }

    std::deque<QueuedRequest> drop(const Queue& queue)
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(queue->m_waiting, {});
    }

    void work()
    {
        Worker self{std::this_thread::get_id(), nullptr};
        {
            const std::lock_guard lock(m_mutex);
            m_workers.push_back(&self);
        }
        Queue queue;
        QueuedRequest request;
        while (next(self, queue, request)) {
            run(*queue, std::move(request));
            queue.reset(); // what it holds goes before it is reported done
        }
        const std::lock_guard lock(m_mutex);
        m_workers.erase(std::find(m_workers.begin(), m_workers.end(), &self));
    }

    void forget(const void* owner)
    {
        std::deque<std::deque<QueuedRequest>> dropped; // outlives the lock
        std::unique_lock lock(m_mutex);
        for (const Queue& queue : m_line)
            if (queue->m_owner == owner)
                dropped.push_back(std::exchange(queue->m_waiting, {}));
        ++m_waiting_for_end;
        m_finished.wait(lock, [&] { return !runs_elsewhere(owner); });
        --m_waiting_for_end;
    }

    void end()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_work.notify_all();
    }

private:
    struct Worker
    {
        std::thread::id thread;
        const void* owner; // of what it is running; null when it is running nothing
    };

    // Whether there is something more for a thread to do.
    bool put_in_line(const Queue& queue)
    {
        if (queue->m_in_line || queue->m_paused || queue->m_waiting.empty())
            return false;
        queue->m_in_line = true;
        m_line.push_back(queue);
        return true;
    }

    bool next(Worker& self, Queue& queue, QueuedRequest& request)
    {
        std::unique_lock lock(m_mutex);
        self.owner = nullptr;
        if (m_waiting_for_end > 0)
            m_finished.notify_all();
        while (!m_ending) {
            if (m_line.empty()) {
                ++m_idle;
                m_work.wait(lock, [this] { return m_ending || !m_line.empty(); });
                --m_idle;
                continue;
            }
            queue = std::move(m_line.front());
            m_line.pop_front();
            queue->m_in_line = false;
            if (begin_first_of(self, queue, request))
                return true;
        }
        return false;
    }

    bool begin_first_of(Worker& self, const Queue& queue, QueuedRequest& request)
    {
        if (queue->m_paused || queue->m_waiting.empty())
            return false;
        request = std::move(queue->m_waiting.front());
        queue->m_waiting.pop_front();
        self.owner = queue->m_owner;
        if (put_in_line(queue) && m_idle > 0)
            m_work.notify_one();
        return true;
    }

    static void run(RequestQueue& queue, QueuedRequest request)
    {
        try {
            queue.run(std::move(request));
        } catch (...) {
            report_current_exception("running a request");
        }
    }

    bool runs_elsewhere(const void* owner) const
    {
        return std::any_of(m_workers.begin(), m_workers.end(), [owner](const Worker* worker) {
            return worker->owner == owner && worker->thread != std::this_thread::get_id();
        });
    }

    std::mutex m_mutex; // guards all below, and what the queues say it does
    std::condition_variable m_work;
    std::condition_variable m_finished;
    std::deque<Queue> m_line; // each has something waiting, or had
    std::vector<const Worker*> m_workers;
    std::size_t m_idle = 0;
    std::size_t m_waiting_for_end = 0;
    bool m_ending = false;
};

RequestTeam::RequestTeam(unsigned size) : m_crew(std::make_shared<Crew>())
{
    for (unsigned i = 0; i < size; ++i)
        m_threads.emplace_back([crew = m_crew] { crew->work(); });
}

RequestTeam::~RequestTeam()
{
    m_crew->end();
    for (std::thread& thread : m_threads) {
        if (thread.get_id() == std::this_thread::get_id())
            thread.detach();
        else
            thread.join();
    }
}

void RequestTeam::add(const Queue& queue, QueuedRequest request)
{
    m_crew->add(queue, std::move(request));
}

void RequestTeam::pause(const Queue& queue, bool paused)
{
    m_crew->pause(queue, paused);
}

std::deque<QueuedRequest> RequestTeam::drop(const Queue& queue)
{
    return m_crew->drop(queue);
}

void RequestTeam::forget(const void* owner)
{
    m_crew->forget(owner);
}

} // namespace org::opensplice::DDS_RMI
