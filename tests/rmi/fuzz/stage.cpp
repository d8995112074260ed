// SPDX-License-Identifier: Apache-2.0
#include "stage.h"

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <thread>

#include "ddsrmi.h"
#include "drill_Interface.h"

namespace fuzz {
namespace {

constexpr unsigned soon_ms = 500;
constexpr unsigned surely_ms = 60'000;

class Range final : public DDS_RMI::Drill::RangeInterface
{
public:
    DDS::Long echo(DDS::Long value) override { return value; }
    DDS::String echo_text(DDS::String text) override
    {
        if (std::strcmp(text, unanswered_text) == 0)
            throw std::runtime_error("asked for");
        return DDS::string_dup(text);
    }
    DDS::LongLong stamp(DDS::Long /*caller*/, DDS::Long number) override { return number; }
    DDS::ULong runs() override { return 0; }
    DDS::ULong repeats() override { return 0; }
    DDS::Long gated(DDS::Long value) override { return value; }
    DDS::Long most_gated() override { return 0; }
    DDS::Long fail(DDS::Long /*value*/) override { throw std::runtime_error("asked for"); }
    DDS::Long note_red(DDS::Long number) override { return number; }
    DDS::Long note_green(DDS::Long number) override { return number; }
    DDS::Long note_blue(DDS::Long number) override { return number; }
    DDS::ULong disorder() override { return 0; }
    DDS::String thread_name() override { return DDS::string_dup(""); }
};

/// Reads all of its text.
class TextHandler final : public DDS_RMI::Drill::Range_echo_text_Reply_Handler
{
    void echo_text_Reply(DDS::String result) override { m_length = std::strlen(result); }

    volatile std::size_t m_length = 0;
};

[[noreturn]] void give_up(const char* what)
{
    (void)dprintf(STDERR_FILENO, "the stage of the fuzz target: %s\n", what);
    std::abort();
}

/// What the RMI layer reports of thousands of inputs a second; the fuzzer writes to the descriptor itself.
void drop_reports()
{
    stderr = std::fopen("/dev/null", "w");
}

void serve()
{
    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* arguments[] = {"fuzz"};
    if (!runtime->start(1, arguments))
        give_up("the runtime does not start");
    rmi::DDS_Service::register_interface<DDS_RMI::Drill::RangeInterface>(rmi::shared_ptr<Range>(new Range),
                                                                         "drill", 1);
    std::thread([runtime]() mutable { runtime->run(); }).detach();
}

/// The path name of a writer of the topic, which this process has.
std::string path_of_writer(dds_entity_t participant, const std::string& topic)
{
    const dds_entity_t reader =
        dds_create_reader(participant, DDS_BUILTIN_TOPIC_DCPSPUBLICATION, nullptr, nullptr);
    std::string path;
    void* samples[64] = {};
    dds_sample_info_t infos[64];
    const dds_return_t count = dds_take(reader, samples, infos, 64, 64);
    for (dds_return_t i = 0; i < count; ++i) {
        const auto& endpoint = *static_cast<const dds_builtintopic_endpoint_t*>(samples[i]);
        void* data = nullptr;
        std::size_t size = 0;
        if (infos[i].valid_data && topic == endpoint.topic_name &&
            dds_qget_userdata(endpoint.qos, &data, &size)) {
            path.assign(static_cast<const char*>(data), size);
            dds_free(data);
        }
    }
    dds_delete(reader);
    if (path.empty())
        give_up("a writer is missing");
    return path;
}

std::string topic_name(const std::string& operation, const char* direction)
{
    return "topic___Drill__Range__" + operation + "_" + direction;
}

} // namespace

Stage& Stage::instance()
{
    static Stage& stage = *new Stage; // its threads run until the process ends
    return stage;
}

Stage::Stage()
{
    drop_reports();
    serve();
    rmi::DDS_Service::getServerProxy("drill", 1, m_proxy);
    if (m_proxy.get() == nullptr)
        give_up("there is no proxy");
    m_participant = dds_create_participant(DDS_DOMAIN_DEFAULT, nullptr, nullptr);
    m_server_path = path_of_writer(m_participant, "DDS_ServiceIdentification");
    m_client_path = path_of_writer(m_participant, topic_name("echo", "request"));
}

ForeignWriter Stage::request_writer(const std::string& operation, const dds_topic_descriptor_t& type) const
{
    return {m_participant, topic_name(operation, "request"), type, m_server_path, m_client_path};
}

ForeignWriter Stage::reply_writer(const std::string& operation, const dds_topic_descriptor_t& type) const
{
    return {m_participant, topic_name(operation, "reply"), type, m_client_path, ""};
}

std::uint32_t Stage::call_without_reply()
{
    m_proxy->setTimeout(soon_ms);
    const rmi::shared_ptr<TextHandler> handler(new TextHandler);
    m_proxy->async_echo_text(DDS::string_dup(unanswered_text), handler.get());
    return ++m_calls;
}

// The replies of different operations are delivered in any order, but all that have come with the first
// answer are delivered before the second one.
void Stage::settle()
{
    m_proxy->setTimeout(surely_ms);
    for (int i = 0; i < 2; ++i) {
        const auto number = static_cast<DDS::Long>(++m_calls);
        if (m_proxy->echo(number) != number)
            give_up("a call has got another one's reply");
    }
}

} // namespace fuzz
