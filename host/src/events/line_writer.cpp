// SPDX-License-Identifier: Apache-2.0
#include "events/line_writer.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>

#include "events/output_file.h"

namespace zorbd {
namespace {

using Clock = std::chrono::steady_clock;

/// After a failure, such as a full disk, before the next attempt.
constexpr std::chrono::milliseconds retry_pause{500};
/// Between two looks whether the end has come, while a reader stands still.
constexpr std::chrono::milliseconds look_pause{50};
/// So long a reader may take before it counts as standing still.
constexpr std::chrono::seconds slow_reader{1};

std::uint64_t count_lines(std::string_view text)
{
    return static_cast<std::uint64_t>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace

class LineWriter::Queue
{
public:
    explicit Queue(int fd) : m_file(fd) {}

    void put(std::string_view line)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_waiting.size() + line.size() >= kept_bytes) {
            ++m_dropped;
            return;
        }
        m_waiting.append(line).push_back('\n');
        if (m_is_idle)
            m_changed.notify_all();
    }

    LineWriterStatus status() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return {m_trouble, m_written, m_dropped};
    }

    void flush()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        wait_while_it_goes_forward(lock, [this] { return m_is_idle && m_waiting.empty(); });
    }

    void end()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_ending = true;
        m_changed.notify_all();
        wait_while_it_goes_forward(lock, [this] { return m_has_ended; });
        m_is_given_up = true;
        m_changed.notify_all();
        m_changed.wait_for(lock, patience, [this] { return m_has_ended; });
    }

    /// What the thread does.
    void run()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        std::string text;
        while (take_waiting(lock, text))
            write(lock, text);
        m_has_ended = true;
        m_changed.notify_all();
    }

private:
    template <class Reached>
    void wait_while_it_goes_forward(std::unique_lock<std::mutex>& lock, Reached reached)
    {
        std::uint64_t seen = 0;
        do
            seen = m_steps;
        while (!m_changed.wait_for(lock, patience, reached) && seen != m_steps);
    }

    bool take_waiting(std::unique_lock<std::mutex>& lock, std::string& text)
    {
        m_is_idle = true;
        m_changed.notify_all();
        m_changed.wait(lock, [this] { return m_ending || !m_waiting.empty(); });
        m_is_idle = false;
        text.clear();
        text.swap(m_waiting);
        return !text.empty() && !m_is_given_up;
    }

    void write(std::unique_lock<std::mutex>& lock, std::string_view text)
    {
        auto last_progress = Clock::now();
        while (!text.empty() && !m_is_given_up) {
            lock.unlock();
            std::string trouble;
            const std::size_t written = try_to_write(text, trouble);
            lock.lock();
            if (written != 0) {
                last_progress = Clock::now();
                m_written += count_lines(text.substr(0, written));
                text.remove_prefix(written);
                ++m_steps;
            } else if (trouble.empty() && Clock::now() - last_progress > slow_reader) {
                trouble = "its reader does not read";
            }
            if (written != 0 || !trouble.empty())
                m_trouble = trouble;
        }
        m_dropped += count_lines(text);
    }

    /// Gives the number of bytes; when that is 0, it has waited for a while.
    std::size_t try_to_write(std::string_view text, std::string& trouble)
    {
        try {
            const std::size_t written = m_file.write_some(text.data(), text.size());
            if (written == 0)
                m_file.wait_writable(look_pause);
            return written;
        } catch (const std::system_error& error) {
            trouble = error.code().message();
            pause();
            return 0;
        }
    }

    void pause()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait_for(lock, m_ending ? look_pause : retry_pause,
                           [this, ending = m_ending] { return m_is_given_up || m_ending != ending; });
    }

    const OutputFile m_file;
    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::string m_waiting;       ///< whole lines; guarded by m_mutex
    std::string m_trouble;       ///< guarded by m_mutex
    std::uint64_t m_written = 0; ///< guarded by m_mutex
    std::uint64_t m_dropped = 0; ///< guarded by m_mutex
    std::uint64_t m_steps = 0;   ///< of writing; guarded by m_mutex
    bool m_is_idle = false;      ///< the thread waits for lines; guarded by m_mutex
    bool m_ending = false;       ///< guarded by m_mutex
    bool m_is_given_up = false;  ///< guarded by m_mutex
    bool m_has_ended = false;    ///< guarded by m_mutex
};

LineWriter::LineWriter(int fd) : m_queue(std::make_shared<Queue>(fd))
{
    std::thread([queue = m_queue] { queue->run(); }).detach();
}

LineWriter::~LineWriter()
{
    m_queue->end();
}

void LineWriter::take_line(std::string_view line) noexcept
{
    try {
        m_queue->put(line);
    } catch (...) { // NOLINT(bugprone-empty-catch): without memory the line is lost, its writer goes on
    }
}

LineWriterStatus LineWriter::status() const
{
    return m_queue->status();
}

void LineWriter::flush() const
{
    m_queue->flush();
}

} // namespace zorbd
