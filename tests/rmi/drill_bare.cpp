// SPDX-License-Identifier: Apache-2.0
// The least that request and reply can cost on Cyclone alone: a client has one writer for its requests and
// one reader for its replies, the server one reader for all requests and one writer for the replies to each
// client.

#include <dds/dds.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <chrono>
#include <iostream>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "bare.h"

namespace {

using Clock = std::chrono::steady_clock;

struct Options
{
    unsigned lease_seconds = 60;
    unsigned pause_us = 0;
};

dds_return_t check(dds_return_t result)
{
    if (result < 0)
        throw std::runtime_error(dds_strretcode(-result));
    return result;
}

double microseconds_since(Clock::time_point start)
{
    return std::chrono::duration<double, std::micro>(Clock::now() - start).count();
}

class Qos
{
public:
    explicit Qos(const std::string& partition = "")
    {
        dds_qset_reliability(m_qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
        dds_qset_history(m_qos, DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
        if (!partition.empty())
            dds_qset_partition1(m_qos, partition.c_str());
    }
    ~Qos() { dds_delete_qos(m_qos); }
    Qos(const Qos&) = delete;
    Qos& operator=(const Qos&) = delete;

    dds_qos_t* get() const { return m_qos; }

private:
    dds_qos_t* m_qos = dds_create_qos();
};

class Participant
{
public:
    explicit Participant(unsigned lease_seconds)
    {
        dds_qos_t* const qos = dds_create_qos();
        dds_qset_liveliness(qos, DDS_LIVELINESS_AUTOMATIC, DDS_SECS(lease_seconds));
        m_handle = check(dds_create_participant(DDS_DOMAIN_DEFAULT, qos, nullptr));
        dds_delete_qos(qos);
        m_requests = check(dds_create_topic(m_handle, &Bare_Request_desc, "bare_request", nullptr, nullptr));
        m_replies = check(dds_create_topic(m_handle, &Bare_Reply_desc, "bare_reply", nullptr, nullptr));
        m_waitset = check(dds_create_waitset(m_handle));
    }
    ~Participant() { dds_delete(m_handle); }
    Participant(const Participant&) = delete;
    Participant& operator=(const Participant&) = delete;

    dds_entity_t get() const { return m_handle; }
    dds_entity_t requests() const { return m_requests; }
    dds_entity_t replies() const { return m_replies; }

    void watch(dds_entity_t endpoint, std::uint32_t status) const
    {
        check(dds_set_status_mask(endpoint, status));
        check(dds_waitset_attach(m_waitset, endpoint, 0));
    }
    void wait(dds_duration_t longest) const { check(dds_waitset_wait(m_waitset, nullptr, 0, longest)); }

private:
    dds_entity_t m_handle;
    dds_entity_t m_requests;
    dds_entity_t m_replies;
    dds_entity_t m_waitset;
};

bool is_matched(dds_entity_t writer)
{
    dds_publication_matched_status_t status{};
    check(dds_get_publication_matched_status(writer, &status));
    return status.current_count > 0;
}

/// Hands each valid sample in a reader to `use`.
template <class Sample, class Use>
void take_all(dds_entity_t reader, Use use)
{
    void* samples[32] = {};
    dds_sample_info_t infos[32];
    const dds_return_t count = check(dds_take(reader, samples, infos, 32, 32));
    for (dds_return_t i = 0; i < count; ++i)
        if (infos[i].valid_data)
            use(*static_cast<const Sample*>(samples[i]));
    if (count > 0)
        check(dds_return_loan(reader, samples, count));
}

/// Whether the standard input has ended, and a line that another thread must answer.
class Orders
{
public:
    Orders() : m_thread([this] { read(); }) {}
    ~Orders() { m_thread.join(); }
    Orders(const Orders&) = delete;
    Orders& operator=(const Orders&) = delete;

    bool ended() const
    {
        const std::lock_guard lock(m_mutex);
        return m_ended;
    }
    /// Empty when there is none.
    std::string take_line()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_line, "");
    }

private:
    void read()
    {
        for (std::string line; std::getline(std::cin, line);) {
            const std::lock_guard lock(m_mutex);
            m_line = line;
        }
        const std::lock_guard lock(m_mutex);
        m_ended = true;
    }

    mutable std::mutex m_mutex; // guards the two below
    std::string m_line;
    bool m_ended = false;
    std::thread m_thread;
};

constexpr dds_duration_t look_at_orders = DDS_MSECS(20);

class Server
{
public:
    explicit Server(const Participant& participant) : m_participant(participant)
    {
        m_reader = check(dds_create_reader(participant.get(), participant.requests(), Qos().get(), nullptr));
        participant.watch(m_reader, DDS_DATA_AVAILABLE_STATUS);
    }

    void serve_for_a_while()
    {
        m_participant.wait(look_at_orders);
        take_all<Bare_Request>(m_reader, [this](const Bare_Request& request) { on_request(request); });
        for (auto& [client, peer] : m_peers)
            answer(peer);
    }

private:
    struct Peer
    {
        dds_entity_t writer = 0;
        std::vector<std::uint32_t> waiting; // numbers of requests
    };

    void on_request(const Bare_Request& request)
    {
        Peer& peer = m_peers[request.client];
        if (peer.writer == 0) {
            peer.writer = check(dds_create_writer(m_participant.get(), m_participant.replies(),
                                                  Qos(request.client).get(), nullptr));
            m_participant.watch(peer.writer, DDS_PUBLICATION_MATCHED_STATUS);
        }
        peer.waiting.push_back(request.number);
    }
    static void answer(Peer& peer)
    {
        if (peer.waiting.empty() || !is_matched(peer.writer))
            return;
        for (const std::uint32_t number : peer.waiting) {
            const Bare_Reply reply{number};
            check(dds_write(peer.writer, &reply));
        }
        peer.waiting.clear();
    }

    const Participant& m_participant;
    dds_entity_t m_reader;
    std::map<std::string, Peer> m_peers;
};

class Client
{
public:
    explicit Client(const Participant& participant)
        : m_participant(participant), m_name(own_name()),
          m_writer(check(dds_create_writer(participant.get(), participant.requests(), Qos().get(), nullptr))),
          m_reader(
              check(dds_create_reader(participant.get(), participant.replies(), Qos(m_name).get(), nullptr)))
    {
        participant.watch(m_writer, DDS_PUBLICATION_MATCHED_STATUS);
        participant.watch(m_reader, DDS_DATA_AVAILABLE_STATUS);
    }

    bool is_bound() const { return is_matched(m_writer); }
    void wait() const { m_participant.wait(look_at_orders); }

    void send()
    {
        const Bare_Request request{m_name.data(), ++m_number};
        check(dds_write(m_writer, &request));
    }
    bool take_reply()
    {
        bool found = false;
        take_all<Bare_Reply>(m_reader, [&](const Bare_Reply& reply) { found |= reply.number == m_number; });
        return found;
    }

private:
    static std::string own_name()
    {
        return std::to_string(::getpid()) + '-' + std::to_string(Clock::now().time_since_epoch().count());
    }

    const Participant& m_participant;
    std::string m_name;
    dds_entity_t m_writer;
    dds_entity_t m_reader;
    std::uint32_t m_number = 0;
};

int run_server(const Options& options)
{
    const Participant participant(options.lease_seconds);
    Server server(participant);
    const Orders orders;
    std::cout << "serving" << std::endl;
    while (!orders.ended())
        server.serve_for_a_while();
    return 0;
}

void print(const std::string& title, std::vector<double>& microseconds)
{
    std::sort(microseconds.begin(), microseconds.end());
    const auto percentile = [&](std::size_t percent) {
        return microseconds.empty() ? 0 : microseconds[(microseconds.size() - 1) * percent / 100];
    };
    std::cout << title << " replied=" << microseconds.size() << " p50_us=" << percentile(50)
              << " p99_us=" << percentile(99) << std::endl;
    microseconds.clear();
}

/// One call at a time; a call to a server that has gone is given up soon.
int run_client(const Options& options)
{
    constexpr double patience_us = 2e5;
    const auto start = Clock::now();
    const Participant participant(options.lease_seconds);
    Client client(participant);
    Orders orders;
    while (!client.is_bound() && !orders.ended())
        client.wait();
    std::cout << "bound ms=" << microseconds_since(start) / 1000 << std::endl;
    std::vector<double> microseconds;
    while (!orders.ended()) {
        const auto sent = Clock::now();
        client.send();
        bool replied = false;
        while (!(replied = client.take_reply()) && microseconds_since(sent) < patience_us && !orders.ended())
            client.wait();
        if (replied)
            microseconds.push_back(microseconds_since(sent));
        if (const std::string line = orders.take_line(); !line.empty())
            print(line, microseconds);
        ::usleep(options.pause_us);
    }
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    Options options;
    CLI::App app{"Request and reply on Cyclone alone, to compare with, until its standard input ends."};
    app.require_subcommand(1);
    app.fallthrough();
    app.add_option("--lease", options.lease_seconds, "Seconds after which the others forget this process")
        ->capture_default_str();
    app.add_option("--pause", options.pause_us, "Microseconds between a client's calls")
        ->capture_default_str();
    const auto* const server = app.add_subcommand("server", "Answer requests");
    app.add_subcommand("client", "Make calls; a line on standard input asks for the counts since the last");
    CLI11_PARSE(app, argc, argv);
    try {
        return server->parsed() ? run_server(options) : run_client(options);
    } catch (const std::exception& error) {
        std::cerr << "drill_bare: " << error.what() << std::endl;
        return 1;
    }
}
