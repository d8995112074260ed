// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_DISCOVERY_ANNOUNCEMENT_H
#define DDSRMI_DISCOVERY_ANNOUNCEMENT_H

#include <dds/dds.h>

#include <cstdint>
#include <optional>
#include <string>

#include "ddsrmi/dds_types.h"

namespace org::opensplice::DDS_RMI {

/// How a server makes a service known: as the user data of the reader that takes its requests, which
/// everybody in the domain learns together with the reader.
struct Announcement
{
    std::uint64_t epoch; ///< of two servers the one with the higher epoch was started later
    DDS::Long instance;
    std::string server_class; ///< the interface's scoped name
    std::string service;

    std::string to_text() const;
    /// Nothing for what is no announcement, or one of another wire version.
    static std::optional<Announcement> parse(const std::string& text);
    /// The wire version of an announcement, whichever that is; nothing for what is none.
    static std::optional<unsigned> version_of(const std::string& text);
};

} // namespace org::opensplice::DDS_RMI

#endif
