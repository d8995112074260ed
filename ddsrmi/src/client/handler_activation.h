// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CLIENT_HANDLER_ACTIVATION_H
#define DDSRMI_CLIENT_HANDLER_ACTIVATION_H

#include "ddsrmi/async_reply_handler.h"

namespace org::opensplice::DDS_RMI {

/// Marks the handler as waiting for a reply; throws BAD_PARAM when it already does.
void activate(CAsyncReplyHandlerImpl& handler);
void deactivate(CAsyncReplyHandlerImpl& handler);

} // namespace org::opensplice::DDS_RMI

#endif
