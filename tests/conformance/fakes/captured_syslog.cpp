// SPDX-License-Identifier: Apache-2.0
// The test program's own syslog, which records what it is sent.

#include <syslog.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <string>

#include "recording.h"
#include "rmi_layer.h"

namespace {

void record_message(int priority, const char* format, va_list arguments)
{
    const conformance::Unobserved unobserved;
    std::array<char, 1024> text{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    conformance::record("syslog", std::to_string(priority) + " \"" + format + "\" -> " + text.data());
    conformance::reach("syslog");
}

} // namespace

extern "C" {

void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record_message(priority, format, arguments);
    va_end(arguments);
}

/// What a fortified build calls in place of syslog.
void __syslog_chk(int priority, int, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    record_message(priority, format, arguments);
    va_end(arguments);
}

void openlog(const char* identity, int, int facility)
{
    conformance::record("syslog",
                        std::string("identity ") + identity + ", facility " + std::to_string(facility));
}

int setlogmask(int mask)
{
    conformance::record("syslog", "mask " + std::to_string(mask));
    return 0;
}

} // extern "C"
