// SPDX-License-Identifier: Apache-2.0
// Serves or calls one version of the interface Meter (versions/). It is built once for each version; of the
// operations below, a build has those that its version has.

#include METER_SKELETON
#include METER_PROXY

#include <CLI/CLI.hpp>
#include <array>
#include <cstring>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>

#include "ddsrmi.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = DDS_RMI::Versions::MeterInterfaceProxy;

constexpr const char* service = "meter";
constexpr DDS::Long value = 5;

// Which of these override something differs from version to version.
// NOLINTBEGIN(modernize-use-override)
class Meter : public DDS_RMI::Versions::MeterInterface
{
public:
    DDS::Long first(DDS::Long argument) { return argument + 1; }
    DDS::Long between(DDS::Long argument) { return argument + 10; }
    DDS::Long second(DDS::Long argument) { return argument + 2; }
    DDS::Long second(DDS::String argument) { return static_cast<DDS::Long>(std::strlen(argument)); }
    DDS::Long third(DDS::Long argument) { return argument + 3; }
    DDS::Long fourth(DDS::Long argument) { return argument + 4; }
};
// NOLINTEND(modernize-use-override)

int serve(const rmi::CRuntime_ref& runtime)
{
    const rmi::shared_ptr<Meter> meter(new Meter);
    if (!rmi::DDS_Service::register_interface<DDS_RMI::Versions::MeterInterface, Meter>(meter, service, 1))
        return 1;
    std::thread serving([&runtime] { runtime->run(); });
    std::cout << "serving" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    runtime->shutdown();
    serving.join();
    return 0;
}

/// Calls what the proxy of this version has, and prints "<operation> gave <result>", or what it threw.
template <class Call>
void try_call(Proxy& proxy, const char* operation, Call call)
{
    if constexpr (std::is_invocable_v<Call, Proxy&>) {
        std::string outcome;
        try {
            outcome = "gave " + std::to_string(call(proxy));
        } catch (const rmi::BAD_PARAM& error) {
            outcome = std::string("threw BAD_PARAM: ") + error.what();
        } catch (const std::exception& error) {
            outcome = std::string("threw: ") + error.what();
        }
        std::cout << operation << ' ' << outcome << std::endl;
    }
}

void call_everything(Proxy& proxy)
{
    try_call(proxy, "first", [](auto& p) -> decltype(p.first(value)) { return p.first(value); });
    try_call(proxy, "between", [](auto& p) -> decltype(p.between(value)) { return p.between(value); });
    try_call(proxy, "second", [](auto& p) -> decltype(p.second(value)) { return p.second(value); });
    try_call(proxy, "second", [](auto& p) -> decltype(p.second(static_cast<DDS::String>(nullptr))) {
        return p.second(DDS::string_dup("seven77"));
    });
    try_call(proxy, "third", [](auto& p) -> decltype(p.third(value)) { return p.third(value); });
    try_call(proxy, "fourth", [](auto& p) -> decltype(p.fourth(value)) { return p.fourth(value); });
}

/// Twice, so that what a failure leaves behind is seen, too.
int call()
{
    rmi::shared_ptr<Proxy> proxy;
    if (!rmi::DDS_Service::getServerProxy(service, 1, proxy))
        return 1;
    proxy->setTimeout(20'000);
    call_everything(*proxy.get());
    call_everything(*proxy.get());
    std::cout << "done" << std::endl;
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    CLI::App app{"One version of an interface that changes."};
    app.require_subcommand(1);
    const auto* const server = app.add_subcommand("serve", "Serve it until the standard input ends");
    app.add_subcommand("call", "Call each of its operations twice, and print what comes of it");
    CLI11_PARSE(app, argc, argv);

    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    std::array<const char*, 2> arguments{"drill_meter", "--RMIServiceDiscoveryTimeout=30"};
    if (!runtime->start(arguments.size(), arguments.data()))
        return 1;
    int result = 1;
    try {
        result = server->parsed() ? serve(runtime) : call();
    } catch (const std::exception& error) {
        std::cerr << "drill_meter: " << error.what() << std::endl;
    }
    runtime->stop();
    return result;
}
