// SPDX-License-Identifier: Apache-2.0

// A plug-in whose method does nothing, so that what is measured is the host.

#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/RpcMethod.h>

namespace {

using zeb::api::data::KX_JSON;

class Idler : public zeb::api::KX_RPCHandler
{
public:
    Idler() { AddMethod(new zeb::api::RpcMethod<Idler>("nothing", this, &Idler::nothing, KX_JSON())); }

private:
    int nothing(const KX_JSON& /*in*/, KX_JSON& /*out*/) { return 0; }
};

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Idler;
}
