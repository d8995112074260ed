// SPDX-License-Identifier: Apache-2.0
// A plug-in that is bound only when the file that LATE_SERVICE names is there. It offers "late", and also
// "seven", which another plug-in offers too, and a name that is reserved.
#include <unistd.h>

#include <cstdlib>
#include <iostream>
#include <string>

#include "zeb/api/KX_RPCHandler.h"
#include "zeb/api/RpcMethod.h"

namespace {

using Json = zeb::api::data::KX_JSON;

class Methods
{
public:
    int late(const Json& /*in*/, Json& /*out*/) { return 99; }
};

class Handler : public zeb::api::KX_RPCHandler
{
public:
    Handler()
    {
        std::cout << "late_service made" << std::endl;
        const char* service = std::getenv("LATE_SERVICE");
        m_bound = service == nullptr || access(service, F_OK) == 0;
        if (!m_bound)
            return;
        for (const char* name : {"late", "seven", "rpc.late"})
            AddMethod(new zeb::api::RpcMethod<Methods>(name, &m_methods, &Methods::late, Json(nullptr)));
    }
    ~Handler() override { std::cout << "late_service deleted" << std::endl; }

    bool isBound() override { return m_bound; }

private:
    Methods m_methods;
    bool m_bound = false;
};

} // namespace

struct Unloading
{
    ~Unloading() { std::cout << "late_service unloaded" << std::endl; }
} unloading;

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Handler;
}
