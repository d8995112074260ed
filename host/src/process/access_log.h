// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_ACCESS_LOG_H
#define ZORBD_ACCESS_LOG_H

#include <memory>
#include <optional>
#include <string>

#include "events/line_writer.h"
#include "system/file_descriptor.h"

namespace zorbd {

/// The file that the access log goes to.
class AccessLog
{
public:
    /// Opens `file` to append to it; "-" is `output`. Without a name there is no access log. Throws
    /// std::system_error that names the file.
    AccessLog(const std::optional<std::string>& file, std::shared_ptr<LineSink> output);

    /// Takes the lines; null when there is no access log. Must not outlive the object.
    const std::shared_ptr<LineSink>& lines() const { return m_lines; }

    bool is_file() const { return m_writer != nullptr; }

    /// Opens the file anew, which may have been moved away: what follows goes to a new one. Throws
    /// std::system_error that names the file, and goes on with the old one then.
    void reload();

private:
    const std::string m_name;
    FileDescriptor m_file;
    std::shared_ptr<LineWriter> m_writer; ///< where there is a file
    std::shared_ptr<LineSink> m_lines;
};

} // namespace zorbd

#endif
