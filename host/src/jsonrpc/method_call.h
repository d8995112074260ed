// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_METHOD_CALL_H
#define ZORBD_METHOD_CALL_H

#include <string>
#include <variant>

#include "jsonrpc/rpc_error.h"
#include "json/json_value.h"

namespace zeb::api {
class CallbackMethod;
}

namespace zorbd {

/// The JSON text of a result, or an error.
using CallOutcome = std::variant<std::string, RpcError>;

/// Runs a plug-in's method on the calling thread. `request` is the whole request object; the caller keeps its
/// reference. The result is the "result" that the method wrote into its response object, otherwise the
/// integer that it returned. What it throws becomes an error; only std::bad_alloc of our own leaves this
/// function.
CallOutcome call_method(zeb::api::CallbackMethod& method, const std::string& name, json_object* request);

} // namespace zorbd

#endif
