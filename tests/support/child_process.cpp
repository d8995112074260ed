// SPDX-License-Identifier: Apache-2.0
#include "child_process.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <cstdint>
#include <mutex>
#include <system_error>
#include <thread>

#include "emulator.h"
#include "output_buffer.h"
#include "spawn.h"

namespace test_support {
namespace {

int exit_code(int status)
{
    return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
}

SpawnedProcess start(const std::vector<std::string>& command, const ChildProcess::Environment& environment)
{
    // Writing to a process that has gone shall be an error of that write, not the end of the test.
    ::signal(SIGPIPE, SIG_IGN);
    return spawn(under_emulator(command), environment);
}

} // namespace

class ChildProcess::Impl
{
public:
    Impl(const std::vector<std::string>& command, const Environment& environment)
        : m_process(start(command, environment)), m_stop(::eventfd(0, EFD_CLOEXEC)),
          m_reader([this] { read_streams(); }), m_waiter([this] { wait_for_end(); })
    {
    }

    ~Impl()
    {
        kill_if_running();
        m_waiter.join();
        // A process that it started itself may still hold the pipes open, so their end is not waited for.
        const std::uint64_t one = 1;
        (void)!::write(m_stop.get(), &one, sizeof(one));
        m_reader.join();
    }
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;

    pid_t pid() const { return m_process.pid; }

    void signal(int number) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        const int result = m_exit_code ? ESRCH : (::kill(m_process.pid, number) == 0 ? 0 : errno);
        if (result != 0) {
            throw std::system_error(result, std::generic_category(),
                                    "cannot signal process " + std::to_string(pid()));
        }
    }

    std::optional<std::string> wait_for_line(OutputBuffer& buffer, const std::string& text,
                                             std::chrono::milliseconds deadline)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        std::optional<std::string> line;
        m_changed.wait_for(lock, deadline,
                           [&] { return (line = buffer.take_line(text)).has_value() || buffer.ended(); });
        return line;
    }

    std::optional<int> wait_for_exit(std::chrono::milliseconds deadline)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        const bool ended = m_changed.wait_for(
            lock, deadline, [this] { return m_exit_code && m_output.ended() && m_error.ended(); });
        return ended ? m_exit_code : std::nullopt;
    }

    std::string text_of(const OutputBuffer& buffer) const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return buffer.text();
    }

    void write(const std::string& text) const
    {
        std::string::size_type written = 0;
        while (written < text.size()) {
            const ssize_t count =
                ::write(m_process.input.get(), text.data() + written, text.size() - written);
            if (count < 0 && errno != EINTR) {
                throw std::system_error(errno, std::generic_category(),
                                        "cannot write to process " + std::to_string(pid()));
            }
            written += count > 0 ? static_cast<std::string::size_type>(count) : 0;
        }
    }
    void close_input() { m_process.input.close(); }

    OutputBuffer& output() { return m_output; }
    OutputBuffer& error() { return m_error; }

private:
    void kill_if_running()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_exit_code) {
            ::kill(m_process.pid, SIGKILL);
        }
    }

    void wait_for_end()
    {
        siginfo_t info{};
        while (::waitid(P_PID, static_cast<id_t>(m_process.pid), &info, WEXITED | WNOWAIT) != 0 &&
               errno == EINTR) {
        }
        // The number stays this process's own until it is reaped, so reaping and recording are one step for
        // signal().
        const std::lock_guard<std::mutex> lock(m_mutex);
        int status = 0;
        ::waitpid(m_process.pid, &status, 0);
        m_exit_code = exit_code(status);
        m_changed.notify_all();
    }

    void read_streams()
    {
        std::array<pollfd, 3> streams{pollfd{m_process.output.get(), POLLIN, 0},
                                      pollfd{m_process.error.get(), POLLIN, 0},
                                      pollfd{m_stop.get(), POLLIN, 0}};
        while (streams[0].fd >= 0 || streams[1].fd >= 0) {
            ::poll(streams.data(), streams.size(), -1);
            read_stream(streams[0], m_output);
            read_stream(streams[1], m_error);
            if (streams[2].revents != 0) {
                return;
            }
        }
    }

    void read_stream(pollfd& stream, OutputBuffer& buffer)
    {
        if (stream.fd < 0 || stream.revents == 0) {
            return;
        }
        std::array<char, 65536> bytes;
        const ssize_t count = ::read(stream.fd, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) {
            return;
        }
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (count > 0) {
            buffer.append(bytes.data(), static_cast<std::size_t>(count));
        } else {
            buffer.end();
            stream.fd = -1;
        }
        m_changed.notify_all();
    }

    SpawnedProcess m_process;
    FileDescriptor m_stop;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    OutputBuffer m_output;          // guarded by m_mutex
    OutputBuffer m_error;           // guarded by m_mutex
    std::optional<int> m_exit_code; // guarded by m_mutex; set when the process has been reaped
    std::thread m_reader;
    std::thread m_waiter;
};

ChildProcess::ChildProcess(const std::vector<std::string>& command, const Environment& environment)
    : m_impl(std::make_unique<Impl>(command, environment))
{
}
ChildProcess::~ChildProcess() = default;
ChildProcess::ChildProcess(ChildProcess&&) noexcept = default;
ChildProcess& ChildProcess::operator=(ChildProcess&&) noexcept = default;

pid_t ChildProcess::pid() const
{
    return m_impl->pid();
}

void ChildProcess::signal(int number) const
{
    m_impl->signal(number);
}

std::optional<std::string> ChildProcess::wait_for_line(const std::string& text,
                                                       std::chrono::milliseconds deadline)
{
    return m_impl->wait_for_line(m_impl->output(), text, deadline);
}

std::optional<std::string> ChildProcess::wait_for_error_line(const std::string& text,
                                                             std::chrono::milliseconds deadline)
{
    return m_impl->wait_for_line(m_impl->error(), text, deadline);
}

void ChildProcess::write(const std::string& text) const
{
    m_impl->write(text);
}

void ChildProcess::close_input()
{
    m_impl->close_input();
}

std::string ChildProcess::output() const
{
    return m_impl->text_of(m_impl->output());
}

std::string ChildProcess::error_output() const
{
    return m_impl->text_of(m_impl->error());
}

std::optional<int> ChildProcess::wait_for_exit(std::chrono::milliseconds deadline)
{
    return m_impl->wait_for_exit(deadline);
}

std::optional<int> ChildProcess::terminate(std::chrono::milliseconds deadline)
{
    try {
        signal(SIGTERM);
    } catch (const std::system_error&) {
        // It has ended by itself; its exit code tells how.
    }
    return wait_for_exit(deadline);
}

} // namespace test_support
