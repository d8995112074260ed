// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TWO_HOSTS_STEADY_CALLS_H
#define TESTS_TWO_HOSTS_STEADY_CALLS_H

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>

#include "remote_host.h"

namespace two_hosts {

/// Calls one method over and over, some two hundred times a second, on a thread of its own.
class SteadyCalls
{
public:
    /// `host` must outlive the object.
    SteadyCalls(const RemoteHost& host, std::string method);
    ~SteadyCalls() { stop(); }
    SteadyCalls(const SteadyCalls&) = delete;
    SteadyCalls& operator=(const SteadyCalls&) = delete;

    /// No call is made any more when it returns.
    void stop();

    /// How many calls have been accepted so far.
    int accepted() const;

private:
    void run();

    const RemoteHost& m_host;
    const std::string m_method;
    mutable std::mutex m_mutex; // guards the three below
    std::condition_variable m_stop_asked;
    bool m_stopped = false;
    int m_accepted = 0;
    std::thread m_thread;
};

} // namespace two_hosts

#endif
