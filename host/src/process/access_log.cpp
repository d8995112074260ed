// SPDX-License-Identifier: Apache-2.0
#include "process/access_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

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
    : m_name(file.value_or(""))
{
    if (!file)
        return;
    if (*file == "-") {
        m_lines = std::move(output);
        return;
    }
    m_file = open_for_appending(*file);
    m_writer = std::make_shared<LineWriter>(m_file.get());
    m_lines = m_writer;
}

/// The writer keeps the number of its descriptor.
void AccessLog::reload()
{
    const FileDescriptor opened = open_for_appending(m_name);
    m_writer->flush(); // what was said before belongs to the old file
    if (dup3(opened.get(), m_file.get(), O_CLOEXEC) < 0)
        throw std::system_error(errno, std::generic_category(), "cannot open the access log " + m_name);
}

} // namespace zorbd
