// SPDX-License-Identifier: Apache-2.0
#include "foreign_writer.h"

#include <dds/ddsi/ddsi_serdata.h>

#include <cstdlib>
#include <cstring>
#include <vector>

namespace fuzz {
namespace {

struct QosDeleter
{
    void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using Qos = std::unique_ptr<dds_qos_t, QosDeleter>;

dds_entity_t require(dds_entity_t entity)
{
    if (entity < 0)
        std::abort();
    return entity;
}

Qos reliable()
{
    Qos qos(dds_create_qos());
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, DDS_SECS(60));
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    return qos;
}

void wait_for_reader(dds_entity_t participant, dds_entity_t writer)
{
    const dds_entity_t waitset = require(dds_create_waitset(participant));
    dds_set_status_mask(writer, DDS_PUBLICATION_MATCHED_STATUS);
    dds_waitset_attach(waitset, writer, 0);
    if (dds_waitset_wait(waitset, nullptr, 0, DDS_SECS(60)) <= 0)
        std::abort();
    dds_delete(waitset);
}

/// A sample of the type, read back in its serialized form, tells how the type is serialized.
const ddsi_sertype* serialization(dds_entity_t participant, const std::string& topic_name,
                                  const dds_topic_descriptor_t& type)
{
    const std::string name = "serialization_of_" + topic_name;
    const dds_entity_t topic = require(dds_create_topic(participant, &type, name.c_str(), nullptr, nullptr));
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

ForeignWriter::ForeignWriter(dds_entity_t participant, const std::string& topic,
                             const dds_topic_descriptor_t& type, const std::string& partition,
                             const std::string& path)
    : m_type(&type), m_serialization(serialization(participant, topic, type))
{
    const Qos publisher_qos(dds_create_qos());
    dds_qset_partition1(publisher_qos.get(), partition.c_str());
    const dds_entity_t publisher = require(dds_create_publisher(participant, publisher_qos.get(), nullptr));
    const Qos qos = reliable();
    dds_qset_userdata(qos.get(), path.data(), path.size());
    m_writer = require(dds_create_writer(
        publisher, require(dds_create_topic(participant, &type, topic.c_str(), nullptr, nullptr)), qos.get(),
        nullptr));
    wait_for_reader(participant, m_writer);
}

Sample ForeignWriter::decode(const std::uint8_t* data, std::size_t size) const
{
    std::vector<std::uint8_t> bytes(data, data + size); // decoding may swap them in place
    const ddsrt_iovec_t piece{bytes.data(), bytes.size()};
    ddsi_serdata* const serialized =
        ddsi_serdata_from_ser_iov(m_serialization, SDK_DATA, 1, &piece, bytes.size());
    Sample sample(nullptr, SampleDeleter{m_type});
    if (serialized == nullptr)
        return sample;
    sample.reset(std::memset(dds_alloc(m_type->m_size), 0, m_type->m_size));
    if (!ddsi_serdata_to_sample(serialized, sample.get(), nullptr, nullptr))
        sample.reset();
    ddsi_serdata_unref(serialized);
    return sample;
}

void ForeignWriter::write(const Sample& sample) const
{
    if (dds_write(m_writer, sample.get()) != DDS_RETCODE_OK)
        std::abort();
}

void ForeignWriter::dispose(const Sample& sample) const
{
    if (dds_dispose(m_writer, sample.get()) != DDS_RETCODE_OK)
        std::abort();
}

} // namespace fuzz
