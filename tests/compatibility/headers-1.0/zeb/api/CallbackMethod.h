// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_CALLBACKMETHOD_H
#define ZEB_API_CALLBACKMETHOD_H

#include <string>

#include "zeb/api/data/KX_JSON.h"

namespace zeb {
namespace api {

/// One JSON-RPC method, as the host sees it. A plug-in makes method objects (usually RpcMethod) with `new`
/// and hands them to KX_RPCHandler::AddMethod, which owns them from then on.
///
/// The host may call every operation from any of its threads, and from several at once.
class CallbackMethod
{
public:
    virtual ~CallbackMethod();

    /// Runs the method. `in` is the whole JSON-RPC request object; `out` is the response object, into which
    /// the method may write a "result" member. When it writes none, the returned integer is the result.
    /// What it throws becomes a JSON-RPC error.
    virtual int Call(const data::KX_JSON& in, data::KX_JSON& out) = 0;

    /// The JSON-RPC method name.
    virtual std::string GetName() const = 0;

    /// A JSON description of the method; holds no object where there is none.
    virtual data::KX_JSON GetDescription() const = 0;
};

} // namespace api
} // namespace zeb

#endif
