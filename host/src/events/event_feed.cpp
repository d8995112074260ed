// SPDX-License-Identifier: Apache-2.0
#include "events/event_feed.h"

#include <malloc.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace zorbd {
namespace {

/// What wakes listeners rests for so long, so that under load they are woken for many events at once.
constexpr std::chrono::milliseconds gather_time{5};
/// How much a listener takes at a time: so many events, and so many bytes unless one event has more.
constexpr std::size_t batch = 64;
constexpr std::size_t batch_bytes = 32768;

} // namespace

EventFeed::EventFeed(const EventLimits& limits)
    : m_limits(limits), m_ring(limits.memory), m_pump([this] { run(); })
{
}

EventFeed::~EventFeed()
{
    close();
}

void EventFeed::add_line(std::string_view plugin, std::string_view line)
{
    Event event;
    event.time = std::chrono::system_clock::now();
    event.plugin = plugin;
    event.text = line;
    add(std::move(event));
}

void EventFeed::add_call(std::string members)
{
    Event event;
    event.time = std::chrono::system_clock::now();
    event.kind = EventKind::call;
    event.text = std::move(members);
    add(std::move(event));
}

void EventFeed::add(Event event)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_ring.add(std::move(event));
    if (!m_sleeping.empty())
        m_changed.notify_all();
}

std::unique_ptr<EventFeed::Listener> EventFeed::listen(std::optional<std::uint64_t> after,
                                                       std::function<void()> wake)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    if (m_is_closed || m_listener_count >= m_limits.listeners)
        return nullptr;
    const bool is_of_another_run = after && *after > m_ring.latest();
    const std::uint64_t next = is_of_another_run ? m_ring.oldest() : after.value_or(m_ring.latest()) + 1;
    std::string greeting = "retry: 2000\n\n";
    if (is_of_another_run)
        greeting += missed_notice("null", next);
    if (!after) // so that a client that has read nothing yet can resume, too
        greeting += "id: " + std::to_string(m_ring.latest()) + "\n\n";
    std::unique_ptr<Listener> listener(new Listener(*this, next, std::move(greeting), std::move(wake)));
    ++m_listener_count;
    m_changed.notify_all();
    return listener;
}

void EventFeed::leave(Listener& listener)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    m_sleeping.erase(std::remove(m_sleeping.begin(), m_sleeping.end(), &listener), m_sleeping.end());
    --m_listener_count;
}

void EventFeed::close()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_is_closed = true;
    }
    m_changed.notify_all();
    if (m_pump.joinable())
        m_pump.join();
}

/// Wakes listeners that sleep when there is something for them.
void EventFeed::run()
{
    std::unique_lock<std::mutex> lock(m_mutex);
    std::uint64_t told = m_ring.latest();
    while (!m_is_closed) {
        const auto has_news = [&] {
            return m_is_closed || ((m_has_unread || told != m_ring.latest()) && !m_sleeping.empty());
        };
        if (m_listener_count == 0)
            wait_for_listener(lock);
        const bool all = m_changed.wait_for(lock, m_limits.heartbeat / 10, has_news);
        told = m_ring.latest();
        m_has_unread = m_has_unread && !all;
        wake_sleepers(lock, all);
        if (all)
            m_changed.wait_for(lock, gather_time, [this] { return m_is_closed; });
    }
    wake_sleepers(lock, true);
}

/// What the last listeners held lies scattered between what others hold, so it does not go back to the system
/// by itself.
void EventFeed::wait_for_listener(std::unique_lock<std::mutex>& lock)
{
    lock.unlock();
    ::malloc_trim(0);
    lock.lock();
    m_changed.wait(lock, [this] { return m_is_closed || m_listener_count != 0; });
}

/// All of them, or those whose heartbeat is due. Nobody is called with the lock held.
void EventFeed::wake_sleepers(std::unique_lock<std::mutex>& lock, bool all)
{
    const auto woken = std::partition(m_sleeping.begin(), m_sleeping.end(), [all](const Listener* listener) {
        return !all && !listener->is_due();
    });
    std::vector<std::function<void()>> wakes; // a listener may be gone as soon as it is awake
    std::transform(woken, m_sleeping.end(), std::back_inserter(wakes),
                   [](const Listener* listener) { return listener->m_wake; });
    m_sleeping.erase(woken, m_sleeping.end());
    lock.unlock();
    for (const auto& wake : wakes)
        wake();
    lock.lock();
}

EventFeed::Listener::Listener(EventFeed& feed, std::uint64_t next, std::string greeting,
                              std::function<void()> wake)
    : m_feed(feed), m_wake(std::move(wake)), m_next(next), m_text(std::move(greeting)),
      m_next_heartbeat(Clock::now() + feed.m_limits.heartbeat)
{
}

EventFeed::Listener::~Listener()
{
    m_feed.leave(*this);
}

EventFeed::Listener::State EventFeed::Listener::read(char* buffer, std::size_t& size)
{
    if (m_sent == m_text.size() && !fetch())
        return State::ended;
    if (m_text.empty() && is_due())
        m_text = ":\n\n";
    if (m_text.empty())
        return State::nothing_yet;
    m_next_heartbeat = Clock::now() + m_feed.m_limits.heartbeat;
    size = m_text.copy(buffer, size, m_sent);
    m_sent += size;
    return State::text;
}

/// Replaces the text, which has been sent, by what there is. False when the stream has ended.
bool EventFeed::Listener::fetch()
{
    if (m_text.capacity() > 2 * batch_bytes) // a long line is not to be paid for ever after
        m_text = std::string();
    m_text.clear();
    m_sent = 0;
    if (m_is_up_to_date) // what has come since is read together with what comes soon
        return true;
    std::vector<std::shared_ptr<const Event>> events;
    {
        const std::lock_guard<std::mutex> lock(m_feed.m_mutex);
        if (m_feed.m_is_closed)
            return false;
        const EventRing& ring = m_feed.m_ring;
        if (m_next < ring.oldest())
            m_text = missed_notice(std::to_string(ring.oldest() - m_next), ring.oldest());
        m_next = std::max(m_next, ring.oldest());
        events = ring.read(m_next, batch, batch_bytes);
        m_next += events.size();
        m_is_up_to_date = m_next > ring.latest();
    }
    for (const auto& event : events)
        m_text += to_event_stream(*event);
    return true;
}

bool EventFeed::Listener::sleep()
{
    const std::lock_guard<std::mutex> lock(m_feed.m_mutex);
    m_is_up_to_date = false;
    const std::uint64_t unread = m_feed.m_ring.latest() + 1 - m_next;
    if (m_feed.m_is_closed || unread >= batch)
        return false;
    m_feed.m_sleeping.push_back(this);
    if (unread > 0) {
        m_feed.m_has_unread = true;
        m_feed.m_changed.notify_all();
    }
    return true;
}

} // namespace zorbd
