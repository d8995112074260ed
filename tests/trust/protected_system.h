// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TRUST_PROTECTED_SYSTEM_H
#define TESTS_TRUST_PROTECTED_SYSTEM_H

#include <string>
#include <vector>

#include "processes.h"
#include "support/dds_domain.h"
#include "trust_folder.h"

namespace trust_test {

struct Call
{
    std::string method;
    std::string reply; ///< what its reply line begins with
    std::string params;
};

/// The fourteen calls of ./demo, in their order.
std::vector<Call> every_method();

/// A domain with an authority, a host and a server that it knows.
struct ProtectedDomain
{
    test_support::DdsDomain domain;
    TrustFolder trust{domain.id()};
    Environment server = trust.add("known-server", "server");
    Environment host = trust.add("known-host", "host");
};

/// How many of the calls were accepted and answered.
int count_answered(system_test::Host& host, const std::vector<Call>& calls);

/// Starts a host with this environment that looks for the service for a few seconds; gives what it has
/// written when it has not found it. Fails the test when it finds the service.
std::string report_of_unbound_host(const Environment& environment);

} // namespace trust_test

#endif
