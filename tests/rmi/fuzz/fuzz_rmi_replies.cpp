// SPDX-License-Identifier: Apache-2.0
// Replies as bytes from the network: whatever comes, the client goes on and gets the reply of its next call.
#include <array>

#include "dds_rmi.h"
#include "drill_topics.h"
#include "input.h"
#include "stage.h"

namespace {

using fuzz::ForeignWriter;
using fuzz::Input;
using fuzz::Stage;

constexpr std::size_t echo_text = 0; // what a reply to an outstanding request goes to

const std::array<ForeignWriter, 4>& writers()
{
    static const Stage& stage = Stage::instance();
    static const std::array<ForeignWriter, 4> all{{
        stage.reply_writer("echo_text", DDS_RMI_Drill_Range_echo_text_reply_desc),
        stage.reply_writer("echo", DDS_RMI_Drill_Range_echo_reply_desc),
        stage.reply_writer("stamp", DDS_RMI_Drill_Range_stamp_reply_desc),
        stage.reply_writer("thread_name", DDS_RMI_Drill_Range_thread_name_reply_desc),
    }};
    return all;
}

std::uint32_t& request_id(const fuzz::Sample& reply)
{
    return static_cast<DDS_RMI_Request_Header*>(reply.get())->client_id.request_id;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (!Input::is_long_enough(size))
        return 0;
    const Input input(data, size);
    const bool answer = input.has(Input::answer);
    const ForeignWriter& writer = writers()[answer ? echo_text : input.topic % writers().size()];
    const fuzz::Sample reply = writer.decode(input.sample, input.size);
    if (reply == nullptr)
        return 0;
    // A number that belongs to no request by chance would answer the call that settles.
    request_id(reply) = answer ? Stage::instance().call_without_reply() : request_id(reply) | 0x80000000U;
    writer.write(reply);
    if (input.has(Input::dispose))
        writer.dispose(reply);
    Stage::instance().settle();
    return 0;
}
