// SPDX-License-Identifier: Apache-2.0
#include "server/request_team.h"

#include <algorithm>
#include <functional>
#include <iterator>
#include <limits>
#include <map>
#include <optional>
#include <utility>

#include "report.h"

namespace org::opensplice::DDS_RMI {

// Shared by the threads, so that one which outlives the team object still has it.
class RequestTeam::Crew
{
public:
    explicit Crew(std::shared_ptr<Entity> participant)
        : m_participant(std::move(participant)), m_arrivals(*m_participant)
    {
    }

    EventLoop& arrivals() { return m_arrivals; }

    void arrived(Job job)
    {
        const std::lock_guard lock(m_mutex);
        m_arrived.push_back(std::move(job));
    }

    void work()
    {
        while (std::optional<Job> job = next()) {
            run(*job);
            job->work = nullptr; // what it holds goes before it is reported done
            finish();
        }
    }

    void forget(const void* owner)
    {
        Jobs dropped; // outlives the lock
        std::unique_lock lock(m_mutex);
        for (Jobs* jobs : {&m_jobs, &m_held, &m_arrived})
            move_if(*jobs, dropped, [owner](const Job& job) { return job.owner == owner; });
        m_finished.wait(lock, [&] { return !runs_elsewhere(owner); });
    }

    void end()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_ending = true;
        }
        m_arrivals.wake();
        m_work.notify_all();
    }

private:
    using Jobs = std::deque<Job>;

    template <class Predicate>
    static void move_if(Jobs& from, Jobs& to, Predicate predicate)
    {
        const auto moved = std::stable_partition(from.begin(), from.end(), std::not_fn(predicate));
        std::move(moved, from.end(), std::back_inserter(to));
        from.erase(moved, from.end());
    }

    std::optional<Job> next()
    {
        std::unique_lock lock(m_mutex);
        while (!m_ending) {
            if (!m_jobs.empty())
                return begin_first();
            if (m_someone_waits_for_arrivals)
                wait_for_work(lock);
            else
                wait_for_arrivals(lock);
        }
        return std::nullopt;
    }

    void wait_for_work(std::unique_lock<std::mutex>& lock)
    {
        ++m_idle;
        m_work.wait(lock);
        --m_idle;
    }

    Job begin_first()
    {
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_running[std::this_thread::get_id()] = job.owner;
        return job;
    }

    // A request that was sent earlier than one that is here has arrived too, but perhaps after its reader had
    // been looked at. So what the last look has found is held until there has been one more.
    void wait_for_arrivals(std::unique_lock<std::mutex>& lock)
    {
        m_someone_waits_for_arrivals = true;
        if (m_held.empty()) {
            unlocked(lock, [this] { m_arrivals.dispatch(std::chrono::nanoseconds::max()); });
            m_held.swap(m_arrived);
        }
        if (!m_held.empty())
            unlocked(lock, [this] { m_arrivals.dispatch_arrivals(); });
        m_someone_waits_for_arrivals = false;
        const std::size_t new_jobs = release_held();
        // This thread takes the first job; each other one, and the waiting, is for somebody else.
        for (std::size_t i = 0; i < std::min(new_jobs, m_idle) || i == 0; ++i)
            m_work.notify_one();
    }

    template <class TakeIn>
    static void unlocked(std::unique_lock<std::mutex>& lock, TakeIn take_in)
    {
        lock.unlock();
        try {
            take_in();
        } catch (...) {
            report_current_exception("taking requests in");
        }
        lock.lock();
    }

    // Makes jobs of what was held and of what was sent before that; holds the rest. Gives how many there are.
    std::size_t release_held()
    {
        dds_time_t last_held = std::numeric_limits<dds_time_t>::min();
        for (const Job& job : m_held)
            last_held = std::max(last_held, job.sent);
        move_if(m_arrived, m_held, [last_held](const Job& job) { return job.sent < last_held; });
        std::stable_sort(m_held.begin(), m_held.end(),
                         [](const Job& one, const Job& other) { return one.sent < other.sent; });
        const std::size_t released = m_held.size();
        std::move(m_held.begin(), m_held.end(), std::back_inserter(m_jobs));
        m_held.swap(m_arrived);
        m_arrived.clear();
        return released;
    }

    static void run(const Job& job)
    {
        try {
            job.work();
        } catch (...) {
            report_current_exception("running a request");
        }
    }

    void finish()
    {
        {
            const std::lock_guard lock(m_mutex);
            m_running.erase(std::this_thread::get_id());
        }
        m_finished.notify_all();
    }

    bool runs_elsewhere(const void* owner) const
    {
        return std::any_of(m_running.begin(), m_running.end(), [owner](const auto& running) {
            return running.second == owner && running.first != std::this_thread::get_id();
        });
    }

    const std::shared_ptr<Entity> m_participant;
    EventLoop m_arrivals;

    std::mutex m_mutex; // guards all below
    std::condition_variable m_work;
    std::condition_variable m_finished;
    Jobs m_jobs;    // to be run, in this order
    Jobs m_held;    // await one more look
    Jobs m_arrived; // found by the last look
    std::map<std::thread::id, const void*> m_running;
    std::size_t m_idle = 0;
    bool m_someone_waits_for_arrivals = false;
    bool m_ending = false;
};

RequestTeam::RequestTeam(std::shared_ptr<Entity> participant, unsigned size)
    : m_crew(std::make_shared<Crew>(std::move(participant)))
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

EventLoop& RequestTeam::arrivals()
{
    return m_crew->arrivals();
}

void RequestTeam::arrived(Job job)
{
    m_crew->arrived(std::move(job));
}

void RequestTeam::forget(const void* owner)
{
    m_crew->forget(owner);
}

} // namespace org::opensplice::DDS_RMI
