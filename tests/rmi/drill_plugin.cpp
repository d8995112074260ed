// SPDX-License-Identifier: Apache-2.0
#include "drill_plugin.h"

#include <array>
#include <memory>

#include "ddsrmi.h"
#include "reply_handlers.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;

class Client
{
public:
    Client() : m_runtime(rmi::CRuntime::getDefaultRuntime())
    {
        std::array<const char*, 2> arguments{"drill_plugin", "--RMIServiceDiscoveryTimeout=60"};
        m_runtime->start(arguments.size(), arguments.data());
        rmi::DDS_Service::getServerProxy("drill", 1, m_proxy);
    }
    ~Client()
    {
        m_proxy.reset();
        m_runtime->stop();
    }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    void call_without_waiting()
    {
        constexpr DDS::Long calls = 100;
        for (DDS::Long i = 0; i < calls; ++i) {
            const rmi::shared_ptr<drill::EchoHandler> handler(new drill::EchoHandler(m_tally, i));
            m_proxy->async_echo(i, handler.get());
        }
    }

    bool is_answered() { return m_proxy->echo(7) == 7; }

private:
    const rmi::CRuntime_ref m_runtime;
    rmi::shared_ptr<DDS_RMI::Drill::RangeInterfaceProxy> m_proxy;
    const std::shared_ptr<drill::Tally> m_tally = std::make_shared<drill::Tally>();
};

} // namespace

void* drill_open()
{
    try {
        auto client = std::make_unique<Client>();
        client->call_without_waiting();
        return client.release();
    } catch (const rmi::SystemException&) {
        return nullptr;
    }
}

bool drill_is_answered(void* client)
{
    return static_cast<Client*>(client)->is_answered();
}

void drill_close(void* client)
{
    const std::unique_ptr<Client> owned(static_cast<Client*>(client));
}
