// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_MHD_RESPONSE_H
#define ZORBD_MHD_RESPONSE_H

#include <microhttpd.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string_view>

#include "http/io_threads.h"

namespace zorbd {

struct ResponseRelease
{
    void operator()(MHD_Response* response) const noexcept { MHD_destroy_response(response); }
};

/// Owns a response of libmicrohttpd; a connection that sends it has a share of its own.
using Response = std::unique_ptr<MHD_Response, ResponseRelease>;

/// A response whose body is `text`, which must stay as it is until it has been sent. Throws std::bad_alloc.
inline Response response_of(std::string_view text)
{
    Response response(MHD_create_response_from_buffer(text.size(),
                                                      const_cast<char*>(text.data()), // it is only read
                                                      MHD_RESPMEM_PERSISTENT));
    if (response == nullptr)
        throw std::bad_alloc();
    return response;
}

/// Throws std::runtime_error, after which the connection is to be closed.
inline void queue_response(MHD_Connection& connection, unsigned int status, const Response& response)
{
    if (MHD_queue_response(&connection, status, response.get()) != MHD_YES)
        throw std::runtime_error("the response cannot be queued");
}

/// Lets a suspended connection go on. Any thread.
inline void resume(IoThreads& threads, MHD_Connection& connection)
{
    threads.awaken([&connection] { MHD_resume_connection(&connection); });
}

} // namespace zorbd

#endif
