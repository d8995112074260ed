// SPDX-License-Identifier: Apache-2.0
#include "plugins/plugin_library.h"

#include <dlfcn.h>

#include <utility>

#include "plugins/load_failure.h"

namespace zorbd {
namespace {

constexpr const char* factory_name = "RPCHandler";

std::string path_of(const std::string& file)
{
    return file.find('/') == std::string::npos ? "./" + file : file;
}

void* load(const std::string& file)
{
    const std::string path = path_of(file);
    if (void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
        return library;
    throw PluginError("cannot load plug-in " + file + ": " + explain_load_failure(path, dlerror()));
}

void* find_factory(void* library, const std::string& file)
{
    if (void* symbol = dlsym(library, factory_name))
        return symbol;
    throw PluginError("plug-in " + file + " has no factory: it must export the C function " + factory_name +
                      "()");
}

} // namespace

void PluginLibrary::Unload::operator()(void* library) const noexcept
{
    dlclose(library);
}

PluginLibrary::PluginLibrary(std::string file)
    : m_file(std::move(file)), m_library(load(m_file)),
      m_factory(reinterpret_cast<Factory>(find_factory(m_library.get(), m_file)))
{
}

std::unique_ptr<zeb::api::KX_RPCHandler> PluginLibrary::make_handler() const
{
    std::unique_ptr<zeb::api::KX_RPCHandler> handler(m_factory());
    if (handler == nullptr)
        throw PluginError("its factory returned no handler");
    return handler;
}

} // namespace zorbd
