// SPDX-License-Identifier: Apache-2.0
#include "stamp_stream.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <utility>

#include "ddsrmi/call_failure.h"
#include "stamp.h"

namespace drill {

namespace {

using Clock = std::chrono::steady_clock;

std::uint32_t microseconds_since(Clock::time_point start)
{
    return static_cast<std::uint32_t>(
        std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - start).count());
}

} // namespace

std::uint32_t StreamResult::percentile(double percent) const
{
    if (microseconds.empty())
        return 0;
    std::vector<std::uint32_t> sorted = microseconds;
    const auto rank = static_cast<std::size_t>(percent / 100 * static_cast<double>(sorted.size() - 1));
    std::nth_element(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(rank), sorted.end());
    return sorted[rank];
}

/// Outlives the stream while handlers are about.
class StampStream::State
{
public:
    explicit State(std::size_t window) : m_window(window) {}

    void wait_for_room()
    {
        std::unique_lock lock(m_mutex);
        m_released.wait(lock, [this] { return m_outstanding < m_window; });
        ++m_outstanding;
    }
    bool wait_for_none(std::chrono::milliseconds deadline)
    {
        std::unique_lock lock(m_mutex);
        return m_released.wait_for(lock, deadline, [this] { return m_outstanding == 0; });
    }

    void on_accepted() { count(&StreamResult::accepted); }
    void on_timeout() { count(&StreamResult::timeouts); }
    void on_not_found() { count(&StreamResult::not_found); }
    void on_reply(bool right, std::uint32_t microseconds)
    {
        const std::lock_guard lock(m_mutex);
        ++m_result.replied;
        m_result.wrong += right ? 0 : 1;
        m_result.microseconds.push_back(microseconds);
    }
    void on_failure(rmi::CallFailure reason) { count(counter_of(reason)); }
    void on_release(bool accepted, int endings)
    {
        const int expected = accepted ? 1 : 0;
        {
            const std::lock_guard lock(m_mutex);
            --m_outstanding;
            m_result.silent += endings < expected ? 1 : 0;
            m_result.excess += endings > expected ? 1 : 0;
        }
        m_released.notify_all();
    }

    StreamResult take_result()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_result, {});
    }

private:
    static std::size_t StreamResult::*counter_of(rmi::CallFailure reason)
    {
        switch (reason) {
        case rmi::CallFailure::given_up:
            return &StreamResult::given_up;
        case rmi::CallFailure::server_lost:
            return &StreamResult::server_lost;
        case rmi::CallFailure::closed:
            return &StreamResult::closed;
        default:
            return &StreamResult::other_failures;
        }
    }

    void count(std::size_t StreamResult::*counter)
    {
        const std::lock_guard lock(m_mutex);
        ++(m_result.*counter);
    }

    const std::size_t m_window;
    std::mutex m_mutex; // guards all below
    std::condition_variable m_released;
    std::size_t m_outstanding = 0;
    StreamResult m_result;
};

class StampStream::Handler : public DDS_RMI::Drill::Range_stamp_Reply_Handler, public rmi::CallFailureHandler
{
public:
    Handler(std::shared_ptr<State> state, DDS::LongLong expected)
        : m_state(std::move(state)), m_expected(expected), m_start(Clock::now())
    {
    }
    ~Handler() override { m_state->on_release(m_accepted, m_endings); }

    /// To be called by who still holds the handler after the call.
    void on_accepted() { m_accepted = true; }

    void stamp_Reply(DDS::LongLong result) override
    {
        ++m_endings;
        m_state->on_reply(result == m_expected, microseconds_since(m_start));
    }
    void handleFailure(rmi::CallFailure reason, const char* /*text*/) override
    {
        ++m_endings;
        m_state->on_failure(reason);
    }

private:
    const std::shared_ptr<State> m_state;
    const DDS::LongLong m_expected;
    const Clock::time_point m_start;
    bool m_accepted = false; // written by the caller, who holds the handler until then
    int m_endings = 0;       // written by the hooks; the last release comes after both
};

StampStream::StampStream(const Proxy& proxy, DDS::Long server_instance, DDS::Long caller, std::size_t window)
    : m_proxy(proxy), m_server_instance(server_instance), m_caller(caller),
      m_state(std::make_shared<State>(window))
{
}

StampStream::~StampStream() = default;

void StampStream::call()
{
    m_state->wait_for_room();
    const DDS::Long number = ++m_number;
    const rmi::shared_ptr<Handler> handler(new Handler(m_state, stamp(m_server_instance, m_caller, number)));
    try {
        m_proxy->async_stamp(m_caller, number, handler.get());
        handler->on_accepted();
        m_state->on_accepted();
    } catch (const rmi::TIMEOUT&) {
        m_state->on_timeout();
    } catch (const rmi::SERVICE_NOT_FOUND&) {
        m_state->on_not_found();
    }
}

bool StampStream::finish(std::chrono::milliseconds deadline)
{
    return m_state->wait_for_none(deadline);
}

StreamResult StampStream::take_result()
{
    return m_state->take_result();
}

} // namespace drill
