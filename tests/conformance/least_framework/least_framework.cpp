// SPDX-License-Identifier: Apache-2.0
// A host's library with the operations that every host's library has, and no other. The plug-in is linked
// with it to see that it asks for nothing more; nothing of it is ever run.

#include <zeb/api/CallbackMethod.h>
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>
#include <zeb/api/mdw/KX_DDS_RMI_RUNTIME.h>

namespace zeb {
namespace api {

CallbackMethod::~CallbackMethod() {}

KX_RPCHandler::KX_RPCHandler() {}

KX_RPCHandler::~KX_RPCHandler() {}

bool KX_RPCHandler::isBound()
{
    return false;
}

void KX_RPCHandler::AddMethod(CallbackMethod*) {}

namespace data {

KX_JSON::KX_JSON() {}

KX_JSON::KX_JSON(const json_object*) {}

KX_JSON::KX_JSON(const KX_JSON&) {}

KX_JSON& KX_JSON::operator=(const KX_JSON&)
{
    return *this;
}

KX_JSON::~KX_JSON() {}

KX_JSON KX_JSON::get_json_object(const std::string&) const
{
    return KX_JSON();
}

std::string KX_JSON::get_json_string(const std::string&) const
{
    return std::string();
}

int KX_JSON::get_json_int(const std::string&) const
{
    return 0;
}

} // namespace data

namespace mdw {

void KX_DDS_RMI_RUNTIME::startRUNTIME(bool) {}

void KX_DDS_RMI_RUNTIME::stopRUNTIME() {}

} // namespace mdw

} // namespace api
} // namespace zeb
