// SPDX-License-Identifier: Apache-2.0
#include <iostream>

#include "commands.h"
#include "description.h"
#include "event_reader.h"
#include "failure.h"

namespace zorbctl {
namespace {

Json params_of(Client& client, const Options& options)
{
    if (options.given) {
        Json params = Json::parse(*options.given, nullptr, false);
        if (!params.is_structured())
            throw Failure(exit_usage, "--json needs a JSON object or array");
        return params;
    }
    if (options.params.empty())
        return nullptr;
    return params_from(options.params, find_method(client.result_of("rpc.discover"), options.method));
}

/// How the reply line of a method begins. Throws Failure where its description does not tell.
Json reply_of(Client& client, const std::string& method)
{
    const Json described = find_method(client.result_of("rpc.discover"), method);
    if (!described.contains("x-reply"))
        throw Failure(exit_usage, "nothing tells how the reply line of " + method + " begins (x-reply)");
    return described["x-reply"];
}

int print_response(const Json& response, bool as_json)
{
    const bool is_error = response.contains("error");
    if (as_json)
        std::cout << response.dump() << std::endl;
    else if (!is_error)
        std::cout << response.value("result", Json()).dump() << std::endl;
    else
        throw Failure(exit_refused, error_text(response));
    return is_error ? exit_refused : exit_done;
}

/// The number at the end of a reply line is negative when the operation has failed.
int print_reply(const Json& data, const Json& reply, bool as_json)
{
    const std::string line = data.value("line", "");
    const std::string number = line.substr(reply.value("line", "").size());
    const Json failures = reply.value("failures", Json::object());
    const bool has_failed = !number.empty() && number.front() == '-';
    if (as_json)
        std::cout << data.dump() << std::endl;
    else
        std::cout << line << "    ("
                  << (failures.contains(number) ? failures.value(number, "")
                      : has_failed              ? "failed"
                                                : reply.value("success", ""))
                  << ')' << std::endl;
    return has_failed ? exit_refused : exit_done;
}

/// Listens before it calls, so that the line cannot come too early.
int call_and_wait(Client& client, const Options& options, const Json& params)
{
    const Json reply = reply_of(client, options.method);
    const std::string beginning = reply.value("line", "");
    Client caller(options);
    bool is_called = false;
    int code = exit_done;
    EventReader reader([&](const Event& event) {
        if (!is_called) { // the stream has begun
            is_called = true;
            code = print_response(caller.call(options.method, params), options.json);
            return code == exit_done;
        }
        if (event.kind != "line" || event.data.value("line", "").compare(0, beginning.size(), beginning) != 0)
            return true;
        code = print_reply(event.data, reply, options.json);
        return false;
    });
    std::exception_ptr failure; // must not pass through libcurl
    const auto take = [&](std::string_view bytes) {
        try {
            return reader.read(bytes);
        } catch (...) {
            failure = std::current_exception();
            return false;
        }
    };
    const bool has_come = client.stream("", options.timeout, take);
    if (failure)
        std::rethrow_exception(failure);
    if (!has_come)
        throw Failure(exit_no_reply, "no line '" + beginning + "...' has come in time");
    return code;
}

} // namespace

int call_method(Client& client, const Options& options)
{
    const Json params = params_of(client, options);
    if (options.wait)
        return call_and_wait(client, options, params);
    return print_response(client.call(options.method, params), options.json);
}

} // namespace zorbctl
