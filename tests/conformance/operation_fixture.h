// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_OPERATION_FIXTURE_H
#define TESTS_CONFORMANCE_OPERATION_FIXTURE_H

#include <gtest/gtest.h>

#include <string>

#include "fakes/captured_output.h"
#include "fakes/plugin_access.h"
#include "fakes/recording.h"
#include "fakes/recording_proxy.h"
#include "fakes/rmi_layer.h"

namespace conformance {

/// What a call of an operation came to.
struct Outcome
{
    int result = -1;
    /// The type and text of what it threw; empty when it returned.
    std::string thrown;
    Events events;
    /// Whether `out` was the same value afterwards.
    bool is_response_untouched = false;
};

/// A test with the operations on a recording proxy. What a test changes in the fakes is taken back, and the
/// copies that are left are freed, when it ends.
class OperationTest : public testing::Test
{
public:
    OperationTest();
    ~OperationTest() override;

protected:
    /// Calls the operation with the request that this JSON text says.
    Outcome call(const std::string& name, const std::string& request);
    /// The same with a value for each of its parameters.
    Outcome call(const std::string& name);

    CapturedOutput m_output;
    /// Belongs to m_operations.
    RecordingProxy* m_proxy;
    Operations m_operations;
};

/// The events of the named operation that goes well, with a proxy that keeps the handler.
Events expected_events(const std::string& name);

} // namespace conformance

#endif
