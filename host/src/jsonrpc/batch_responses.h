// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_BATCH_RESPONSES_H
#define ZORBD_BATCH_RESPONSES_H

#include <cstddef>
#include <optional>
#include <string>
#include <utility>

namespace zorbd {

/// The responses of a batch, as they come. They are one text, because many of middling size would stay with
/// the process when they are freed.
class BatchResponses
{
public:
    /// Of the next request; nothing for a notification.
    void add(const std::optional<std::string>& response)
    {
        ++m_answered;
        if (response)
            (m_text += m_text.empty() ? '[' : ',') += *response;
    }

    /// How many requests, with notifications.
    std::size_t answered() const { return m_answered; }

    /// The whole answer; nothing when there was no response.
    std::optional<std::string> take()
    {
        if (m_text.empty())
            return std::nullopt;
        m_text += ']';
        return std::move(m_text);
    }

private:
    std::string m_text;
    std::size_t m_answered = 0;
};

} // namespace zorbd

#endif
