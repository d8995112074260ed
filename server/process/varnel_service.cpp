// SPDX-License-Identifier: Apache-2.0
#include "process/varnel_service.h"

#include <exception>
#include <iostream>
#include <string>
#include <string_view>

namespace varnel {

namespace {

/// A text argument that a client sent; it stays the RMI layer's.
std::string_view received(DDS::String text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

bool received(DDS::Boolean value)
{
    return value != 0;
}

int received(DDS::Long value)
{
    return value;
}

std::string shown(std::string_view text)
{
    return quoted_text(text);
}

std::string shown(bool value)
{
    return value ? "true" : "false";
}

std::string shown(int value)
{
    return std::to_string(value);
}

void report_failure(const char* operation, const std::exception& error)
{
    std::cerr << "varnelde: " << operation << " failed: " << error.what() << std::endl;
}

class VarnelService : public DDS_RMI::VarnelRMI::VarnelRMIServiceInterface
{
public:
    VarnelService(SensorNetwork& network, CallLog& log, ReplyDelay& delay)
        : m_network(network), m_log(log), m_delay(delay)
    {
    }

    DDS::Long network_commission(DDS::String mac_addr_list) override
    {
        return answer("network_commission", &SensorNetwork::network_commission, mac_addr_list);
    }

    DDS::Long network_decommission() override
    {
        return answer("network_decommission", &SensorNetwork::network_decommission);
    }

    DDS::Long network_add_nodes(DDS::String mac_addr_list) override
    {
        return answer("network_add_nodes", &SensorNetwork::network_add_nodes, mac_addr_list);
    }

    DDS::Long network_remove_nodes(DDS::String mac_addr_list) override
    {
        return answer("network_remove_nodes", &SensorNetwork::network_remove_nodes, mac_addr_list);
    }

    DDS::Long advertising(DDS::Boolean on) override
    {
        return answer("advertising", &SensorNetwork::advertising, on);
    }

    DDS::Long network_get_node_list() override
    {
        return answer("network_get_node_list", &SensorNetwork::network_get_node_list);
    }

    DDS::Long network_get_info() override
    {
        return answer("network_get_info", &SensorNetwork::network_get_info);
    }

    DDS::Long node_get_config(DDS::String mac_addr) override
    {
        return answer("node_get_config", &SensorNetwork::node_get_config, mac_addr);
    }

    DDS::Long node_set_config(DDS::String mac_addr, DDS::String new_config) override
    {
        return answer("node_set_config", &SensorNetwork::node_set_config, mac_addr, new_config);
    }

    DDS::Long node_get_data(DDS::String mac_addr) override
    {
        return answer("node_get_data", &SensorNetwork::node_get_data, mac_addr);
    }

    DDS::Long network_get_nodes_status(DDS::String mac_addr_list) override
    {
        return answer("network_get_nodes_status", &SensorNetwork::network_get_nodes_status, mac_addr_list);
    }

    DDS::Long node_set_config_revert(DDS::String mac_addr, DDS::String new_config,
                                     DDS::Long duration) override
    {
        return answer("node_set_config_revert", &SensorNetwork::node_set_config_revert, mac_addr, new_config,
                      duration);
    }

    DDS::Long test_node_create(DDS::String mac_addr, DDS::Long type) override
    {
        return answer("test_node_create", &SensorNetwork::test_node_create, mac_addr, type);
    }

    DDS::Long test_node_set_sensor_data(DDS::String mac_addr, DDS::String new_data) override
    {
        return answer("test_node_set_sensor_data", &SensorNetwork::test_node_set_sensor_data, mac_addr,
                      new_data);
    }

private:
    // Nothing that goes wrong in the network or in the log, not even for want of memory, may keep the client
    // from its reply. Twice the same handling, because gcc 12 makes wrong code under sanitizers of a function
    // object that captures these arguments.
    template <class... Parameters, class... Arguments>
    DDS::Long answer(const char* name, Reply (SensorNetwork::*operation)(Parameters...),
                     Arguments... arguments)
    {
        Reply reply{static_cast<int>(Failure::internal_error)};
        try {
            reply = (m_network.*operation)(received(arguments)...);
        } catch (const std::exception& error) {
            report_failure(name, error);
        }
        try {
            m_log.call(name, {shown(received(arguments))...}, reply);
        } catch (const std::exception& error) {
            report_failure(name, error);
        }
        m_delay.wait();
        return reply.value;
    }

    SensorNetwork& m_network;
    CallLog& m_log;
    ReplyDelay& m_delay;
};

} // namespace

VarnelServiceHandle make_varnel_service(SensorNetwork& network, CallLog& log, ReplyDelay& delay)
{
    return VarnelServiceHandle(new VarnelService(network, log, delay));
}

} // namespace varnel
