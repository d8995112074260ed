// SPDX-License-Identifier: Apache-2.0
// A DDS process that looks for all there is to see in its domain.
//
// usage: onlooker <participants>
// Writes "in the domain" once it sees so many other participants. Then, for each line on standard input, a
// line "seen" with the names of all topics that others read or write. Ends with standard input.

#include <dds/dds.h>

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <set>
#include <string>

namespace {

/// Calls `visit` with every sample of a built-in topic of others.
template <class Sample, class Visit>
void for_each(dds_entity_t reader, Visit visit)
{
    constexpr int most = 256;
    void* samples[most] = {};
    dds_sample_info_t infos[most];
    const int count = dds_read(reader, samples, infos, most, most);
    for (int i = 0; i < count; ++i)
        if (infos[i].valid_data)
            visit(*static_cast<const Sample*>(samples[i]));
    if (count > 0)
        dds_return_loan(reader, samples, count);
}

class Onlooker
{
public:
    Onlooker() { dds_get_guid(m_participant, &m_self); }

    bool good() const { return m_participant > 0 && m_participants > 0; }

    int others() const
    {
        int count = 0;
        for_each<dds_builtintopic_participant_t>(m_participants,
                                                 [&](const auto& one) { count += is_self(one.key) ? 0 : 1; });
        return count;
    }

    void wait_for(int others_wanted) const
    {
        const dds_entity_t waitset = dds_create_waitset(m_participant);
        dds_set_status_mask(m_participants, DDS_DATA_AVAILABLE_STATUS);
        dds_waitset_attach(waitset, m_participants, 0);
        while (others() < others_wanted) {
            dds_waitset_wait(waitset, nullptr, 0, DDS_MSECS(100));
        }
    }

    std::set<std::string> topics() const
    {
        std::set<std::string> names;
        for (const dds_entity_t reader : {m_publications, m_subscriptions})
            for_each<dds_builtintopic_endpoint_t>(reader, [&](const auto& one) {
                if (!is_self(one.participant_key))
                    names.insert(one.topic_name);
            });
        return names;
    }

private:
    dds_entity_t make_reader(dds_entity_t topic) const
    {
        return dds_create_reader(m_participant, topic, nullptr, nullptr);
    }
    bool is_self(const dds_guid_t& guid) const { return std::memcmp(&guid, &m_self, sizeof(guid)) == 0; }

    const dds_entity_t m_participant = dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr);
    const dds_entity_t m_participants = make_reader(DDS_BUILTIN_TOPIC_DCPSPARTICIPANT);
    const dds_entity_t m_publications = make_reader(DDS_BUILTIN_TOPIC_DCPSPUBLICATION);
    const dds_entity_t m_subscriptions = make_reader(DDS_BUILTIN_TOPIC_DCPSSUBSCRIPTION);
    dds_guid_t m_self{};
};

} // namespace

int main(int argc, char** argv)
{
    const Onlooker onlooker;
    if (argc != 2 || !onlooker.good()) {
        std::cerr << "onlooker: cannot join the domain" << std::endl;
        return 1;
    }
    onlooker.wait_for(std::atoi(argv[1]));
    std::cout << "in the domain" << std::endl;
    for (std::string line; std::getline(std::cin, line);) {
        std::cout << "seen";
        for (const std::string& name : onlooker.topics())
            std::cout << ' ' << name;
        std::cout << std::endl;
    }
}
