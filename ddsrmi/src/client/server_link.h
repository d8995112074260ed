// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_SERVER_LINK_H
#define DDSRMI_CLIENT_SERVER_LINK_H

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "client/client_session.h"
#include "clock.h"
#include "dds/entity.h"
#include "dds/entity_listener.h"
#include "dds/partitioned.h"
#include "dds/signal.h"
#include "ddsrmi/interface_info.h"
#include "discovery/service_watch.h"

struct DDS_RMI_Definition;
struct DDS_RMI_Reply;

namespace org::opensplice::DDS_RMI {

/// Who a proxy is and whom it talks to.
struct ProxyNames
{
    std::string service;
    std::string proxy;
    DDS::Long proxy_instance;
};

/// One proxy's way to one server: a request writer in the server's partition, and the session that the two
/// have.
///
/// A session is begun when the writer has matched the server's reader, and the server's reply writer has
/// come: `hello` is repeated until `welcome` comes. It ends when one side says, or notices, that it has
/// forgotten the other; then the next one is begun. Four times in a lease the server is asked whether it is
/// there; when nothing is heard of it for a lease it is silent.
///
/// All but the session belongs to the channel's thread.
class ServerLink
{
public:
    /// The last requests of a session that has ended, and why it has.
    struct Loss
    {
        std::vector<OutstandingRequest> requests;
        std::string why;
    };

    ServerLink(const Entity& participant, const InterfaceInfo& interface_info, const ProxyNames& names,
               const std::string& reply_path, const Server& server, std::shared_ptr<Signal> signal);
    ~ServerLink();
    ServerLink(const ServerLink&) = delete;
    ServerLink& operator=(const ServerLink&) = delete;

    const Server& server() const { return m_server; }

    /// When tend() is to be called next, unless the signal is raised before.
    Clock::time_point care_due() const;
    /// Notices what has become of the match, says hello, and asks whether the server is there.
    void tend(Clock::time_point now);

    /// To be called when a writer of replies has come: if it is the server's, the two can meet.
    void notice_reply_writers(Clock::time_point now);

    /// Whether it is this link's server that speaks; takes in what it says of the session.
    bool take_in(const DDS_RMI_Reply& reply);

    /// Null before the first session.
    const std::shared_ptr<ClientSession>& session() const { return m_session; }
    /// Whether there is a session and the server is not silent.
    bool connected() const { return m_session != nullptr && !m_silent; }
    /// Whether the server has said that a newer one of its service and instance is about.
    bool is_second_choice() const { return m_second_choice; }
    /// For each operation of the interface whether the server has it, with the same types.
    bool knows(std::size_t operation) const { return m_known_operations[operation]; }
    const std::vector<bool>& known_operations() const { return m_known_operations; }

    /// What the ends of sessions have left since the last call.
    std::vector<Loss> take_losses();

    /// Ends the session, if there is one.
    void end_session(const std::string& why);

private:
    void check_match(Clock::time_point now);
    dds_instance_handle_t matched_reader() const;
    void begin_meeting(Clock::time_point first_hello);
    void say_hello();
    void on_welcome(const DDS_RMI_Reply& reply);
    void compare_interfaces(const DDS_RMI_Definition& known_there);
    void check_silence(Clock::time_point now);

    const InterfaceInfo& m_interface;
    const ProxyNames& m_names;
    const Server m_server;
    const std::string m_name; ///< of the server, for messages
    const std::chrono::nanoseconds m_lease;

    std::unique_ptr<EntityListener> m_listener;
    std::shared_ptr<const Partitioned> m_writer;

    std::uint64_t m_meeting = 0; // its number
    std::shared_ptr<ClientSession> m_session;
    std::vector<bool> m_known_operations;
    std::vector<Loss> m_losses;

    Clock::time_point m_last_tended{};
    Clock::time_point m_last_heard{};
    Clock::duration m_hello_pause{};
    Clock::time_point m_next_hello = Clock::time_point::max();
    Clock::time_point m_next_ping = Clock::time_point::max();

    std::atomic<dds_instance_handle_t> m_reader{0}; // of the server, while it is matched
    std::atomic<bool> m_match_changed{true};
    std::atomic<bool> m_reader_has_changed{false};
    bool m_silent = false;
    bool m_second_choice = false;
    bool m_differences_reported = false;
};

} // namespace org::opensplice::DDS_RMI

#endif
