// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_GRPC_CALLS_H
#define BENCH_GRPC_CALLS_H

#include <grpcpp/grpcpp.h>

#include <memory>
#include <thread>

#include "calls.h"
#include "exchange.grpc.pb.h"
#include "support/child_process.h"

namespace bench {

/// Calls over gRPC on the loopback interface; one thread takes the replies in.
class GrpcCalls final : public Calls
{
public:
    GrpcCalls();
    ~GrpcCalls() override;
    void start() override;

private:
    void take_replies();

    test_support::ChildProcess m_server;
    std::unique_ptr<Exchange::Stub> m_stub;
    grpc::CompletionQueue m_completions;
    std::thread m_receiver;
};

} // namespace bench

#endif
