// SPDX-License-Identifier: Apache-2.0

// A process that has what a client of the service (or its server) has in DDS, and nothing else: a writer and
// a reader for the requests and replies, and a reader (or a writer) for the announcement of the service. It
// tells how long it took, from making the participant, until all of them had matched, and stays until its
// standard input ends.
//   bare_end client|server
// It uses no more of C++ than needs no library.

#include <dds/dds.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "raw.h"

namespace {

struct Ends
{
    dds_entity_t writers[2];
    int writer_count;
    dds_entity_t readers[2];
    int reader_count;
};

dds_qos_t* make_qos(bool durable)
{
    dds_qos_t* const qos = dds_create_qos();
    dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    if (durable)
        dds_qset_durability(qos, DDS_DURABILITY_TRANSIENT_LOCAL);
    return qos;
}

dds_entity_t make_topic(dds_entity_t participant, const dds_topic_descriptor_t* type, const char* name)
{
    return dds_create_topic(participant, type, name, nullptr, nullptr);
}

void add_writer(Ends& ends, dds_entity_t participant, dds_entity_t topic, const dds_qos_t* qos)
{
    ends.writers[ends.writer_count++] = dds_create_writer(participant, topic, qos, nullptr);
}

void add_reader(Ends& ends, dds_entity_t participant, dds_entity_t topic, const dds_qos_t* qos)
{
    ends.readers[ends.reader_count++] = dds_create_reader(participant, topic, qos, nullptr);
}

void add_exchange(Ends& ends, dds_entity_t participant, bool client)
{
    dds_qos_t* const qos = make_qos(false);
    const dds_entity_t requests = make_topic(participant, &Raw_Request_desc, "bare_request");
    const dds_entity_t replies = make_topic(participant, &Raw_Reply_desc, "bare_reply");
    add_reader(ends, participant, client ? replies : requests, qos);
    add_writer(ends, participant, client ? requests : replies, qos);
    dds_delete_qos(qos);
}

void add_announcement(Ends& ends, dds_entity_t participant, bool client)
{
    dds_qos_t* const qos = make_qos(true);
    const dds_entity_t services = make_topic(participant, &Raw_Announcement_desc, "bare_announcement");
    if (client)
        add_reader(ends, participant, services, qos);
    else
        add_writer(ends, participant, services, qos);
    dds_delete_qos(qos);
}

bool is_matched(dds_entity_t reader)
{
    dds_subscription_matched_status_t status = {};
    return dds_get_subscription_matched_status(reader, &status) == 0 && status.current_count > 0;
}

bool is_writer_matched(dds_entity_t writer)
{
    dds_publication_matched_status_t status = {};
    return dds_get_publication_matched_status(writer, &status) == 0 && status.current_count > 0;
}

bool all_matched(const Ends& ends)
{
    bool all = true;
    for (int i = 0; i < ends.reader_count; ++i)
        all = is_matched(ends.readers[i]) && all;
    for (int i = 0; i < ends.writer_count; ++i)
        all = is_writer_matched(ends.writers[i]) && all;
    return all;
}

void wait_until_matched(dds_entity_t participant, const Ends& ends)
{
    const dds_entity_t waitset = dds_create_waitset(participant);
    for (int i = 0; i < ends.reader_count; ++i) {
        (void)dds_set_status_mask(ends.readers[i],
                                  DDS_SUBSCRIPTION_MATCHED_STATUS | DDS_DATA_AVAILABLE_STATUS);
        (void)dds_waitset_attach(waitset, ends.readers[i], 0);
    }
    for (int i = 0; i < ends.writer_count; ++i) {
        (void)dds_set_status_mask(ends.writers[i], DDS_PUBLICATION_MATCHED_STATUS);
        (void)dds_waitset_attach(waitset, ends.writers[i], 0);
    }
    dds_attach_t triggered = 0;
    while (!all_matched(ends))
        (void)dds_waitset_wait(waitset, &triggered, 1, DDS_INFINITY);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    const bool client = std::strcmp(argv[1], "client") == 0;
    const dds_time_t begin = dds_time();
    const dds_entity_t participant = dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr);
    if (participant < 0)
        return 1;
    Ends ends = {};
    add_announcement(ends, participant, client);
    add_exchange(ends, participant, client);
    if (!client)
        (void)std::puts("ready");
    (void)std::fflush(stdout);
    wait_until_matched(participant, ends);
    (void)std::printf("matched after %.3f ms\n", static_cast<double>(dds_time() - begin) / 1e6);
    (void)std::fflush(stdout);
    char ignored = 0;
    while (read(STDIN_FILENO, &ignored, 1) > 0) {
    }
    (void)dds_delete(participant);
}
