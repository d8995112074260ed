// SPDX-License-Identifier: Apache-2.0
#include "sdbus_calls.h"

#include <cstdint>
#include <stdexcept>
#include <string>

#include "call_texts.h"
#include "sdbus_names.h"
#include "server_process.h"

namespace bench {

SdbusCalls::SdbusCalls() : m_server(start_server({SDBUS_SERVER, m_bus.address()}))
{
    if (!m_server.wait_for_line("ready"))
        throw std::runtime_error("the D-Bus server is not ready: " + m_server.error_output());
    m_proxy = sdbus::createProxy(sdbus::createSessionBusConnectionWithAddress(m_bus.address()), BUS_NAME,
                                 BUS_OBJECT);
    m_proxy->finishRegistration();
}

SdbusCalls::~SdbusCalls() = default;

void SdbusCalls::start()
{
    m_proxy->callMethodAsync(BUS_METHOD)
        .onInterface(BUS_NAME)
        .withArguments(std::string(MAC_ADDR), std::string(CONFIG))
        .uponReplyInvoke([this](const sdbus::Error* error, std::int32_t /*result*/) {
            if (error == nullptr)
                replies().reply_came();
        });
}

} // namespace bench
