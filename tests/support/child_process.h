// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_CHILD_PROCESS_H
#define TESTS_SUPPORT_CHILD_PROCESS_H

#include <sys/types.h>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

/// How long a test waits for an event that must come; generous, because emulated and sanitized runs are slow.
constexpr std::chrono::seconds event_deadline{60};

/// A program that a test starts, whose standard output and standard error are collected while it runs. The
/// destructor kills it (SIGKILL) and reaps it if it is still there.
class ChildProcess
{
public:
    using Environment = std::map<std::string, std::string>;

    /// Starts `command` (a path, then its arguments) with this process's environment and `environment` on
    /// top. It dies with this process. Throws std::system_error when it cannot be started.
    ///
    /// When the build is for another architecture, `command` runs under its emulator like the test itself.
    explicit ChildProcess(const std::vector<std::string>& command, const Environment& environment = {});
    ~ChildProcess();
    ChildProcess(ChildProcess&&) noexcept;
    ChildProcess& operator=(ChildProcess&&) noexcept;

    pid_t pid() const;
    /// Throws std::system_error when the process has been reaped.
    void signal(int number) const;

    /// Waits until a line of standard output (or standard error) that no earlier call has returned contains
    /// `text`, and returns it without its end; lines before it are passed over. Nothing when the deadline
    /// passes or the stream ends first.
    std::optional<std::string> wait_for_line(const std::string& text,
                                             std::chrono::milliseconds deadline = event_deadline);
    std::optional<std::string> wait_for_error_line(const std::string& text,
                                                   std::chrono::milliseconds deadline = event_deadline);

    /// Writes to its standard input.
    void write(const std::string& text) const;
    void close_input();

    /// Everything it has written so far.
    std::string output() const;
    std::string error_output() const;

    /// The exit code, or 128 + the signal that ended it; waits for the end and for the end of its output.
    /// Nothing when the deadline passes first.
    std::optional<int> wait_for_exit(std::chrono::milliseconds deadline = event_deadline);
    /// SIGTERM, then wait_for_exit.
    std::optional<int> terminate(std::chrono::milliseconds deadline = event_deadline);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

} // namespace test_support

#endif
