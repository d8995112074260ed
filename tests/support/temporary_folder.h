// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_TEMPORARY_FOLDER_H
#define TESTS_SUPPORT_TEMPORARY_FOLDER_H

#include <filesystem>
#include <string>

namespace test_support {

/// A folder of the test's own, removed with all that is in it.
class TemporaryFolder
{
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return m_path; }
    /// Writes a file into it and returns its path.
    std::filesystem::path write(const std::string& name, const std::string& content) const;

private:
    std::filesystem::path m_path;
};

} // namespace test_support

#endif
