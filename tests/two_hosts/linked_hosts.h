// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TWO_HOSTS_LINKED_HOSTS_H
#define TESTS_TWO_HOSTS_LINKED_HOSTS_H

#include <stdexcept>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace two_hosts {

/// This machine, or this user, cannot make network namespaces.
class NoNamespaces : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

enum class Side { server, client };
enum class Discovery { multicast, peers };

/// Two network namespaces with a cable (a veth pair) between them. Their names carry this process's number;
/// they are deleted with the object, and those of a test that was killed by the next one. Processes that run
/// in them must end before the object does.
class LinkedHosts
{
public:
    /// Throws NoNamespaces, or std::runtime_error when a later step fails.
    explicit LinkedHosts(Discovery discovery);
    ~LinkedHosts();
    LinkedHosts(const LinkedHosts&) = delete;
    LinkedHosts& operator=(const LinkedHosts&) = delete;

    /// Starts a program on one of the hosts, with DDS on the cable.
    test_support::ChildProcess start(Side side, const std::vector<std::string>& command) const;

    /// Pulls the cable out, and puts it back. Throws std::runtime_error.
    void take_link_down() const;
    void bring_link_up() const;

private:
    void connect() const;
    std::string dds_configuration() const;

    const Discovery m_discovery;
};

} // namespace two_hosts

#endif
