// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_ZORBD_PROCESS_H
#define TESTS_HOST_ZORBD_PROCESS_H

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "child_process.h"
#include "emulator.h"
#include "http_client.h"

namespace host_test {

using Options = std::vector<std::string>;

/// The path of a plug-in that is made for the tests.
inline std::string plugin(const std::string& name)
{
    return std::string(TEST_PLUGINS) + "/lib" + name + ".so";
}

inline test_support::ChildProcess start_zorbd(const Options& options,
                                              const test_support::ChildProcess::Environment& environment = {})
{
    Options command = {ZORBD};
    command.insert(command.end(), options.begin(), options.end());
    return test_support::ChildProcess(command, environment);
}

/// The same behind a shell, which redirects its standard streams: "2>/dev/full".
inline test_support::ChildProcess start_redirected_zorbd(const std::string& redirection,
                                                         const Options& options)
{
    Options command = {ZORBD};
    command.insert(command.end(), options.begin(), options.end());
    command = test_support::under_emulator(command);
    command.insert(command.begin(), {"/bin/sh", "-c", "exec \"$@\" " + redirection, "sh"});
    return test_support::ChildProcess(command);
}

/// A request with an id, as text.
inline std::string call(const std::string& method, const std::string& params = "{}",
                        const std::string& id = "1")
{
    return R"({"jsonrpc":"2.0","method":")" + method + R"(","params":)" + params + R"(,"id":)" + id + '}';
}

/// zorbd with the plug-in served_methods on a free port of 127.0.0.1, ready and bound.
class ZorbdProcess : public test_support::ChildProcess
{
public:
    explicit ZorbdProcess(const Options& options = {}, const Environment& environment = {})
        : ChildProcess(start_zorbd(with_defaults(options), environment))
    {
        const auto line = wait_for_error_line("zorbd: ready on http");
        if (!line)
            throw std::runtime_error("zorbd is not ready: " + error_output());
        m_port = static_cast<std::uint16_t>(std::stoul(line->substr(line->find("127.0.0.1:") + 10)));
        if (!says("served_methods.so is bound")) // it becomes ready and bound in whichever order
            throw std::runtime_error("zorbd's plug-in is not bound: " + error_output());
    }

    std::uint16_t port() const { return m_port; }

    /// Whether it has written, or writes in time, a line with `text` to standard error.
    bool says(const std::string& text)
    {
        return error_output().find(text) != std::string::npos || wait_for_error_line(text).has_value();
    }

private:
    static Options with_defaults(Options options)
    {
        for (const std::string& option : {std::string("--listen"), std::string("127.0.0.1:0"),
                                          std::string("--plugin"), plugin("served_methods")})
            options.push_back(option);
        return options;
    }

    std::uint16_t m_port = 0;
};

} // namespace host_test

#endif
