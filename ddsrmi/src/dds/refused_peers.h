// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DDS_REFUSED_PEERS_H
#define DDSRMI_DDS_REFUSED_PEERS_H

#include <string>
#include <string_view>

#include "dds/entity.h"

namespace org::opensplice::DDS_RMI {

/// Takes in one of Cyclone's messages when it is about a peer that DDS Security keeps out: counts it and
/// writes it seldom, for a peer that is refused tries again every second. False when it is about something
/// else. Any thread.
bool take_refusal(std::string_view message);

/// What is known of peers that could have offered a service and were not heard: those that DDS Security has
/// refused, and those that are in the domain and show nothing of themselves (with DDS Security on one side
/// alone, both look so to each other). Empty when there are none; otherwise it begins with a semicolon.
std::string peers_not_heard(const Entity& participant);

} // namespace org::opensplice::DDS_RMI

#endif
