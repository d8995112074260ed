// SPDX-License-Identifier: Apache-2.0
// Calls zorbd with libjson-rpc-cpp's client. Usage: jsonrpccpp_client URL
#include <jsonrpccpp/client.h>
#include <jsonrpccpp/client/connectors/httpclient.h>

#include <iostream>

namespace {

bool is(bool condition, const char* what)
{
    if (!condition)
        std::cerr << "jsonrpccpp_client: " << what << '\n';
    return condition;
}

bool refuses(jsonrpc::Client& client, const char* method, int code)
{
    try {
        client.CallMethod(method, Json::Value(Json::objectValue));
    } catch (const jsonrpc::JsonRpcException& error) {
        return error.GetCode() == code;
    }
    return false;
}

/// Version 0.7 throws for every status but 200; 204 is what a notification is answered with.
bool notifies(jsonrpc::Client& client)
{
    try {
        client.CallNotification("seven", Json::Value(Json::objectValue));
        return true;
    } catch (const jsonrpc::JsonRpcException& error) {
        return error.GetCode() == jsonrpc::Errors::ERROR_RPC_INTERNAL_ERROR;
    }
}

bool batches(jsonrpc::Client& client)
{
    jsonrpc::BatchCall calls;
    const int seven = calls.addCall("seven", Json::Value(Json::objectValue));
    const int unknown = calls.addCall("nowhere", Json::Value(Json::objectValue));
    calls.addCall("seven", Json::Value(Json::objectValue), true);
    jsonrpc::BatchResponse answers = client.CallProcedures(calls);
    Json::Value of_unknown(unknown);
    return answers.getResult(seven).asInt() == 7 && answers.getErrorCode(of_unknown) == -32601;
}

} // namespace

int main(int argc, char** argv)
{
    if (!is(argc == 2, "needs the URL"))
        return 2;
    jsonrpc::HttpClient connector(argv[1]);
    jsonrpc::Client client(connector);
    Json::Value params(Json::arrayValue);
    params.append("b");
    bool good = is(client.CallMethod("seven", Json::Value(Json::objectValue)).asInt() == 7, "a call");
    good &= is(client.CallMethod("echo", params) == params, "params by position");
    good &= is(refuses(client, "nowhere", -32601), "an unknown method");
    good &= is(refuses(client, "refuse", -32602), "refused params");
    good &= is(notifies(client), "a notification");
    good &= is(batches(client), "a batch");
    return good ? 0 : 1;
}
