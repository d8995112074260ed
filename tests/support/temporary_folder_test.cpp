// SPDX-License-Identifier: Apache-2.0
#include "temporary_folder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace {

using test_support::TemporaryFolder;

TEST(TemporaryFolder, holds_what_is_written_into_it)
{
    const TemporaryFolder folder;

    const std::filesystem::path file = folder.write("name.txt", "content\n");

    std::ifstream stream(file);
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "content\n");
    EXPECT_EQ(file.parent_path(), folder.path());
}

TEST(TemporaryFolder, is_removed_with_all_that_is_in_it)
{
    std::filesystem::path path;
    {
        const TemporaryFolder folder;
        path = folder.path();
        std::filesystem::create_directory(path / "inner");
        folder.write("inner/file", "x");
    }

    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST(TemporaryFolder, is_not_shared)
{
    const TemporaryFolder one;
    const TemporaryFolder other;

    EXPECT_NE(one.path(), other.path());
}

} // namespace
