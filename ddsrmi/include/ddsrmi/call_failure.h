// SPDX-License-Identifier: Apache-2.0
#ifndef DDSRMI_CALL_FAILURE_H
#define DDSRMI_CALL_FAILURE_H

namespace org {
namespace opensplice {
namespace DDS_RMI {

/// Why a call that was accepted has got no reply.
enum class CallFailure {
    implementation_failed, ///< the implementation threw, or its reply could not be decoded
    unknown_operation,     ///< the server has no such operation, or one with other types
    server_lost,      ///< the server has ended, was replaced, or it and the client have forgotten each other;
                      ///< whether the call was run is not known, and it will not be run any more
    given_up,         ///< no reply within the proxy's timeout
    closed,           ///< the proxy was released, or the runtime stopped
    exception_raised, ///< the implementation threw an exception that the operation raises
};

/// For reply handlers that want to know how a call ends when no reply comes: derive from it beside the
/// generated base. Every accepted call ends once: by the reply hook or by handleFailure.
class CallFailureHandler
{
public:
    virtual ~CallFailureHandler();

    /// Called by the RMI layer on the thread that runs the proxy's reply hooks, and for `closed` on the one
    /// that releases the proxy or stops the runtime. `text` says more, for people, and is valid until it
    /// returns. What it throws is reported on standard error.
    ///
    /// For `exception_raised` the text is the exception's name, and the exception is being handled: `throw;`
    /// throws it again, and std::current_exception() keeps it for another thread.
    virtual void handleFailure(CallFailure reason, const char* text) = 0;
};

} // namespace DDS_RMI
} // namespace opensplice
} // namespace org

#endif
