// SPDX-License-Identifier: Apache-2.0
#include "zeb/api/RpcError.h"

namespace zeb {
namespace api {

RpcError::RpcError(int code, const std::string& message, const data::KX_JSON& data)
    : std::runtime_error(message), m_code(code), m_data(data)
{
}

RpcError::RpcError(const RpcError& other) noexcept = default;
RpcError& RpcError::operator=(const RpcError& other) noexcept = default;
RpcError::~RpcError() noexcept = default;

} // namespace api
} // namespace zeb
