// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_FOREIGN_WRITER_H
#define TESTS_RMI_FUZZ_FOREIGN_WRITER_H

#include <dds/dds.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

struct ddsi_serdata;
struct ddsi_sertype;

namespace fuzz {

struct SampleDeleter
{
    const dds_topic_descriptor_t* type;
    void operator()(void* sample) const { dds_sample_free(sample, type, DDS_FREE_ALL); }
};
using Sample = std::unique_ptr<void, SampleDeleter>;

/// Writes bytes as they might come from the network, decoded as Cyclone decodes them there.
class ForeignWriter
{
public:
    /// In the partition named; `path` is the name that travels with it. Aborts when it finds no reader.
    ForeignWriter(dds_entity_t participant, const std::string& topic, const dds_topic_descriptor_t& type,
                  const std::string& partition, const std::string& path);

    /// Null when the bytes, with their encapsulation header, are no sample of the type.
    Sample decode(const std::uint8_t* data, std::size_t size) const;

    void write(const Sample& sample) const;
    /// As the end of the sample's instance, of which only the key counts.
    void dispose(const Sample& sample) const;

private:
    const dds_topic_descriptor_t* m_type;
    dds_entity_t m_writer;
    const ddsi_sertype* m_serialization = nullptr;
};

} // namespace fuzz

#endif
