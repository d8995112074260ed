// SPDX-License-Identifier: Apache-2.0
// Peers that know each other talk; strangers get nothing and disturb nobody.

#include <gmock/gmock.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "protected_system.h"

namespace {

using namespace trust_test;
using system_test::Host;
using system_test::start_server;
using test_support::ChildProcess;
using testing::HasSubstr;
using testing::Not;

constexpr int all_calls = 14;
const std::string call_line = "network_commission("; // what varnelde writes of such a call

/// A peer that the authority has let in and an attacker has got hold of, or one that it has never seen.
struct Stranger
{
    const char* name;
    /// Prepares it in that domain for that role; gives the environment of its processes.
    Environment (*prepare)(const ProtectedDomain& known, const TrustFolder& other, const std::string& role);
};

Environment without_certificate(const ProtectedDomain& known, const TrustFolder& /*other*/,
                                const std::string& /*role*/)
{
    return {{"CYCLONEDDS_URI", known.domain.uri()}};
}

Environment of_another_authority(const ProtectedDomain& /*known*/, const TrustFolder& other,
                                 const std::string& role)
{
    return other.add("stranger", role);
}

/// Copied before it was revoked, so that the stranger itself knows nothing of it.
Environment revoked(const ProtectedDomain& known, const TrustFolder& other, const std::string& role)
{
    known.trust.add("stranger", role);
    const std::filesystem::path kept = other.peer("kept");
    std::filesystem::copy(known.trust.peer("stranger"), kept);
    replace_in_file(kept / "cyclonedds.xml", known.trust.peer("stranger"), kept);
    known.trust.revoke("stranger");
    return with_configuration(kept / "cyclonedds.xml");
}

constexpr const char* make_expired_certificate = R"sh(
cd "$AUTHORITY"
time() { date --utc --date="$1" +%Y%m%d%H%M%SZ; }
openssl req -new -config openssl.cnf -section request -key "$PEER/identity.key" -subj /O=zorb/CN=stranger \
    -out "$PEER/request"
openssl ca -config openssl.cnf -batch -notext -in "$PEER/request" -out "$PEER/identity.pem" \
    -startdate "$(time '1 day ago')" -enddate "$(time '12 hours ago')"
)sh";

/// With a clock that is set back, so that the stranger itself takes its certificate for a good one.
Environment expired(const ProtectedDomain& known, const TrustFolder& /*other*/, const std::string& role)
{
    Environment environment = known.trust.add("stranger", role);
    run({"sh", "-ec", make_expired_certificate},
        {{"AUTHORITY", known.trust.authority()}, {"PEER", known.trust.peer("stranger")}});
    environment["LD_PRELOAD"] = CLOCK_SET_BACK;
    return environment;
}

/// Its certificate is good, but another authority has signed what it may do.
Environment with_foreign_permissions(const ProtectedDomain& known, const TrustFolder& other,
                                     const std::string& role)
{
    Environment environment = known.trust.add("stranger", role == "host" ? "server" : "host");
    other.add("stranger", role);
    for (const char* const file : {"permissions_ca.pem", "governance.p7s", "permissions.p7s"})
        std::filesystem::copy_file(other.peer("stranger") / file, known.trust.peer("stranger") / file,
                                   std::filesystem::copy_options::overwrite_existing);
    return environment;
}

void PrintTo(const Stranger& stranger, std::ostream* output)
{
    *output << stranger.name;
}

class Strangers : public testing::TestWithParam<Stranger>
{
protected:
    const ProtectedDomain m_known;
    const TrustFolder m_other{m_known.domain.id()};
};

TEST_P(Strangers, cannot_call_and_do_not_disturb)
{
    const Environment stranger = GetParam().prepare(m_known, m_other, "host");
    const ChildProcess server = start_server({}, m_known.server);
    Host host({}, m_known.host);
    host.wait_until_bound();

    const std::string report = report_of_unbound_host(stranger);

    EXPECT_THAT(report, HasSubstr("was not found within")) << report;
    EXPECT_EQ(count_answered(host, every_method()), all_calls);
    EXPECT_EQ(system_test::count_lines(server.output(), call_line), 1) << server.output();
}

TEST_P(Strangers, cannot_serve_and_do_not_disturb)
{
    const Environment stranger = GetParam().prepare(m_known, m_other, "server");
    const ChildProcess false_server = start_server({}, stranger);

    report_of_unbound_host(m_known.host);

    const ChildProcess server = start_server({}, m_known.server);
    Host host({}, m_known.host);
    host.wait_until_bound();
    EXPECT_EQ(count_answered(host, every_method()), all_calls);
    EXPECT_THAT(false_server.output(), Not(HasSubstr(call_line)));
}

INSTANTIATE_TEST_SUITE_P(DdsSecurity, Strangers,
                         testing::Values(Stranger{"without_certificate", without_certificate},
                                         Stranger{"of_another_authority", of_another_authority},
                                         Stranger{"revoked", revoked}, Stranger{"expired", expired},
                                         Stranger{"with_foreign_permissions", with_foreign_permissions}),
                         [](const auto& one) { return one.param.name; });

class Roles : public testing::Test
{
protected:
    /// Lets a peer do everything as far as its own side is concerned; only the others can refuse it.
    void make_lawless(const std::string& peer) const
    {
        replace_in_file(m_known.trust.configuration(peer), "path=\"dds_security_ac\"",
                        std::string("path=\"") + LAWLESS_ACCESS_CONTROL + "\"");
    }

    const ProtectedDomain m_known;
};

TEST_F(Roles, let_an_authorised_pair_make_every_call)
{
    const ChildProcess server = start_server({}, m_known.server);
    Host host({}, m_known.host);
    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), all_calls);
    for (const std::string& said : {server.error_output(), host.process().error_output()})
        EXPECT_THAT(said, HasSubstr("DDS is protected"));
}

TEST_F(Roles, do_not_let_a_host_serve)
{
    ChildProcess server({VARNELDE}, m_known.host);

    EXPECT_NE(server.wait_for_exit(), 0);
    EXPECT_THAT(server.error_output(), HasSubstr("Not Allowed By Security"));
}

TEST_F(Roles, do_not_let_a_server_call)
{
    EXPECT_THAT(report_of_unbound_host(m_known.server), HasSubstr("is not bound"));
}

TEST_F(Roles, do_not_let_a_host_serve_that_does_not_ask)
{
    const Environment lawless = m_known.trust.add("lawless", "host");
    make_lawless("lawless");
    const ChildProcess false_server = start_server({}, lawless);

    report_of_unbound_host(m_known.host);

    EXPECT_THAT(false_server.output(), Not(HasSubstr(call_line)));
}

TEST_F(Roles, do_not_let_a_server_call_that_does_not_ask)
{
    const ChildProcess server = start_server({}, m_known.server);
    const Environment lawless = m_known.trust.add("lawless", "server");
    make_lawless("lawless");

    report_of_unbound_host(lawless);

    EXPECT_EQ(system_test::count_lines(server.output(), call_line), 0);
}

TEST_F(Roles, let_a_lawless_peer_do_what_its_permissions_allow)
{
    // Shows that it is the others that refuse it above, not that it does not work.
    const Environment lawless = m_known.trust.add("lawless", "server");
    make_lawless("lawless");
    const ChildProcess server = start_server({}, lawless);
    Host host({}, m_known.host);

    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), all_calls);
}

TEST_F(Roles, stay_when_a_key_is_changed_while_the_others_run)
{
    const ChildProcess server = start_server({}, m_known.server);
    {
        Host host({}, m_known.host);
        host.wait_until_bound();
        EXPECT_EQ(count_answered(host, every_method()), all_calls);
    }
    m_known.trust.renew("known-host");

    Host host({}, m_known.host);
    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), all_calls);
    EXPECT_THAT(report_of_unbound_host(m_known.server), HasSubstr("is not bound"));
}

TEST_F(Roles, end_for_a_revoked_peer_when_the_others_have_been_restarted_with_the_new_list)
{
    const TrustFolder other(m_known.domain.id());
    const Environment lost = revoked(m_known, other, "host");
    const ChildProcess server = start_server({}, m_known.server);

    EXPECT_THAT(report_of_unbound_host(lost), HasSubstr("was not found within"));
    EXPECT_THAT(server.error_output(), HasSubstr("revoked"));
}

/// Puts what another authority has made for a peer in the place of what the peer has.
void copy_in_place(const TrustFolder& from, const TrustFolder& to, const std::string& name)
{
    namespace fs = std::filesystem;
    fs::copy(from.peer(name), to.peer(name),
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
    replace_in_file(to.configuration(name), from.peer(name), to.peer(name));
    run({ZORB_TRUST, "check", to.configuration(name)});
}

TEST_F(Roles, are_the_same_under_another_authority_once_all_have_been_restarted)
{
    const TrustFolder next(m_known.domain.id());
    next.add("known-server", "server");
    next.add("known-host", "host");
    {
        const ChildProcess server = start_server({}, m_known.server);
        copy_in_place(next, m_known.trust, "known-server");
        copy_in_place(next, m_known.trust, "known-host");

        EXPECT_THAT(report_of_unbound_host(m_known.host), HasSubstr("was not found within"))
            << "the server still runs with what it has read from the old authority";
    }

    const ChildProcess server = start_server({}, m_known.server);
    Host host({}, m_known.host);
    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), all_calls);
}

TEST_F(Roles, are_nobodys_while_a_file_is_missing_or_half_written_and_the_message_says_where_to_look)
{
    const auto damage = [this](const char* file, std::uintmax_t size) {
        const std::filesystem::path damaged = m_known.trust.peer("known-host") / file;
        const std::string whole = read_file(damaged);
        std::filesystem::resize_file(damaged, size);
        const std::string report = report_of_unbound_host(m_known.host);
        std::ofstream(damaged, std::ios::binary) << whole;
        return report;
    };
    const std::string advice = "zorb-trust check " + m_known.trust.configuration("known-host").string();

    EXPECT_THAT(damage("identity.key", 0), HasSubstr(advice));
    EXPECT_THAT(damage("identity.pem", 100), HasSubstr(advice));
    EXPECT_THAT(damage("permissions.p7s", 1000), HasSubstr(advice));
    EXPECT_THAT(damage("cyclonedds.xml", 300), HasSubstr(advice));
}

TEST_F(Roles, are_nobodys_while_the_clock_was_never_set)
{
    Environment unset = m_known.host;
    unset["LD_PRELOAD"] = CLOCK_SET_BACK;
    unset["SECONDS_SET_BACK"] = std::to_string(std::time(nullptr) - 60 * 60); // it is one o'clock, 1970

    EXPECT_THAT(report_of_unbound_host(unset), HasSubstr("this machine's clock is before 2020"));
}

TEST_F(Roles, both_may_call_and_serve)
{
    const Environment both = m_known.trust.add("both", "both");
    const ChildProcess server = start_server({}, both);
    Host host({}, both);
    host.wait_until_bound();

    EXPECT_EQ(count_answered(host, every_method()), all_calls);
}

} // namespace
