// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FOREIGN_PEER_H
#define TESTS_RMI_FOREIGN_PEER_H

#include <dds/dds.h>

#include <cstdint>
#include <string>
#include <vector>

#include "dds_rmi.h"
#include "ddsrmi/interface_info.h"

namespace drill {

namespace rmi = org::opensplice::DDS_RMI;

/// How long a foreign peer waits for what must come.
constexpr dds_duration_t foreign_patience = DDS_SECS(60);

/// A process that is none of ours: it has Cyclone alone, and speaks the wire of the RMI layer, or anything
/// else, with what it makes here. Throws std::runtime_error when Cyclone refuses something.
class ForeignPeer
{
public:
    ForeignPeer();
    ~ForeignPeer();
    ForeignPeer(const ForeignPeer&) = delete;
    ForeignPeer& operator=(const ForeignPeer&) = delete;

    dds_entity_t participant() const { return m_participant; }

    // Reliable, and everything is kept. They go with the peer. The partition "*" meets all others; a topic
    // has one type within one peer.
    dds_entity_t make_writer(const dds_topic_descriptor_t& type, const std::string& topic,
                             const std::string& partition, const std::string& user_data = {}) const;
    dds_entity_t make_reader(const dds_topic_descriptor_t& type, const std::string& topic,
                             const std::string& partition, const std::string& user_data = {}) const;

    void wait_for_reader(dds_entity_t writer) const;

    /// A name for a partition of its own, such as clients and servers have.
    std::string make_path() const;

private:
    dds_entity_t m_participant;
};

dds_return_t check(dds_return_t result, const std::string& what);

void write(dds_entity_t writer, const void* sample);
void wait_for_acknowledgements(dds_entity_t writer);

/// One message of a reader; nothing while none has come.
template <class Message>
class Taken
{
public:
    explicit Taken(dds_entity_t reader) : m_reader(reader)
    {
        m_count = check(dds_take(reader, &m_sample, &m_info, 1, 1), "take");
    }
    ~Taken()
    {
        if (m_sample != nullptr)
            dds_return_loan(m_reader, &m_sample, 1);
    }
    Taken(const Taken&) = delete;
    Taken& operator=(const Taken&) = delete;

    bool has_come() const { return m_count > 0; }
    bool is_valid() const { return m_info.valid_data; }
    const Message& message() const { return *static_cast<const Message*>(m_sample); }

private:
    const dds_entity_t m_reader;
    void* m_sample = nullptr;
    dds_sample_info_t m_info{};
    dds_return_t m_count = 0;
};

/// Waits until there is something to take; false when nothing has come by then.
bool wait_for_message(const ForeignPeer& peer, dds_entity_t reader, dds_duration_t patience);

/// What a peer says of itself and of the interface when a session is begun. The object must outlive the
/// message.
class Introduction
{
public:
    Introduction(const rmi::InterfaceInfo& interface_info, std::string service, std::int32_t instance);
    Introduction(const Introduction&) = delete;
    Introduction& operator=(const Introduction&) = delete;

    template <class Message>
    void put_into(Message& message)
    {
        message.about_sender._buffer = &m_introduction;
        message.about_sender._length = 1;
        message.about_sender._maximum = 1;
    }

private:
    std::string m_service;
    std::vector<char*> m_signatures;
    DDS_RMI_Introduction m_introduction{};
};

/// The hash of the interface's operation of that name.
std::uint64_t hash_of(const rmi::InterfaceInfo& interface_info, const std::string& operation);

/// What a server's reader has as its user data.
std::string announcement(const rmi::InterfaceInfo& interface_info, const std::string& service,
                         std::int32_t instance, std::uint64_t epoch, unsigned wire_version);

} // namespace drill

#endif
