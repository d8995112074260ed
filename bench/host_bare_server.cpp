// SPDX-License-Identifier: Apache-2.0

// The least that a server of JSON can do on a common HTTP library: libmicrohttpd with one epoll thread parses
// the body with json-c and answers the same bytes to whatever it was. Until its standard input ends.

#include <arpa/inet.h>
#include <json-c/json.h>
#include <microhttpd.h>
#include <netinet/in.h>

#include <iostream>
#include <memory>
#include <string>

namespace {

constexpr const char answer[] = R"({"jsonrpc":"2.0","result":0,"id":1})";

using Body = std::string;

MHD_Result answer_parsed(MHD_Connection* connection, const Body& body, MHD_Response* response)
{
    json_object* parsed = json_tokener_parse(body.c_str());
    const bool is_json = parsed != nullptr;
    json_object_put(parsed);
    return is_json ? MHD_queue_response(connection, MHD_HTTP_OK, response) : MHD_NO;
}

MHD_Result handle(void* closure, MHD_Connection* connection, const char* /*path*/, const char* /*method*/,
                  const char* /*version*/, const char* data, std::size_t* size, void** context)
{
    auto* body = static_cast<Body*>(*context);
    if (body == nullptr) {
        *context = std::make_unique<Body>().release();
        return MHD_YES;
    }
    if (*size == 0)
        return answer_parsed(connection, *body, static_cast<MHD_Response*>(closure));
    body->append(data, *size);
    *size = 0;
    return MHD_YES;
}

void completed(void* /*closure*/, MHD_Connection* /*connection*/, void** context,
               MHD_RequestTerminationCode /*how*/)
{
    const std::unique_ptr<Body> body(static_cast<Body*>(*context));
    *context = nullptr;
}

MHD_Response* make_response()
{
    MHD_Response* response =
        MHD_create_response_from_buffer(sizeof answer - 1, const_cast<char*>(answer), MHD_RESPMEM_PERSISTENT);
    MHD_add_response_header(response, MHD_HTTP_HEADER_CONTENT_TYPE, "application/json");
    return response;
}

MHD_Daemon* start(MHD_Response* response)
{
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return MHD_start_daemon(MHD_USE_EPOLL_INTERNAL_THREAD, 0, nullptr, nullptr, &handle, response,
                            MHD_OPTION_SOCK_ADDR, &address, MHD_OPTION_CONNECTION_MEMORY_LIMIT,
                            std::size_t{8192}, MHD_OPTION_STRICT_FOR_CLIENT, 1, MHD_OPTION_NOTIFY_COMPLETED,
                            &completed, nullptr, MHD_OPTION_END);
}

} // namespace

int main()
{
    MHD_Response* response = make_response();
    MHD_Daemon* daemon = start(response);
    if (daemon == nullptr) {
        std::cerr << "bench_host_bare_server: cannot start the HTTP server" << std::endl;
        return 1;
    }
    std::cerr << "ready on http://127.0.0.1:" << MHD_get_daemon_info(daemon, MHD_DAEMON_INFO_BIND_PORT)->port
              << "/" << std::endl;
    while (std::cin.get() != std::char_traits<char>::eof()) {
    }
    MHD_stop_daemon(daemon);
    MHD_destroy_response(response);
}
