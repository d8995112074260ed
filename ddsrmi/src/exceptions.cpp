// SPDX-License-Identifier: Apache-2.0
#include "ddsrmi/exceptions.h"

namespace org::opensplice::DDS_RMI {

SystemException::SystemException(const std::string& message, int code) : m_Msg(message), dds_code(code) {}
SystemException::~SystemException() noexcept = default;

const char* SystemException::what() const noexcept
{
    return m_Msg.c_str();
}

TIMEOUT::TIMEOUT() : SystemException("no reply in time") {}
TIMEOUT::TIMEOUT(const std::string& message) : SystemException(message) {}
TIMEOUT::~TIMEOUT() noexcept = default;

BAD_PARAM::BAD_PARAM(const char* message) : SystemException(message) {}
BAD_PARAM::~BAD_PARAM() noexcept = default;

INTERNAL_ERROR::INTERNAL_ERROR(const char* message, int code) : SystemException(message, code) {}
INTERNAL_ERROR::~INTERNAL_ERROR() noexcept = default;

SERVICE_NOT_FOUND::SERVICE_NOT_FOUND() : SystemException("service not found") {}
SERVICE_NOT_FOUND::SERVICE_NOT_FOUND(const std::string& message) : SystemException(message) {}
SERVICE_NOT_FOUND::~SERVICE_NOT_FOUND() noexcept = default;

BAD_INV_ORDER::BAD_INV_ORDER(const char* message) : SystemException(message) {}
BAD_INV_ORDER::~BAD_INV_ORDER() noexcept = default;

UserException::UserException(const char* name) : m_name(name) {}
UserException::~UserException() noexcept = default;

const char* UserException::what() const noexcept
{
    return m_name;
}

} // namespace org::opensplice::DDS_RMI
