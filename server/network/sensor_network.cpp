// SPDX-License-Identifier: Apache-2.0
#include "network/sensor_network.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "contract/network_limits.h"
#include "network/node_type.h"
#include "texts/address_list.h"
#include "texts/key_values.h"

namespace varnel {

namespace {

constexpr int type_of_listed_nodes = 0;

int count(std::size_t number)
{
    return static_cast<int>(number);
}

std::chrono::seconds parse_duration(int seconds)
{
    const std::chrono::seconds duration(seconds);
    if (seconds <= 0 || duration > limits::longest_duration)
        throw Refusal(Failure::bad_duration);
    return duration;
}

void append_item(std::string& list, const std::string& item)
{
    list.append(list.empty() ? "" : ", ").append(item);
}

} // namespace

SensorNetwork::SensorNetwork(Clock& clock, RevertListener on_revert)
    : m_clock(clock), m_on_revert(std::move(on_revert)), m_timer(clock, [this] { return revert_due(); })
{
}

void SensorNetwork::start_commissioned(const std::map<MacAddress, int>& types)
{
    const std::lock_guard<std::mutex> lock(m_mutex);
    for (const auto& [address, type] : types)
        m_nodes.emplace(address, Node::ordinary(type));
    m_is_commissioned = true;
}

/// Runs one operation at one moment for all others, and makes a refusal its reply.
template <class Operation>
Reply SensorNetwork::answer(Operation operation)
{
    try {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return operation();
    } catch (const Refusal& refusal) {
        return refusal.reply();
    }
}

Reply SensorNetwork::network_commission(std::string_view mac_addr_list)
{
    return answer([&]() -> Reply {
        const std::set<MacAddress> addresses = parse_address_list(mac_addr_list);
        if (m_is_commissioned)
            throw Refusal(Failure::already_commissioned);
        insert_ordinary(addresses);
        m_is_commissioned = true;
        return {count(m_nodes.size())};
    });
}

Reply SensorNetwork::network_decommission()
{
    return answer([&]() -> Reply {
        require_commissioned();
        const int had = count(m_nodes.size());
        m_nodes.clear();
        m_is_commissioned = false;
        m_is_advertising = false;
        return {had};
    });
}

Reply SensorNetwork::network_add_nodes(std::string_view mac_addr_list)
{
    return answer([&]() -> Reply {
        const std::set<MacAddress> addresses = parse_address_list(mac_addr_list);
        require_commissioned();
        insert_ordinary(addresses);
        return {count(addresses.size())};
    });
}

Reply SensorNetwork::network_remove_nodes(std::string_view mac_addr_list)
{
    return answer([&]() -> Reply {
        const std::set<MacAddress> addresses = parse_address_list(mac_addr_list);
        require_commissioned();
        require_known(addresses);
        for (const MacAddress address : addresses)
            m_nodes.erase(address);
        return {count(addresses.size())};
    });
}

Reply SensorNetwork::advertising(bool on)
{
    return answer([&]() -> Reply {
        require_commissioned();
        m_is_advertising = on;
        return {};
    });
}

Reply SensorNetwork::network_get_node_list()
{
    return answer([&]() -> Reply {
        require_commissioned();
        return {count(m_nodes.size()), address_texts()};
    });
}

Reply SensorNetwork::network_get_info()
{
    return answer([&]() -> Reply {
        const std::string state = m_is_commissioned ? "commissioned" : "not commissioned";
        return {info(), state + ", " + std::to_string(m_nodes.size()) + " nodes, advertising " +
                            (m_is_advertising ? "on" : "off")};
    });
}

Reply SensorNetwork::node_get_config(std::string_view mac_addr)
{
    return answer([&]() -> Reply {
        const KeyValues& config = find(mac_addr).config(m_clock.now());
        return {count(config.size()), config.text()};
    });
}

Reply SensorNetwork::node_set_config(std::string_view mac_addr, std::string_view new_config)
{
    return answer([&]() -> Reply {
        Node& node = find(mac_addr);
        KeyValues config = KeyValues::parse(new_config);
        const int settings = count(config.size());
        node.set_config(std::move(config));
        return {settings};
    });
}

Reply SensorNetwork::node_get_data(std::string_view mac_addr)
{
    return answer([&]() -> Reply {
        const KeyValues& data = find(mac_addr).data();
        return {count(data.size()), data.text()};
    });
}

Reply SensorNetwork::network_get_nodes_status(std::string_view mac_addr_list)
{
    return answer([&]() -> Reply {
        const std::set<MacAddress> addresses = parse_address_list(mac_addr_list);
        require_commissioned();
        require_known(addresses);
        Reply reply;
        for (const MacAddress address : addresses) {
            const Node& node = m_nodes.at(address);
            reply.value += node.is_reporting() ? 1 : 0;
            append_item(reply.detail, address.text() + " " + node.status());
        }
        return reply;
    });
}

Reply SensorNetwork::node_set_config_revert(std::string_view mac_addr, std::string_view new_config,
                                            int duration)
{
    Reply reply = answer([&]() -> Reply {
        Node& node = find(mac_addr);
        KeyValues config = KeyValues::parse(new_config);
        const int settings = count(config.size());
        node.try_config(std::move(config), m_clock.now() + parse_duration(duration));
        return {settings};
    });
    m_timer.wake();
    return reply;
}

Reply SensorNetwork::test_node_create(std::string_view mac_addr, int type)
{
    return answer([&]() -> Reply {
        const MacAddress address = parse_address(mac_addr);
        if (!is_node_type(type))
            throw Refusal(Failure::bad_type);
        require_commissioned();
        require_absent({address});
        require_room(1);
        m_nodes.emplace(address, Node::test(type));
        return {};
    });
}

Reply SensorNetwork::test_node_set_sensor_data(std::string_view mac_addr, std::string_view new_data)
{
    return answer([&]() -> Reply {
        Node& node = find(mac_addr);
        if (!node.is_test())
            throw Refusal(Failure::not_a_test_node);
        node.set_data(KeyValues::parse(new_data));
        return {count(node.data().size())};
    });
}

void SensorNetwork::require_commissioned() const
{
    if (!m_is_commissioned)
        throw Refusal(Failure::not_commissioned);
}

void SensorNetwork::require_absent(const std::set<MacAddress>& addresses) const
{
    for (const MacAddress address : addresses)
        if (m_nodes.count(address) != 0)
            throw Refusal(Failure::node_exists);
}

void SensorNetwork::require_known(const std::set<MacAddress>& addresses) const
{
    for (const MacAddress address : addresses)
        if (m_nodes.count(address) == 0)
            throw Refusal(Failure::unknown_node);
}

void SensorNetwork::require_room(std::size_t more) const
{
    if (more > limits::nodes - m_nodes.size())
        throw Refusal(Failure::too_many_nodes);
}

void SensorNetwork::insert_ordinary(const std::set<MacAddress>& addresses)
{
    require_absent(addresses);
    require_room(addresses.size());
    Nodes added;
    for (const MacAddress address : addresses)
        added.emplace(address, Node::ordinary(type_of_listed_nodes));
    m_nodes.merge(added);
}

Node& SensorNetwork::find(std::string_view mac_addr)
{
    const MacAddress address = parse_address(mac_addr);
    require_commissioned();
    const auto found = m_nodes.find(address);
    if (found == m_nodes.end())
        throw Refusal(Failure::unknown_node);
    return found->second;
}

int SensorNetwork::info() const
{
    int bits = (m_is_commissioned ? info_commissioned : 0) | (m_is_advertising ? info_advertising : 0);
    const Clock::TimePoint now = m_clock.now();
    for (const auto& [address, node] : m_nodes)
        bits |=
            (node.is_test() ? info_has_test_nodes : 0) | (node.is_on_trial(now) ? info_revert_pending : 0);
    return bits;
}

std::string SensorNetwork::address_texts() const
{
    std::string texts;
    for (const auto& [address, node] : m_nodes)
        append_item(texts, address.text());
    return texts;
}

std::optional<Clock::TimePoint> SensorNetwork::next_revert() const
{
    std::optional<Clock::TimePoint> next;
    for (const auto& [address, node] : m_nodes)
        if (const auto deadline = node.revert_deadline(); deadline && (!next || *deadline < *next))
            next = deadline;
    return next;
}

/// Gives the nodes whose configuration reverted, with the texts that are in force again.
std::map<MacAddress, std::string> SensorNetwork::end_trials()
{
    const Clock::TimePoint now = m_clock.now();
    std::map<MacAddress, std::string> reverted;
    for (auto& [address, node] : m_nodes)
        if (node.end_trial(now))
            reverted.emplace(address, node.config(now).text());
    return reverted;
}

std::optional<Clock::TimePoint> SensorNetwork::revert_due()
{
    std::map<MacAddress, std::string> reverted;
    std::optional<Clock::TimePoint> next;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        reverted = end_trials();
        next = next_revert();
    }
    for (const auto& [address, config] : reverted)
        if (m_on_revert)
            m_on_revert(address, config);
    return next;
}

} // namespace varnel
