// SPDX-License-Identifier: Apache-2.0
// A plug-in of zorbd: JSON-RPC methods that call the service "Thermostat".
#include <ddsrmi.h>
#include <ddsrmi/call_failure.h>
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/RpcError.h>
#include <zeb/api/RpcMethod.h>
#include <zeb/api/mdw/KX_DDS_RMI_PROXY.h>

#include <iostream>
#include <string>

#include "Thermostat_InterfaceProxy.h"

namespace rmi = org::opensplice::DDS_RMI;
using namespace DDS_RMI::Climate;
using zeb::api::data::KX_JSON;

KX_JSON json_of(const Names& names)
{
    KX_JSON list = KX_JSON::empty_array();
    for (const std::string& name : names)
        list.append_json_string(name);
    return list;
}

KX_JSON json_of(const Reading& reading)
{
    KX_JSON json;
    json.set_json_double("temperature", reading.temperature);
    json.set_json_double("target", reading.target);
    return json;
}

zeb::api::RpcError no_such_room(const NoSuchRoom& error)
{
    KX_JSON data;
    data.set_json_object("known", json_of(error.known));
    return zeb::api::RpcError(1, "No such room", data);
}

// Receives the reply of one call of calibrate, or why there is none, on a thread of the proxy's.
class CalibrateReply : public Thermostat_calibrate_Reply_Handler, public rmi::CallFailureHandler
{
public:
    void calibrate_Reply(DDS::Long hundredths) override
    {
        std::cout << "thermostat_calibrate returns: " << hundredths << std::endl;
    }

    void handleFailure(rmi::CallFailure, const char* text) override
    {
        std::cerr << "thermostat_calibrate has failed: " << text << std::endl;
        std::cout << "thermostat_calibrate returns: -1" << std::endl;
    }
};

class ThermostatPlugin : public zeb::api::KX_RPCHandler
{
public:
    ThermostatPlugin() : m_service("Thermostat")
    {
        if (!isBound())
            return;
        remote().setTimeout(30000); // milliseconds for each call
        add("thermostat_rooms", &ThermostatPlugin::rooms);
        add("thermostat_measure", &ThermostatPlugin::measure);
        add("thermostat_set_target", &ThermostatPlugin::set_target);
        add("thermostat_calibrate", &ThermostatPlugin::calibrate);
    }

    bool isBound() override { return m_service.isProxyFound(); }

private:
    typedef zeb::api::RpcMethod<ThermostatPlugin> Method;

    void add(const std::string& name, Method::Method function)
    {
        AddMethod(new Method(name, this, function, KX_JSON()));
    }

    ThermostatInterfaceProxy& remote() { return *m_service.getProxy().get(); }

    // The room that the request names, as a text to hand over: what a call is given is the RMI layer's to
    // free.
    static DDS::String room_in(const KX_JSON& request)
    {
        return DDS::string_dup(request.get_json_object("params").get_json_string("room").c_str());
    }

    int rooms(const KX_JSON&, KX_JSON& out)
    {
        out.set_json_object("result", json_of(remote().rooms()));
        return 0;
    }

    // Waits for the remote result, and returns it in the JSON-RPC response.
    int measure(const KX_JSON& in, KX_JSON& out)
    {
        try {
            out.set_json_object("result", json_of(remote().measure(room_in(in))));
            return 0;
        } catch (const NoSuchRoom& error) {
            throw no_such_room(error);
        }
    }

    int set_target(const KX_JSON& in, KX_JSON& out)
    {
        const double degrees = in.get_json_object("params").get_json_double("degrees");
        try {
            out.set_json_object("result", json_of(remote().set_target(room_in(in), degrees)));
            return 0;
        } catch (const NoSuchRoom& error) {
            throw no_such_room(error);
        }
    }

    // Returns at once. The RMI layer holds the handler until the reply has come.
    int calibrate(const KX_JSON& in, KX_JSON&)
    {
        const rmi::shared_ptr<CalibrateReply> reply(new CalibrateReply);
        remote().async_calibrate(room_in(in), reply.get());
        return 0;
    }

    // When it goes, no reply hook is running any more, nor will one run: the library can be unloaded.
    zeb::api::mdw::KX_DDS_RMI_PROXY<ThermostatInterfaceProxy> m_service;
};

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new ThermostatPlugin;
}
