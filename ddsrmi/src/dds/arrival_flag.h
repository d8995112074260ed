// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_ARRIVAL_FLAG_H
#define DDSRMI_DDS_ARRIVAL_FLAG_H

#include <dds/dds.h>

#include <atomic>
#include <memory>

namespace org::opensplice::DDS_RMI {

struct ListenerDeleter
{
    void operator()(dds_listener_t* listener) const noexcept { dds_delete_listener(listener); }
};
using Listener = std::unique_ptr<dds_listener_t, ListenerDeleter>;

/// Tells that a reader may have samples, at the price of a glance; to ask Cyclone takes a good part of a
/// call. It is raised by Cyclone's own threads after each sample, and must outlive the reader and be outlived
/// by the count.
class ArrivalFlag
{
public:
    /// `raised_flags` counts those that are raised.
    explicit ArrivalFlag(std::atomic<unsigned>& raised_flags) : m_raised_flags(raised_flags) {}
    ~ArrivalFlag() { lower(); }
    ArrivalFlag(const ArrivalFlag&) = delete;
    ArrivalFlag& operator=(const ArrivalFlag&) = delete;

    /// To create the reader with, which copies it.
    Listener listener();

    bool is_raised() const { return m_raised; }
    /// To be called before the samples are taken, so that one that comes meanwhile raises it again.
    void lower();

private:
    void raise();

    std::atomic<unsigned>& m_raised_flags;
    std::atomic<bool> m_raised{false};
};

} // namespace org::opensplice::DDS_RMI

#endif
