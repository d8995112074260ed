// SPDX-License-Identifier: Apache-2.0
#include "dds/refused_peers.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <mutex>
#include <set>

#include "dds/loan.h"
#include "dds/protection.h"
#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

class Refusals
{
public:
    void add(const std::string& reason)
    {
        {
            const std::lock_guard lock(m_mutex);
            m_last_reason = reason;
        }
        m_report.count(1, reason);
    }
    std::uint64_t total() const { return m_report.total(); }
    std::string last_reason() const
    {
        const std::lock_guard lock(m_mutex);
        return m_last_reason;
    }

private:
    CountedReport m_report{"refused a peer that tried to authenticate itself"};
    mutable std::mutex m_mutex;
    std::string m_last_reason; // guarded by m_mutex
};

// Never destroyed: Cyclone's threads may outlive what the process destroys at its end.
Refusals& refusals()
{
    static auto& all = *new Refusals;
    return all;
}

bool contains(std::string_view text, std::string_view part)
{
    return text.find(part) != std::string_view::npos;
}

/// Cyclone says so of a peer that it hears of before this process has a participant. The peer comes again.
bool is_of_early_peer(std::string_view message)
{
    return contains(message, "Remote secure participant") && contains(message, "not allowed");
}

bool is_of_refused_peer(std::string_view message)
{
    constexpr std::array parts = {"handshake",          "remote identity", "remote participant",
                                  "remote permissions", "submsg failed",   "Submsg decoding failed"};
    return contains(message, "ailed") &&
           std::any_of(parts.begin(), parts.end(), [&](const char* part) { return contains(message, part); });
}

/// "Certificate not valid: ..." of "<time, domain and thread>: Begin handshake reply failed: Certificate
/// ...".
std::string reason_in(std::string_view message)
{
    const std::size_t label = message.find("failed: ");
    std::string_view reason = label == std::string_view::npos ? message : message.substr(label + 8);
    reason = reason.substr(0, reason.find("(code"));
    return std::string(reason.substr(0, reason.find('\n')));
}

using Key = std::array<unsigned char, sizeof(dds_guid_t::v)>;

Key key_of(const dds_guid_t& guid)
{
    Key key;
    std::memcpy(key.data(), guid.v, key.size());
    return key;
}

/// Calls `visit` with every sample of a built-in topic.
template <class Sample, class Visit>
void for_each(const Entity& participant, dds_entity_t topic, Visit visit)
{
    const Entity reader(dds_create_reader(participant.get(), topic, nullptr, nullptr),
                        "cannot look at the peers in the domain");
    take_all(reader.get(), [&](const void* sample, const dds_sample_info_t& info) {
        if (info.valid_data)
            visit(*static_cast<const Sample*>(sample));
    });
}

/// How many peers are in the domain of which no reader and no writer is known.
std::size_t count_silent_peers(const Entity& participant)
{
    std::set<Key> silent;
    for_each<dds_builtintopic_participant_t>(participant, DDS_BUILTIN_TOPIC_DCPSPARTICIPANT,
                                             [&](const auto& peer) { silent.insert(key_of(peer.key)); });
    for (const dds_entity_t topic : {DDS_BUILTIN_TOPIC_DCPSPUBLICATION, DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION})
        for_each<dds_builtintopic_endpoint_t>(participant, topic, [&](const auto& endpoint) {
            silent.erase(key_of(endpoint.participant_key));
        });
    dds_guid_t self{};
    if (dds_get_guid(participant.get(), &self) == DDS_RETCODE_OK)
        silent.erase(key_of(self));
    return silent.size();
}

std::string number_of(std::uint64_t count, const std::string& one, const std::string& several)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : several);
}

std::string silent_peers_text(std::size_t count)
{
    if (count == 0)
        return {};
    return "; " + number_of(count, "peer is", "peers are") + " in the domain without being heard: " +
           (is_protected() ? "DDS is protected here, and they show no certificate that is good here"
                           : "DDS is not protected here, and they may be so");
}

} // namespace

bool take_refusal(std::string_view message)
{
    if (is_of_early_peer(message))
        return true;
    if (!is_of_refused_peer(message))
        return false;
    refusals().add(reason_in(message));
    return true;
}

std::string peers_not_heard(const Entity& participant)
{
    std::string text = silent_peers_text(count_silent_peers(participant));
    if (const std::uint64_t total = refusals().total(); total > 0)
        text += "; refused " + number_of(total, "attempt", "attempts") +
                " of peers to authenticate themselves, the last because: " + refusals().last_reason();
    return text;
}

} // namespace org::opensplice::DDS_RMI
