// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_EVENT_LOOP_H
#define DDSRMI_DDS_EVENT_LOOP_H

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unordered_map>
#include <utility>
#include <vector>

#include "dds/arrival_flag.h"
#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// Waits for Cyclone entities and runs what is to happen on each.
///
/// One thread at a time runs dispatch(); all else may be called from any thread.
class EventLoop
{
public:
    using Action = std::function<void()>;

    explicit EventLoop(const Entity& participant);

    /// Keeps an entity attached for as long as it lives; once it has gone the action is not running and will
    /// not run (but when it goes in an action of the loop). It must not outlive the loop.
    class Attachment
    {
    public:
        Attachment() noexcept = default;
        Attachment(Attachment&& other) noexcept;
        Attachment& operator=(Attachment&& other) noexcept;
        ~Attachment();

    private:
        friend class EventLoop;
        Attachment(EventLoop& loop, dds_entity_t entity, dds_attach_t id);

        EventLoop* m_loop = nullptr;
        dds_entity_t m_entity = 0;
        dds_attach_t m_id = 0;
    };

    /// Has `action` run by dispatch() for as long as the entity's condition or status is triggered; the
    /// action must clear it.
    Attachment attach(dds_entity_t entity, Action action)
    {
        return attach(entity, std::move(action), nullptr);
    }

    /// For a reader that dispatch_arrivals() is to look at. To be made before the reader, and to be given to
    /// attach() with the reader's condition.
    std::shared_ptr<ArrivalFlag> make_arrival_flag();
    Attachment attach(dds_entity_t entity, Action action, std::shared_ptr<ArrivalFlag> flag);

    /// Waits until something is triggered, wake() has been called or `timeout` has passed, and runs the
    /// actions of what was triggered. Gives how many that were.
    std::size_t dispatch(std::chrono::nanoseconds timeout);

    /// Runs the actions of what has its arrival flag raised; gives how many that were. A sample is found that
    /// came before another one which the last look has found.
    std::size_t dispatch_arrivals();

    /// Lets the current or the next dispatch() return.
    void wake();

private:
    using Ids = std::vector<dds_attach_t>;

    struct Attached
    {
        std::shared_ptr<Action> action;
        std::shared_ptr<ArrivalFlag> flag; // may be null
    };

    std::size_t run_actions(const dds_attach_t* ids, std::size_t count);
    bool run_action(dds_attach_t id);
    std::shared_ptr<Action> begin_action(dds_attach_t id);
    void end_action();
    void detach(dds_entity_t entity, dds_attach_t id);

    Entity m_waitset;
    Entity m_wake_up;
    std::mutex m_mutex;
    std::condition_variable m_action_ended;
    dds_attach_t m_running_id = 0;                         // guarded by m_mutex; 0 for none
    std::thread::id m_running_on;                          // guarded by m_mutex
    dds_attach_t m_last_id = 0;                            // guarded by m_mutex
    std::unordered_map<dds_attach_t, Attached> m_attached; // guarded by m_mutex
    Ids m_flagged;                                         // belongs to the dispatching thread
    std::atomic<unsigned> m_raised_flags{0};
};

} // namespace org::opensplice::DDS_RMI

#endif
