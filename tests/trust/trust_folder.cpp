// SPDX-License-Identifier: Apache-2.0
#include "trust_folder.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace trust_test {

using test_support::ChildProcess;

std::string run(const std::vector<std::string>& command, const Environment& environment)
{
    ChildProcess process(command, environment);
    if (process.wait_for_exit() != 0)
        throw std::runtime_error(command.front() + " has failed: " + process.output() +
                                 process.error_output());
    return process.output();
}

std::string read_file(const std::filesystem::path& file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw std::runtime_error("cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

void replace_in_file(const std::filesystem::path& file, const std::string& text,
                     const std::string& replacement)
{
    std::string content = read_file(file);
    std::size_t place = content.find(text);
    if (place == std::string::npos)
        throw std::runtime_error("no '" + text + "' in " + file.string());
    for (; place != std::string::npos; place = content.find(text, place + replacement.size()))
        content.replace(place, text.size(), replacement);
    std::ofstream(file, std::ios::binary) << content;
}

TrustFolder::TrustFolder(int domain) : m_domain(domain)
{
    run({ZORB_TRUST, "init", path()});
}

Environment TrustFolder::add(const std::string& name, const std::string& role) const
{
    run({ZORB_TRUST, "add", path(), name, "--role", role, "--domain", std::to_string(m_domain)});
    return with_configuration(configuration(name));
}

void TrustFolder::renew(const std::string& name) const
{
    run({ZORB_TRUST, "renew", path(), name});
}

void TrustFolder::revoke(const std::string& name) const
{
    run({ZORB_TRUST, "revoke", path(), name});
}

Environment with_configuration(const std::filesystem::path& file)
{
    return {{"CYCLONEDDS_URI", "file://" + file.string()}};
}

} // namespace trust_test
