// SPDX-License-Identifier: Apache-2.0
// Serves a thermometer, and reads it through the lookup of the framework.
#include <cstring>
#include <iostream>
#include <thread>

#include <ddsrmi.h>
#include <zeb/api/mdw/KX_DDS_RMI_PROXY.h>

#include "Thermometer_Interface.h"
#include "Thermometer_InterfaceProxy.h"

namespace rmi = org::opensplice::DDS_RMI;

class Thermometer : public DDS_RMI::Weather::ThermometerInterface
{
public:
    DDS::Double degrees(DDS::String place) override { return std::strcmp(place, "attic") == 0 ? 31.5 : 20.0; }
};

double read_attic()
{
    zeb::api::mdw::KX_DDS_RMI_PROXY<DDS_RMI::Weather::ThermometerInterfaceProxy> holder("Thermometer");
    return holder.getProxy()->degrees(DDS::string_dup("attic"));
}

int main()
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* arguments[] = {"thermometer"};
    if (!runtime->start(1, arguments))
        return 1;
    rmi::DDS_Service::register_interface<DDS_RMI::Weather::ThermometerInterface, Thermometer>(
        rmi::shared_ptr<Thermometer>(new Thermometer), "Thermometer", 1);
    std::thread server([&] { runtime->run(); });
    const double attic = read_attic();
    std::cout << "the attic has " << attic << " degrees" << std::endl;
    runtime->shutdown();
    server.join();
    runtime->stop();
}
