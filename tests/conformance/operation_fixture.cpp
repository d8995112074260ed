// SPDX-License-Identifier: Apache-2.0
#include "operation_fixture.h"

#include <functional>

#include "fakes/allocation_probe.h"
#include "fakes/framework_probe.h"
#include "framework/parse_json.h"
#include "operation_facts.h"
#include "thrown.h"

namespace conformance {

using zeb::api::data::KX_JSON;

OperationTest::OperationTest() : m_proxy(new RecordingProxy), m_operations(m_proxy)
{
    rmi_layer() = RmiLayer();
}

OperationTest::~OperationTest()
{
    rmi_layer() = RmiLayer();
    at_each_getter(nullptr);
    fail_allocation(0);
    m_proxy->forget_calls();
    free_arrays_left();
}

Outcome OperationTest::call(const std::string& name, const std::string& request)
{
    const std::string answer = R"({"id":7,"result":"as it was"})";
    const KX_JSON in = parse_json(request);
    KX_JSON out = parse_json(answer);
    const json_object* const object = out.get();
    const WatchedValues watched(in, out);

    Outcome outcome;
    std::exception_ptr thrown;
    {
        const Recording recording;
        thrown = caught([&] { outcome.result = m_operations.run(name, in, out); });
        outcome.events = recording.all();
    }
    outcome.thrown = description(thrown);
    outcome.is_response_untouched = out.get() == object && out.to_string() == answer;
    return outcome;
}

Outcome OperationTest::call(const std::string& name)
{
    return call(name, request_for(facts_of(name)));
}

namespace {

void add(Events& events, std::initializer_list<std::string> more)
{
    events.insert(events.end(), more);
}

std::string unquoted(const std::string& json)
{
    return json.substr(1, json.size() - 2);
}

void add_copy(Events& events, const std::string& text)
{
    add(events, {"memory: new array " + std::to_string(text.size() + 1), "copy: " + text});
}

void add_parameter(Events& events, const Parameter& parameter)
{
    const char* const getter = parameter.getter == Getter::text ? "get_json_string(" : "get_json_int(";
    add(events,
        {"json: request.get_json_object(params)", std::string("json: ") + getter + parameter.key + ")"});
    // A list of nodes is copied before the value that it was read from is dropped, other texts after.
    const bool is_list = parameter.key == "mac_addr_list";
    if (is_list)
        add_copy(events, unquoted(parameter.json));
    add(events, {"json: dropped"});
    if (parameter.is_copied && !is_list)
        add_copy(events, unquoted(parameter.json));
}

} // namespace

Events expected_events(const std::string& name)
{
    const OperationFacts& facts = facts_of(name);
    const std::string line = "output: CALL RPC " + name + "\n";
    Events events;
    for (const Parameter& parameter : facts.parameters)
        add_parameter(events, parameter);
    if (facts.logs_first)
        add(events, {line});
    add(events, {"memory: new object", "mutex: made", "handle: handler 1"});
    if (!facts.logs_first)
        add(events, {line});
    add(events, {"call: " + call_line(facts), "handle: handler 2", "handle: handler 1"});
    return events;
}

} // namespace conformance
