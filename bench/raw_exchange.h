// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_RAW_EXCHANGE_H
#define BENCH_RAW_EXCHANGE_H

#include <dds/dds.h>

#include <chrono>

namespace bench {

/// One end of the operation node_set_config written directly on the Cyclone C API at its best: one pair of
/// topics without keys, reliable, a waitset, and nothing else.
class RawEnd
{
public:
    enum class Side { client, server };

    explicit RawEnd(Side side);
    ~RawEnd();
    RawEnd(const RawEnd&) = delete;
    RawEnd& operator=(const RawEnd&) = delete;

    /// Waits until the other end is there.
    void wait_for_peer() const;

    /// Lets the current or next wait_for_data() return.
    void wake() const;
    /// Waits for samples to arrive.
    void wait_for_data() const;

    dds_entity_t reader() const { return m_reader; }
    dds_entity_t writer() const { return m_writer; }

private:
    dds_entity_t m_participant;
    dds_entity_t m_reader;
    dds_entity_t m_writer;
    dds_entity_t m_waitset;
    dds_entity_t m_wake_up;
};

} // namespace bench

#endif
