// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_RPC_ERROR_H
#define ZORBD_RPC_ERROR_H

#include <string>

namespace zorbd {

/// JSON-RPC's own codes and this host's, from the range left to servers.
enum class RpcErrorCode : int {
    parse_error = -32700,
    invalid_request = -32600,
    method_not_found = -32601,
    invalid_params = -32602,
    internal_error = -32603,
    remote_service_not_found = -32000,
    remote_timeout = -32001,
    service_not_available = -32002,
    busy = -32003,
    refused = -32004,
};

/// The one sentence that belongs to a code.
const char* message_of(RpcErrorCode code);

/// Whether a method may answer with `code`: it is neither 0, which stands for success, nor reserved by
/// JSON-RPC for what a method cannot know.
bool is_open_to_methods(int code);

/// What an error response says.
struct RpcError
{
    /// An error of the host's. `particulars` are for people; there is no data when they are empty.
    RpcError(RpcErrorCode error, const std::string& particulars);
    /// Any other.
    RpcError(int error, std::string sentence, std::string json);

    int code;
    std::string message; ///< UTF-8
    std::string data;    ///< JSON text; left out of the response when empty
};

/// The text of an error response; `id` is JSON text.
std::string error_response(const RpcError& error, const std::string& id = "null");

/// The text of a response with a result; `id` and `result` are JSON text.
std::string result_response(const std::string& result, const std::string& id);

} // namespace zorbd

#endif
