// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_NETWORK_SENSOR_NETWORK_H
#define SERVER_NETWORK_SENSOR_NETWORK_H

#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "contract/reply.h"
#include "network/clock.h"
#include "network/node.h"
#include "network/revert_timer.h"
#include "texts/mac_address.h"

namespace varnel {

/// A simulated sensor network: what is behind the fourteen operations of the service. Any thread may call any
/// operation; each happens at one moment for all others. An operation answers at once, either as documented
/// or with a Failure, and then it has changed nothing; it throws only what the standard library throws for
/// want of resources.
class SensorNetwork
{
public:
    /// Told when a configuration has reverted and to which text; runs on the network's own thread under no
    /// lock.
    using RevertListener = std::function<void(MacAddress node, const std::string& config)>;

    /// Bits of network_get_info's answer.
    enum Info {
        info_commissioned = 1,
        info_advertising = 2,
        info_has_test_nodes = 4,
        info_revert_pending = 8,
    };

    /// `clock` must outlive the network.
    explicit SensorNetwork(Clock& clock, RevertListener on_revert = {});

    /// Commissions it with ordinary nodes of the given types, possibly none. Their number and types must be
    /// within the limits.
    void start_commissioned(const std::map<MacAddress, int>& types);

    /// Makes a network of ordinary nodes of type 0. Answers their number.
    Reply network_commission(std::string_view mac_addr_list);
    /// Ends the network: its nodes, their reverts and its advertising. Answers how many nodes it had.
    Reply network_decommission();
    /// Adds ordinary nodes of type 0, all or none. Answers how many.
    Reply network_add_nodes(std::string_view mac_addr_list);
    /// Removes nodes, all or none. Answers how many.
    Reply network_remove_nodes(std::string_view mac_addr_list);
    /// Answers 0.
    Reply advertising(bool on);
    /// Answers the number of nodes.
    Reply network_get_node_list();
    /// Answers a sum of Info bits; never fails.
    Reply network_get_info();
    /// Answers the number of settings in force.
    Reply node_get_config(std::string_view mac_addr);
    /// Replaces the configuration for good and cancels a pending revert. Answers the number of settings.
    Reply node_set_config(std::string_view mac_addr, std::string_view new_config);
    /// Answers the number of readings.
    Reply node_get_data(std::string_view mac_addr);
    /// Answers how many of the listed nodes are reporting.
    Reply network_get_nodes_status(std::string_view mac_addr_list);
    /// Replaces the configuration for `duration` seconds; a pending revert is replaced too, and then leads to
    /// the configuration that was last set for good. Answers the number of settings.
    Reply node_set_config_revert(std::string_view mac_addr, std::string_view new_config, int duration);
    /// Answers 0.
    Reply test_node_create(std::string_view mac_addr, int type);
    /// Answers the number of readings.
    Reply test_node_set_sensor_data(std::string_view mac_addr, std::string_view new_data);

private:
    using Nodes = std::map<MacAddress, Node>;

    template <class Operation>
    Reply answer(Operation operation);

    // These need m_mutex to be held.
    void require_commissioned() const;
    void require_absent(const std::set<MacAddress>& addresses) const;
    void require_known(const std::set<MacAddress>& addresses) const;
    void require_room(std::size_t more) const;
    void insert_ordinary(const std::set<MacAddress>& addresses);
    Node& find(std::string_view mac_addr);
    int info() const;
    std::string address_texts() const;
    std::optional<Clock::TimePoint> next_revert() const;
    std::map<MacAddress, std::string> end_trials();

    std::optional<Clock::TimePoint> revert_due();

    Clock& m_clock;
    const RevertListener m_on_revert;
    // Never held together with the timer's own mutex, nor while the listener runs.
    std::mutex m_mutex;
    bool m_is_commissioned = false; // guarded by m_mutex
    bool m_is_advertising = false;  // guarded by m_mutex
    Nodes m_nodes;                  // guarded by m_mutex; empty unless commissioned
    RevertTimer m_timer;            // last: its thread uses all of the above
};

} // namespace varnel

#endif
