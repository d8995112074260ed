// SPDX-License-Identifier: Apache-2.0
// How connections are counted, and what is told of a call that takes too long.
#include "http/connection_registry.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <future>
#include <list>
#include <stdexcept>
#include <string>

#include "system/file_descriptor.h"

namespace {

using zorbd::ConnectionLimits;
using zorbd::ConnectionPhase;
using zorbd::ConnectionRegistry;
using zorbd::FileDescriptor;

constexpr std::chrono::seconds event_deadline{30};

/// The registry, and those whom it has let in. All of them share one socket, over which nothing is sent.
class Connections
{
public:
    explicit Connections(const ConnectionLimits& limits) : m_registry(limits) {}

    /// Whether there is room for a connection from an IPv6 address, as they come to a socket for both.
    bool let_in(const std::string& text)
    {
        sockaddr_in6 address{};
        address.sin6_family = AF_INET6;
        if (inet_pton(AF_INET6, text.c_str(), &address.sin6_addr) != 1)
            throw std::invalid_argument(text);
        return let_in(reinterpret_cast<const sockaddr&>(address));
    }

    bool let_in(const sockaddr& address)
    {
        auto place = m_registry.admit(m_socket.get(), address, false);
        if (!place)
            return false;
        place.set_known(); // so that it gives its place up to nobody
        m_places.push_back(std::move(place));
        return true;
    }

    ConnectionRegistry::Place& last() { return m_places.back(); }

private:
    const FileDescriptor m_socket{socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)};
    ConnectionRegistry m_registry;
    std::list<ConnectionRegistry::Place> m_places;
};

ConnectionLimits at_most_two_of_an_address()
{
    ConnectionLimits limits;
    limits.per_address = 2;
    return limits;
}

TEST(connection_registry, counts_an_ipv6_network_of_64_bits_as_one_address)
{
    Connections connections(at_most_two_of_an_address());
    EXPECT_TRUE(connections.let_in("2001:db8:0:1::1"));
    EXPECT_TRUE(connections.let_in("2001:db8:0:1::2"));

    EXPECT_FALSE(connections.let_in("2001:db8:0:1::3"));
    EXPECT_FALSE(connections.let_in("2001:db8:0:1:ffff:ffff:ffff:ffff"));
    EXPECT_TRUE(connections.let_in("2001:db8:0:2::1")) << "another network";
}

TEST(connection_registry, counts_an_ipv4_address_alone_also_where_it_comes_as_an_ipv6_one)
{
    Connections connections(at_most_two_of_an_address());
    EXPECT_TRUE(connections.let_in("::ffff:192.0.2.1"));
    EXPECT_TRUE(connections.let_in("::ffff:192.0.2.1"));

    EXPECT_FALSE(connections.let_in("::ffff:192.0.2.1"));
    EXPECT_TRUE(connections.let_in("::ffff:192.0.2.2"));
}

TEST(connection_registry, counts_those_over_the_unix_socket_by_themselves)
{
    ConnectionLimits limits;
    limits.total = 1;
    limits.unix_total = 2;
    Connections connections(limits);
    const sockaddr unix_client{AF_UNIX, {}};
    EXPECT_TRUE(connections.let_in("2001:db8::1"));

    EXPECT_TRUE(connections.let_in(unix_client));
    EXPECT_TRUE(connections.let_in(unix_client));
    EXPECT_FALSE(connections.let_in(unix_client));
    EXPECT_FALSE(connections.let_in("2001:db8:1::1"));
}

class Owner : public zorbd::ConnectionOwner
{
public:
    void call_is_overdue() noexcept override { m_told.set_value(); }
    bool is_told() { return m_told.get_future().wait_for(event_deadline) == std::future_status::ready; }

private:
    std::promise<void> m_told; // a second time ends the test
};

TEST(connection_registry, tells_of_a_call_that_takes_too_long_until_it_is_over)
{
    ConnectionLimits limits;
    limits.call = std::chrono::milliseconds(50);
    Connections connections(limits);
    Owner owner;
    ASSERT_TRUE(connections.let_in("2001:db8::1"));
    ConnectionRegistry::Place& place = connections.last();
    place.set_owner(&owner);

    place.enter(ConnectionPhase::working);
    ASSERT_TRUE(owner.is_told());
    EXPECT_TRUE(place.is_overdue());

    place.enter(ConnectionPhase::idle);
    EXPECT_FALSE(place.is_overdue());
    place.set_owner(nullptr);
}

TEST(connection_registry, tells_nothing_of_a_call_that_has_just_begun_nor_without_a_limit)
{
    for (const std::chrono::hours limit : {std::chrono::hours(1), std::chrono::hours(0)}) {
        ConnectionLimits limits;
        limits.call = limit;
        Connections connections(limits);
        ASSERT_TRUE(connections.let_in("2001:db8::1"));

        connections.last().enter(ConnectionPhase::working);

        EXPECT_FALSE(connections.last().is_overdue());
    }
}

} // namespace
