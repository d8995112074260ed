// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TWO_HOSTS_REMOTE_HOST_H
#define TESTS_TWO_HOSTS_REMOTE_HOST_H

#include <string>

#include "linked_hosts.h"
#include "support/temporary_folder.h"

namespace two_hosts {

/// The server process on its host, ready for calls. Throws std::runtime_error when it does not become ready.
test_support::ChildProcess start_server(const LinkedHosts& hosts);

/// The host daemon with the plug-in on the other host, bound. It is called through a Unix socket, which the
/// namespaces share.
class RemoteHost
{
public:
    /// Throws std::runtime_error, with what it has written, when it does not become bound.
    explicit RemoteHost(const LinkedHosts& hosts);

    test_support::ChildProcess& process() { return m_process; }
    std::string socket() const { return m_folder.path() / "socket"; }

    /// The body of the answer to a call; `params` is a JSON text or empty. Any thread.
    std::string call(const std::string& method, const std::string& params = {}) const;

    /// How often it has written that. (Lines of several threads may run into each other.)
    int count(const std::string& text) const;

private:
    const test_support::TemporaryFolder m_folder;
    test_support::ChildProcess m_process;
};

/// Whether a call's answer tells that it was accepted.
bool is_accepted(const std::string& answer);

} // namespace two_hosts

#endif
