// SPDX-License-Identifier: Apache-2.0
#include "recording.h"

#include <algorithm>
#include <mutex>

namespace conformance {
namespace {

std::mutex events_mutex;
bool is_recording = false; // guarded by events_mutex

// Never destroyed, because releases are looked at until the very end of the process.
Events& recorded_events() // guarded by events_mutex
{
    static Events& events = *new Events;
    return events;
}

thread_local bool is_recording_thread = false;
thread_local int unobserved_depth = 0;

} // namespace

Recording::Recording()
{
    const std::lock_guard lock(events_mutex);
    recorded_events().clear();
    is_recording = true;
    is_recording_thread = true;
}

Recording::~Recording()
{
    is_recording_thread = false;
    const std::lock_guard lock(events_mutex);
    is_recording = false;
}

Events Recording::all() const
{
    const Unobserved unobserved;
    const std::lock_guard lock(events_mutex);
    return recorded_events();
}

void record(const char* kind, std::string_view text)
{
    const Unobserved unobserved;
    const std::lock_guard lock(events_mutex);
    if (is_recording)
        recorded_events().push_back(std::string(kind).append(": ").append(text));
}

Events only(std::initializer_list<const char*> kinds, const Events& events)
{
    Events chosen;
    std::copy_if(events.begin(), events.end(), std::back_inserter(chosen), [&](const std::string& event) {
        return std::any_of(kinds.begin(), kinds.end(),
                           [&](const char* kind) { return event.rfind(std::string(kind) + ": ", 0) == 0; });
    });
    return chosen;
}

std::string joined(const char* kind, const Events& events)
{
    std::string text;
    for (const std::string& event : only({kind}, events))
        text += event.substr(event.find(": ") + 2);
    return text;
}

Unobserved::Unobserved()
{
    ++unobserved_depth;
}

Unobserved::~Unobserved()
{
    --unobserved_depth;
}

bool is_observed()
{
    return is_recording_thread && unobserved_depth == 0;
}

} // namespace conformance
