// SPDX-License-Identifier: Apache-2.0
#include "event_reader.h"

#include <sstream>

namespace zorbctl {
namespace {

void take_field(const std::string& line, const std::string& field, std::string& value)
{
    if (line.compare(0, field.size(), field) == 0)
        value = line.substr(field.size());
}

Event parse(const std::string& block)
{
    Event event;
    std::string data;
    std::istringstream lines(block);
    for (std::string line; std::getline(lines, line);) {
        take_field(line, "id: ", event.id);
        take_field(line, "event: ", event.kind);
        take_field(line, "data: ", data);
    }
    event.data = Json::parse(data, nullptr, false);
    return event;
}

} // namespace

bool EventReader::read(std::string_view bytes)
{
    m_rest.append(bytes);
    std::size_t begin = 0;
    for (std::size_t end = m_rest.find("\n\n"); end != std::string::npos; end = m_rest.find("\n\n", begin)) {
        const Event event = parse(m_rest.substr(begin, end - begin));
        begin = end + 2;
        const bool is_event = event.data.is_object() || !event.id.empty();
        if (is_event && !m_take(event))
            return false;
    }
    m_rest.erase(0, begin);
    return true;
}

} // namespace zorbctl
