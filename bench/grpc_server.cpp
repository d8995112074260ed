// SPDX-License-Identifier: Apache-2.0

// Answers calls over gRPC with 0, until its standard input ends.

#include <grpcpp/grpcpp.h>

#include <iostream>

#include "exchange.grpc.pb.h"

namespace {

class IdleExchange final : public bench::Exchange::Service
{
    grpc::Status NodeSetConfig(grpc::ServerContext* /*context*/,
                               const bench::NodeSetConfigRequest* /*request*/,
                               bench::NodeSetConfigReply* reply) override
    {
        reply->set_result(0);
        return grpc::Status::OK;
    }
};

} // namespace

int main()
{
    IdleExchange service;
    int port = 0;
    grpc::ServerBuilder builder;
    builder.AddListeningPort("127.0.0.1:0", grpc::InsecureServerCredentials(), &port);
    builder.RegisterService(&service);
    const auto server = builder.BuildAndStart();
    if (server == nullptr)
        return 1;
    std::cout << "ready 127.0.0.1:" << port << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    server->Shutdown();
}
