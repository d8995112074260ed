// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_DISPATCHER_H
#define ZORBD_DISPATCHER_H

#include <optional>
#include <string>

#include "jsonrpc/batch_responses.h"
#include "jsonrpc/call_observer.h"
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
    /// there is nothing to answer (notifications only). `observer`, if there is one, is told of each request
    /// as it ends. Any number of threads may call it. Throws std::bad_alloc, and CallWaits where the observer
    /// wants it.
    std::optional<std::string> answer(const std::string& body, CallObserver* observer = nullptr) const;

    /// The answer to a body of which only some requests have been answered, because one takes too long: for
    /// the others an error that names the method and says `why`, and whether the call was begun.
    /// `has_begun` tells that of the first of them; those behind it were not.
    std::optional<std::string> answer_late(const std::string& body, BatchResponses answered,
                                           const std::string& why, bool has_begun) const;

private:
    std::optional<std::string> answer_value(json_object* value, CallObserver* observer) const;
    std::optional<std::string> answer_batch(json_object* batch, CallObserver* observer) const;
    std::optional<std::string> answer_single(json_object* value, CallObserver* observer) const;
    CallOutcome run(const RpcRequest& request, json_object* value, bool& is_known,
                    CallObserver* observer) const;

    const MethodDirectory& m_methods;
    DispatchLimits m_limits;
};

} // namespace zorbd

#endif
