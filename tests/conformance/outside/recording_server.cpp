// SPDX-License-Identifier: Apache-2.0
// A server of the remote interface that writes one line for each operation that reaches it, with the exact
// bytes of its texts, and answers with the numbers on its command line in turn (or 0). It ends with its
// input.

#include <cstddef>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <sstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "VarnelRMI_Interface.h"
#include "VarnelRMI_operations.h"

namespace {

namespace rmi = org::opensplice::DDS_RMI;

/// In quotes; every byte that is no printable ASCII character as its code.
std::string shown(DDS::String text)
{
    std::ostringstream line;
    line << '"' << std::hex << std::setfill('0');
    for (const char* at = text; *at != '\0'; ++at) {
        const unsigned code = static_cast<unsigned char>(*at);
        if (code >= ' ' && code <= '~')
            line << *at;
        else
            line << "\\x" << std::setw(2) << code;
    }
    line << '"';
    return line.str();
}

std::string shown(DDS::Long number)
{
    return std::to_string(number);
}

std::string shown(DDS::Boolean value)
{
    return value != 0 ? "true" : "false";
}

/// Runs its operations one at a time.
class RecordingService : public DDS_RMI::VarnelRMI::VarnelRMIServiceInterface
{
public:
    explicit RecordingService(std::vector<DDS::Long> replies) : m_replies(std::move(replies)) {}

#define ANSWERED(op, parameters, parameters_with_handler, arguments)                                         \
    DDS::Long op parameters override                                                                         \
    {                                                                                                        \
        return answer(#op, std::make_tuple arguments);                                                       \
    }
    FOR_EVERY_OPERATION(ANSWERED)
#undef ANSWERED

private:
    template <class... Arguments>
    DDS::Long answer(const char* operation, const std::tuple<Arguments...>& arguments)
    {
        std::string line;
        std::apply([&line](auto... each) { ((line += (line.empty() ? "" : ", ") + shown(each)), ...); },
                   arguments);
        std::cout << operation << '(' << line << ')' << std::endl;
        return m_replies.empty() ? 0 : m_replies[m_answered++ % m_replies.size()];
    }

    const std::vector<DDS::Long> m_replies;
    std::size_t m_answered = 0;
};

bool offer(std::vector<DDS::Long> replies)
{
    const rmi::shared_ptr<RecordingService> service(new RecordingService(std::move(replies)));
    return rmi::DDS_Service::register_interface<DDS_RMI::VarnelRMI::VarnelRMIServiceInterface,
                                                RecordingService>(service, "VarnelDE_Server", 1);
}

void wait_for_end_of_input()
{
    std::string line;
    while (std::getline(std::cin, line)) {
    }
}

} // namespace

int main(int count, char* arguments[])
{
    std::vector<DDS::Long> replies;
    for (int i = 1; i < count; ++i)
        replies.push_back(std::atoi(arguments[i]));

    const rmi::CRuntime_ref runtime = rmi::CRuntime::getDefaultRuntime();
    const char* options[] = {"recording_server"};
    if (!runtime->start(1, options) || !offer(std::move(replies))) {
        std::cerr << "recording_server: the service cannot be offered" << std::endl;
        return EXIT_FAILURE;
    }
    std::thread serving([&runtime] { runtime->run(); });
    std::cout << "ready" << std::endl;
    wait_for_end_of_input();
    runtime->shutdown();
    serving.join();
    return runtime->stop() ? EXIT_SUCCESS : EXIT_FAILURE;
}
