// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_DDS_DOMAIN_H
#define TESTS_SUPPORT_DDS_DOMAIN_H

#include <string>

namespace test_support {

/// A DDS domain that no other test uses while this object lives (a lock file in /tmp reserves its number), on
/// the loopback interface, without multicast.
class DdsDomain
{
public:
    /// Reserves a domain and sets CYCLONEDDS_URI of this process, and so of its children, to it.
    DdsDomain();
    /// Frees the number and takes CYCLONEDDS_URI back.
    ~DdsDomain();
    DdsDomain(const DdsDomain&) = delete;
    DdsDomain& operator=(const DdsDomain&) = delete;

    int id() const { return m_id; }
    /// The value of CYCLONEDDS_URI.
    const std::string& uri() const { return m_uri; }

private:
    int m_id = -1;
    int m_lock = -1;
    std::string m_uri;
    std::string m_previous_uri;
};

} // namespace test_support

#endif
