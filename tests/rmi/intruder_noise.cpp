// SPDX-License-Identifier: Apache-2.0
#include "intruder_noise.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "drill_InterfaceInfo.h"
#include "foreign_client.h"
#include "foreign_server.h"
#include "intruder.h"

namespace intruder {

namespace {

using drill::ForeignPeer;
using drill::rmi::RequestKind;
using Random = std::mt19937;

constexpr unsigned kinds = 12; // more than either side knows

const drill::rmi::InterfaceInfo& range()
{
    return DDS_RMI::Drill::Range_interface_info();
}

struct Lane
{
    std::string topic;
    const dds_topic_descriptor_t& type;
};

const std::array<Lane, 2>& lanes()
{
    static const std::array<Lane, 2> all{{
        {range().request_topic, DDS_RMI_Request_desc},
        {range().reply_topic, DDS_RMI_Reply_desc},
    }};
    return all;
}

/// The type under another name and without the description that would give it away.
dds_topic_descriptor_t forged(const dds_topic_descriptor_t& type, const char* name)
{
    const std::uint32_t flags = type.m_flagset & ~static_cast<std::uint32_t>(DDS_TOPIC_XTYPES_METADATA);
    return {type.m_size, type.m_align, flags,       type.m_nkeys, name,         type.m_keys,
            type.m_nops, type.m_ops,   type.m_meta, {nullptr, 0}, {nullptr, 0}, 0};
}

void append(std::vector<std::uint8_t>& bytes, std::uint64_t number, unsigned size)
{
    constexpr unsigned bits_in_a_byte = 8;
    for (unsigned i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (i * bits_in_a_byte)));
}

/// A call as it travels; read as a reply, it is one that ends too early.
std::vector<std::uint8_t> well_formed()
{
    std::vector<std::uint8_t> bytes;
    append(bytes, drill::rmi::wire_version, 2);
    append(bytes, static_cast<std::uint64_t>(RequestKind::call), 2);
    append(bytes, 1000, 4);                // patience
    append(bytes, 0x1234567890abcdefU, 8); // session
    append(bytes, 1, 8);                   // number
    append(bytes, drill::hash_of(range(), "echo"), 8);
    append(bytes, 0, 4); // introductions
    append(bytes, 4, 4); // bytes of arguments
    append(bytes, 42, 4);
    return bytes;
}

std::uint8_t any_byte(Random& random)
{
    return static_cast<std::uint8_t>(std::uniform_int_distribution<int>(0, 255)(random));
}

/// Cut off or lengthened to `size`, with some bytes replaced; or nothing but chance.
std::vector<std::uint8_t> mangled(std::size_t size, Random& random)
{
    static const std::vector<std::uint8_t> origin = well_formed();
    std::vector<std::uint8_t> bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return any_byte(random); });
    if (any_byte(random) < 64)
        return bytes;
    std::copy_n(origin.begin(), std::min(size, origin.size()), bytes.begin());
    for (int changes = any_byte(random) % 4; changes > 0; --changes)
        bytes[random() % size] = any_byte(random) < 128 ? 0xff : any_byte(random);
    return bytes;
}

void publish_bytes(const dds_topic_descriptor_t& type, unsigned samples, Random& random)
{
    const ForeignPeer peer;
    for (const Lane& lane : lanes()) {
        const dds_topic_descriptor_t disguised = forged(type, lane.type.m_typename);
        const dds_entity_t writer = peer.make_writer(disguised, lane.topic, "*");
        peer.wait_for_reader(writer);
        for (unsigned i = 0; i < samples; ++i)
            drill::write(writer, mangled(type.m_size, random).data());
        drill::wait_for_acknowledgements(writer);
    }
}

void publish_other_type(unsigned samples)
{
    const ForeignPeer peer;
    char name[] = "drill";
    const Intruder_Stranger stranger{name, 0.5};
    for (const Lane& lane : lanes()) {
        const dds_entity_t writer = peer.make_writer(Intruder_Stranger_desc, lane.topic, "*");
        for (unsigned i = 0; i < samples; ++i)
            drill::write(writer, &stranger);
    }
}

/// Of every kind, and of another wire version each third time; without a session that anybody knows.
template <class Message>
void make_odd(Message& message, unsigned variant)
{
    message.kind = static_cast<std::uint16_t>(variant % kinds);
    message.wire_version = static_cast<std::uint16_t>(drill::rmi::wire_version + (variant % 3 == 0 ? 1 : 0));
}

void publish_odd_requests(const std::string& reply_path, unsigned samples)
{
    const ForeignPeer peer;
    const dds_entity_t writer =
        peer.make_writer(DDS_RMI_Request_desc, range().request_topic, "*", reply_path);
    peer.wait_for_reader(writer);
    drill::Introduction to_another_service(range(), "dril", 1);
    drill::Introduction to_another_instance(range(), "drill", -7);
    std::vector<std::uint8_t> arguments(8, 1);
    for (unsigned i = 0; i < samples; ++i) {
        DDS_RMI_Request request = drill::make_request({}, 0x5e5510ffU + i, i);
        make_odd(request, i);
        request.operation = drill::hash_of(range(), "stamp");
        request.arguments._buffer = arguments.data();
        request.arguments._length = request.arguments._maximum = 8;
        (i % 2 == 0 ? to_another_service : to_another_instance).put_into(request);
        drill::write(writer, &request);
    }
    drill::wait_for_acknowledgements(writer);
}

void publish_odd_replies(unsigned samples)
{
    const ForeignPeer peer;
    const dds_entity_t writer = peer.make_writer(DDS_RMI_Reply_desc, range().reply_topic, "*");
    peer.wait_for_reader(writer);
    drill::Introduction introduction(range(), "drill", 1);
    for (unsigned i = 0; i < samples; ++i) {
        DDS_RMI_Reply reply = drill::make_reply({}, 0x5e5510ffU + i, i, {1, 1});
        make_odd(reply, i);
        introduction.put_into(reply);
        drill::write(writer, &reply);
    }
    drill::wait_for_acknowledgements(writer);
}

} // namespace

void make_noise(unsigned samples, unsigned seed)
{
    const std::array<const dds_topic_descriptor_t*, 5> types{&Intruder_Bytes4_desc, &Intruder_Bytes20_desc,
                                                             &Intruder_Bytes40_desc, &Intruder_Bytes64_desc,
                                                             &Intruder_Bytes1000_desc};
    Random random(seed);
    for (const dds_topic_descriptor_t* const type : types)
        publish_bytes(*type, samples, random);
    publish_other_type(samples);
    for (const char* const reply_path : {"", "*", "0badc0de-1"})
        publish_odd_requests(reply_path, samples);
    publish_odd_replies(samples);
}

} // namespace intruder
