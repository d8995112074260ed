// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/rpc_error.h"

#include "json/json_value.h"

namespace zorbd {

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

std::string error_response(const RpcError& error, const std::string& id)
{
    std::string text = R"({"jsonrpc":"2.0","error":{"code":)" + std::to_string(static_cast<int>(error.code)) +
                       R"(,"message":")" + message_of(error.code) + '"';
    if (!error.data.empty())
        text += R"(,"data":)" + json_text(json_string(error.data).get());
    return text + R"(},"id":)" + id + '}';
}

std::string result_response(const std::string& result, const std::string& id)
{
    return R"({"jsonrpc":"2.0","result":)" + result + R"(,"id":)" + id + '}';
}

} // namespace zorbd
