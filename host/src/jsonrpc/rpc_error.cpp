// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/rpc_error.h"

#include <utility>

#include "json/json_quote.h"

namespace zorbd {

using strict_json::quoted_json;

const char* message_of(RpcErrorCode code)
{
    switch (code) {
    case RpcErrorCode::parse_error:
        return "Parse error";
    case RpcErrorCode::invalid_request:
        return "Invalid Request";
    case RpcErrorCode::method_not_found:
        return "Method not found";
    case RpcErrorCode::invalid_params:
        return "Invalid params";
    case RpcErrorCode::internal_error:
        return "Internal error";
    case RpcErrorCode::remote_service_not_found:
        return "Remote service not found";
    case RpcErrorCode::remote_timeout:
        return "Remote service timed out";
    case RpcErrorCode::service_not_available:
        return "Service not available";
    case RpcErrorCode::busy:
        return "Server busy";
    case RpcErrorCode::refused:
        return "Request refused";
    }
    return "Server error";
}

bool is_open_to_methods(int code)
{
    constexpr int first_reserved = -32768;
    constexpr int last_reserved = -32000;
    if (code == static_cast<int>(RpcErrorCode::invalid_params) ||
        code == static_cast<int>(RpcErrorCode::internal_error))
        return true;
    return code != 0 && (code < first_reserved || code > last_reserved);
}

RpcError::RpcError(RpcErrorCode error, const std::string& particulars)
    : code(static_cast<int>(error)), message(message_of(error)),
      data(particulars.empty() ? std::string() : quoted_json(particulars))
{
}

RpcError::RpcError(int error, std::string sentence, std::string json)
    : code(error), message(std::move(sentence)), data(std::move(json))
{
}

std::string error_response(const RpcError& error, const std::string& id)
{
    std::string text = R"({"jsonrpc":"2.0","error":{"code":)" + std::to_string(error.code) +
                       R"(,"message":)" + quoted_json(error.message);
    if (!error.data.empty())
        text += R"(,"data":)" + error.data;
    return text + R"(},"id":)" + id + '}';
}

std::string result_response(const std::string& result, const std::string& id)
{
    return R"({"jsonrpc":"2.0","result":)" + result + R"(,"id":)" + id + '}';
}

} // namespace zorbd
