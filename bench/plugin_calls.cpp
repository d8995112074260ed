// SPDX-License-Identifier: Apache-2.0
#include "plugin_calls.h"

#include <dlfcn.h>

#include <iostream>
#include <stdexcept>
#include <string_view>

#include "call_texts.h"
#include "server_process.h"

namespace bench {

PluginCalls::ReplyLines::ReplyLines(ReplyGate& replies)
    : m_replies(replies), m_previous(std::cout.rdbuf(this))
{
}

PluginCalls::ReplyLines::~ReplyLines()
{
    std::cout.rdbuf(m_previous);
}

std::streamsize PluginCalls::ReplyLines::xsputn(const char* text, std::streamsize length)
{
    if (std::string_view(text, static_cast<std::size_t>(length)).substr(0, 6) == "async_")
        m_replies.reply_came();
    return length;
}

void PluginCalls::CloseLibrary::operator()(void* library) const
{
    dlclose(library);
}

PluginCalls::PluginCalls()
    : m_server(start_server({RMI_SERVER})), m_lines(replies()),
      m_library(dlopen(PLUGIN_FILE, RTLD_NOW | RTLD_LOCAL))
{
    if (m_library == nullptr)
        throw std::runtime_error(dlerror());
    using Factory = zeb::api::KX_RPCHandler* (*)();
    const auto factory = reinterpret_cast<Factory>(dlsym(m_library.get(), "RPCHandler"));
    m_handler.reset(factory());
    m_method = m_handler->FindMethod("node_set_config");
    if (m_method == nullptr)
        throw std::runtime_error("the plug-in has found no server");

    zeb::api::data::KX_JSON params;
    params.set_json_string("mac_addr", MAC_ADDR);
    params.set_json_string("newCfg", CONFIG);
    m_request.set_json_object("params", params);
}

PluginCalls::~PluginCalls()
{
    end_server(m_server);
}

void PluginCalls::start()
{
    zeb::api::data::KX_JSON response;
    m_method->Call(m_request, response);
}

} // namespace bench
