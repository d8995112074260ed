// SPDX-License-Identifier: Apache-2.0
#include "packet_capture.h"

#include <system_error>

#include "trust_folder.h"

namespace trust_test {
namespace {

using test_support::ChildProcess;

// The ports of a domain, as DDS numbers them.
constexpr int first_port = 7400;
constexpr int ports_of_domain = 250;

std::string filter_of(int domain)
{
    const int first = first_port + ports_of_domain * domain;
    return "udp dst portrange " + std::to_string(first) + "-" + std::to_string(first + ports_of_domain - 1);
}

ChildProcess start(const std::string& file, int domain)
{
    try {
        return ChildProcess(
            {"tcpdump", "-i", "lo", "-U", "-B", "65536", "-Z", "root", "-w", file, filter_of(domain)});
    } catch (const std::system_error& error) {
        throw NoCapture(error.what());
    }
}

} // namespace

PacketCapture::PacketCapture(int domain) : m_tcpdump(start(m_folder.path() / "packets", domain))
{
    if (!m_tcpdump.wait_for_error_line("listening on"))
        throw NoCapture("no packets can be captured here (it takes root): " + m_tcpdump.error_output());
}

std::string PacketCapture::finish()
{
    m_tcpdump.terminate();
    return read_file(m_folder.path() / "packets");
}

} // namespace trust_test
