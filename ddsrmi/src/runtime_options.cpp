// SPDX-License-Identifier: Apache-2.0
#include "runtime_options.h"

#include <charconv>
#include <map>
#include <string>
#include <string_view>

#include "report.h"

namespace org::opensplice::DDS_RMI {

namespace {

constexpr unsigned largest_pool = 256;
constexpr unsigned usual_pool = 4;
constexpr unsigned largest_queue_mebibytes = 1U << 20U;
constexpr unsigned fewest_queued_requests = 1000;
constexpr unsigned most_queued_requests = 100'000'000;

template <class Number>
std::optional<Number> parse_number(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return number;
}

// Clients may call from any thread with either model.
bool set_client_threading(RuntimeOptions& /*options*/, std::string_view value)
{
    return value == "ST" || value == "MT";
}

bool set_discovery_timeout(RuntimeOptions& options, std::string_view value)
{
    const auto seconds = parse_number<int>(value);
    if (!seconds || *seconds < -1)
        return false;
    options.discovery_timeout.reset();
    if (*seconds >= 0)
        options.discovery_timeout = std::chrono::seconds(*seconds);
    return true;
}

bool set_server_threading(RuntimeOptions& options, std::string_view value)
{
    static const std::map<std::string_view, ServerThreadingPolicy::Model> models{
        {"ST", ServerThreadingPolicy::ST},
        {"MT", ServerThreadingPolicy::MT},
        {"TPS", ServerThreadingPolicy::TPS}};
    const auto comma = value.find(',');
    const auto model = models.find(value.substr(0, comma));
    if (model == models.end())
        return false;
    options.server_threading = {model->second, model->second == ServerThreadingPolicy::ST ? 1U : usual_pool};
    if (comma == std::string_view::npos)
        return true;
    const auto size = parse_number<unsigned>(value.substr(comma + 1));
    if (!size || *size < 1 || *size > largest_pool)
        return false;
    if (model->second != ServerThreadingPolicy::ST)
        options.server_threading.pool_size = *size;
    return true;
}

// Announcements reach clients that start later with either.
bool set_durability(RuntimeOptions& /*options*/, std::string_view value)
{
    return value == "yes" || value == "no";
}

bool set_queue_bytes(RuntimeOptions& options, std::string_view value)
{
    const auto mebibytes = parse_number<unsigned>(value);
    if (!mebibytes || *mebibytes < 1 || *mebibytes > largest_queue_mebibytes)
        return false;
    options.server_room.bytes = std::uint64_t{*mebibytes} << 20U;
    return true;
}

bool set_queue_requests(RuntimeOptions& options, std::string_view value)
{
    const auto requests = parse_number<unsigned>(value);
    if (!requests || *requests < fewest_queued_requests || *requests > most_queued_requests)
        return false;
    options.server_room.requests = *requests;
    return true;
}

struct Option
{
    bool (*set)(RuntimeOptions&, std::string_view);
    std::string_view values;
};

const std::map<std::string_view, Option>& known_options()
{
    static const std::map<std::string_view, Option> options{
        {"--RMIClientThreadingModel", {set_client_threading, "ST or MT"}},
        {"--RMIServiceDiscoveryTimeout",
         {set_discovery_timeout, "a number of seconds, or -1 to wait for ever"}},
        {"--RMIServerThreadingModel",
         {set_server_threading, "ST, MT or TPS, then ,<pool size> from 1 to 256"}},
        {"--RMIDurability", {set_durability, "yes or no"}},
        {"--RMIServerQueueBytes", {set_queue_bytes, "a number of MiB from 1 to 1048576"}},
        {"--RMIServerQueueRequests", {set_queue_requests, "a number from 1000 to 100000000"}},
    };
    return options;
}

bool apply(RuntimeOptions& options, std::string_view argument)
{
    const auto equals = argument.find('=');
    const auto option = known_options().find(argument.substr(0, equals));
    if (option == known_options().end()) {
        report("unknown runtime option '" + std::string(argument) + "'");
        return false;
    }
    if (equals != std::string_view::npos && option->second.set(options, argument.substr(equals + 1)))
        return true;
    report("bad runtime option '" + std::string(argument) + "': its value must be " +
           std::string(option->second.values));
    return false;
}

bool is_program_name(int position, std::string_view argument)
{
    return position == 0 && (argument.empty() || argument.front() != '-');
}

} // namespace

std::chrono::steady_clock::time_point
RuntimeOptions::discovery_deadline(std::chrono::steady_clock::time_point now) const
{
    return discovery_timeout ? now + *discovery_timeout : std::chrono::steady_clock::time_point::max();
}

std::optional<RuntimeOptions> parse_runtime_options(int argc, const char* const* argv)
{
    RuntimeOptions options;
    for (int i = 0; i < argc && argv[i] != nullptr; ++i)
        if (!is_program_name(i, argv[i]) && !apply(options, argv[i]))
            return std::nullopt;
    return options;
}

} // namespace org::opensplice::DDS_RMI
