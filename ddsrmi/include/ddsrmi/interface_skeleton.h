// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_INTERFACE_SKELETON_H
#define DDSRMI_INTERFACE_SKELETON_H

#include <cstddef>

#include "ddsrmi/interface_info.h"
#include "ddsrmi/ref_counted.h"

namespace org {
namespace opensplice {
namespace DDS_RMI {

class Decoder;
class Encoder;

/// Base of the generated skeletons, from which implementations derive. On which threads, and how many at a
/// time, operations run is the runtime's server threading policy.
class CInterfaceSkeleton : public virtual RefCounted
{
public:
    ~CInterfaceSkeleton() override;

    /// What the interface is called and which operations it has.
    virtual const InterfaceInfo& _interface_info() const = 0;

    /// Runs one operation with the arguments in `request` and puts its result into `reply`. Throws
    /// DecodingError when the arguments are not what the operation takes, and whatever the operation throws.
    virtual void _dispatch(std::size_t operation, Decoder& request, Encoder& reply) = 0;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
