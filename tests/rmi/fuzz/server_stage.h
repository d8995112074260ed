// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_SERVER_STAGE_H
#define TESTS_RMI_FUZZ_SERVER_STAGE_H

#include <cstdint>

#include "foreign_client.h"
#include "input.h"
#include "sample_decoder.h"
#include "stage.h"

namespace fuzz {

/// A server, an honest client of it, and a foreign client that says what an input says.
class ServerStage
{
public:
    ServerStage();

    /// Returns when the server has dealt with the input; aborts when it does not.
    void play(const Input& input);

private:
    void put_right(DDS_RMI_Request& request, const Input& input);
    void settle_foreign_session(bool call_is_due);
    void settle_honest_session();

    Stage m_stage;
    Proxy m_proxy;
    drill::ForeignPeer m_peer;
    SampleDecoder m_decoder;
    drill::ForeignClient m_foreign;
    std::uint64_t m_last_number = 0; // in the foreign client's session
    DDS::Long m_calls = 0;
};

} // namespace fuzz

#endif
