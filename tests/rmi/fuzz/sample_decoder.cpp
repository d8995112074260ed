// SPDX-License-Identifier: Apache-2.0
#include "sample_decoder.h"

#include <dds/ddsi/ddsi_serdata.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace fuzz {
namespace {

dds_entity_t require(dds_entity_t entity)
{
    if (entity < 0)
        std::abort();
    return entity;
}

/// A sample of the type, read back in its serialized form, tells how the type is serialized.
const ddsi_sertype* serialization(dds_entity_t participant, const dds_topic_descriptor_t& type)
{
    const dds_entity_t topic =
        require(dds_create_topic(participant, &type, "to_learn_its_serialization", nullptr, nullptr));
    const dds_entity_t reader = require(dds_create_reader(participant, topic, nullptr, nullptr));
    const dds_entity_t writer = require(dds_create_writer(participant, topic, nullptr, nullptr));
    std::vector<std::uint64_t> blank(type.m_size / sizeof(std::uint64_t) + 1);
    dds_write(writer, blank.data());
    ddsi_serdata* serialized = nullptr;
    dds_sample_info_t info;
    if (dds_takecdr(reader, &serialized, 1, &info, DDS_ANY_STATE) != 1)
        std::abort();
    const ddsi_sertype* const found = serialized->type; // the topic, which stays, keeps it
    ddsi_serdata_unref(serialized);
    return found;
}

} // namespace

SampleDecoder::SampleDecoder(dds_entity_t participant, const dds_topic_descriptor_t& type)
    : m_type(&type), m_serialization(serialization(participant, type))
{
}

void* SampleDecoder::decode_any(const std::uint8_t* data, std::size_t size) const
{
    std::vector<std::uint8_t> bytes(data, data + size); // decoding may swap them in place
    const ddsrt_iovec_t piece{bytes.data(), bytes.size()};
    ddsi_serdata* const serialized =
        ddsi_serdata_from_ser_iov(m_serialization, SDK_DATA, 1, &piece, bytes.size());
    if (serialized == nullptr)
        return nullptr;
    void* sample = std::memset(dds_alloc(m_type->m_size), 0, m_type->m_size);
    if (!ddsi_serdata_to_sample(serialized, sample, nullptr, nullptr)) {
        dds_sample_free(sample, m_type, DDS_FREE_ALL);
        sample = nullptr;
    }
    ddsi_serdata_unref(serialized);
    return sample;
}

} // namespace fuzz
