// SPDX-License-Identifier: Apache-2.0
#ifndef ZEB_API_RPCERROR_H
#define ZEB_API_RPCERROR_H

#include <stdexcept>
#include <string>

#include "zeb/api/data/KX_JSON.h"

namespace zeb {
namespace api {

/// Thrown by a method, it becomes the JSON-RPC error with this code, message and data. Whoever knows only
/// std::exception gets the message.
///
///     if (!rooms.has_key(room))
///         throw zeb::api::RpcError(404, "No such room", rooms);
///
/// The code is the application's: any integer but 0 and JSON-RPC's reserved range -32768 to -32000. Of that
/// range -32602 (invalid params) and -32603 (internal error) can be thrown too, since they mean what they
/// mean elsewhere. Any other would be taken for an error of the host itself: zorbd then answers -32603, with
/// a text that tells the code and the message. It does the same where the message is not UTF-8 or the data is
/// not JSON (a text that is not UTF-8, a number that is not finite).
class RpcError : public std::runtime_error
{
public:
    /// `message` is one short sentence, UTF-8. `data` is any JSON value that tells more; the response has
    /// none when it is empty. The error shares it, so that it belongs to the thread that throws (see
    /// KX_JSON).
    RpcError(int code, const std::string& message, const data::KX_JSON& data = data::KX_JSON());
    /// A copy shares the data.
    RpcError(const RpcError& other) noexcept;
    /// Shares the other's data.
    RpcError& operator=(const RpcError& other) noexcept;
    // In the library, so that host and plug-ins mean the same type.
    ~RpcError() noexcept override;

    // what() is the message.

    /// The error's code.
    int code() const noexcept { return m_code; }
    /// The error's data, still owned by it; empty when there is none.
    const data::KX_JSON& data() const noexcept { return m_data; }

private:
    int m_code;
    data::KX_JSON m_data;
};

} // namespace api
} // namespace zeb

#endif
