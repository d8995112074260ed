// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_PATH_NAME_H
#define DDSRMI_DDS_PATH_NAME_H

#include <string>
#include <string_view>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// A name that no other call, in any process of the domain, gives: the participant's GUID and a number. It is
/// used as the name of a partition that belongs to one server or one link alone.
std::string make_path_name(const Entity& participant);

/// Whether make_path_name could have given it to that participant. Others may be wildcards, somebody else's
/// or nobody's.
bool is_path_name(std::string_view name, const dds_guid_t& participant);

} // namespace org::opensplice::DDS_RMI

#endif
