// SPDX-License-Identifier: Apache-2.0
#include "dds_domain.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <utility>

#include "file_descriptor.h"

namespace test_support {
namespace {

// Above 99 the ports of a domain reach into those that the kernel hands out to anybody.
constexpr int highest_domain = 99;
constexpr const char* uri_variable = "CYCLONEDDS_URI";

/// Domains belong to the whole machine, so this does not follow TMPDIR.
std::string lock_file(const std::string& id)
{
    return "/tmp/varnel-dds-domain-" + id + ".lock";
}

/// Gives an empty descriptor when the number is taken, or when the file belongs to another user.
FileDescriptor lock_domain(int id)
{
    const std::string file = lock_file(std::to_string(id));
    FileDescriptor descriptor(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666));
    if (descriptor.get() >= 0 && ::flock(descriptor.get(), LOCK_EX | LOCK_NB) != 0) {
        descriptor.close();
    }
    return descriptor;
}

std::pair<int, FileDescriptor> reserve_domain()
{
    // Programs that start together look in different places first.
    const int start = static_cast<int>(::getpid()) % highest_domain;
    for (int step = 0; step < highest_domain; ++step) {
        const int id = 1 + (start + step) % highest_domain;
        FileDescriptor lock = lock_domain(id);
        if (lock.get() >= 0) {
            return {id, std::move(lock)};
        }
    }
    throw std::runtime_error("no free DDS domain: all of " + lock_file("*") + " are taken");
}

std::string loopback_uri(int id)
{
    return "<CycloneDDS><Domain Id=\"" + std::to_string(id) +
           "\">"
           "<General><Interfaces><NetworkInterface name=\"lo\"/></Interfaces>"
           "<AllowMulticast>false</AllowMulticast></General>"
           "<Discovery><ParticipantIndex>auto</ParticipantIndex>"
           "<MaxAutoParticipantIndex>100</MaxAutoParticipantIndex>"
           "<Peers><Peer address=\"127.0.0.1\"/></Peers></Discovery>"
           "</Domain></CycloneDDS>";
}

} // namespace

DdsDomain::DdsDomain()
{
    std::pair<int, FileDescriptor> reserved = reserve_domain();
    m_id = reserved.first;
    m_uri = loopback_uri(m_id);
    if (const char* previous = std::getenv(uri_variable)) {
        m_previous_uri = previous;
    }
    ::setenv(uri_variable, m_uri.c_str(), 1);
    m_lock = reserved.second.release();
}

DdsDomain::~DdsDomain()
{
    if (m_previous_uri.empty()) {
        ::unsetenv(uri_variable);
    } else {
        ::setenv(uri_variable, m_previous_uri.c_str(), 1);
    }
    ::close(m_lock);
}

} // namespace test_support
