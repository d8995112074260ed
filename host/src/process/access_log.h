// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_ACCESS_LOG_H
#define ZORBD_ACCESS_LOG_H

#include <memory>
#include <optional>
#include <string>

#include "events/line_sink.h"
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

private:
    FileDescriptor m_file;
    std::shared_ptr<LineSink> m_lines;
};

} // namespace zorbd

#endif
