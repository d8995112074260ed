// SPDX-License-Identifier: Apache-2.0
// A small host: loads the plug-in and does to it what its standard input says, a command a line. It answers
// each with a line on standard error that begins with "answer> ". Its standard output is the plug-in's alone,
// and what the plug-in sends to the system log comes out on standard error as "syslog <priority> <text>".
//
//   timeout <seconds>                  how long lookups wait for the service
//   load <file>                        load the library
//   make                               ask its factory for one more handler
//   make_without <n>                   do so in a process of its own, in which the nth allocation fails
//   bound <handler>                    isBound()
//   methods <handler>                  the methods' names, in order
//   call <handler> <method> <request>  run a method
//   delete <handler>
//   unload
//   arrays                             how many arrays are allocated in the process

#include <dlfcn.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <json-c/json_object.h>
#include <json-c/json_tokener.h>
#include <zeb/api/CallbackMethod.h>
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>
#include <zeb/api/mdw/KX_DDS_RMI_RUNTIME.h>

#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <map>
#include <memory>
#include <new>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "conformance/thrown.h"

namespace {

std::atomic<long> arrays_allocated{0};

/// Which of this thread's allocations from now on fails (1 is the next); 0 when none does.
thread_local unsigned long allocations_to_failure = 0;

void* allocate(std::size_t size)
{
    if (allocations_to_failure != 0 && --allocations_to_failure == 0)
        throw std::bad_alloc();
    void* const address = std::malloc(size == 0 ? 1 : size);
    if (address == nullptr)
        throw std::bad_alloc();
    return address;
}

/// Allocates nothing, as the C library's own syslog.
void print_message(int priority, const char* format, va_list arguments)
{
    std::array<char, 1024> text{};
    std::array<char, 1100> line{};
    std::vsnprintf(text.data(), text.size(), format, arguments);
    std::snprintf(line.data(), line.size(), "syslog %d %s\n", priority, text.data());
    std::cerr << line.data() << std::flush;
}

} // namespace

void* operator new(std::size_t size)
{
    return allocate(size);
}

void operator delete(void* address) noexcept
{
    std::free(address);
}

void operator delete(void* address, std::size_t) noexcept
{
    std::free(address);
}

void* operator new[](std::size_t size)
{
    void* const address = allocate(size);
    ++arrays_allocated;
    return address;
}

void operator delete[](void* address) noexcept
{
    if (address == nullptr)
        return;
    --arrays_allocated;
    std::free(address);
}

void operator delete[](void* address, std::size_t) noexcept
{
    operator delete[](address);
}

extern "C" {

void syslog(int priority, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    print_message(priority, format, arguments);
    va_end(arguments);
}

/// What a fortified build calls in place of syslog.
void __syslog_chk(int priority, int, const char* format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    print_message(priority, format, arguments);
    va_end(arguments);
}

} // extern "C"

namespace {

using zeb::api::CallbackMethod;
using zeb::api::KX_RPCHandler;
using zeb::api::data::KX_JSON;

KX_JSON parsed(const std::string& text)
{
    const std::unique_ptr<json_object, int (*)(json_object*)> object(json_tokener_parse(text.c_str()),
                                                                     &json_object_put);
    return KX_JSON(object.get());
}

using Factory = KX_RPCHandler* (*)();

const std::map<int, std::string> outcomes = {
    {0, "made"}, {1, "std::bad_alloc"}, {2, "made, and the failure not noticed"}, {3, "another exception"}};

/// Makes a handler while the given allocation fails; gives the number of the outcome.
int make_without(unsigned long allocation, Factory factory)
{
    try {
        allocations_to_failure = allocation;
        factory();
        return allocations_to_failure == 0 ? 2 : 0;
    } catch (const std::bad_alloc&) {
        return 1;
    } catch (...) {
        std::cerr << conformance::description(std::current_exception()) << std::endl;
        return 3;
    }
}

class Host
{
public:
    std::string run(const std::string& command)
    {
        std::istringstream words(command);
        std::string verb;
        words >> verb;
        return m_actions.at(verb)(*this, words);
    }

private:
    using Action = std::string (*)(Host&, std::istream&);

    std::string set_timeout(std::istream& words)
    {
        int seconds = 0;
        words >> seconds;
        zeb::api::mdw::setServiceDiscoveryTimeout(seconds);
        return "set";
    }

    std::string load(std::istream& words)
    {
        std::string file;
        words >> file;
        m_library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        return m_library == nullptr ? dlerror() : "loaded";
    }

    Factory factory() const
    {
        const auto found = reinterpret_cast<Factory>(dlsym(m_library, "RPCHandler"));
        if (found == nullptr)
            throw std::runtime_error("no factory");
        return found;
    }

    std::string make()
    {
        m_handlers.emplace_back(factory()());
        return m_handlers.back() == nullptr ? "null" : "made " + std::to_string(m_handlers.size() - 1);
    }

    std::string make_first_without(std::istream& words) const
    {
        unsigned long allocation = 0;
        words >> allocation;
        const pid_t child = fork();
        if (child == 0)
            _exit(make_without(allocation, factory()));
        int status = 0;
        if (child < 0 || waitpid(child, &status, 0) != child)
            throw std::runtime_error("cannot make a process");
        return WIFEXITED(status) ? outcomes.at(WEXITSTATUS(status))
                                 : "signal " + std::to_string(WTERMSIG(status));
    }

    std::unique_ptr<KX_RPCHandler>& handler(std::istream& words)
    {
        std::size_t number = 0;
        words >> number;
        return m_handlers.at(number);
    }

    std::string bound(std::istream& words) { return handler(words)->isBound() ? "bound" : "unbound"; }

    std::string methods(std::istream& words)
    {
        std::string names;
        for (const CallbackMethod* const method : handler(words)->GetMethods())
            names += (names.empty() ? "" : " ") + method->GetName() +
                     (method->GetDescription().get() == nullptr ? "" : " (described)");
        return names.empty() ? "none" : names;
    }

    std::string call(std::istream& words)
    {
        KX_RPCHandler& target = *handler(words);
        std::string name;
        std::string request;
        words >> name;
        std::getline(words, request);
        const KX_JSON in = parsed(request);
        KX_JSON out = parsed(R"({"id":7})");
        const int result = target.FindMethod(name)->Call(in, out);
        return "result " + std::to_string(result) + " response " + out.to_string();
    }

    std::string remove(std::istream& words)
    {
        handler(words).reset();
        return "deleted";
    }

    std::string unload() { return dlclose(m_library) == 0 ? "unloaded" : dlerror(); }

    const std::map<std::string, Action> m_actions = {
        {"timeout", [](Host& host, std::istream& words) { return host.set_timeout(words); }},
        {"load", [](Host& host, std::istream& words) { return host.load(words); }},
        {"make", [](Host& host, std::istream&) { return host.make(); }},
        {"make_without", [](Host& host, std::istream& words) { return host.make_first_without(words); }},
        {"bound", [](Host& host, std::istream& words) { return host.bound(words); }},
        {"methods", [](Host& host, std::istream& words) { return host.methods(words); }},
        {"call", [](Host& host, std::istream& words) { return host.call(words); }},
        {"delete", [](Host& host, std::istream& words) { return host.remove(words); }},
        {"unload", [](Host& host, std::istream&) { return host.unload(); }},
        {"arrays", [](Host&, std::istream&) { return std::to_string(arrays_allocated); }},
    };
    void* m_library = nullptr;
    std::vector<std::unique_ptr<KX_RPCHandler>> m_handlers;
};

std::string answer_to(Host& host, const std::string& command)
{
    std::string answer;
    const std::string thrown =
        conformance::description(conformance::caught([&] { answer = host.run(command); }));
    return thrown.empty() ? answer : "threw " + thrown;
}

} // namespace

int main()
{
    Host host;
    for (std::string command; std::getline(std::cin, command);)
        std::cerr << "answer> " + answer_to(host, command) + '\n' << std::flush;
}
