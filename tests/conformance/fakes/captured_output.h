// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_CONFORMANCE_CAPTURED_OUTPUT_H
#define TESTS_CONFORMANCE_CAPTURED_OUTPUT_H

#include <mutex>
#include <streambuf>
#include <string>

namespace conformance {

/// Takes what is written to std::cout while it lives, and records it at every flush: a line that is not
/// flushed by itself runs into the next one.
class CapturedOutput : public std::streambuf
{
public:
    CapturedOutput();
    ~CapturedOutput() override;
    CapturedOutput(const CapturedOutput&) = delete;
    CapturedOutput& operator=(const CapturedOutput&) = delete;

    /// Everything that has been flushed.
    std::string text() const;

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* characters, std::streamsize count) override;
    int sync() override;

private:
    void append(const char* characters, std::size_t count);

    std::streambuf* m_previous;
    mutable std::mutex m_mutex;
    std::string m_pending; // guarded by m_mutex
    std::string m_text;    // guarded by m_mutex
};

} // namespace conformance

#endif
