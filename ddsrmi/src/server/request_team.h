// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REQUEST_TEAM_H
#define DDSRMI_SERVER_REQUEST_TEAM_H

#include <deque>
#include <memory>
#include <thread>
#include <vector>

#include "clock.h"
#include "server/request_sample.h"

namespace org::opensplice::DDS_RMI {

/// A request that waits to be run.
struct QueuedRequest
{
    std::unique_ptr<RequestSample> sample;
    Clock::time_point deadline; ///< after which its caller does not wait any more
};

/// The requests of one client, in their order. Whose derives from it runs them.
class RequestQueue
{
public:
    /// `owner` tells apart what RequestTeam::forget() is to forget.
    explicit RequestQueue(const void* owner) : m_owner(owner) {}
    virtual ~RequestQueue();
    RequestQueue(const RequestQueue&) = delete;
    RequestQueue& operator=(const RequestQueue&) = delete;

    /// Called by the team, on a thread of its own, without a lock.
    virtual void run(QueuedRequest request) = 0;

private:
    friend class RequestTeam;

    const void* const m_owner;
    // What the team's lock guards:
    std::deque<QueuedRequest> m_waiting;
    bool m_in_line = false;
    bool m_paused = false;
};

/// The threads that run implementations. Clients take turns: of the queues in which something waits, each is
/// run one request, then the next. A queue's requests are begun in their order. Any thread may call any of
/// its functions.
class RequestTeam
{
public:
    using Queue = std::shared_ptr<RequestQueue>;

    explicit RequestTeam(unsigned size);
    /// Ends the threads; from one of its own threads, that one ends when its request is done.
    ~RequestTeam();
    RequestTeam(const RequestTeam&) = delete;
    RequestTeam& operator=(const RequestTeam&) = delete;

    std::size_t size() const { return m_threads.size(); }

    void add(const Queue& queue, QueuedRequest request);
    /// Nothing of a paused queue is begun.
    void pause(const Queue& queue, bool paused);
    /// Takes out what waits in the queue.
    std::deque<QueuedRequest> drop(const Queue& queue);

    /// Drops what waits in the queues of `owner`, and waits until nothing of it is running (but what calls
    /// this).
    void forget(const void* owner);

private:
    class Crew;

    const std::shared_ptr<Crew> m_crew;
    std::vector<std::thread> m_threads;
};

} // namespace org::opensplice::DDS_RMI

#endif
