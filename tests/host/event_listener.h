// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_HOST_EVENT_LISTENER_H
#define TESTS_HOST_EVENT_LISTENER_H

#include <cstdint>
#include <sstream>
#include <string>

#include "http_client.h"

namespace host_test {

/// One event of a stream of Server-Sent Events.
struct StreamEvent
{
    std::string id;
    std::string event;
    std::string data;
};

/// A client that takes events. It speaks HTTP/1.0, to which the stream comes as it is.
class EventListener
{
public:
    template <class Where>
    explicit EventListener(const Where& where, const std::string& query = "", const std::string& headers = "")
        : m_connection(where)
    {
        m_connection.send("GET /events" + query + " HTTP/1.0\r\n" + headers + "\r\n");
        m_head = m_connection.receive_until("\r\n\r\n");
        m_connection.receive_until("retry: 2000\n\n");
    }

    const std::string& head() const { return m_head; }
    const HttpConnection& connection() const { return m_connection; }
    HttpConnection& connection() { return m_connection; }

    /// The next event that has data, in whatever time it takes to come.
    StreamEvent next()
    {
        StreamEvent event;
        while (event.data.empty())
            event = parse(m_connection.receive_until("\n\n"));
        return event;
    }

    /// The next one of that kind.
    StreamEvent next(const std::string& kind)
    {
        StreamEvent event = next();
        while (event.event != kind)
            event = next();
        return event;
    }

private:
    static StreamEvent parse(const std::string& block)
    {
        StreamEvent event;
        std::istringstream lines(block);
        for (std::string line; std::getline(lines, line);) {
            take(line, "id: ", event.id);
            take(line, "event: ", event.event);
            take(line, "data: ", event.data);
        }
        return event;
    }

    static void take(const std::string& line, const std::string& field, std::string& value)
    {
        if (line.compare(0, field.size(), field) == 0)
            value = line.substr(field.size());
    }

    HttpConnection m_connection;
    std::string m_head;
};

} // namespace host_test

#endif
