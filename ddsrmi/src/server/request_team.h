// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_SERVER_REQUEST_TEAM_H
#define DDSRMI_SERVER_REQUEST_TEAM_H

#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "dds/entity.h"
#include "dds/event_loop.h"

namespace org::opensplice::DDS_RMI {

/// The threads that run implementations. One of them at a time waits for requests to arrive; it takes them
/// in, leaves the waiting to the next and goes on to run what has come, so that with a single thread a
/// request is run where it was taken.
///
/// What has arrived is run in the order in which it was sent, by the senders' clocks: a client's calls of
/// different operations come on different topics, between which DDS keeps no order.
class RequestTeam
{
public:
    /// What is run: `owner` tells whose it is, `sent` when it was sent.
    struct Job
    {
        const void* owner;
        dds_time_t sent;
        std::function<void()> work;
    };

    RequestTeam(std::shared_ptr<Entity> participant, unsigned size);
    /// Ends the threads; from one of its own threads, that one ends when its job is done.
    ~RequestTeam();
    RequestTeam(const RequestTeam&) = delete;
    RequestTeam& operator=(const RequestTeam&) = delete;

    std::size_t size() const { return m_threads.size(); }

    /// Where arrivals are waited for, of readers that have been made with an arrival flag of its; actions
    /// that run there take all that is there and hand it to arrived().
    EventLoop& arrivals();
    void arrived(Job job);

    /// Drops the jobs of `owner` that have not begun and waits until none of them is running (but the one
    /// that calls this). Its arrivals must have been detached.
    void forget(const void* owner);

private:
    class Crew;

    const std::shared_ptr<Crew> m_crew;
    std::vector<std::thread> m_threads;
};

} // namespace org::opensplice::DDS_RMI

#endif
