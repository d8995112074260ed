// SPDX-License-Identifier: Apache-2.0
#include "intruder_client.h"

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <stdexcept>
#include <vector>

#include "drill_InterfaceInfo.h"
#include "foreign_client.h"

namespace intruder {

namespace {

using drill::ForeignClient;
using drill::rmi::ReplyKind;

const drill::rmi::InterfaceInfo& range()
{
    return DDS_RMI::Drill::Range_interface_info();
}

const std::vector<std::uint8_t>& stamp_arguments()
{
    static const std::vector<std::uint8_t> caller_and_number{7, 0, 0, 0, 1, 0, 0, 0};
    return caller_and_number;
}

void stamp(const ForeignClient& client, std::uint64_t number)
{
    client.call(number, "stamp", stamp_arguments());
}

void expect(ReplyKind kind, const ForeignClient::Heard& heard, std::uint64_t session)
{
    if (heard.kind != kind || heard.session != session)
        throw std::runtime_error("the server has said " + std::to_string(static_cast<int>(heard.kind)) +
                                 " instead of " + std::to_string(static_cast<int>(kind)));
}

/// More than any server grants a session that has little waiting.
void send_more_than_granted(const ForeignClient& client)
{
    constexpr std::size_t much = std::size_t{8} << 20U;
    client.call(2, "echo_text", std::vector<std::uint8_t>(much));
}

} // namespace

unsigned break_sessions()
{
    using Breach = std::function<void(const ForeignClient&)>;
    const std::array<Breach, 5> breaches{
        [](const ForeignClient& client) { stamp(client, 1); }, // once more
        [](const ForeignClient& client) { stamp(client, 3); },
        [](const ForeignClient& client) { stamp(client, 0); },
        [](const ForeignClient& client) { stamp(client, std::numeric_limits<std::uint64_t>::max()); },
        send_more_than_granted,
    };
    ForeignClient client(range(), "drill", 1);
    for (const Breach& breach : breaches) {
        const std::uint64_t session = client.begin_session().session;
        stamp(client, 1);
        expect(ReplyKind::result, client.listen(), session);
        breach(client);
        expect(ReplyKind::forgotten, client.listen_for(ReplyKind::forgotten), session);
        stamp(client, 2); // what could have followed before
        expect(ReplyKind::forgotten, client.listen(), session);
    }
    return breaches.size();
}

void use_false_sessions(unsigned calls)
{
    ForeignClient honest(range(), "drill", 1);
    ForeignClient thief(range(), "drill", 1);
    const std::uint64_t stolen = honest.begin_session().session;
    const std::uint64_t own = thief.begin_session().session;
    for (unsigned i = 0; i < calls; ++i) {
        const std::uint64_t session = i % 3 == 0 ? stolen : i % 3 == 1 ? own + 1 + i : i;
        DDS_RMI_Request request = drill::make_request(drill::rmi::RequestKind::call, session, 1);
        request.operation = drill::hash_of(range(), "stamp");
        std::vector<std::uint8_t> arguments = stamp_arguments();
        request.arguments._buffer = arguments.data();
        request.arguments._length = request.arguments._maximum = static_cast<std::uint32_t>(arguments.size());
        thief.send(request);
        expect(ReplyKind::forgotten, thief.listen(), session);
    }
    honest.say(drill::rmi::RequestKind::ping, stolen, 0);
    expect(ReplyKind::pong, honest.listen(), stolen);
}

void flood_with_greetings(unsigned greetings)
{
    ForeignClient client(range(), "drill", 1);
    for (std::uint64_t i = 1; i <= greetings; ++i)
        client.say_hello(i);
    client.wait_for_acknowledgements();
    client.begin_session();
}

} // namespace intruder
