// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DISPATCHER_H
#define ZORBD_DISPATCHER_H

#include <optional>
#include <string>

#include "jsonrpc/method_call.h"
#include "jsonrpc/rpc_request.h"
#include "plugins/method_directory.h"
#include "json/json_value.h"

namespace zorbd {

struct DispatchLimits
{
    int max_depth = 32;
    int max_batch = 100;
};

/// JSON-RPC 2.0 from the text of a body to the text of its answer.
class Dispatcher
{
public:
    /// `methods` must outlive it.
    Dispatcher(const MethodDirectory& methods, DispatchLimits limits);

    /// Runs the request, or the requests of the batch in their order, on the calling thread. Nothing when
    /// there is nothing to answer (notifications only). Any number of threads may call it. Throws
    /// std::bad_alloc only.
    std::optional<std::string> answer(const std::string& body) const;

private:
    std::optional<std::string> answer_value(json_object* value) const;
    std::optional<std::string> answer_batch(json_object* batch) const;
    std::optional<std::string> answer_single(json_object* value) const;
    CallOutcome run(const RpcRequest& request, json_object* value) const;

    const MethodDirectory& m_methods;
    DispatchLimits m_limits;
};

} // namespace zorbd

#endif
