// SPDX-License-Identifier: Apache-2.0
#include "process/access_log.h"

#include <fcntl.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "events/line_writer.h"

namespace zorbd {
namespace {

FileDescriptor open_for_appending(const std::string& file)
{
    FileDescriptor opened(open(file.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_CLOEXEC, 0640));
    if (opened.get() < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open the access log " + file);
    return opened;
}

} // namespace

AccessLog::AccessLog(const std::optional<std::string>& file, std::shared_ptr<LineSink> output)
{
    if (!file)
        return;
    if (*file == "-") {
        m_lines = std::move(output);
        return;
    }
    m_file = open_for_appending(*file);
    m_lines = std::make_shared<LineWriter>(m_file.get());
}

} // namespace zorbd
