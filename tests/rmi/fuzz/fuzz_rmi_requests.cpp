// SPDX-License-Identifier: Apache-2.0
// Requests as bytes from the network: whatever comes, the server goes on and serves the next call.
#include <array>

#include "dds_rmi.h"
#include "drill_topics.h"
#include "input.h"
#include "stage.h"

namespace {

using fuzz::ForeignWriter;
using fuzz::Input;
using fuzz::Stage;

/// Operations with a number, a text, two numbers and nothing as arguments, and one that throws.
const std::array<ForeignWriter, 5>& writers()
{
    static const Stage& stage = Stage::instance();
    static const std::array<ForeignWriter, 5> all{{
        stage.request_writer("echo", DDS_RMI_Drill_Range_echo_request_desc),
        stage.request_writer("echo_text", DDS_RMI_Drill_Range_echo_text_request_desc),
        stage.request_writer("stamp", DDS_RMI_Drill_Range_stamp_request_desc),
        stage.request_writer("runs", DDS_RMI_Drill_Range_runs_request_desc),
        stage.request_writer("fail", DDS_RMI_Drill_Range_fail_request_desc),
    }};
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!Input::is_long_enough(size))
        return 0;
    const Input input(data, size);
    const ForeignWriter& writer = writers()[input.topic % writers().size()];
    const fuzz::Sample request = writer.decode(input.sample, input.size);
    if (request == nullptr)
        return 0;
    // A number that belongs to another request by chance would answer the call that settles.
    static_cast<DDS_RMI_Request_Header*>(request.get())->client_id.request_id |= 0x80000000U;
    writer.write(request);
    if (input.has(Input::dispose))
        writer.dispose(request);
    Stage::instance().settle();
    return 0;
}
