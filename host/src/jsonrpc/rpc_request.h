// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_RPC_REQUEST_H
#define ZORBD_RPC_REQUEST_H

#include <optional>
#include <string>
#include <variant>

#include "json/json_value.h"

namespace zorbd {

/// A request object that keeps JSON-RPC 2.0's rules.
struct RpcRequest
{
    std::string method;
    /// JSON text; none for a notification.
    std::optional<std::string> id;
};

/// An object, or something else, that breaks them.
struct InvalidRequest
{
    std::string cause;
    /// JSON text; "null" where no valid id could be made out.
    std::string id;
};

/// Reads one request; `value` is whatever stood there and stays the caller's.
std::variant<RpcRequest, InvalidRequest> read_request(json_object* value);

} // namespace zorbd

#endif
