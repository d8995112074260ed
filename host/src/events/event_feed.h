// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_EVENT_FEED_H
#define ZORBD_EVENT_FEED_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

#include "events/event_ring.h"

namespace zorbd {

struct EventLimits
{
    std::size_t memory = 4U << 20U; ///< bytes of events that are kept
    std::size_t listeners = 64;
    std::chrono::milliseconds heartbeat{15000};
};

/// Keeps the latest events and hands them to listeners. Whoever adds an event never waits for a listener:
/// each reads from the events that are kept, at its own pace; one that falls behind them is told how many it
/// has missed. All listeners together need no more memory than the events that are kept and one block each.
class EventFeed
{
public:
    class Listener;

    explicit EventFeed(const EventLimits& limits);
    /// No listener may be left.
    ~EventFeed();
    EventFeed(const EventFeed&) = delete;
    EventFeed& operator=(const EventFeed&) = delete;

    /// A line of a plug-in; `plugin` is its file, or empty. Any thread.
    void add_line(std::string_view plugin, std::string_view line);
    /// The end of a call, as the members of a JSON object; is only needed while somebody listens. Any thread.
    void add_call(std::string members);

    bool has_listeners() const { return m_listener_count.load(std::memory_order_relaxed) != 0; }
    std::size_t listener_count() const { return m_listener_count; }

    /// A listener for events from now on or, when `after` is given, for those that follow that id. `wake` is
    /// called, on a thread of the feed, when a listener that sleeps has something to read. None when there
    /// are as many as there may be, or the feed is closed.
    std::unique_ptr<Listener> listen(std::optional<std::uint64_t> after, std::function<void()> wake);

    /// Ends all streams and takes no further listeners. Wakes whoever sleeps; nobody is woken any more after
    /// that.
    void close();

private:
    void add(Event event);
    void leave(Listener& listener);
    void run();
    void wait_for_listener(std::unique_lock<std::mutex>& lock);
    void wake_sleepers(std::unique_lock<std::mutex>& lock, bool all);

    const EventLimits m_limits;
    std::atomic<std::size_t> m_listener_count{0};
    std::mutex m_mutex;
    std::condition_variable m_changed;
    EventRing m_ring;                  ///< guarded by m_mutex
    std::vector<Listener*> m_sleeping; ///< guarded by m_mutex
    bool m_has_unread = false;         ///< by one that sleeps; guarded by m_mutex
    bool m_is_closed = false;          ///< guarded by m_mutex
    std::thread m_pump;
};

/// One reader of the events. It belongs to one thread at a time.
class EventFeed::Listener
{
public:
    ~Listener();
    Listener(const Listener&) = delete;
    Listener& operator=(const Listener&) = delete;

    /// What reading has come to when it has given no text.
    enum class State { text, nothing_yet, ended };

    /// Fills `buffer` with the next text of the stream and sets `size` to its length. With nothing_yet the
    /// caller is to prepare for being woken and to call sleep().
    State read(char* buffer, std::size_t& size);

    /// Asks to be woken. False when there is much to read already: then nobody will wake it.
    bool sleep();

private:
    friend class EventFeed;
    using Clock = std::chrono::steady_clock;

    Listener(EventFeed& feed, std::uint64_t next, std::string greeting, std::function<void()> wake);

    bool fetch();
    bool is_due() const { return Clock::now() >= m_next_heartbeat; }

    EventFeed& m_feed;
    const std::function<void()> m_wake;
    std::uint64_t m_next;               ///< the id of the next event to read
    bool m_is_up_to_date = false;       ///< has read all that there was, and not slept since
    std::string m_text;                 ///< to be sent
    std::size_t m_sent = 0;             ///< of m_text
    Clock::time_point m_next_heartbeat; ///< while it sleeps, guarded by the feed's mutex
};

} // namespace zorbd

#endif
