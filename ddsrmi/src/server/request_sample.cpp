// SPDX-License-Identifier: Apache-2.0
#include "server/request_sample.h"

#include <algorithm>
#include <cstring>
#include <tuple>

namespace org::opensplice::DDS_RMI {

RequestSample::RequestSample()
    : m_request(static_cast<DDS_RMI_Request*>(
          std::memset(dds_alloc(sizeof(DDS_RMI_Request)), 0, sizeof(DDS_RMI_Request))))
{
}

RequestSample::~RequestSample()
{
    dds_sample_free(m_request, &DDS_RMI_Request_desc, DDS_FREE_ALL);
}

void RequestSample::drop_arguments()
{
    auto& arguments = m_request->arguments;
    if (arguments._release)
        dds_free(arguments._buffer);
    arguments = {};
}

std::size_t RequestSample::take(dds_entity_t reader, Batch& into)
{
    constexpr std::size_t batch = std::tuple_size<Batch>::value;
    std::array<void*, batch> samples{};
    std::array<dds_sample_info_t, batch> infos{};
    for (std::size_t i = 0; i < batch; ++i)
        samples[i] = into[i]->m_request;
    const dds_return_t taken = dds_take(reader, samples.data(), infos.data(), batch, batch);
    const auto count = static_cast<std::size_t>(std::max(taken, 0));
    for (std::size_t i = 0; i < count; ++i)
        into[i]->m_info = infos[i];
    return count;
}

} // namespace org::opensplice::DDS_RMI
