// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_SAMPLE_DECODER_H
#define TESTS_RMI_FUZZ_SAMPLE_DECODER_H

#include <dds/dds.h>

#include <cstddef>
#include <cstdint>
#include <memory>

struct ddsi_sertype;

namespace fuzz {

struct SampleDeleter
{
    const dds_topic_descriptor_t* type;
    void operator()(void* sample) const { dds_sample_free(sample, type, DDS_FREE_ALL); }
};
template <class Message>
using Sample = std::unique_ptr<Message, SampleDeleter>;

/// Decodes bytes as Cyclone decodes what comes from the network.
class SampleDecoder
{
public:
    /// The participant must outlive it.
    SampleDecoder(dds_entity_t participant, const dds_topic_descriptor_t& type);

    /// Null when the bytes, with their encapsulation header, are no sample of the type, which must be that of
    /// `Message`.
    template <class Message>
    Sample<Message> decode(const std::uint8_t* data, std::size_t size) const
    {
        return Sample<Message>(static_cast<Message*>(decode_any(data, size)), SampleDeleter{m_type});
    }

private:
    void* decode_any(const std::uint8_t* data, std::size_t size) const;

    const dds_topic_descriptor_t* m_type;
    const ddsi_sertype* m_serialization;
};

} // namespace fuzz

#endif
