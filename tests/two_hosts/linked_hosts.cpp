// SPDX-License-Identifier: Apache-2.0
#include "linked_hosts.h"

#include <unistd.h>

#include <cerrno>
#include <charconv>
#include <csignal>
#include <filesystem>
#include <system_error>

namespace two_hosts {
namespace {

using test_support::ChildProcess;
using Words = std::vector<std::string>;

// Both ends of the cable have this name, each in its own namespace.
const std::string device = "cable";
const std::string prefix = "varnel-test-";

std::string namespace_of(Side side)
{
    return prefix + std::to_string(::getpid()) + (side == Side::server ? "-server" : "-client");
}

std::string address_of(Side side)
{
    return side == Side::server ? "10.99.7.1" : "10.99.7.2";
}

/// Gives what the program "ip" complains of; empty when it does not.
std::string complaint_of_ip(Words arguments)
{
    arguments.insert(arguments.begin(), "ip");
    ChildProcess process(arguments);
    if (process.wait_for_exit() == 0)
        return {};
    const std::string complaint = process.error_output();
    return complaint.empty() ? "ip has failed" : complaint.substr(0, complaint.find('\n'));
}

void ip(const Words& arguments)
{
    const std::string complaint = complaint_of_ip(arguments);
    if (!complaint.empty())
        throw std::runtime_error(complaint);
}

void ip_in(Side side, const Words& arguments)
{
    Words words = {"-netns", namespace_of(side)};
    words.insert(words.end(), arguments.begin(), arguments.end());
    ip(words);
}

void delete_namespace(const std::string& name)
{
    complaint_of_ip({"netns", "delete", name});
}

/// The process whose number is in a namespace's name; 0 when it is no name of namespace_of().
pid_t maker_of(const std::string& name)
{
    pid_t maker = 0;
    if (name.compare(0, prefix.size(), prefix) == 0)
        std::from_chars(name.data() + prefix.size(), name.data() + name.size(), maker);
    return maker;
}

void delete_what_killed_tests_have_left()
{
    std::error_code none_there;
    for (const auto& entry : std::filesystem::directory_iterator("/run/netns", none_there)) {
        const std::string name = entry.path().filename();
        if (const pid_t maker = maker_of(name); maker > 0 && ::kill(maker, 0) != 0 && errno == ESRCH)
            delete_namespace(name);
    }
}

void add_namespaces()
{
    std::string complaint;
    try {
        for (const Side side : {Side::server, Side::client})
            if (complaint.empty())
                complaint = complaint_of_ip({"netns", "add", namespace_of(side)});
        if (complaint.empty())
            complaint =
                complaint_of_ip({"link", "add", device, "netns", namespace_of(Side::server), "type", "veth",
                                 "peer", "name", device, "netns", namespace_of(Side::client)});
    } catch (const std::system_error& failure) {
        complaint = failure.what();
    }
    if (!complaint.empty())
        throw NoNamespaces(
            "no network namespaces can be made here (it takes root and the package iproute2): " + complaint);
}

void delete_namespaces()
{
    for (const Side side : {Side::server, Side::client})
        delete_namespace(namespace_of(side));
}

} // namespace

LinkedHosts::LinkedHosts(Discovery discovery) : m_discovery(discovery)
{
    try {
        delete_what_killed_tests_have_left();
        add_namespaces();
        connect();
    } catch (...) {
        delete_namespaces();
        throw;
    }
}

LinkedHosts::~LinkedHosts()
{
    delete_namespaces();
}

void LinkedHosts::connect() const
{
    for (const Side side : {Side::server, Side::client}) {
        ip_in(side, {"address", "add", address_of(side) + "/24", "dev", device});
        ip_in(side, {"link", "set", device, "up"});
        ip_in(side, {"link", "set", "lo", "up"});
    }
}

ChildProcess LinkedHosts::start(Side side, const Words& command) const
{
    Words words = {"ip", "netns", "exec", namespace_of(side)};
    words.insert(words.end(), command.begin(), command.end());
    return ChildProcess(words, {{"CYCLONEDDS_URI", dds_configuration()}});
}

void LinkedHosts::take_link_down() const
{
    ip_in(Side::server, {"link", "set", device, "down"});
}

void LinkedHosts::bring_link_up() const
{
    ip_in(Side::server, {"link", "set", device, "up"});
}

std::string LinkedHosts::dds_configuration() const
{
    const bool multicast = m_discovery == Discovery::multicast;
    const std::string peers = "<ParticipantIndex>auto</ParticipantIndex><Peers><Peer address=\"" +
                              address_of(Side::server) + "\"/><Peer address=\"" + address_of(Side::client) +
                              "\"/></Peers>";
    return "<CycloneDDS><Domain Id=\"any\"><General><Interfaces><NetworkInterface name=\"" + device +
           "\"/></Interfaces><AllowMulticast>" + (multicast ? "true" : "false") +
           "</AllowMulticast></General><Discovery>" + (multicast ? "" : peers) +
           "</Discovery></Domain></CycloneDDS>";
}

} // namespace two_hosts
