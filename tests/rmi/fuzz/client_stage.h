// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_CLIENT_STAGE_H
#define TESTS_RMI_FUZZ_CLIENT_STAGE_H

#include <cstdint>
#include <future>
#include <optional>
#include <type_traits>

#include "foreign_server.h"
#include "input.h"
#include "sample_decoder.h"
#include "stage.h"

namespace fuzz {

/// A client, and a foreign server, which is an honest one but for what an input makes it say.
class ClientStage
{
public:
    ClientStage();

    /// Returns when the client has dealt with the input; aborts when it does not.
    void play(const Input& input);

private:
    void put_right(DDS_RMI_Reply& reply, const Input& input);
    void make_outstanding_call(std::size_t operation);
    void settle();

    /// Gives what the call gives, which is made until it does not throw.
    template <class Call>
    std::invoke_result_t<Call> make(Call call);
    /// Serves until it is ready.
    template <class Result>
    void serve_until_ready(const std::future<Result>& future);
    /// Answers the client; nothing but "number" is run, and other calls stay outstanding.
    void answer(const drill::ForeignServer::Heard& heard);

    Stage m_stage;
    drill::ForeignServer m_server;
    SampleDecoder m_decoder;
    Proxy m_proxy;
    std::uint64_t m_meeting = 0;
    std::uint64_t m_session = 0;
    std::optional<std::uint64_t> m_outstanding; // number of a call that is not answered
    DDS::Long m_calls = 0;
};

} // namespace fuzz

#endif
