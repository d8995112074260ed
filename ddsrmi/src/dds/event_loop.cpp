// SPDX-License-Identifier: Apache-2.0
#include "dds/event_loop.h"

#include <algorithm>
#include <array>

namespace org::opensplice::DDS_RMI {

namespace {

constexpr dds_attach_t wake_up_id = 0;

} // namespace

EventLoop::EventLoop(const Entity& participant)
    : m_waitset(dds_create_waitset(participant.get()), "cannot create a waitset"),
      m_wake_up(dds_create_guardcondition(participant.get()), "cannot create a guard condition")
{
    check(dds_waitset_attach(m_waitset.get(), m_wake_up.get(), wake_up_id),
          "cannot attach a guard condition");
}

std::shared_ptr<ArrivalFlag> EventLoop::make_arrival_flag()
{
    return std::make_shared<ArrivalFlag>(m_raised_flags);
}

EventLoop::Attachment EventLoop::attach(dds_entity_t entity, Action action, std::shared_ptr<ArrivalFlag> flag)
{
    dds_attach_t id = 0;
    {
        const std::lock_guard lock(m_mutex);
        id = ++m_last_id;
        m_attached.emplace(id, Attached{std::make_shared<Action>(std::move(action)), std::move(flag)});
    }
    Attachment attachment(*this, entity, id);
    check(dds_waitset_attach(m_waitset.get(), entity, id), "cannot attach to a waitset");
    return attachment;
}

std::size_t EventLoop::dispatch(std::chrono::nanoseconds timeout)
{
    std::array<dds_attach_t, 64> triggered{};
    const dds_return_t count =
        check(dds_waitset_wait(m_waitset.get(), triggered.data(), triggered.size(), timeout.count()),
              "cannot wait");
    return run_actions(triggered.data(), std::min(static_cast<std::size_t>(count), triggered.size()));
}

std::size_t EventLoop::dispatch_arrivals()
{
    if (m_raised_flags == 0)
        return 0;
    m_flagged.clear();
    {
        const std::lock_guard lock(m_mutex);
        for (const auto& [id, attached] : m_attached)
            if (attached.flag != nullptr && attached.flag->is_raised())
                m_flagged.push_back(id);
    }
    return run_actions(m_flagged.data(), m_flagged.size());
}

std::size_t EventLoop::run_actions(const dds_attach_t* ids, std::size_t count)
{
    std::size_t actions = 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (ids[i] == wake_up_id) {
            bool was_triggered = false;
            dds_take_guardcondition(m_wake_up.get(), &was_triggered);
        } else if (run_action(ids[i])) {
            ++actions;
        }
    }
    return actions;
}

bool EventLoop::run_action(dds_attach_t id)
{
    const auto action = begin_action(id);
    if (action == nullptr)
        return false;
    struct End
    {
        EventLoop& loop;
        ~End() { loop.end_action(); }
    };
    const End end{*this};
    (*action)();
    return true;
}

std::shared_ptr<EventLoop::Action> EventLoop::begin_action(dds_attach_t id)
{
    const std::lock_guard lock(m_mutex);
    const auto found = m_attached.find(id);
    if (found == m_attached.end())
        return nullptr;
    if (found->second.flag != nullptr)
        found->second.flag->lower();
    m_running_id = id;
    m_running_on = std::this_thread::get_id();
    return found->second.action;
}

void EventLoop::end_action()
{
    {
        const std::lock_guard lock(m_mutex);
        m_running_id = 0;
    }
    m_action_ended.notify_all();
}

void EventLoop::wake()
{
    dds_set_guardcondition(m_wake_up.get(), true);
}

void EventLoop::detach(dds_entity_t entity, dds_attach_t id)
{
    dds_waitset_detach(m_waitset.get(), entity);
    std::unique_lock lock(m_mutex);
    m_attached.erase(id);
    m_action_ended.wait(
        lock, [this, id] { return m_running_id != id || m_running_on == std::this_thread::get_id(); });
}

EventLoop::Attachment::Attachment(EventLoop& loop, dds_entity_t entity, dds_attach_t id)
    : m_loop(&loop), m_entity(entity), m_id(id)
{
}

EventLoop::Attachment::Attachment(Attachment&& other) noexcept
    : m_loop(std::exchange(other.m_loop, nullptr)), m_entity(other.m_entity), m_id(other.m_id)
{
}

EventLoop::Attachment& EventLoop::Attachment::operator=(Attachment&& other) noexcept
{
    std::swap(m_loop, other.m_loop);
    std::swap(m_entity, other.m_entity);
    std::swap(m_id, other.m_id);
    return *this;
}

EventLoop::Attachment::~Attachment()
{
    if (m_loop != nullptr)
        m_loop->detach(m_entity, m_id);
}

} // namespace org::opensplice::DDS_RMI
