// SPDX-License-Identifier: Apache-2.0
// A plug-in that is bound at once, with methods for all that a test wants to see from outside.
#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "zeb/api/KX_RPCHandler.h"
#include "zeb/api/RpcError.h"
#include "zeb/api/RpcMethod.h"

namespace {

using Json = zeb::api::data::KX_JSON;

class Methods
{
public:
    int seven(const Json& /*in*/, Json& /*out*/) { return 7; }

    int echo(const Json& in, Json& out)
    {
        out.set_json_object("result", in.get_json_object("params"));
        return 0;
    }

    /// Answers a text of as many characters as "params" says.
    int fill(const Json& in, Json& out)
    {
        const int size = in.get_json_object("params").get_json_int("size");
        out.set_json_string("result", std::string(static_cast<std::size_t>(size), 'x'));
        return 0;
    }

    int refuse(const Json& /*in*/, Json& /*out*/) { throw std::invalid_argument("no such thing"); }

    /// Ends with the error that "params" describes.
    int fail(const Json& in, Json& /*out*/)
    {
        const Json params = in.get_json_object("params");
        throw zeb::api::RpcError(params.get_json_int("code"), params.get_json_string("message"),
                                 params.get_json_object("data"));
    }

    /// Takes as many milliseconds as "params" says.
    int linger(const Json& in, Json& /*out*/)
    {
        const int duration = in.get_json_object("params").get_json_int("ms");
        std::this_thread::sleep_for(std::chrono::milliseconds(duration));
        return 1;
    }

    /// Runs until somebody opens the FIFO that "params" names and closes it again.
    int hold(const Json& in, Json& /*out*/)
    {
        const std::string fifo = in.get_json_object("params").get_json_string("fifo");
        std::cout << "holding" << std::endl;
        const int opened = open(fifo.c_str(), O_RDONLY | O_CLOEXEC);
        close(opened);
        std::cout << "released" << std::endl;
        return 1;
    }
};

class Handler : public zeb::api::KX_RPCHandler
{
public:
    Handler()
    {
        add("seven", &Methods::seven);
        add("echo", &Methods::echo);
        add("fill", &Methods::fill);
        add("refuse", &Methods::refuse);
        add("fail", &Methods::fail);
        add("linger", &Methods::linger);
        add("hold", &Methods::hold);
        std::cout << "served_methods made" << std::endl;
    }
    ~Handler() override { std::cout << "served_methods deleted" << std::endl; }

private:
    void add(const char* name, int (Methods::*method)(const Json&, Json&))
    {
        AddMethod(new zeb::api::RpcMethod<Methods>(name, &m_methods, method, Json(nullptr)));
    }

    Methods m_methods;
};

struct Unloading
{
    ~Unloading() { std::cout << "served_methods unloaded" << std::endl; }
} unloading;

} // namespace

extern "C" zeb::api::KX_RPCHandler* RPCHandler()
{
    return new Handler;
}
