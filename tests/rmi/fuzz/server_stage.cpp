// SPDX-License-Identifier: Apache-2.0
#include "server_stage.h"

#include <cstring>
#include <stdexcept>
#include <thread>

#include "fuzzed_Interface.h"

namespace fuzz {
namespace {

using DDS_RMI::Fuzzed::Colour;
using DDS_RMI::Fuzzed::Whole;
using drill::rmi::ReplyKind;
using drill::rmi::RequestKind;

/// Reads all of its texts.
class Target final : public DDS_RMI::Fuzzed::TargetInterface
{
public:
    DDS::Long number(DDS::Long value) override { return value; }
    DDS::String text(DDS::String value) override { return DDS::string_dup(value); }
    DDS::String texts(DDS::String first, DDS::Long /*between*/, DDS::String last) override
    {
        return DDS::string_dup(std::strcmp(first, last) < 0 ? first : last);
    }
    DDS::Octet small(DDS::Boolean truth, DDS::Octet byte, DDS::Char /*character*/, DDS::Short /*number*/,
                     DDS::UShort /*size*/) override
    {
        return truth != 0 ? byte : DDS::Octet{0};
    }
    DDS::LongLong large(DDS::LongLong number, DDS::ULongLong /*size*/, DDS::ULong /*count*/) override
    {
        return number;
    }
    DDS::Double real(DDS::Float /*single*/, DDS::Double twice) override { return twice; }
    void nothing() override {}
    DDS::Long failing() override { throw std::runtime_error("asked for"); }
    Whole composed(const Whole& value, Colour& tint, DDS::String& name) override
    {
        if (value.parts.empty())
            throw DDS_RMI::Fuzzed::Broken();
        tint = value.parts.back().paint;
        name = DDS::string_dup(value.parts.front().name.c_str());
        return value;
    }
    void unheeded(const Whole& /*value*/) override {}
};

Proxy serve_and_find(const Stage& stage)
{
    rmi::DDS_Service::register_interface<DDS_RMI::Fuzzed::TargetInterface>(
        rmi::shared_ptr<Target>(new Target), service, instance);
    std::thread([runtime = stage.runtime()]() mutable { runtime->run(); }).detach();
    Proxy proxy;
    if (!rmi::DDS_Service::getServerProxy(service, 1, proxy))
        give_up("there is no proxy");
    return proxy;
}

bool ends_a_call(ReplyKind kind)
{
    return kind == ReplyKind::result || kind == ReplyKind::failed || kind == ReplyKind::unknown_operation ||
           kind == ReplyKind::overdue;
}

} // namespace

ServerStage::ServerStage()
    : m_proxy(serve_and_find(m_stage)), m_decoder(m_peer.participant(), DDS_RMI_Request_desc),
      m_foreign(target(), service, instance)
{
    m_foreign.begin_session();
}

void ServerStage::play(const Input& input)
{
    const auto request = m_decoder.decode<DDS_RMI_Request>(input.message, input.size);
    if (request == nullptr)
        return;
    put_right(*request, input);
    m_foreign.send(*request);
    settle_foreign_session(input.has(Input::own_session) && input.has(Input::next));
    settle_honest_session();
}

void ServerStage::put_right(DDS_RMI_Request& request, const Input& input)
{
    if (input.has(Input::own_session)) {
        request.wire_version = rmi::wire_version;
        request.session = m_foreign.session();
    }
    if (input.has(Input::next)) {
        request.kind = static_cast<std::uint16_t>(RequestKind::call);
        request.number = m_last_number + 1;
    }
    if (input.has(Input::chosen))
        request.operation = drill::hash_of(target(), operation_name(input.operation));
}

// What the server answers to a ping tells whether it has ended the session for what came before.
void ServerStage::settle_foreign_session(bool call_is_due)
{
    const std::uint64_t session = m_foreign.session();
    m_foreign.say(RequestKind::ping, session, 0);
    bool ping_is_due = true;
    m_last_number += call_is_due ? 1 : 0;
    while (ping_is_due || call_is_due) {
        const drill::ForeignClient::Heard heard = m_foreign.listen();
        if (heard.session != session)
            continue;
        if (heard.kind == ReplyKind::forgotten) {
            m_foreign.begin_session();
            m_last_number = 0;
            return;
        }
        if (heard.kind == ReplyKind::pong)
            ping_is_due = false;
        else if (ends_a_call(heard.kind) && heard.number == m_last_number)
            call_is_due = false;
    }
}

void ServerStage::settle_honest_session()
{
    ++m_calls;
    if (m_proxy->number(m_calls) != m_calls)
        give_up("a call has got another one's reply");
}

} // namespace fuzz
