// SPDX-License-Identifier: Apache-2.0
// Serves the interfaces of probe.idl and composed.idl until its standard input ends.

#include <iostream>
#include <sstream>
#include <string>
#include <thread>

#include "composed_server.h"
#include "ddsrmi.h"
#include "probe_Interface.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;

class EchoServer : public DDS_RMI::Probe::EchoInterface
{
public:
    DDS::Boolean echo_boolean(DDS::Boolean value) override { return value; }
    DDS::Char echo_char(DDS::Char value) override { return value; }
    DDS::Octet echo_octet(DDS::Octet value) override { return value; }
    DDS::Short echo_short(DDS::Short value) override { return value; }
    DDS::UShort echo_ushort(DDS::UShort value) override { return value; }
    DDS::Long echo_long(DDS::Long value) override { return value; }
    DDS::ULong echo_ulong(DDS::ULong value) override { return value; }
    DDS::LongLong echo_longlong(DDS::LongLong value) override { return value; }
    DDS::ULongLong echo_ulonglong(DDS::ULongLong value) override { return value; }
    DDS::Float echo_float(DDS::Float value) override { return value; }
    DDS::Double echo_double(DDS::Double value) override { return value; }
    DDS::String echo_string(DDS::String value) override { return DDS::string_dup(value); }

    void forget() override { m_kept.clear(); }
    void keep(DDS::String kept) override { m_kept = kept; }
    DDS::String kept() override { return DDS::string_dup(m_kept.c_str()); }

    DDS::String all(DDS::Boolean a, DDS::Char b, DDS::Octet c, DDS::Short d, DDS::UShort e, DDS::Long f,
                    DDS::ULong g, DDS::LongLong h, DDS::ULongLong i, DDS::Float j, DDS::Double k,
                    DDS::String l, DDS::String m) override
    {
        std::ostringstream text;
        text << int{a} << ' ' << b << ' ' << int{c} << ' ' << d << ' ' << e << ' ' << f << ' ' << g << ' '
             << h << ' ' << i << ' ' << j << ' ' << k << ' ' << l << ' ' << m;
        return DDS::string_dup(text.str().c_str());
    }

    DDS::String null_text() override { return nullptr; }

private:
    std::string m_kept; // the runtime's policy is one thread
};

class NamesServer : public DDS_RMI::Probe::NamesInterface
{
public:
    DDS::Long request(DDS::Long request, DDS::String handler, DDS::Long waiter, DDS::String owned_handler,
                      DDS::String handler_, DDS::Long result) override
    {
        const std::string texts = std::string(handler) + owned_handler + handler_;
        return texts == "abc" ? request * 100 + waiter * 10 + result : -1;
    }
    DDS::Long reply(DDS::Long reply, DDS::Long sample, DDS::Long condition, DDS::Long operation,
                    DDS::Long implementation) override
    {
        return reply * 10000 + sample * 1000 + condition * 100 + operation * 10 + implementation;
    }
    DDS::Long rmi(DDS::Long rmi, DDS::Long make_Names_rmi_request, DDS::Long Names_rmi_Waiter,
                  DDS::Long registration) override
    {
        return rmi * 1000 + make_Names_rmi_request * 100 + Names_rmi_Waiter * 10 + registration;
    }
    DDS::Long map(DDS::Long int8, DDS::Long port, DDS::Long index, DDS::Long operations, DDS::Long info,
                  DDS::Long seed) override
    {
        return int8 * 100000 + port * 10000 + index * 1000 + operations * 100 + info * 10 + seed;
    }
};

class GreetingServer : public DDS_RMI::Outer::Inner::EchoInterface
{
public:
    DDS::String greet(DDS::String name) override
    {
        return DDS::string_dup((std::string("hello ") + name).c_str());
    }
};

class NumberServer : public DDS_RMI::Probe::LaterInterface
{
public:
    DDS::ULong number() override { return 4294967295U; }
};

template <class Skeleton, class Server>
bool offer(const std::string& name)
{
    return rmi::DDS_Service::register_interface<Skeleton, Server>(rmi::shared_ptr<Server>(new Server), name,
                                                                  1);
}

bool offer_all()
{
    return offer<DDS_RMI::Probe::EchoInterface, EchoServer>("echo") &&
           offer<DDS_RMI::Probe::NamesInterface, NamesServer>("names") &&
           offer<DDS_RMI::Outer::Inner::EchoInterface, GreetingServer>("greeting") &&
           offer<DDS_RMI::Probe::LaterInterface, NumberServer>("number") &&
           offer<DDS_RMI::Composed::StationInterface, composed::StationServer>("station") &&
           offer<DDS_RMI::Composed::NamesInterface, composed::NamesServer>("other names") &&
           offer<DDS_RMI::Composed::Inner::SwapperInterface, composed::SwapperServer>("swapper");
}

void wait_for_end_of_input()
{
    std::string line;
    while (std::getline(std::cin, line)) {
    }
}

} // namespace

int main()
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* options[] = {"probe_server"};
    if (!runtime->start(1, options) || !offer_all()) {
        return 1;
    }
    std::thread serving([&runtime] { runtime->run(); });
    wait_for_end_of_input();
    runtime->shutdown();
    serving.join();
    return runtime->stop() ? 0 : 1;
}
