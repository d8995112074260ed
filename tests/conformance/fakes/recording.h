// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_RECORDING_H
#define TESTS_CONFORMANCE_RECORDING_H

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace conformance {

/// What the plug-in did, in order; each event reads "<kind>: <text>". The kinds:
///   output   what it wrote to standard output up to a flush
///   syslog   a message: priority, format, and the text that came of it
///   json     a value made, a getter, or the end of a value
///   memory   an allocation or a release
///   copy     os_strcpy
///   mutex    a mutex of a counted object made or destroyed
///   handle   a counted object's new count
///   call     an operation of the proxy
///   runtime  an operation of the framework's or the RMI layer's runtime
///   lookup   a step of the service lookup
///   random   the random device
///   method   a method handed to the base
using Events = std::vector<std::string>;

/// Records while it lives; one at a time. Allocations are recorded on the thread that made it only.
class Recording
{
public:
    Recording();
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    Events all() const;
};

/// Adds an event if something records. Any thread may call it.
void record(const char* kind, std::string_view text);

/// The events of these kinds, in their order.
Events only(std::initializer_list<const char*> kinds, const Events& events);

/// The texts of the events of one kind, one behind the other.
std::string joined(const char* kind, const Events& events);

/// Keeps this thread's allocations out of the record while it lives: those of the tests' own machinery.
class Unobserved
{
public:
    Unobserved();
    ~Unobserved();
    Unobserved(const Unobserved&) = delete;
    Unobserved& operator=(const Unobserved&) = delete;
};

/// Whether this thread's allocations are to be recorded now.
bool is_observed();

} // namespace conformance

#endif
