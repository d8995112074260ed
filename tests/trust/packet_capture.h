// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TRUST_PACKET_CAPTURE_H
#define TESTS_TRUST_PACKET_CAPTURE_H

#include <stdexcept>
#include <string>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace trust_test {

/// Packets cannot be captured here.
class NoCapture : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

/// Takes in all packets of one DDS domain on the loopback interface while it lives.
class PacketCapture
{
public:
    /// Throws NoCapture.
    explicit PacketCapture(int domain);

    /// Ends it and gives the bytes of all packets.
    std::string finish();

private:
    const test_support::TemporaryFolder m_folder;
    test_support::ChildProcess m_tcpdump;
};

} // namespace trust_test

#endif
