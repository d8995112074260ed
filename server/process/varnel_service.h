// SPDX-License-Identifier: Apache-2.0
#ifndef SERVER_PROCESS_VARNEL_SERVICE_H
#define SERVER_PROCESS_VARNEL_SERVICE_H

#include "VarnelRMI_Interface.h"
#include "ddsrmi.h"

#include "network/sensor_network.h"
#include "process/call_log.h"
#include "process/reply_delay.h"

namespace varnel {

using VarnelServiceHandle =
    org::opensplice::DDS_RMI::shared_ptr<DDS_RMI::VarnelRMI::VarnelRMIServiceInterface>;

/// Offers a sensor network as the remote service: each call is passed on, logged and, after the delay,
/// answered. Any thread; nothing is thrown, because a failure of the server too is a reply. All three must
/// outlive the service.
VarnelServiceHandle make_varnel_service(SensorNetwork& network, CallLog& log, ReplyDelay& delay);

} // namespace varnel

#endif
