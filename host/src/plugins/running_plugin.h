// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_RUNNING_PLUGIN_H
#define ZORBD_RUNNING_PLUGIN_H

#include <string>
#include <string_view>
#include <utility>

namespace zorbd {

/// Notes for its lifetime that the thread runs code of a plug-in, so that what the plug-in writes can be told
/// from what others write.
class RunningPlugin
{
public:
    /// `file` must outlive the object.
    explicit RunningPlugin(const std::string& file) noexcept : m_before(std::exchange(t_file, &file)) {}
    ~RunningPlugin() { t_file = m_before; }
    RunningPlugin(const RunningPlugin&) = delete;
    RunningPlugin& operator=(const RunningPlugin&) = delete;

    /// The file of the plug-in that the calling thread runs; empty when it runs none.
    static std::string_view file() noexcept { return t_file == nullptr ? std::string_view() : *t_file; }

private:
    static inline thread_local const std::string* t_file = nullptr;
    const std::string* const m_before;
};

} // namespace zorbd

#endif
