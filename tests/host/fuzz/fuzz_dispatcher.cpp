// SPDX-License-Identifier: Apache-2.0
// Bodies: whatever comes, the answer is nothing or JSON-RPC.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "jsonrpc/dispatcher.h"
#include "method_table.h"
#include "json/json_reader.h"

namespace {

constexpr zorbd::DispatchLimits limits{16, 20};

/// The answer holds what it echoes one or two levels deeper than the request did.
constexpr int answer_depth = limits.max_depth + 3;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void check_response(json_object* response)
{
    json_object* found = nullptr;
    require(json_object_is_type(response, json_type_object) != 0);
    require(strict_json::string_of(strict_json::member(response, "jsonrpc")) == "2.0");
    require(json_object_object_get_ex(response, "id", &found) != 0);
    const bool has_result = json_object_object_get_ex(response, "result", &found) != 0;
    const bool has_error = json_object_object_get_ex(response, "error", &found) != 0;
    require(has_result != has_error);
}

void check_answer(const std::string& text)
{
    const strict_json::JsonValue answer = strict_json::parse_json(text, answer_depth);
    if (json_object_is_type(answer.get(), json_type_array) == 0)
        return check_response(answer.get());
    require(json_object_array_length(answer.get()) != 0);
    for (std::size_t i = 0; i < json_object_array_length(answer.get()); ++i)
        check_response(json_object_array_get_idx(answer.get(), i));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const host_test::FuzzMethods methods;
    static const zorbd::Dispatcher dispatcher(methods, limits);
    const std::string body(reinterpret_cast<const char*>(data), size);
    if (const auto answer = dispatcher.answer(body))
        check_answer(*answer);
    return 0;
}
