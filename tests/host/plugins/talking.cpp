// SPDX-License-Identifier: Apache-2.0
// A plug-in that writes many lines, in pieces, from many threads.
#include <iostream>
#include <string>
#include <thread>
#include <vector>

#include "zeb/api/KX_RPCHandler.h"
#include "zeb/api/RpcMethod.h"

namespace {

using Json = zeb::api::data::KX_JSON;

class Handler : public zeb::api::KX_RPCHandler
{
public:
    Handler()
    {
        AddMethod(new zeb::api::RpcMethod<Handler>("talk", this, &Handler::talk, Json(nullptr)));
        AddMethod(new zeb::api::RpcMethod<Handler>("say", this, &Handler::say, Json(nullptr)));
    }

private:
    /// Writes as many lines as "params" says, on each of as many threads; returns when all are written.
    int talk(const Json& in, Json& /*out*/)
    {
        const Json params = in.get_json_object("params");
        const int lines = params.get_json_int("lines");
        std::vector<std::thread> threads;
        for (int thread = 0; thread < params.get_json_int("threads"); ++thread)
            threads.emplace_back([thread, lines] {
                for (int i = 0; i < lines; ++i)
                    std::cout << "thread " << thread << " says " << i << " of " << lines << std::endl;
            });
        for (std::thread& thread : threads)
            thread.join();
        return lines;
    }

    /// Writes the "text" of "params", as one line on this thread.
    int say(const Json& in, Json& /*out*/)
    {
        std::cout << in.get_json_object("params").get_json_string("text") << std::endl;
        return 0;
    }
};

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Handler;
}
