// SPDX-License-Identifier: Apache-2.0
#include "dds/protection.h"

#include <dlfcn.h>

#include <cstdlib>
#include <ctime>
#include <mutex>
#include <string>

#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr std::time_t first_of_2020 = 1577836800;

/// Certificates tell from when on they are valid, which a clock that was never set has not reached.
bool clock_was_set()
{
    return std::time(nullptr) >= first_of_2020;
}

constexpr const char* clock_advice =
    "this machine's clock is before 2020, so certificates count as not yet valid: set the clock";

/// The file that CYCLONEDDS_URI names, if it is one.
std::string configuration_file()
{
    const std::string prefix = "file://";
    const char* const variable = std::getenv("CYCLONEDDS_URI");
    const std::string uri = variable == nullptr ? "" : variable;
    const bool is_one_file = uri.compare(0, prefix.size(), prefix) == 0 && uri.find(',') == std::string::npos;
    return is_one_file ? uri.substr(prefix.size()) : "FILE";
}

} // namespace

bool is_protected()
{
    // Cyclone tells nowhere what its configuration has come to, but it loads this library for it alone.
    void* const plugin = ::dlopen("libdds_security_auth.so", RTLD_LAZY | RTLD_NOLOAD);
    if (plugin == nullptr)
        return false;
    ::dlclose(plugin);
    return true;
}

void report_protection()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (!is_protected())
            report("DDS is not protected: everyone on its network can call, serve and read along");
        else
            report("DDS is protected: only peers with a certificate of its authority are heard");
    });
}

std::string advice_for_configuration()
{
    if (!clock_was_set())
        return std::string("is CYCLONEDDS_URI right? And ") + clock_advice;
    return "is CYCLONEDDS_URI right? With DDS Security, see: zorb-trust check " + configuration_file();
}

} // namespace org::opensplice::DDS_RMI
