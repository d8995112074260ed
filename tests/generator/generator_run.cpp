// SPDX-License-Identifier: Apache-2.0
#include "generator_run.h"

#include <fstream>
#include <iterator>

#include "support/child_process.h"

GeneratorRun::GeneratorRun(const std::string& text)
    : m_input(m_folder.write("sample.idl", text)), m_output(m_folder.path() / "output")
{
    std::filesystem::create_directory(m_output);
    const std::string generator = GENERATOR_FOLDER;
    const std::string includes = IDL_FOLDER;
    test_support::ChildProcess omniidl({OMNIIDL, "-p" + generator, "-bddsrmi_be", "-I" + includes,
                                        "-C" + m_output.string(), m_input.string()},
                                       {{"PYTHONDONTWRITEBYTECODE", "1"}});
    m_exit_code = omniidl.wait_for_exit().value_or(-1);
    m_errors = omniidl.error_output();
}

std::set<std::string> GeneratorRun::files() const
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_output)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

std::string GeneratorRun::content(const std::string& file) const
{
    std::ifstream stream(m_output / file);
    return {std::istreambuf_iterator<char>(stream), {}};
}
