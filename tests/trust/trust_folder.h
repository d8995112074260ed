// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_TRUST_TRUST_FOLDER_H
#define TESTS_TRUST_TRUST_FOLDER_H

#include <filesystem>
#include <string>
#include <vector>

#include "support/child_process.h"
#include "support/temporary_folder.h"

namespace trust_test {

using Environment = test_support::ChildProcess::Environment;

/// Runs a command until it ends and gives what it has written. Throws std::runtime_error when it fails.
std::string run(const std::vector<std::string>& command, const Environment& environment = {});

std::string read_file(const std::filesystem::path& file);

/// Replaces `text` wherever it stands in the file. Throws std::runtime_error when it does not.
void replace_in_file(const std::filesystem::path& file, const std::string& text,
                     const std::string& replacement);

/// An authority and its peers, made by zorb-trust for one DDS domain on the loopback interface.
class TrustFolder
{
public:
    explicit TrustFolder(int domain);

    /// Makes a peer; gives the environment of its processes.
    Environment add(const std::string& name, const std::string& role) const;
    void renew(const std::string& name) const;
    void revoke(const std::string& name) const;

    std::filesystem::path authority() const { return path() / "authority"; }
    std::filesystem::path peer(const std::string& name) const { return path() / "peers" / name; }
    std::filesystem::path configuration(const std::string& name) const
    {
        return peer(name) / "cyclonedds.xml";
    }

private:
    std::filesystem::path path() const { return m_folder.path() / "trust"; }

    const test_support::TemporaryFolder m_folder;
    const int m_domain;
};

/// The environment of a process with that configuration of Cyclone DDS.
Environment with_configuration(const std::filesystem::path& file);

} // namespace trust_test

#endif
