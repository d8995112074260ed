// SPDX-License-Identifier: Apache-2.0
#ifndef LEAST_FRAMEWORK_KX_RPCHANDLER_H
#define LEAST_FRAMEWORK_KX_RPCHANDLER_H

namespace zeb {
namespace api {

class CallbackMethod;

class KX_RPCHandler
{
public:
    KX_RPCHandler();
    virtual ~KX_RPCHandler();
    virtual bool isBound();
    void AddMethod(CallbackMethod* method);
};

} // namespace api
} // namespace zeb

#endif
