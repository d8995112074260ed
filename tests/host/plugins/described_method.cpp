// SPDX-License-Identifier: Apache-2.0
// A plug-in with one method, whose description says whether it was asked for on the thread that made it.
#include <string>
#include <thread>

#include "zeb/api/CallbackMethod.h"
#include "zeb/api/KX_RPCHandler.h"

namespace {

using Json = zeb::api::data::KX_JSON;

class Method : public zeb::api::CallbackMethod
{
public:
    int Call(const Json& /*in*/, Json& /*out*/) override { return 0; }
    std::string GetName() const override { return "described"; }

    Json GetDescription() const override
    {
        Json description;
        description.set_json_string("summary", std::this_thread::get_id() == m_maker
                                                   ? "asked for where it was made"
                                                   : "asked for on another thread");
        return description;
    }

private:
    const std::thread::id m_maker = std::this_thread::get_id();
};

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    auto* const handler = new zeb::api::KX_RPCHandler;
    handler->AddMethod(new Method);
    return handler;
}
