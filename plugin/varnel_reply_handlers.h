// SPDX-License-Identifier: Apache-2.0
#ifndef VARNEL_REPLY_HANDLERS_H
#define VARNEL_REPLY_HANDLERS_H

#include <iostream>

#include "VarnelRMI_InterfaceProxy.h"

#include "varnel_operations.h"

// The receivers of the remote operations' answers. Each one serves one call and only logs the answer, on a
// thread of the RMI runtime.

inline void logReply(const char* text, DDS::Long result)
{
    std::cout << text << result << std::endl;
}

#define VARNEL_REPLY_HANDLER(op, text)                                                                       \
    class MY_##op##_handler : public virtual DDS_RMI::VarnelRMI::VarnelRMIService_##op##_Reply_Handler       \
    {                                                                                                        \
    public:                                                                                                  \
        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \
    };
VARNEL_OPERATIONS(VARNEL_REPLY_HANDLER)
#undef VARNEL_REPLY_HANDLER

#endif
