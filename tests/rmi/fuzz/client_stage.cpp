// SPDX-License-Identifier: Apache-2.0
#include "client_stage.h"

#include <array>
#include <chrono>
#include <cstring>

namespace fuzz {
namespace {

using DDS_RMI::Fuzzed::Colour;
using DDS_RMI::Fuzzed::Whole;
using drill::ForeignServer;
using drill::rmi::ReplyKind;
using drill::rmi::RequestKind;

constexpr unsigned soon_ms = 500;
constexpr unsigned surely_ms = 60'000;
constexpr dds_duration_t patience = DDS_USECS(200);
constexpr ForeignServer::Grant plenty{1U << 30U, std::uint64_t{1} << 50U};

/// Reads all of its text.
class TextReader final : public DDS_RMI::Fuzzed::Target_text_Reply_Handler
{
    void text_Reply(DDS::String result) override { m_length = std::strlen(result); }

    volatile std::size_t m_length = 0;
};
class SmallReader final : public DDS_RMI::Fuzzed::Target_small_Reply_Handler
{
    void small_Reply(DDS::Octet /*result*/) override {}
};
class LargeReader final : public DDS_RMI::Fuzzed::Target_large_Reply_Handler
{
    void large_Reply(DDS::LongLong /*result*/) override {}
};
class RealReader final : public DDS_RMI::Fuzzed::Target_real_Reply_Handler
{
    void real_Reply(DDS::Double /*result*/) override {}
};
/// Reads all that the reply brings, or what is said of the exception.
class ComposedReader final : public DDS_RMI::Fuzzed::Target_composed_Reply_Handler,
                             public rmi::CallFailureHandler
{
    void composed_Reply(const Whole& result, Colour tint, DDS::String name) override
    {
        m_sum = result.parts.size() + result.rows.size() + result.text.size() + tint + std::strlen(name);
    }
    void handleFailure(rmi::CallFailure reason, const char* text) override
    {
        m_sum = static_cast<std::size_t>(reason) + std::strlen(text);
    }

    volatile std::size_t m_sum = 0;
};

void call_text(const Proxy& proxy)
{
    const rmi::shared_ptr<TextReader> handler(new TextReader);
    proxy->async_text(DDS::string_dup("text"), handler.get());
}
void call_small(const Proxy& proxy)
{
    const rmi::shared_ptr<SmallReader> handler(new SmallReader);
    proxy->async_small(1, 2, 'c', 3, 4, handler.get());
}
void call_large(const Proxy& proxy)
{
    const rmi::shared_ptr<LargeReader> handler(new LargeReader);
    proxy->async_large(1, 2, 3, handler.get());
}
void call_real(const Proxy& proxy)
{
    const rmi::shared_ptr<RealReader> handler(new RealReader);
    proxy->async_real(1, 2, handler.get());
}
void call_composed(const Proxy& proxy)
{
    const rmi::shared_ptr<ComposedReader> handler(new ComposedReader);
    proxy->async_composed(Whole(), DDS_RMI::Fuzzed::blue, handler.get());
}

constexpr std::array<void (*)(const Proxy&), 5> calls{call_text, call_small, call_large, call_real,
                                                      call_composed};

} // namespace

ClientStage::ClientStage()
    : m_server(target(), service, instance, 1), m_decoder(m_server.peer().participant(), DDS_RMI_Reply_desc)
{
    auto found = std::async(std::launch::async,
                            [this] { return rmi::DDS_Service::getServerProxy(service, 1, m_proxy); });
    serve_until_ready(found);
    if (!found.get())
        give_up("there is no proxy");
}

void ClientStage::play(const Input& input)
{
    const auto reply = m_decoder.decode<DDS_RMI_Reply>(input.message, input.size);
    if (reply == nullptr)
        return;
    if (input.has(Input::next))
        make_outstanding_call(input.operation);
    put_right(*reply, input);
    m_server.send(*reply);
    settle();
}

void ClientStage::put_right(DDS_RMI_Reply& reply, const Input& input)
{
    // A number that belongs to no call by chance would answer the one that settles.
    reply.number |= std::uint64_t{1} << 63U;
    if (input.has(Input::own_session)) {
        reply.wire_version = rmi::wire_version;
        reply.session = m_session;
    }
    if (input.has(Input::next) && m_outstanding) {
        reply.kind = static_cast<std::uint16_t>(ReplyKind::result);
        reply.number = *m_outstanding;
    } else if (input.has(Input::chosen)) {
        reply.kind = static_cast<std::uint16_t>(ReplyKind::welcome);
        reply.number = m_meeting;
        m_session = reply.session;
    }
}

void ClientStage::make_outstanding_call(std::size_t operation)
{
    m_proxy->setTimeout(soon_ms);
    m_outstanding.reset();
    make([&] {
        calls[operation % calls.size()](m_proxy);
        return true;
    });
    while (!m_outstanding)
        if (const auto heard = m_server.listen(drill::foreign_patience))
            answer(*heard);
}

void ClientStage::settle()
{
    m_proxy->setTimeout(surely_ms);
    const DDS::Long value = ++m_calls;
    if (make([&] { return m_proxy->number(value); }) != value)
        give_up("a call has got another one's reply");
}

// An input may have ended the session, or begun another one that has no room or lacks operations. Then the
// next one is begun by telling the client that its session is forgotten.
template <class Call>
std::invoke_result_t<Call> ClientStage::make(Call call)
{
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(surely_ms);
    while (std::chrono::steady_clock::now() < deadline) {
        auto result = std::async(std::launch::async, call);
        serve_until_ready(result);
        try {
            return result.get();
        } catch (const rmi::SystemException&) {
            m_server.say(ReplyKind::forgotten, m_session, 0, {0, 0});
        }
    }
    give_up("the client does not come back");
}

template <class Result>
void ClientStage::serve_until_ready(const std::future<Result>& future)
{
    while (future.wait_for(std::chrono::seconds::zero()) != std::future_status::ready)
        if (const auto heard = m_server.listen(patience))
            answer(*heard);
}

void ClientStage::answer(const ForeignServer::Heard& heard)
{
    static const std::uint64_t number = drill::hash_of(target(), "number");
    if (heard.kind == RequestKind::hello) {
        if (heard.number != m_meeting)
            m_session = rmi::make_session_id();
        m_meeting = heard.number;
        m_server.welcome(m_meeting, m_session, plenty);
    } else if (heard.kind == RequestKind::ping) {
        m_server.say(ReplyKind::pong, heard.session, 0, plenty);
    } else if (heard.kind == RequestKind::want) {
        m_server.say(ReplyKind::grant, heard.session, 0, plenty);
    } else if (heard.operation == number) {
        m_server.say(ReplyKind::result, heard.session, heard.number, plenty, heard.arguments);
    } else {
        m_outstanding = heard.number;
    }
}

} // namespace fuzz
