// SPDX-License-Identifier: Apache-2.0
#include "temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace test_support {

TemporaryFolder::TemporaryFolder()
{
    std::string name = std::filesystem::temp_directory_path() / "varnel-test-XXXXXX";
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::system_error(errno, std::generic_category(), "cannot make the temporary folder " + name);
    }
    m_path = name;
}

TemporaryFolder::~TemporaryFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path TemporaryFolder::write(const std::string& name, const std::string& content) const
{
    std::filesystem::path file = m_path / name;
    std::ofstream stream(file, std::ios::binary);
    stream << content << std::flush;
    if (!stream) {
        throw std::runtime_error("cannot write " + file.string());
    }
    return file;
}

} // namespace test_support
