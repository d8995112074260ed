// SPDX-License-Identifier: Apache-2.0

// Serves "VarnelDE_Server" with operations that do nothing, until its standard input ends.

#include <VarnelRMI_Interface.h>
#include <VarnelRMI_operations.h>
#include <ddsrmi.h>

#include <iostream>
#include <thread>
#include <tuple>

namespace {

namespace rmi = org::opensplice::DDS_RMI;
using Skeleton = DDS_RMI::VarnelRMI::VarnelRMIServiceInterface;

class IdleService final : public Skeleton
{
public:
#define IDLE(op, parameters, parameters_with_handler, arguments)                                             \
    DDS::Long op parameters override                                                                         \
    {                                                                                                        \
        static_cast<void>(std::make_tuple arguments);                                                        \
        return 0;                                                                                            \
    }
    FOR_EVERY_OPERATION(IDLE)
#undef IDLE
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
