// SPDX-License-Identifier: Apache-2.0
#include "spawn.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <system_error>

namespace test_support {
namespace {

struct Pipe
{
    FileDescriptor reader;
    FileDescriptor writer;
};

Pipe make_pipe()
{
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make a pipe");
    }
    return {FileDescriptor(ends[0]), FileDescriptor(ends[1])};
}

std::map<std::string, std::string> merged_environment(const std::map<std::string, std::string>& additions)
{
    std::map<std::string, std::string> merged = additions;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string text = *entry;
        const std::string::size_type equals = text.find('=');
        if (equals != std::string::npos) {
            merged.emplace(text.substr(0, equals), text.substr(equals + 1));
        }
    }
    return merged;
}

std::vector<std::string> environment_entries(const std::map<std::string, std::string>& environment)
{
    std::vector<std::string> entries;
    entries.reserve(environment.size());
    for (const auto& [name, value] : environment)
        entries.emplace_back(name).append("=").append(value);
    return entries;
}

std::vector<char*> null_terminated(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

/// What the new process needs before it becomes the program: made beforehand, because a process forked from
/// one with several threads may not allocate.
struct Start
{
    pid_t parent;
    int input;
    int output;
    int error;
    int failure;
    char** arguments;
    char** environment;
};

void reset_signals()
{
    sigset_t none;
    sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::signal(SIGPIPE, SIG_DFL);
}

[[noreturn]] void become_program(const Start& start)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != start.parent) {
        ::_exit(127); // the parent was gone before the request above
    }
    reset_signals();
    ::dup2(start.input, STDIN_FILENO);
    ::dup2(start.output, STDOUT_FILENO);
    ::dup2(start.error, STDERR_FILENO);
    ::execvpe(start.arguments[0], start.arguments, start.environment);
    const int reason = errno;
    (void)!::write(start.failure, &reason, sizeof(reason));
    ::_exit(127);
}

/// The pipe closes without a word when the program has started.
void throw_if_not_started(const FileDescriptor& failure, pid_t pid, const std::string& program)
{
    int reason = 0;
    if (::read(failure.get(), &reason, sizeof(reason)) == static_cast<ssize_t>(sizeof(reason))) {
        ::waitpid(pid, nullptr, 0);
        throw std::system_error(reason, std::generic_category(), "cannot start " + program);
    }
}

} // namespace

SpawnedProcess spawn(const std::vector<std::string>& command,
                     const std::map<std::string, std::string>& environment)
{
    if (command.empty()) {
        throw std::system_error(EINVAL, std::generic_category(), "no program to start");
    }
    Pipe input = make_pipe();
    Pipe output = make_pipe();
    Pipe error = make_pipe();
    Pipe failure = make_pipe();
    std::vector<std::string> words = command;
    std::vector<std::string> entries = environment_entries(merged_environment(environment));
    std::vector<char*> arguments = null_terminated(words);
    std::vector<char*> variables = null_terminated(entries);
    const Start start{::getpid(),           input.reader.get(), output.writer.get(), error.writer.get(),
                      failure.writer.get(), arguments.data(),   variables.data()};

    const pid_t pid = ::fork();
    if (pid == 0) {
        become_program(start);
    }
    if (pid < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot start " + command.front());
    }
    failure.writer.close();
    throw_if_not_started(failure.reader, pid, command.front());
    return {pid, std::move(input.writer), std::move(output.reader), std::move(error.reader)};
}

} // namespace test_support
