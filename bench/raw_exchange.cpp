// SPDX-License-Identifier: Apache-2.0
#include "raw_exchange.h"

#include <stdexcept>

#include "raw.h"

namespace bench {

namespace {

dds_entity_t checked(dds_entity_t entity)
{
    if (entity < 0)
        throw std::runtime_error(dds_strretcode(-entity));
    return entity;
}

dds_entity_t topic(dds_entity_t participant, const dds_topic_descriptor_t& type, const char* name)
{
    return checked(dds_create_topic(participant, &type, name, nullptr, nullptr));
}

dds_entity_t request_topic(dds_entity_t participant)
{
    return topic(participant, Raw_Request_desc, "raw_request");
}

dds_entity_t reply_topic(dds_entity_t participant)
{
    return topic(participant, Raw_Reply_desc, "raw_reply");
}

} // namespace

RawEnd::RawEnd(Side side)
    : m_participant(checked(dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr)))
{
    dds_qos_t* const qos = dds_create_qos();
    dds_qset_reliability(qos, DDS_RELIABILITY_RELIABLE, DDS_SECS(1));
    dds_qset_history(qos, DDS_HISTORY_KEEP_ALL, DDS_LENGTH_UNLIMITED);
    const dds_entity_t requests = request_topic(m_participant);
    const dds_entity_t replies = reply_topic(m_participant);
    const bool client = side == Side::client;
    m_reader = checked(dds_create_reader(m_participant, client ? replies : requests, qos, nullptr));
    m_writer = checked(dds_create_writer(m_participant, client ? requests : replies, qos, nullptr));
    dds_delete_qos(qos);

    m_waitset = checked(dds_create_waitset(m_participant));
    m_wake_up = checked(dds_create_guardcondition(m_participant));
    dds_waitset_attach(m_waitset, m_wake_up, 0);
    dds_waitset_attach(m_waitset, checked(dds_create_readcondition(m_reader, DDS_ANY_STATE)), 1);
}

RawEnd::~RawEnd()
{
    dds_delete(m_participant);
}

void RawEnd::wait_for_peer() const
{
    const dds_entity_t matched = checked(dds_create_waitset(m_participant));
    dds_set_status_mask(m_writer, DDS_PUBLICATION_MATCHED_STATUS);
    dds_set_status_mask(m_reader, DDS_SUBSCRIPTION_MATCHED_STATUS);
    for (const dds_entity_t endpoint : {m_writer, m_reader}) {
        dds_waitset_attach(matched, endpoint, 0);
        dds_attach_t triggered = 0;
        if (dds_waitset_wait(matched, &triggered, 1, DDS_SECS(20)) == 0)
            throw std::runtime_error("the other end of the raw exchange does not show up");
        dds_waitset_detach(matched, endpoint);
    }
    dds_delete(matched);
}

void RawEnd::wake() const
{
    dds_set_guardcondition(m_wake_up, true);
}

void RawEnd::wait_for_data() const
{
    dds_attach_t triggered[2];
    dds_waitset_wait(m_waitset, triggered, 2, DDS_INFINITY);
}

} // namespace bench
