// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_INTERFACE_SKELETON_H
#define DDSRMI_INTERFACE_SKELETON_H

#include <cstddef>
#include <memory>

#include "ddsrmi/dds_types.h"
#include "ddsrmi/interface_info.h"
#include "ddsrmi/ref_counted.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// A reply on its way to the client; owns its sample.
class ReplySample
{
public:
    virtual ~ReplySample();
    /// A sample of the operation's reply topic; its header is filled in by the RMI layer.
    virtual void* sample() = 0;
};

/// A reply whose result needs no clean-up.
template <class Sample>
class PlainReply : public ReplySample
{
public:
    ~PlainReply() override = default;
    Sample value = Sample();
    void* sample() override { return &value; }
};

/// A reply whose result is a text that the implementation handed over.
template <class Sample>
class TextReply : public PlainReply<Sample>
{
public:
    virtual ~TextReply() { DDS::string_free(this->value.result); }
};

/// Base of the generated skeletons, from which implementations derive. On which threads, and how many at a
/// time, operations run is the runtime's server threading policy.
class CInterfaceSkeleton : public virtual RefCounted
{
public:
    ~CInterfaceSkeleton() override;

    virtual const InterfaceInfo& _interface_info() const = 0;

    /// Runs one operation on a sample of its request topic and returns the reply.
    virtual std::unique_ptr<ReplySample> _dispatch(std::size_t operation, const void* request) = 0;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
