// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_GENERATOR_GENERATOR_RUN_H
#define TESTS_GENERATOR_GENERATOR_RUN_H

#include <filesystem>
#include <set>
#include <string>

#include "support/temporary_folder.h"

/// One run of the code generator on an interface file "sample.idl" of the given text.
class GeneratorRun
{
public:
    explicit GeneratorRun(const std::string& text);

    /// -1 when it did not end.
    int exit_code() const { return m_exit_code; }
    const std::string& errors() const { return m_errors; }
    /// The names of all files that it wrote.
    std::set<std::string> files() const;
    std::string content(const std::string& file) const;

    /// How messages name a line of the interface file.
    std::string line(int number) const { return m_input.string() + ":" + std::to_string(number) + ": "; }

private:
    test_support::TemporaryFolder m_folder;
    std::filesystem::path m_input;
    std::filesystem::path m_output;
    int m_exit_code = -1;
    std::string m_errors;
};

#endif
