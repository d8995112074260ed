// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/dispatcher.h"

#include <utility>

#include "plugins/param_check.h"
#include "plugins/running_plugin.h"
#include "json/json_reader.h"

namespace zorbd {

using namespace strict_json;

namespace {

std::string response(const CallOutcome& outcome, const std::string& id)
{
    if (const auto* error = std::get_if<RpcError>(&outcome))
        return error_response(*error, id);
    return result_response(std::get<std::string>(outcome), id);
}

RpcError unknown_method(const std::string& name, bool may_still_come)
{
    if (may_still_come)
        return {RpcErrorCode::service_not_available,
                name + ": a plug-in still waits for its service, and its methods are not known until then"};
    return {RpcErrorCode::method_not_found, name};
}

/// The answer to a request that was not run, or of which there is nothing to run.
std::string answer_unrun(CallObserver* observer, const RpcError& error, const std::string& id = "null")
{
    if (observer != nullptr)
        observer->call_ended({{}, id, {}, error.code});
    return error_response(error, id);
}

int code_of(const CallOutcome& outcome)
{
    const auto* error = std::get_if<RpcError>(&outcome);
    return error == nullptr ? 0 : error->code;
}

const char* const not_begun = "the call was not begun";

/// The response to a request that is not waited for any more; nothing to a notification.
std::optional<std::string> late_response(json_object* value, const std::string& why, bool has_begun)
{
    const auto read = read_request(value);
    if (const auto* invalid = std::get_if<InvalidRequest>(&read))
        return error_response({RpcErrorCode::invalid_request, invalid->cause}, invalid->id);
    const auto& request = std::get<RpcRequest>(read);
    if (!request.id)
        return std::nullopt;
    const char* const state = has_begun ? "the call is left to end" : not_begun;
    return error_response({RpcErrorCode::remote_timeout, request.method + ": " + why + "; " + state},
                          *request.id);
}

/// Tells the observer of the return from a method.
class RunningCall
{
public:
    explicit RunningCall(CallObserver* observer) : m_observer(observer) {}
    ~RunningCall()
    {
        if (m_observer != nullptr)
            m_observer->call_returned();
    }
    RunningCall(const RunningCall&) = delete;
    RunningCall& operator=(const RunningCall&) = delete;

private:
    CallObserver* const m_observer;
};

RpcError too_many_calls(const std::string& method)
{
    return {RpcErrorCode::busy, method + ": as many calls of its plug-in as may run, or wait, do so already"};
}

} // namespace

Dispatcher::Dispatcher(const MethodDirectory& methods, DispatchLimits limits)
    : m_methods(methods), m_limits(limits)
{
}

std::optional<std::string> Dispatcher::answer(const std::string& body, CallObserver* observer) const
{
    try {
        const JsonValue value = parse_json(body, m_limits.max_depth);
        return answer_value(value.get(), observer);
    } catch (const JsonSyntaxError& error) {
        return answer_unrun(observer, {RpcErrorCode::parse_error, error.what()});
    }
}

std::optional<std::string> Dispatcher::answer_value(json_object* value, CallObserver* observer) const
{
    if (json_object_is_type(value, json_type_array))
        return answer_batch(value, observer);
    return answer_single(value, observer);
}

std::optional<std::string> Dispatcher::answer_batch(json_object* batch, CallObserver* observer) const
{
    const std::size_t length = json_object_array_length(batch);
    if (length == 0)
        return answer_unrun(observer, {RpcErrorCode::invalid_request, "a batch must not be empty"});
    if (length > static_cast<std::size_t>(m_limits.max_batch))
        return answer_unrun(observer,
                            {RpcErrorCode::invalid_request, "a batch of " + std::to_string(length) +
                                                                " requests is longer than the limit of " +
                                                                std::to_string(m_limits.max_batch)});
    BatchResponses responses;
    for (std::size_t i = 0; i < length; ++i) {
        const auto one = answer_single(json_object_array_get_idx(batch, i), observer);
        if (observer != nullptr)
            observer->answered(one);
        responses.add(one);
    }
    return responses.take();
}

std::optional<std::string> Dispatcher::answer_late(const std::string& body, BatchResponses answered,
                                                   const std::string& why, bool has_begun) const
{
    try {
        const JsonValue value = parse_json(body, m_limits.max_depth);
        if (!json_object_is_type(value.get(), json_type_array))
            return late_response(value.get(), why, has_begun);
        const std::size_t length = json_object_array_length(value.get());
        for (std::size_t i = answered.answered(); i < length; ++i)
            answered.add(late_response(json_object_array_get_idx(value.get(), i), why,
                                       std::exchange(has_begun, false)));
        return answered.take();
    } catch (const JsonSyntaxError& error) { // it had to wait so long that nobody has read it
        return error_response({RpcErrorCode::parse_error, error.what()});
    }
}

std::optional<std::string> Dispatcher::answer_single(json_object* value, CallObserver* observer) const
{
    const auto read = read_request(value);
    if (const auto* invalid = std::get_if<InvalidRequest>(&read))
        return answer_unrun(observer, {RpcErrorCode::invalid_request, invalid->cause}, invalid->id);
    const auto& request = std::get<RpcRequest>(read);
    const auto begin = std::chrono::steady_clock::now();
    bool is_known = true;
    const CallOutcome outcome = run(request, value, is_known, observer);
    if (observer != nullptr)
        observer->call_ended({is_known ? request.method : std::string_view(),
                              request.id ? *request.id : std::string_view(),
                              std::chrono::steady_clock::now() - begin, code_of(outcome)});
    if (!request.id)
        return std::nullopt;
    return response(outcome, *request.id);
}

CallOutcome Dispatcher::run(const RpcRequest& request, json_object* value, bool& is_known,
                            CallObserver* observer) const
{
    if (observer != nullptr)
        if (std::string refusal = observer->refusal_of(request.method); !refusal.empty()) {
            is_known = m_methods.find(request.method).method != nullptr;
            return RpcError{RpcErrorCode::refused, std::move(refusal)};
        }
    if (request.method == "rpc.discover")
        return *m_methods.discovery_document();
    const MethodLookup found = m_methods.find(request.method);
    is_known = found.method != nullptr;
    if (!is_known)
        return unknown_method(request.method, found.may_still_come);
    if (found.params != nullptr)
        if (const auto fault = found.params->apply(value))
            return RpcError{RpcErrorCode::invalid_params, request.method + ": " + *fault};
    const auto start = observer == nullptr ? CallObserver::Start::runs : observer->call_starts(*found.plugin);
    if (start == CallObserver::Start::waits)
        throw CallWaits();
    if (start == CallObserver::Start::refused)
        return too_many_calls(request.method);
    if (start == CallObserver::Start::given_up)
        return RpcError{RpcErrorCode::remote_timeout, request.method + ": " + not_begun};
    const RunningCall call(observer);
    const RunningPlugin running(*found.plugin);
    return call_method(*found.method, request.method, value);
}

} // namespace zorbd
