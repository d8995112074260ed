// SPDX-License-Identifier: Apache-2.0
// Makes and deletes, on Cyclone alone, the endpoints that a client has for one server after another, and
// prints what of each is left in memory for good: what Cyclone itself keeps, whoever uses it.
#include <dds/dds.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

#include "bare.h"

namespace {

dds_entity_t check(dds_entity_t entity)
{
    if (entity < 0)
        throw std::runtime_error(dds_strretcode(-entity));
    return entity;
}

long resident_kib()
{
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word)
        if (word == "VmRSS:")
            break;
    long kib = 0;
    status >> kib;
    return kib;
}

/// As one server's partitions and path names are.
void make_and_delete(dds_entity_t participant, int number)
{
    const std::string path = "1105953-d9df1e03-c2ff7cfe-1c1-" + std::to_string(100'000 + number);
    dds_qos_t* const qos = dds_create_qos();
    dds_qset_partition1(qos, path.c_str());
    dds_qset_userdata(qos, path.data(), path.size());
    dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, 0);
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    const dds_entity_t publisher = check(dds_create_publisher(participant, qos, nullptr));
    const dds_entity_t subscriber = check(dds_create_subscriber(participant, qos, nullptr));
    const dds_entity_t requests =
        check(dds_create_topic(participant, &Bare_Request_desc, "requests", nullptr, nullptr));
    const dds_entity_t replies =
        check(dds_create_topic(participant, &Bare_Reply_desc, "replies", nullptr, nullptr));
    const dds_entity_t writer = check(dds_create_writer(publisher, requests, qos, nullptr));
    const dds_entity_t reader = check(dds_create_reader(subscriber, replies, qos, nullptr));
    dds_delete_qos(qos);
    for (const dds_entity_t entity : {writer, reader, requests, replies, publisher, subscriber})
        dds_delete(entity);
}

} // namespace

int main(int argc, char* argv[])
{
    int rounds = 200;
    CLI::App app{"Prints how much memory Cyclone keeps of endpoints that have been deleted."};
    app.add_option("--rounds", rounds, "How many servers' endpoints to make and delete")
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);

    constexpr int warm_up = 20;
    try {
        const dds_entity_t participant = check(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr));
        for (int i = 0; i < warm_up; ++i)
            make_and_delete(participant, i);
        const long before = resident_kib();
        for (int i = 0; i < rounds; ++i)
            make_and_delete(participant, warm_up + i);
        std::cout << "kept_kib=" << static_cast<double>(resident_kib() - before) / rounds << std::endl;
        dds_delete(participant);
    } catch (const std::exception& error) {
        std::cerr << "drill_endpoints: " << error.what() << std::endl;
        return 1;
    }
    return 0;
}
