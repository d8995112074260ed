// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_CALL_LOG_H
#define SERVER_PROCESS_CALL_LOG_H

#include <mutex>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "contract/reply.h"

namespace varnel {

/// A text as the log shows it: in double quotes, on one line, in printable ASCII ("\xNN" for the rest), and
/// followed by its length in bytes when only its beginning is shown.
std::string quoted_text(std::string_view text);

/// Tells people what happens, one whole line for each event, flushed. Any thread.
class CallLog
{
public:
    /// `out` must outlive the log, and no one else may write to it meanwhile.
    explicit CallLog(std::ostream& out) : m_out(out) {}

    /// `arguments` as they are to be shown.
    void call(const std::string& operation, const std::vector<std::string>& arguments, const Reply& reply);
    void note(const std::string& text);

private:
    std::mutex m_mutex;
    std::ostream& m_out; // guarded by m_mutex
};

} // namespace varnel

#endif
