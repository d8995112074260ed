// SPDX-License-Identifier: Apache-2.0
#ifndef BENCH_PLUGIN_CALLS_H
#define BENCH_PLUGIN_CALLS_H

#include <memory>
#include <streambuf>

#include "calls.h"
#include "support/child_process.h"
#include "zeb/api/CallbackMethod.h"
#include "zeb/api/KX_RPCHandler.h"

namespace bench {

/// Calls of the method object "node_set_config" of the built plug-in, loaded as a host loads it. The reply
/// hook shows by the line that it writes to standard output.
class PluginCalls final : public Calls
{
public:
    PluginCalls();
    ~PluginCalls() override;
    void start() override;

private:
    /// Takes the place of standard output; tells reply lines and drops all.
    class ReplyLines final : public std::streambuf
    {
    public:
        explicit ReplyLines(ReplyGate& replies);
        ~ReplyLines() override;

    protected:
        std::streamsize xsputn(const char* text, std::streamsize length) override;
        int overflow(int character) override { return character; }

    private:
        ReplyGate& m_replies;
        std::streambuf* const m_previous;
    };

    struct CloseLibrary
    {
        void operator()(void* library) const;
    };

    test_support::ChildProcess m_server;
    ReplyLines m_lines;
    std::unique_ptr<void, CloseLibrary> m_library;
    std::unique_ptr<zeb::api::KX_RPCHandler> m_handler;
    zeb::api::CallbackMethod* m_method = nullptr;
    zeb::api::data::KX_JSON m_request;
};

} // namespace bench

#endif
