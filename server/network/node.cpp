// SPDX-License-Identifier: Apache-2.0
#include "network/node.h"

#include <utility>

#include "network/node_type.h"

namespace varnel {

Node Node::ordinary(int type)
{
    Node node(type, false);
    node.m_data = KeyValues::parse(simulated_readings(type));
    return node;
}

Node Node::test(int type)
{
    return {type, true};
}

std::string Node::status() const
{
    return node_type_name(m_type) + (m_is_test ? " test node " : " node ") +
           (is_reporting() ? "reporting" : "silent");
}

const KeyValues& Node::config(Clock::TimePoint now) const
{
    return is_on_trial(now) ? m_trial->config : m_config;
}

void Node::set_config(KeyValues config)
{
    m_config = std::move(config);
    m_trial.reset();
}

void Node::try_config(KeyValues config, Clock::TimePoint deadline)
{
    m_trial = Trial{std::move(config), deadline};
}

std::optional<Clock::TimePoint> Node::revert_deadline() const
{
    if (!m_trial)
        return std::nullopt;
    return m_trial->deadline;
}

bool Node::is_on_trial(Clock::TimePoint now) const
{
    return m_trial && now < m_trial->deadline;
}

bool Node::end_trial(Clock::TimePoint now)
{
    const bool is_over = m_trial && !is_on_trial(now);
    if (is_over)
        m_trial.reset();
    return is_over;
}

} // namespace varnel
