// SPDX-License-Identifier: Apache-2.0
#include "process/standard_streams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <iostream>
#include <utility>

#include "plugins/running_plugin.h"

namespace zorbd {
namespace {

/// Takes what plug-ins write to std::cout.
class PluginLines : public LineSink
{
public:
    PluginLines(std::shared_ptr<LineWriter> output, EventFeed& feed, std::string only_plugin)
        : m_output(std::move(output)), m_feed(feed), m_only_plugin(std::move(only_plugin))
    {
    }

    void take_line(std::string_view line) noexcept override
    {
        m_output->take_line(line);
        try {
            const std::string_view running = RunningPlugin::file();
            m_feed.add_line(running.empty() ? m_only_plugin : running, line);
        } catch (...) { // NOLINT(bugprone-empty-catch): without memory the line is no event
        }
    }

private:
    const std::shared_ptr<LineWriter> m_output;
    EventFeed& m_feed;
    const std::string m_only_plugin;
};

StreamHealth health_of(const char* name, const LineWriter& writer)
{
    LineWriterStatus status = writer.status();
    return {name, std::move(status.trouble), status.dropped};
}

} // namespace

StandardStreams::StandardStreams(EventFeed& feed, std::string only_plugin)
    : m_errors(std::make_shared<LineWriter>(STDERR_FILENO)),
      m_output(std::make_shared<LineWriter>(STDOUT_FILENO)), m_cerr(std::cerr, m_errors),
      m_clog(std::clog, m_errors),
      m_cout(std::cout, std::make_shared<PluginLines>(m_output, feed, std::move(only_plugin)))
{
}

std::vector<StreamHealth> StandardStreams::health() const
{
    return {health_of("stdout", *m_output), health_of("stderr", *m_errors)};
}

void StandardStreams::write(MetricsText& text) const
{
    const std::pair<const char*, LineWriterStatus> streams[] = {{"stdout", m_output->status()},
                                                                {"stderr", m_errors->status()}};
    text.begin("zorbd_lines_total", "counter", "Lines that were written, by stream.");
    for (const auto& [name, status] : streams)
        text.add(static_cast<double>(status.written), metrics_label("stream", name));
    text.begin("zorbd_lines_dropped_total", "counter", "Lines that were dropped because nobody read them.");
    for (const auto& [name, status] : streams)
        text.add(static_cast<double>(status.dropped), metrics_label("stream", name));
}

void StandardStreams::flush() const
{
    m_output->flush();
    m_errors->flush();
}

void hold_closed_standard_streams()
{
    for (const int fd : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
        if (fcntl(fd, F_GETFD) < 0 && errno == EBADF) // the lowest free number is this one
            [[maybe_unused]]
            const int held = open("/dev/null", fd == STDIN_FILENO ? O_WRONLY : O_RDONLY);
}

} // namespace zorbd
