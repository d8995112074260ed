// SPDX-License-Identifier: Apache-2.0
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace {

using testing::HasSubstr;
using testing::Not;

struct Compiler
{
    const char* name;
    const char* program; // empty when there is none
};

void PrintTo(const Compiler& compiler, std::ostream* stream)
{
    *stream << compiler.name;
}

std::vector<std::string> split(const std::string& text)
{
    std::vector<std::string> words;
    std::istringstream stream(text);
    for (std::string word; std::getline(stream, word, '|');) {
        words.push_back(word);
    }
    return words;
}

std::vector<std::filesystem::path> generated_files(const std::string& extension)
{
    std::vector<std::filesystem::path> files;
    for (const std::string& folder : split(GENERATED_FOLDERS)) {
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const std::string stem = entry.path().stem().string();
            const bool is_ours =
                stem.find("_Interface") != std::string::npos || stem.find("_Types") != std::string::npos;
            if (is_ours && entry.path().extension() == extension) {
                files.push_back(entry.path());
            }
        }
    }
    return files;
}

/// What the compiler says of a file, or writes when `options` ask for something.
std::string compile(const std::string& compiler, const std::vector<std::string>& options,
                    const std::string& file)
{
    std::vector<std::string> command{compiler, "-x", "c++"};
    command.insert(command.end(), options.begin(), options.end());
    for (const std::string& folder : split(INCLUDE_FOLDERS)) {
        command.push_back("-I" + folder);
    }
    command.push_back(file);
    test_support::ChildProcess process(command);
    const int exit_code = process.wait_for_exit().value_or(-1);
    return process.output() + process.error_output() + (exit_code == 0 ? "" : "failed\n");
}

class GeneratedCode : public testing::TestWithParam<Compiler>
{
};

TEST_P(GeneratedCode, compiles_without_a_warning_as_cpp11_and_as_cpp17)
{
    if (std::string(GetParam().program).empty()) {
        GTEST_SKIP() << GetParam().name << " is not installed";
    }
    const std::vector<std::string> strict{"-Wall",        "-Wextra",
                                          "-Wpedantic",   "-Wshadow",
                                          "-Wconversion", "-Wnon-virtual-dtor",
                                          "-Werror",      "-Woverloaded-virtual",
                                          "-fsyntax-only"};
    ASSERT_EQ(generated_files(".cpp").size(), 9U) << "three sources each of three interface libraries";
    for (const char* standard : {"-std=c++11", "-std=c++17"}) {
        std::vector<std::string> options = strict;
        options.emplace_back(standard);
        for (const auto& file : generated_files(".cpp")) {
            EXPECT_EQ(compile(GetParam().program, options, file), "") << standard;
        }
    }
}

const Compiler compilers[] = {{"gcc", GXX}, {"clang", CLANGXX}};

std::string name_of(const testing::TestParamInfo<Compiler>& info)
{
    return info.param.name;
}

INSTANTIATE_TEST_SUITE_P(with, GeneratedCode, testing::ValuesIn(compilers), name_of);

TEST(GeneratedHeaders, stand_alone_and_bring_in_nothing_of_cyclone_dds)
{
    if (std::string(GXX).empty()) {
        GTEST_SKIP() << "gcc is not installed";
    }
    ASSERT_EQ(generated_files(".h").size(), 12U);
    for (const auto& file : generated_files(".h")) {
        const std::string included = compile(GXX, {"-std=c++11", "-M"}, file);

        EXPECT_THAT(included, HasSubstr(file.filename().string()));
        EXPECT_THAT(included, Not(HasSubstr("failed")));
        EXPECT_THAT(included, Not(HasSubstr("/dds/"))) << file;
        EXPECT_THAT(included, Not(HasSubstr("dds_rmi.h"))) << file;
    }
}

} // namespace
