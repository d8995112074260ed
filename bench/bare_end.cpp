// SPDX-License-Identifier: Apache-2.0

// A process that has what a client of the service (or its server) has in DDS, and nothing else: for each
// operation a request topic and a reply topic with a writer and a reader, and the announcements. It tells how
// long it took, from making the participant, until all of its endpoints had matched, and stays until its
// standard input ends.
//   bare_end client|server
// It uses no more of C++ than needs no library.

#include <VarnelRMI_topics.h>
#include <dds/dds.h>
#include <dds_rmi.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace {

struct Operation
{
    const char* name;
    const dds_topic_descriptor_t* request;
    const dds_topic_descriptor_t* reply;
};

#define OPERATION(name)                                                                                      \
    {                                                                                                        \
#name, &DDS_RMI_VarnelRMI_VarnelRMIService_##name##_request_desc,                                    \
            &DDS_RMI_VarnelRMI_VarnelRMIService_##name##_reply_desc                                          \
    }
constexpr Operation operations[] = {OPERATION(network_commission),
                                    OPERATION(network_decommission),
                                    OPERATION(network_add_nodes),
                                    OPERATION(network_remove_nodes),
                                    OPERATION(advertising),
                                    OPERATION(network_get_node_list),
                                    OPERATION(network_get_info),
                                    OPERATION(node_get_config),
                                    OPERATION(node_set_config),
                                    OPERATION(node_get_data),
                                    OPERATION(network_get_nodes_status),
                                    OPERATION(node_set_config_revert),
                                    OPERATION(test_node_create),
                                    OPERATION(test_node_set_sensor_data)};
#undef OPERATION
constexpr int operation_count = sizeof operations / sizeof operations[0];

struct Ends
{
    dds_entity_t writers[operation_count + 2];
    int writer_count;
    dds_entity_t readers[operation_count + 2];
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

dds_entity_t make_topic(dds_entity_t participant, const dds_topic_descriptor_t* type, const char* suffix,
                        const char* name)
{
    char full_name[100];
    (void)std::snprintf(full_name, sizeof full_name, "bare_%s_%s", name, suffix);
    return dds_create_topic(participant, type, full_name, nullptr, nullptr);
}

void add_operations(Ends& ends, dds_entity_t participant, bool client)
{
    dds_qos_t* const qos = make_qos(false);
    for (const Operation& operation : operations) {
        const dds_entity_t request = make_topic(participant, operation.request, "request", operation.name);
        const dds_entity_t reply = make_topic(participant, operation.reply, "reply", operation.name);
        ends.readers[ends.reader_count++] =
            dds_create_reader(participant, client ? reply : request, qos, nullptr);
        ends.writers[ends.writer_count++] =
            dds_create_writer(participant, client ? request : reply, qos, nullptr);
    }
    dds_delete_qos(qos);
}

void add_announcements(Ends& ends, dds_entity_t participant, bool client)
{
    dds_qos_t* const qos = make_qos(true);
    const dds_entity_t services =
        make_topic(participant, &DDS_RMI_Identification_desc, "announcement", "service");
    if (client) {
        ends.readers[ends.reader_count++] = dds_create_reader(participant, services, qos, nullptr);
    } else {
        ends.writers[ends.writer_count++] = dds_create_writer(participant, services, qos, nullptr);
        const dds_entity_t types = make_topic(participant, &DDS_RMI_Definition_desc, "announcement", "type");
        (void)dds_create_writer(participant, types, qos, nullptr); // which nobody reads
    }
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
    add_announcements(ends, participant, client);
    add_operations(ends, participant, client);
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
