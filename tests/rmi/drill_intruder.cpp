// SPDX-License-Identifier: Apache-2.0
// Publishes what no peer would, on the topics of drill.idl and in every partition: well-formed samples with
// headers that fit nobody, samples of other types, and bytes that are no sample at all.

#include <dds/dds.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <limits>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "dds_rmi.h"
#include "drill_topics.h"
#include "intruder.h"

namespace {

using Random = std::mt19937;

constexpr dds_duration_t patience = DDS_SECS(60);

dds_return_t check(dds_return_t result, const std::string& what)
{
    if (result < 0)
        throw std::runtime_error(what + ": " + dds_strretcode(-result));
    return result;
}

struct QosDeleter
{
    void operator()(dds_qos_t* qos) const { dds_delete_qos(qos); }
};
using Qos = std::unique_ptr<dds_qos_t, QosDeleter>;

Qos make_qos()
{
    Qos qos(dds_create_qos());
    dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, patience);
    dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    dds_qset_partition1(qos.get(), "*");
    return qos;
}

/// Within one participant a topic has one type.
class Participant
{
public:
    Participant()
        : m_handle(check(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr), "participant"))
    {
    }
    ~Participant() { dds_delete(m_handle); }
    Participant(const Participant&) = delete;
    Participant& operator=(const Participant&) = delete;

    dds_entity_t get() const { return m_handle; }

private:
    dds_entity_t m_handle;
};

/// Goes with its participant.
class Writer
{
public:
    Writer(const Participant& participant, const dds_topic_descriptor_t& type, const std::string& topic_name,
           const Qos& qos = make_qos())
        : m_participant(participant.get())
    {
        const dds_entity_t topic =
            check(dds_create_topic(m_participant, &type, topic_name.c_str(), nullptr, nullptr), topic_name);
        m_writer = check(dds_create_writer(m_participant, topic, qos.get(), nullptr), "writer");
        check(dds_set_status_mask(m_writer, DDS_PUBLICATION_MATCHED_STATUS), "writer");
    }

    void wait_for_reader() const
    {
        const dds_entity_t waitset = check(dds_create_waitset(m_participant), "waitset");
        check(dds_waitset_attach(waitset, m_writer, 0), "waitset");
        while (readers() == 0)
            if (check(dds_waitset_wait(waitset, nullptr, 0, patience), "waitset") == 0)
                throw std::runtime_error("no reader has matched");
    }
    void write(const void* sample) const { check(dds_write(m_writer, sample), "write"); }
    void dispose(const void* sample) const { check(dds_dispose(m_writer, sample), "dispose"); }
    void wait_for_acknowledgements() const { check(dds_wait_for_acks(m_writer, patience), "no answer"); }

private:
    std::uint32_t readers() const
    {
        dds_publication_matched_status_t status{};
        check(dds_get_publication_matched_status(m_writer, &status), "writer");
        return status.current_count;
    }

    dds_entity_t m_participant;
    dds_entity_t m_writer = 0;
};

/// The type under another name and without the description that would give it away.
dds_topic_descriptor_t forged(const dds_topic_descriptor_t& type, const char* name)
{
    const std::uint32_t flags = type.m_flagset & ~static_cast<std::uint32_t>(DDS_TOPIC_XTYPES_METADATA);
    return {type.m_size, type.m_align, flags,       type.m_nkeys, name,         type.m_keys,
            type.m_nops, type.m_ops,   type.m_meta, {nullptr, 0}, {nullptr, 0}, 0};
}

/// The bytes of a request or reply of "echo" as a peer would send them.
class WellFormed
{
public:
    WellFormed()
    {
        put_text("Drill::Range");
        put_text("drill");
        put_number(1);
        put_text("drill_Proxy");
        put_number(1);
        put_number(7);
        put_number(42);
    }
    const std::vector<unsigned char>& bytes() const { return m_bytes; }

private:
    void put_number(std::uint32_t number)
    {
        m_bytes.resize((m_bytes.size() + 3) / 4 * 4);
        for (int shift = 0; shift < 32; shift += 8)
            m_bytes.push_back(static_cast<unsigned char>(number >> shift));
    }
    void put_text(const std::string& text)
    {
        put_number(static_cast<std::uint32_t>(text.size() + 1));
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        m_bytes.push_back(0);
    }

    std::vector<unsigned char> m_bytes;
};

unsigned char any_byte(Random& random)
{
    return static_cast<unsigned char>(std::uniform_int_distribution<int>(0, 255)(random));
}

/// Cut off or lengthened to `size`, with some bytes replaced; or nothing but chance.
std::vector<unsigned char> mangled(std::size_t size, Random& random)
{
    static const std::vector<unsigned char> origin = WellFormed().bytes();
    std::vector<unsigned char> bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return any_byte(random); });
    if (any_byte(random) < 64)
        return bytes;
    std::copy_n(origin.begin(), std::min(size, origin.size()), bytes.begin());
    for (int changes = any_byte(random) % 4; changes > 0; --changes)
        bytes[random() % size] = any_byte(random) < 128 ? 0xff : any_byte(random);
    return bytes;
}

struct Lane
{
    const char* topic;
    const dds_topic_descriptor_t& type;
};

const std::array<Lane, 4>& lanes()
{
    static const std::array<Lane, 4> all{{
        {"topic___Drill__Range__echo_request", DDS_RMI_Drill_Range_echo_request_desc},
        {"topic___Drill__Range__echo_reply", DDS_RMI_Drill_Range_echo_reply_desc},
        {"topic___Drill__Range__echo_text_request", DDS_RMI_Drill_Range_echo_text_request_desc},
        {"topic___Drill__Range__echo_text_reply", DDS_RMI_Drill_Range_echo_text_reply_desc},
    }};
    return all;
}

void publish_bytes(const Participant& participant, const dds_topic_descriptor_t& type, unsigned samples,
                   Random& random)
{
    for (const Lane& lane : lanes()) {
        const Writer writer(participant, forged(type, lane.type.m_typename), lane.topic);
        writer.wait_for_reader();
        for (unsigned i = 0; i < samples; ++i)
            writer.write(mangled(type.m_size, random).data());
        writer.wait_for_acknowledgements();
    }
}

void publish_other_type(const Participant& participant, unsigned samples)
{
    char name[] = "drill";
    const Intruder_Stranger stranger{name, 0.5};
    for (const Lane& lane : lanes()) {
        const Writer writer(participant, Intruder_Stranger_desc, lane.topic);
        for (unsigned i = 0; i < samples; ++i)
            writer.write(&stranger);
    }
}

/// A header that nobody waits for: of another service, another instance, another class, an unknown client.
DDS_RMI_Request_Header odd_header(unsigned variant)
{
    static char own_class[] = "Drill::Range";
    static char other_class[] = "Drill::Other";
    static char own_name[] = "drill";
    static char other_name[] = "dril";
    static char client[] = "nobody";
    DDS_RMI_Request_Header header{};
    header.service_id.server_class = variant % 5 == 0 ? other_class : own_class;
    header.service_id.server_impl = variant % 3 == 0 ? other_name : own_name;
    header.service_id.server_instance = variant % 2 == 0 ? -7 : 1;
    header.client_id.client_impl = client;
    header.client_id.client_instance = static_cast<std::int32_t>(variant);
    header.client_id.request_id = std::numeric_limits<std::uint32_t>::max() - variant;
    return header;
}

/// Well-formed samples of "echo", each followed by the end of its instance.
template <class Sample>
void publish_odd_headers(const Participant& participant, const Lane& lane, unsigned samples)
{
    const Writer writer(participant, lane.type, lane.topic);
    writer.wait_for_reader();
    for (unsigned i = 0; i < samples; ++i) {
        const Sample sample{odd_header(i), 42};
        writer.write(&sample);
        writer.dispose(&sample);
    }
    writer.wait_for_acknowledgements();
}

/// Announcements of the service by servers that do not exist.
class FalseAnnouncements
{
public:
    FalseAnnouncements()
    {
        char server_class[] = "Drill::Range";
        char service[] = "drill";
        const DDS_RMI_Identification identification{server_class, service, 1};
        for (const char* const path : {"", "*", "0badc0de-1"}) {
            const Writer writer(m_participant, DDS_RMI_Identification_desc, "DDS_ServiceIdentification",
                                announcement_qos(path));
            writer.wait_for_reader();
            writer.write(&identification);
        }
    }

private:
    static Qos announcement_qos(const std::string& path)
    {
        Qos qos(dds_create_qos());
        dds_qset_reliability(qos.get(), DDS_RELIABILITY_RELIABLE, patience);
        dds_qset_history(qos.get(), DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
        dds_qset_durability(qos.get(), DDS_DURABILITY_TRANSIENT_LOCAL);
        dds_qset_userdata(qos.get(), path.data(), path.size());
        return qos;
    }

    Participant m_participant;
};

void intrude(unsigned samples, unsigned seed)
{
    const std::array<const dds_topic_descriptor_t*, 5> types{&Intruder_Bytes4_desc, &Intruder_Bytes20_desc,
                                                             &Intruder_Bytes40_desc, &Intruder_Bytes64_desc,
                                                             &Intruder_Bytes1000_desc};
    const std::array<Participant, 5> participants;
    const Participant stranger;
    const Participant well_formed;
    Random random(seed);
    for (std::size_t i = 0; i < types.size(); ++i)
        publish_bytes(participants[i], *types[i], samples, random);
    publish_other_type(stranger, samples);
    publish_odd_headers<DDS_RMI_Drill_Range_echo_request>(well_formed, lanes()[0], samples);
    publish_odd_headers<DDS_RMI_Drill_Range_echo_reply>(well_formed, lanes()[1], samples);
}

void wait_for_end_of_input()
{
    std::string line;
    while (std::getline(std::cin, line)) {
    }
}

int run(unsigned samples, unsigned seed)
{
    try {
        const FalseAnnouncements announcements;
        std::cout << "announced" << std::endl;
        if (samples > 0)
            intrude(samples, seed);
        std::cout << "published, seed " << seed << std::endl;
        wait_for_end_of_input();
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "drill_intruder: " << error.what() << std::endl;
        return 1;
    }
}

} // namespace

int main(int argc, char* argv[])
{
    unsigned samples = 100;
    unsigned seed = std::random_device{}();
    CLI::App app{
        "Publishes what no peer would on the topics of the interface that the tests of the RMI layer "
        "serve. Needs a server and a client to be there; stays until its standard input ends."};
    app.add_option("--samples", samples,
                   "How many of each kind, on each topic; 0 for false announcements only")
        ->capture_default_str();
    app.add_option("--seed", seed, "Of the random numbers; a new one each time unless given");
    CLI11_PARSE(app, argc, argv);
    return run(samples, seed);
}
