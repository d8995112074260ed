// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_PROCESSES_H
#define TESTS_CONFORMANCE_PROCESSES_H

#include <string>
#include <vector>

#include "support/child_process.h"

namespace conformance {

/// A server that writes what reaches it and answers with these numbers in turn; it is ready when made.
class Server
{
public:
    explicit Server(const std::vector<std::string>& replies = {});

    /// The next operation that has reached it; empty when none comes.
    std::string next_call();
    /// How many have.
    std::size_t calls() const;
    /// Lets it run no further, and then go on.
    void pause();
    void go_on();
    /// Ends it and waits for its end.
    void end();

private:
    test_support::ChildProcess m_process;
};

/// A host process with the plug-in loaded.
class Host
{
public:
    Host();

    /// The host's answer; empty when it has ended.
    std::string run(const std::string& command);
    /// The plug-in's next line that contains `text`; empty when none comes.
    std::string next_line(const std::string& text);
    /// Ends the host; gives all that the plug-in wrote to standard output.
    std::string output_at_end();
    /// What the plug-in has sent to the system log so far: "<priority> <text>" for each message.
    std::vector<std::string> messages() const;
    /// All that the host has written to standard error so far.
    std::string error_output() const { return m_process.error_output(); }

private:
    test_support::ChildProcess m_process;
};

} // namespace conformance

#endif
