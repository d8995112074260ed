// SPDX-License-Identifier: Apache-2.0
#include "recording_proxy.h"

#include <algorithm>
#include <array>
#include <tuple>
#include <vector>

#include "ddsrmi/encoding.h"
#include "recording.h"
#include "rmi_layer.h"

namespace conformance {

using namespace DDS_RMI::VarnelRMI;

namespace {

org::opensplice::DDS_RMI::ProxySeed seed;

std::string shown(DDS::String text)
{
    return text == nullptr ? "null" : '"' + std::string(text) + '"';
}

std::string shown(DDS::Long number)
{
    return std::to_string(number);
}

std::string shown(DDS::Boolean value)
{
    if (value > 1)
        return "boolean " + std::to_string(value);
    return value != 0 ? "true" : "false";
}

std::string line(const ReceivedCall& call)
{
    // A long text would make the record unreadable.
    constexpr std::size_t longest = 40;
    std::string text = call.operation + "(";
    for (const std::string& argument : call.arguments)
        text += (text.back() == '(' ? "" : ", ") + argument.substr(0, longest);
    return text + ")";
}

std::array<DDS::Octet, sizeof(DDS::Long)> encoded(DDS::Long result)
{
    const Unobserved unobserved;
    org::opensplice::DDS_RMI::Encoder encoder;
    encoder.put(result);
    std::array<DDS::Octet, sizeof(DDS::Long)> bytes{};
    std::copy(encoder.bytes().begin(), encoder.bytes().end(), bytes.begin());
    return bytes;
}

/// Hands `handler` a reply as it would arrive.
std::function<void(DDS::Long)> deliverer(org::opensplice::DDS_RMI::CAsyncReplyHandlerImpl* handler)
{
    return [handler](DDS::Long result) {
        auto bytes = encoded(result);
        const org::opensplice::DDS_RMI::EncodedResult reply{bytes.data(), bytes.size()};
        DDS::ReadCondition condition(&reply);
        handler->handleReply(&condition);
    };
}

void keep_if_text(std::vector<DDS::String>& texts, DDS::String text)
{
    texts.push_back(text);
}

template <class Other>
void keep_if_text(std::vector<DDS::String>&, Other)
{
}

template <class Arguments, class Handler>
ReceivedCall received(const char* operation, const Arguments& arguments, Handler* handler)
{
    ReceivedCall call{operation, {}, {}, handler, deliverer(handler), {}};
    std::apply(
        [&call](auto... argument) {
            (call.arguments.push_back(shown(argument)), ...);
            (keep_if_text(call.texts, argument), ...);
        },
        arguments);
    return call;
}

/// The form of an operation that waits for the reply, which the plug-in never uses.
template <class Arguments>
DDS::Long refused(const char* operation, const Arguments&)
{
    record("call", std::string("waiting form of ") + operation);
    return 0;
}

} // namespace

RecordingProxy::RecordingProxy() : VarnelRMIServiceInterfaceProxy(seed)
{
    name_object(this, "proxy");
}

RecordingProxy::~RecordingProxy()
{
    record("lookup", "proxy released");
    forget_calls();
}

void RecordingProxy::forget_calls()
{
    const Unobserved unobserved;
    std::deque<ReceivedCall> calls;
    {
        const std::lock_guard lock(m_mutex);
        calls.swap(m_calls);
    }
    for (const ReceivedCall& call : calls)
        for (const DDS::String text : call.texts)
            DDS::string_free(text);
}

void RecordingProxy::receive(const ReceivedCall& call)
{
    record("call", line(call));
    reach("call");
    const std::lock_guard lock(m_mutex);
    m_calls.push_back(call);
    if (m_keeps_handlers)
        m_calls.back().kept.reset(call.handler);
}

#define RECORDED(op, parameters, parameters_with_handler, arguments)                                         \
    DDS::Long RecordingProxy::op parameters                                                                  \
    {                                                                                                        \
        return refused(#op, std::make_tuple arguments);                                                      \
    }                                                                                                        \
                                                                                                             \
    void RecordingProxy::async_##op parameters_with_handler                                                  \
    {                                                                                                        \
        const Unobserved unobserved;                                                                         \
        receive(received(#op, std::make_tuple arguments, handler));                                          \
    }
FOR_EVERY_OPERATION(RECORDED)
#undef RECORDED

} // namespace conformance
