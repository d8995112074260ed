// SPDX-License-Identifier: Apache-2.0
#include "server/request_team.h"

#include <algorithm>
#include <iterator>
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

    void push(Job job)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_jobs.push_back(std::move(job));
        }
        m_work.notify_one();
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
        std::deque<Job> dropped; // outlives the lock
        std::unique_lock lock(m_mutex);
        const auto kept = std::stable_partition(m_jobs.begin(), m_jobs.end(),
                                                [owner](const Job& job) { return job.owner != owner; });
        std::move(kept, m_jobs.end(), std::back_inserter(dropped));
        m_jobs.erase(kept, m_jobs.end());
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
    std::optional<Job> next()
    {
        std::unique_lock lock(m_mutex);
        while (!m_ending) {
            if (!m_jobs.empty())
                return begin_first();
            if (m_someone_waits_for_arrivals)
                m_work.wait(lock);
            else
                wait_for_arrivals(lock);
        }
        return std::nullopt;
    }

    Job begin_first()
    {
        Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        m_running[std::this_thread::get_id()] = job.owner;
        return job;
    }

    void wait_for_arrivals(std::unique_lock<std::mutex>& lock)
    {
        m_someone_waits_for_arrivals = true;
        lock.unlock();
        try {
            m_arrivals.dispatch(std::chrono::nanoseconds::max());
        } catch (...) {
            report_current_exception("taking requests in");
        }
        lock.lock();
        m_someone_waits_for_arrivals = false;
        m_work.notify_one();
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
    std::deque<Job> m_jobs;
    std::map<std::thread::id, const void*> m_running;
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

void RequestTeam::push(Job job)
{
    m_crew->push(std::move(job));
}

void RequestTeam::forget(const void* owner)
{
    m_crew->forget(owner);
}

} // namespace org::opensplice::DDS_RMI
