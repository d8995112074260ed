// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_PLUGIN_LIBRARY_H
#define ZORBD_PLUGIN_LIBRARY_H

#include <memory>
#include <stdexcept>
#include <string>

#include "zeb/api/KX_RPCHandler.h"

namespace zorbd {

/// A plug-in file that cannot be used; what() names the file and the cause.
class PluginError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A loaded plug-in file and its factory. The destructor unloads it: no handler of it may exist then.
class PluginLibrary
{
public:
    /// Loads `file` with all its symbols resolved and none of them offered to other libraries. A name without
    /// a slash is taken as a file in the current folder, never looked up in library folders. Throws
    /// PluginError.
    explicit PluginLibrary(std::string file);

    /// What was given to the constructor.
    const std::string& file() const { return m_file; }

    /// A new handler from the plug-in's factory, on the calling thread; it blocks for as long as the factory
    /// does. Lets through what the factory throws; throws PluginError when it returns none.
    std::unique_ptr<zeb::api::KX_RPCHandler> make_handler() const;

private:
    using Factory = zeb::api::KX_RPCHandler* (*)();
    struct Unload
    {
        void operator()(void* library) const noexcept;
    };

    std::string m_file;
    std::unique_ptr<void, Unload> m_library;
    Factory m_factory;
};

} // namespace zorbd

#endif
