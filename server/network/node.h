// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_NETWORK_NODE_H
#define SERVER_NETWORK_NODE_H

#include <optional>
#include <string>
#include <utility>

#include "network/clock.h"
#include "texts/key_values.h"

namespace varnel {

/// One simulated sensor node. One thread at a time.
class Node
{
public:
    /// A node that measures by itself what its type measures.
    static Node ordinary(int type);
    /// A node that reports what it is given.
    static Node test(int type);

    bool is_test() const { return m_is_test; }
    /// Whether it has readings.
    bool is_reporting() const { return m_data.size() > 0; }
    /// In words, for people.
    std::string status() const;

    const KeyValues& data() const { return m_data; }
    void set_data(KeyValues data) { m_data = std::move(data); }

    /// The configuration in force at `now`.
    const KeyValues& config(Clock::TimePoint now) const;
    /// For good; a revert that is due later is cancelled.
    void set_config(KeyValues config);
    /// Until `deadline`; then the configuration that was last set for good is in force again.
    void try_config(KeyValues config, Clock::TimePoint deadline);

    /// When the configuration reverts; nothing when it does not.
    std::optional<Clock::TimePoint> revert_deadline() const;
    bool is_on_trial(Clock::TimePoint now) const;
    /// Forgets a configuration whose time is over; whether there was one.
    bool end_trial(Clock::TimePoint now);

private:
    struct Trial
    {
        KeyValues config;
        Clock::TimePoint deadline;
    };

    Node(int type, bool is_test) : m_type(type), m_is_test(is_test) {}

    int m_type;
    bool m_is_test;
    KeyValues m_config;
    std::optional<Trial> m_trial;
    KeyValues m_data;
};

} // namespace varnel

#endif
