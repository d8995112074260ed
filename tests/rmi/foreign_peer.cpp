// SPDX-License-Identifier: Apache-2.0
#include "foreign_peer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdio>
#include <limits>
#include <memory>
#include <stdexcept>
#include <utility>

namespace drill {

namespace {

struct QosDeleter
{
    void operator()(dds_qos_t* qos) const noexcept { dds_delete_qos(qos); }
};
using Qos = std::unique_ptr<dds_qos_t, QosDeleter>;

/// For the endpoint and for the publisher or subscriber that Cyclone makes for it.
Qos make_qos(const std::string& partition, const std::string& user_data)
{
    Qos qos(dds_create_qos());
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, foreign_patience);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    dds_qset_partition1(qos.get(), partition.c_str());
    dds_qset_userdata(qos.get(), user_data.data(), user_data.size());
    return qos;
}

dds_entity_t make_topic(dds_entity_t participant, const dds_topic_descriptor_t& type, const std::string& name)
{
    return check(dds_create_topic(participant, &type, name.c_str(), nullptr, nullptr), name);
}

} // namespace

dds_return_t check(dds_return_t result, const std::string& what)
{
    if (result < 0)
        throw std::runtime_error(what + ": " + dds_strretcode(-result));
    return result;
}

ForeignPeer::ForeignPeer()
    : m_participant(check(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr), "participant"))
{
}

ForeignPeer::~ForeignPeer()
{
    dds_delete(m_participant);
}

dds_entity_t ForeignPeer::make_writer(const dds_topic_descriptor_t& type, const std::string& topic,
                                      const std::string& partition, const std::string& user_data) const
{
    const Qos qos = make_qos(partition, user_data);
    return check(dds_create_writer(m_participant, make_topic(m_participant, type, topic), qos.get(), nullptr),
                 "writer");
}

dds_entity_t ForeignPeer::make_reader(const dds_topic_descriptor_t& type, const std::string& topic,
                                      const std::string& partition, const std::string& user_data) const
{
    const Qos qos = make_qos(partition, user_data);
    return check(dds_create_reader(m_participant, make_topic(m_participant, type, topic), qos.get(), nullptr),
                 "reader");
}

void ForeignPeer::wait_for_reader(dds_entity_t writer) const
{
    const dds_entity_t waitset = check(dds_create_waitset(m_participant), "waitset");
    check(dds_set_status_mask(writer, DDS_PUBLICATION_MATCHED_STATUS), "writer");
    check(dds_waitset_attach(waitset, writer, 0), "waitset");
    const dds_return_t matched = check(dds_waitset_wait(waitset, nullptr, 0, foreign_patience), "waitset");
    check(dds_delete(waitset), "waitset");
    if (matched == 0)
        throw std::runtime_error("no reader has matched");
}

std::string ForeignPeer::make_path() const
{
    static std::atomic<unsigned> last_number{0};
    dds_guid_t guid{};
    check(dds_get_guid(m_participant, &guid), "GUID");
    std::string path;
    for (const unsigned byte : guid.v) {
        std::array<char, 3> digits{};
        std::snprintf(digits.data(), digits.size(), "%02x", byte);
        path += digits.data();
    }
    return path + '-' + std::to_string(++last_number);
}

void write(dds_entity_t writer, const void* sample)
{
    check(dds_write(writer, sample), "write");
}

void wait_for_acknowledgements(dds_entity_t writer)
{
    check(dds_wait_for_acks(writer, foreign_patience), "no acknowledgement");
}

bool wait_for_message(const ForeignPeer& peer, dds_entity_t reader, dds_duration_t patience)
{
    const dds_entity_t waitset = check(dds_create_waitset(peer.participant()), "waitset");
    const dds_entity_t condition = check(dds_create_readcondition(reader, DDS_ANY_STATE), "condition");
    check(dds_waitset_attach(waitset, condition, 0), "waitset");
    const dds_return_t come = check(dds_waitset_wait(waitset, nullptr, 0, patience), "waitset");
    check(dds_delete(waitset), "waitset");
    check(dds_delete(condition), "condition");
    return come > 0;
}

Introduction::Introduction(const rmi::InterfaceInfo& interface_info, std::string service,
                           std::int32_t instance)
    : m_service(std::move(service))
{
    for (std::size_t i = 0; i < interface_info.operation_count; ++i)
        m_signatures.push_back(const_cast<char*>(interface_info.operations[i].signature));
    static char nobody[] = "nobody";
    auto& parties = m_introduction.parties;
    parties.service_id.server_class = const_cast<char*>(interface_info.server_class);
    parties.service_id.server_impl = m_service.data();
    parties.service_id.server_instance = instance;
    parties.client_id.client_impl = nobody;
    auto& known = m_introduction.interface_known;
    known.server_class = const_cast<char*>(interface_info.server_class);
    known.server_api._buffer = m_signatures.data();
    known.server_api._length = static_cast<std::uint32_t>(m_signatures.size());
    known.server_api._maximum = known.server_api._length;
    m_introduction.most_bytes = std::numeric_limits<std::uint64_t>::max();
}

std::uint64_t hash_of(const rmi::InterfaceInfo& interface_info, const std::string& operation)
{
    const rmi::OperationInfo* const last = interface_info.operations + interface_info.operation_count;
    const auto* const found =
        std::find_if(interface_info.operations, last,
                     [&](const rmi::OperationInfo& one) { return one.name == operation; });
    if (found == last)
        throw std::runtime_error("there is no operation " + operation);
    return found->hash;
}

std::string announcement(const rmi::InterfaceInfo& interface_info, const std::string& service,
                         std::int32_t instance, std::uint64_t epoch, unsigned wire_version)
{
    return "ddsrmi " + std::to_string(wire_version) + ' ' + std::to_string(epoch) + ' ' +
           std::to_string(instance) + ' ' + interface_info.server_class + ' ' + service;
}

} // namespace drill
