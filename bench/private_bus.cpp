// SPDX-License-Identifier: Apache-2.0
#include "private_bus.h"

#include <stdexcept>

#include "server_process.h"

namespace bench {

PrivateBus::PrivateBus()
    : m_daemon(start_server({"dbus-daemon", "--nofork", "--nopidfile", "--print-address",
                             "--config-file=" + m_folder.write("bus.conf", configuration()).string()}))
{
    if (!m_daemon.wait_for_line("unix:"))
        throw std::runtime_error("dbus-daemon has not started: " + m_daemon.error_output());
}

std::string PrivateBus::configuration() const
{
    return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN\" "
           "\"http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd\">"
           "<busconfig><type>session</type><listen>" +
           address() +
           "</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
           "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy>"
           "<limit name=\"max_replies_per_connection\">100000</limit></busconfig>";
}

} // namespace bench
