// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SYSTEM_PROCESSES_H
#define TESTS_SYSTEM_PROCESSES_H

#include <optional>
#include <string>
#include <vector>

#include "support/child_process.h"

namespace system_test {

using Options = std::vector<std::string>;
using Environment = test_support::ChildProcess::Environment;

/// The server process, ready for calls. Throws std::runtime_error, with what it has written, when it does not
/// become ready.
test_support::ChildProcess start_server(const Options& options = {}, const Environment& environment = {});

/// The host daemon with the plug-in loaded, listening on a port of its own.
class Host
{
public:
    /// Throws std::runtime_error, with what it has written, when it does not begin to listen.
    explicit Host(const Options& options = {}, const Environment& environment = {});

    test_support::ChildProcess& process() { return m_process; }

    /// Until the plug-in has found its service. Throws std::runtime_error, with what it has written, when it
    /// does not.
    void wait_until_bound();

    /// Posts a request for `method`, with the JSON text `params` unless it is empty; gives the body of the
    /// answer.
    std::string call(const std::string& method, const std::string& params = "") const;

    /// The body of the answer to GET /healthz.
    std::string health() const;

    /// The next whole line of standard output that contains `text`; empty when none comes.
    std::string next_line(const std::string& text);

private:
    test_support::ChildProcess m_process;
    std::string m_address;
};

/// How many lines of `text` begin with `beginning`.
int count_lines(const std::string& text, const std::string& beginning);

} // namespace system_test

#endif
