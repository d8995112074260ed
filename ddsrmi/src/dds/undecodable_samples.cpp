// SPDX-License-Identifier: Apache-2.0
#include "dds/undecodable_samples.h"

#include <dds/dds.h>
#include <dds/ddsrt/log.h>

#include <cstdio>
#include <mutex>
#include <string_view>

#include "dds/refused_peers.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

// Never destroyed: Cyclone's threads may outlive what the process destroys at its end.
CountedReport& undecodable()
{
    static auto& counted = *new CountedReport("dropped a sample that cannot be decoded");
    return counted;
}

// The message is all that Cyclone tells.
bool is_of_undecodable_sample(std::string_view message)
{
    return message.find(": deserialization ") != std::string_view::npos &&
           message.find(" failed (") != std::string_view::npos;
}

void sort_out(void* /*argument*/, const dds_log_data_t* data)
{
    // A header (time, domain, thread) stands in front of the message, a newline behind it.
    const std::string_view message(data->message - data->hdrsize, data->hdrsize + data->size + 1);
    if (is_of_undecodable_sample(message))
        undecodable().count();
    else if (!take_refusal(message))
        std::fwrite(message.data(), 1, message.size(), stderr);
}

} // namespace

void count_undecodable_samples()
{
    static std::once_flag once;
    std::call_once(once, [] { dds_set_log_sink(sort_out, nullptr); });
}

} // namespace org::opensplice::DDS_RMI
