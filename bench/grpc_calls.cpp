// SPDX-License-Identifier: Apache-2.0
#include "grpc_calls.h"

#include <stdexcept>
#include <string>

#include "call_texts.h"
#include "server_process.h"

namespace bench {

namespace {

/// A call that is under way; the completion queue hands it back.
struct PendingCall
{
    grpc::ClientContext context;
    NodeSetConfigReply reply;
    grpc::Status status;
    std::unique_ptr<grpc::ClientAsyncResponseReader<NodeSetConfigReply>> reader;
};

std::string address_of(test_support::ChildProcess& server)
{
    const std::string said = server.wait_for_line("ready ").value_or("");
    if (said.empty())
        throw std::runtime_error("the gRPC server is not ready: " + server.error_output());
    return said.substr(said.find(' ') + 1);
}

} // namespace

GrpcCalls::GrpcCalls()
    : m_server(start_server({GRPC_SERVER})),
      m_stub(
          Exchange::NewStub(grpc::CreateChannel(address_of(m_server), grpc::InsecureChannelCredentials()))),
      m_receiver([this] { take_replies(); })
{
}

GrpcCalls::~GrpcCalls()
{
    m_completions.Shutdown();
    m_receiver.join();
}

void GrpcCalls::start()
{
    NodeSetConfigRequest request;
    request.set_mac_addr(MAC_ADDR);
    request.set_new_cfg(CONFIG);
    auto call = std::make_unique<PendingCall>();
    call->reader = m_stub->AsyncNodeSetConfig(&call->context, request, &m_completions);
    PendingCall* const tag = call.release(); // take_replies() owns it from here
    tag->reader->Finish(&tag->reply, &tag->status, tag);
}

void GrpcCalls::take_replies()
{
    void* tag = nullptr;
    bool good = false;
    while (m_completions.Next(&tag, &good)) {
        const std::unique_ptr<PendingCall> call(static_cast<PendingCall*>(tag));
        if (good && call->status.ok())
            replies().reply_came();
    }
}

} // namespace bench
