// SPDX-License-Identifier: Apache-2.0
// Loads the library drill_plugin, uses it and unloads it, again and again.

#include <dlfcn.h>

#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "ddsrmi.h"
#include "drill_plugin.h"

namespace {

/// The library while it is loaded. It must be the only one that has it loaded.
class Plugin
{
public:
    explicit Plugin(const std::string& file)
        : m_file(file), m_handle(::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL))
    {
        if (m_handle == nullptr)
            throw std::runtime_error(::dlerror());
    }
    ~Plugin()
    {
        if (m_handle != nullptr)
            ::dlclose(m_handle);
    }
    Plugin(const Plugin&) = delete;
    Plugin& operator=(const Plugin&) = delete;

    template <class Function>
    Function symbol(const char* name) const
    {
        void* const address = ::dlsym(m_handle, name);
        if (address == nullptr)
            throw std::runtime_error(::dlerror());
        return reinterpret_cast<Function>(address);
    }

    /// Throws when the library is still there afterwards.
    void unload()
    {
        ::dlclose(m_handle);
        m_handle = ::dlopen(m_file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
        if (m_handle != nullptr)
            throw std::runtime_error("the library is still loaded");
    }

private:
    const std::string m_file;
    void* m_handle;
};

void* open(const Plugin& plugin)
{
    void* const client = plugin.symbol<DrillOpen>("drill_open")();
    if (client == nullptr)
        throw std::runtime_error("a client has found no server");
    return client;
}

/// One client, or two whose lives overlap; the second is to work on when the first has gone.
void run_cycle(const std::string& file, bool overlap)
{
    Plugin plugin(file);
    const auto close = plugin.symbol<DrillClose>("drill_close");
    void* const first = open(plugin);
    void* const second = overlap ? open(plugin) : nullptr;
    close(first);
    if (overlap) {
        const bool answered = plugin.symbol<DrillIsAnswered>("drill_is_answered")(second);
        close(second);
        if (!answered)
            throw std::runtime_error("the second client is not answered when the first has gone");
    }
    plugin.unload();
    // A host has the RMI layer loaded itself, as this program has by asking it.
    if (org::opensplice::DDS_RMI::CRuntime::getDefaultRuntime()->isUsable())
        throw std::runtime_error("the runtime is up without a user");
}

} // namespace

int main(int argc, char* argv[])
{
    std::string file;
    unsigned cycles = 10;
    CLI::App app{
        "Loads a library of clients, calls without waiting and unloads it, in half of the cycles with "
        "two clients that overlap."};
    app.add_option("--cycles", cycles, "How often")->capture_default_str();
    app.add_option("plugin", file, "The library drill_plugin")->required();
    CLI11_PARSE(app, argc, argv);
    try {
        for (unsigned cycle = 0; cycle < cycles; ++cycle)
            run_cycle(file, cycle % 2 == 1);
    } catch (const std::exception& error) {
        std::cerr << "drill_unloader: " << error.what() << std::endl;
        return 1;
    }
    std::cout << "cycles=" << cycles << std::endl;
    return 0;
}
