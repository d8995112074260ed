// SPDX-License-Identifier: Apache-2.0

// Serves "VarnelDE_Server" with operations that do nothing, until its standard input ends.

#include <VarnelRMI_Interface.h>
#include <ddsrmi.h>

#include <iostream>
#include <thread>

namespace {

namespace rmi = org::opensplice::DDS_RMI;
using Skeleton = DDS_RMI::VarnelRMI::VarnelRMIServiceInterface;

class IdleService final : public Skeleton
{
public:
    DDS::Long network_commission(DDS::String) override { return 0; }
    DDS::Long network_decommission() override { return 0; }
    DDS::Long network_add_nodes(DDS::String) override { return 0; }
    DDS::Long network_remove_nodes(DDS::String) override { return 0; }
    DDS::Long advertising(DDS::Boolean) override { return 0; }
    DDS::Long network_get_node_list() override { return 0; }
    DDS::Long network_get_info() override { return 0; }
    DDS::Long node_get_config(DDS::String) override { return 0; }
    DDS::Long node_set_config(DDS::String, DDS::String) override { return 0; }
    DDS::Long node_get_data(DDS::String) override { return 0; }
    DDS::Long network_get_nodes_status(DDS::String) override { return 0; }
    DDS::Long node_set_config_revert(DDS::String, DDS::String, DDS::Long) override { return 0; }
    DDS::Long test_node_create(DDS::String, DDS::Long) override { return 0; }
    DDS::Long test_node_set_sensor_data(DDS::String, DDS::String) override { return 0; }
};

void wait_for_end_of_input()
{
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
}

} // namespace

int main()
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* arguments[] = {"bench_rmi_server"};
    if (!runtime->start(1, arguments))
        return 1;
    rmi::DDS_Service::register_interface<Skeleton>(rmi::shared_ptr<IdleService>(new IdleService),
                                                   "VarnelDE_Server", 1);
    std::thread service([&runtime] { runtime->run(); });
    std::cout << "ready" << std::endl;
    wait_for_end_of_input();
    runtime->shutdown();
    service.join();
    runtime->stop();
}
