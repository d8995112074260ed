// SPDX-License-Identifier: Apache-2.0
// The built library in a host process: standard output byte for byte, the system log, the table of methods.

#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "../operation_facts.h"
#include "processes.h"
#include "support/dds_domain.h"

namespace {

using conformance::Host;
using conformance::Server;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

const std::string lines_of_bound_handler = "VarnelInterface constructor\n"
                                           "KX_DDS_RMI_PROXY construct\n"
                                           "=== Getting MY server proxy VarnelDE_Server <N>\n"
                                           "VarnelRPCHandler constructor\n"
                                           "KX_DDS_RMI_PROXY isProxyFound1\n"
                                           "KX_DDS_RMI_PROXY isProxyFound1\n";
const std::string lines_of_unbound_handler = "VarnelInterface constructor\n"
                                             "KX_DDS_RMI_PROXY construct\n"
                                             "=== Getting MY server proxy VarnelDE_Server <N>\n"
                                             " *** Unable to find the service !\n"
                                             "VarnelRPCHandler constructor\n"
                                             "KX_DDS_RMI_PROXY isProxyFound0\n";
const std::string lines_of_deletion = "VarnelRPCHandler destructor\n"
                                      "KX_DDS_RMI_PROXY destroy\n"
                                      "VarnelInterface destructor\n";

const std::string before_number = "server proxy VarnelDE_Server ";

/// The proxy instance numbers that `text` names.
std::vector<std::string> numbers(const std::string& text)
{
    std::vector<std::string> found;
    for (std::size_t at = text.find(before_number); at != std::string::npos;
         at = text.find(before_number, at + 1)) {
        const std::size_t begin = at + before_number.size();
        found.push_back(text.substr(begin, text.find_first_not_of("0123456789", begin) - begin));
    }
    return found;
}

/// `text` with <N> in place of each of those numbers.
std::string without_numbers(std::string text)
{
    for (const std::string& number : numbers(text)) {
        const std::string named = before_number + number + "\n";
        text.replace(text.find(named), named.size(), before_number + "<N>\n");
    }
    return text;
}

class LoadedLibrary : public testing::Test
{
protected:
    /// Asks for a handler that finds no service, without waiting long.
    static std::string make_unbound(Host& host)
    {
        host.run("timeout 0");
        return host.run("make");
    }

    test_support::DdsDomain m_domain;
};

TEST_F(LoadedLibrary, says_nothing_when_it_is_loaded_and_unloaded)
{
    Host host;

    EXPECT_EQ(host.run("unload"), "unloaded");

    EXPECT_THAT(host.messages(), IsEmpty());
    EXPECT_EQ(host.output_at_end(), "");
}

TEST_F(LoadedLibrary, writes_exactly_its_lines_when_the_service_is_there)
{
    Server server;
    Host host;

    EXPECT_EQ(host.run("make"), "made 0");
    EXPECT_EQ(host.run("bound 0"), "bound");
    EXPECT_EQ(host.run("delete 0"), "deleted");

    EXPECT_EQ(without_numbers(host.output_at_end()),
              lines_of_bound_handler + "VarnelRPCHandler isBound:1\n" + lines_of_deletion);
}

TEST_F(LoadedLibrary, sends_its_messages_and_the_same_number_to_the_system_log)
{
    Server server;
    Host host;

    host.run("make");
    host.run("delete 0");

    const std::vector<std::string> messages = host.messages();
    const std::vector<std::string> written = numbers(host.output_at_end());
    ASSERT_EQ(written.size(), 1U);
    EXPECT_THAT(messages, ElementsAre("6 KX_DDS_RMI_PROXY construct",
                                      "6 Getting MY server proxy VarnelDE_Server " + written[0],
                                      "6 === Succeeded in getting the server proxy named VarnelDE_Server"));
    EXPECT_GE(std::stoi(written[0]), 1);
    EXPECT_LE(std::stoi(written[0]), 10000);
}

TEST_F(LoadedLibrary, writes_exactly_its_lines_when_the_service_is_missing)
{
    Host host;

    EXPECT_EQ(make_unbound(host), "made 0");
    EXPECT_EQ(host.run("bound 0"), "unbound");
    EXPECT_EQ(host.run("methods 0"), "none");
    EXPECT_EQ(host.run("delete 0"), "deleted");

    EXPECT_THAT(host.messages(), ElementsAre("6 KX_DDS_RMI_PROXY construct",
                                             StartsWith("6 Getting MY server proxy VarnelDE_Server "),
                                             "6  *** Unable to find the service !"));
    EXPECT_EQ(without_numbers(host.output_at_end()),
              lines_of_unbound_handler + "VarnelRPCHandler isBound:0\n" + lines_of_deletion);
}

TEST_F(LoadedLibrary, binds_a_new_handler_once_the_service_is_there_but_not_the_old_one)
{
    Host host;
    make_unbound(host);
    Server server;
    host.run("timeout 60");

    EXPECT_EQ(host.run("make"), "made 1");

    EXPECT_EQ(host.run("bound 0"), "unbound");
    EXPECT_EQ(host.run("methods 0"), "none");
    EXPECT_EQ(host.run("bound 1"), "bound");
}

TEST_F(LoadedLibrary, gives_two_handlers_that_work_side_by_side)
{
    Server server({"1", "2"});
    Host host;
    host.run("make");
    host.run("make");

    EXPECT_THAT(host.run("call 0 network_get_info {}"), StartsWith("result 0"));
    EXPECT_EQ(host.next_line("returns"), "async_network_get_info returns: 1");
    host.run("delete 0");
    EXPECT_THAT(host.run("call 1 network_get_info {}"), StartsWith("result 0"));
    EXPECT_EQ(host.next_line("returns"), "async_network_get_info returns: 2");

    const std::string output = host.output_at_end();
    EXPECT_EQ(numbers(output).size(), 2U);
}

TEST_F(LoadedLibrary, lets_a_lack_of_memory_reach_the_host_wherever_the_first_construction_meets_it)
{
    const std::size_t fewest_allocations = 1 + conformance::method_names().size(); // the handler, its methods
    Server server;
    Host host;
    host.run("timeout 60"); // a lookup that finds nothing allocates differently

    std::size_t failing = 1;
    std::string outcome;
    while ((outcome = host.run("make_without " + std::to_string(failing))) == "std::bad_alloc")
        ++failing;

    EXPECT_EQ(outcome, "made") << "when allocation " << failing << " failed; the host wrote:\n"
                               << host.error_output();
    EXPECT_GT(failing, fewest_allocations);
}

TEST_F(LoadedLibrary, offers_its_methods_in_order_without_descriptions)
{
    Server server;
    Host host;
    host.run("make");

    std::string names;
    for (const std::string& name : conformance::method_names())
        names += (names.empty() ? "" : " ") + name;
    EXPECT_EQ(host.run("methods 0"), names);
}

TEST_F(LoadedLibrary, can_be_unloaded_once_its_handlers_are_gone)
{
    Server server;
    Host host;
    host.run("make");
    host.run("call 0 network_get_info {}");
    EXPECT_EQ(host.next_line("returns"), "async_network_get_info returns: 0");
    host.run("delete 0");

    EXPECT_EQ(host.run("unload"), "unloaded");

    EXPECT_EQ(without_numbers(host.output_at_end()),
              lines_of_bound_handler + "CALL RPC network_get_info\nasync_network_get_info returns: 0\n" +
                  lines_of_deletion);
}

} // namespace
