// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_RMI_STAMP_STREAM_H
#define TESTS_RMI_STAMP_STREAM_H

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "drill_InterfaceProxy.h"

namespace drill {

namespace rmi = org::opensplice::DDS_RMI;
using Proxy = rmi::shared_ptr<DDS_RMI::Drill::RangeInterfaceProxy>;

/// What has become of the calls of a stream.
struct StreamResult
{
    std::size_t accepted = 0;                ///< the call returned
    std::size_t replied = 0;                 ///< its reply hook was called
    std::size_t wrong = 0;                   ///< of these: with another call's result
    std::size_t given_up = 0;                ///< its handler was told so
    std::size_t server_lost = 0;             ///< the same
    std::size_t closed = 0;                  ///< the same
    std::size_t other_failures = 0;          ///< its handler was told of a failure that stamp cannot have
    std::size_t silent = 0;                  ///< its handler was released and never told anything
    std::size_t excess = 0;                  ///< its handler was told more than once, or the call had thrown
    std::size_t timeouts = 0;                ///< the call threw TIMEOUT
    std::size_t not_found = 0;               ///< the call threw SERVICE_NOT_FOUND
    std::vector<std::uint32_t> microseconds; ///< from call to reply hook, in no order

    /// Of the times from call to reply hook; 0 when there are none.
    std::uint32_t percentile(double percent) const;
};

/// Makes calls of stamp one after the other, so many outstanding at a time. One thread uses it.
class StampStream
{
public:
    /// `caller` must be this stream's own among all that call the same server.
    StampStream(const Proxy& proxy, DDS::Long server_instance, DDS::Long caller, std::size_t window);
    ~StampStream();
    StampStream(const StampStream&) = delete;
    StampStream& operator=(const StampStream&) = delete;

    /// Waits until there is room for one more and makes the call.
    void call();

    /// Waits until no call is outstanding; false when `deadline` passes first.
    bool finish(std::chrono::milliseconds deadline);

    /// What has happened since the last time that this was asked.
    StreamResult take_result();

private:
    class State;
    class Handler;

    Proxy m_proxy;
    const DDS::Long m_server_instance;
    const DDS::Long m_caller;
    DDS::Long m_number = 0;
    const std::shared_ptr<State> m_state;
};

} // namespace drill

#endif
