// SPDX-License-Identifier: Apache-2.0
// What an operation has logged, allocated, freed and left behind, wherever it is interrupted.

#include <gmock/gmock.h>

#include <stdexcept>

#include "fakes/allocation_probe.h"
#include "fakes/framework_probe.h"
#include "operation_facts.h"
#include "operation_fixture.h"

namespace {

using namespace conformance;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace rmi = org::opensplice::DDS_RMI;

std::string log_line(const OperationFacts& facts)
{
    return "output: CALL RPC " + facts.name + "\n";
}

/// The lines of a call that fails when it makes its handler.
Events lines_before_handler(const OperationFacts& facts)
{
    return facts.logs_first ? Events{log_line(facts)} : Events{};
}

/// The copies that a call has made before it reads parameter number `count`.
std::vector<std::string> copies_of_first(std::size_t count, const OperationFacts& facts)
{
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < count; ++i)
        if (facts.parameters[i].is_copied)
            texts.push_back(facts.parameters[i].json.substr(1, facts.parameters[i].json.size() - 2));
    return texts;
}

std::vector<std::string> all_copies(const OperationFacts& facts)
{
    return copies_of_first(facts.parameters.size(), facts);
}

class Interrupted : public OperationTest, public testing::WithParamInterface<OperationFacts>
{
};

INSTANTIATE_TEST_SUITE_P(FailurePoints, Interrupted, testing::ValuesIn(all_operations()),
                         [](const auto& each) { return each.param.name; });

TEST_P(Interrupted, by_a_copy_that_cannot_be_allocated_leaves_the_earlier_copies_and_nothing_else)
{
    const OperationFacts& facts = GetParam();
    const std::vector<std::string> texts = all_copies(facts);
    for (std::size_t failing = 0; failing < texts.size(); ++failing) {
        SCOPED_TRACE("copy " + std::to_string(failing));
        fail_allocation(failing + 1);

        const Outcome outcome = call(facts.name);

        EXPECT_THAT(outcome.thrown, HasSubstr("std::bad_alloc"));
        EXPECT_EQ(arrays_left(), std::vector<std::string>(texts.begin(), texts.begin() + long(failing)));
        EXPECT_EQ(objects_left(), 0U);
        EXPECT_THAT(only({"output", "mutex", "call"}, outcome.events), IsEmpty());
        EXPECT_TRUE(outcome.is_response_untouched);
        free_arrays_left();
    }
}

TEST_P(Interrupted, by_a_handler_that_cannot_be_allocated_leaves_the_copies)
{
    const OperationFacts& facts = GetParam();
    fail_allocation(all_copies(facts).size() + 1);

    const Outcome outcome = call(facts.name);

    EXPECT_THAT(outcome.thrown, HasSubstr("std::bad_alloc"));
    EXPECT_EQ(arrays_left(), all_copies(facts));
    EXPECT_EQ(objects_left(), 0U);
    EXPECT_EQ(only({"output"}, outcome.events), lines_before_handler(facts));
    EXPECT_THAT(only({"mutex", "handle", "call"}, outcome.events), IsEmpty());
    EXPECT_TRUE(outcome.is_response_untouched);
}

TEST_P(Interrupted, by_a_mutex_that_cannot_be_made_frees_the_handler_and_leaves_the_copies)
{
    const OperationFacts& facts = GetParam();
    rmi_layer().at["mutex"] = [] { throw rmi::INTERNAL_ERROR("no mutex"); };

    const Outcome outcome = call(facts.name);

    EXPECT_EQ(outcome.thrown, "org::opensplice::DDS_RMI::INTERNAL_ERROR: no mutex");
    EXPECT_EQ(arrays_left(), all_copies(facts));
    EXPECT_EQ(objects_left(), 0U);
    EXPECT_EQ(only({"output"}, outcome.events), lines_before_handler(facts));
    EXPECT_THAT(only({"handle", "call"}, outcome.events), IsEmpty());
    EXPECT_TRUE(outcome.is_response_untouched);
}

TEST_P(Interrupted, by_the_remote_call_drops_the_handler_and_leaves_the_copies)
{
    const OperationFacts& facts = GetParam();
    rmi_layer().at["call"] = [] { throw rmi::TIMEOUT("queues are full"); };

    const Outcome outcome = call(facts.name);

    EXPECT_EQ(outcome.thrown, "org::opensplice::DDS_RMI::TIMEOUT: queues are full");
    EXPECT_EQ(arrays_left(), all_copies(facts));
    EXPECT_EQ(objects_left(), 0U);
    EXPECT_THAT(only({"output"}, outcome.events), ElementsAre(log_line(facts)));
    const Events handles = only({"handle", "mutex"}, outcome.events);
    ASSERT_GE(handles.size(), 2U);
    EXPECT_EQ(handles[handles.size() - 2], "handle: handler 0");
    EXPECT_EQ(handles.back(), "mutex: destroyed");
    EXPECT_TRUE(outcome.is_response_untouched);
}

TEST_P(Interrupted, by_a_remote_call_that_finds_no_service_passes_that_on_too)
{
    rmi_layer().at["call"] = [] { throw rmi::SERVICE_NOT_FOUND("nobody there"); };

    EXPECT_EQ(call(GetParam().name).thrown, "org::opensplice::DDS_RMI::SERVICE_NOT_FOUND: nobody there");
}

TEST_P(Interrupted, by_a_getter_leaves_the_copies_made_before_it_and_nothing_else)
{
    constexpr std::size_t getters_of_each_parameter = 2; // for "params" and for the key
    const OperationFacts& facts = GetParam();
    for (std::size_t failing = 0; failing < getters_of_each_parameter * facts.parameters.size(); ++failing) {
        SCOPED_TRACE("getter " + std::to_string(failing));
        at_each_getter([left = failing]() mutable {
            if (left-- == 0)
                throw std::runtime_error("no value");
        });

        const Outcome outcome = call(facts.name);

        EXPECT_EQ(outcome.thrown, "std::runtime_error: no value");
        EXPECT_EQ(arrays_left(), copies_of_first(failing / getters_of_each_parameter, facts));
        EXPECT_EQ(objects_left(), 0U);
        EXPECT_THAT(only({"output", "mutex", "call"}, outcome.events), IsEmpty());
        EXPECT_TRUE(outcome.is_response_untouched);
        free_arrays_left();
    }
}

TEST_P(Interrupted, once_works_the_next_time)
{
    rmi_layer().at["mutex"] = [] { throw rmi::INTERNAL_ERROR("no mutex"); };
    call(GetParam().name);
    free_arrays_left();
    rmi_layer().at.clear();

    EXPECT_EQ(call(GetParam().name).events, expected_events(GetParam().name));
}

} // namespace
