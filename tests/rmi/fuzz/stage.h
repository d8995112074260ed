// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_FUZZ_STAGE_H
#define TESTS_RMI_FUZZ_STAGE_H

#include <dds/dds.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

#include "drill_InterfaceProxy.h"
#include "foreign_writer.h"
#include "support/dds_domain.h"

namespace fuzz {

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = rmi::shared_ptr<DDS_RMI::Drill::RangeInterfaceProxy>;

/// The text for which the operation echo_text sends no reply.
constexpr const char* unanswered_text = "no reply";

/// A server and a client of the interface of drill.idl in this process, and what a foreign process needs to
/// write to each of them. It lives as long as the process.
class Stage
{
public:
    static Stage& instance();

    const Proxy& proxy() const { return m_proxy; }

    /// A writer of requests that the server takes for the client's.
    ForeignWriter request_writer(const std::string& operation, const dds_topic_descriptor_t& type) const;
    /// A writer of replies that the client takes for the server's.
    ForeignWriter reply_writer(const std::string& operation, const dds_topic_descriptor_t& type) const;

    /// Makes a call that will not be answered, and gives its number.
    std::uint32_t call_without_reply();
    /// Returns when server and client have dealt with all that was written before; aborts when they do not.
    void settle();

private:
    Stage();

    const test_support::DdsDomain m_domain;
    Proxy m_proxy;
    dds_entity_t m_participant = 0;
    std::string m_server_path;
    std::string m_client_path;
    std::uint32_t m_calls = 0;
};

} // namespace fuzz

#endif
