// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_FRAMEWORK_PROBE_H
#define TESTS_CONFORMANCE_FRAMEWORK_PROBE_H

#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>

#include <functional>

namespace conformance {

/// Lets events name the two arguments of a method while it lives. One at a time.
class WatchedValues
{
public:
    WatchedValues(const zeb::api::data::KX_JSON& in, const zeb::api::data::KX_JSON& out);
    ~WatchedValues();
    WatchedValues(const WatchedValues&) = delete;
    WatchedValues& operator=(const WatchedValues&) = delete;
};

/// Run when a getter that the plug-in calls has been recorded; may throw.
using JsonStep = std::function<void()>;
void at_each_getter(JsonStep step);

/// The handler that was handed a method last; for what is run at the step "method".
zeb::api::KX_RPCHandler& handler_being_filled();

/// What std::random_device gives the plug-in.
void set_random_device_value(unsigned value);

} // namespace conformance

#endif
