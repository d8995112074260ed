// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBD_TLS_CONTEXT_H
#define ZORBD_TLS_CONTEXT_H

#include <memory>
#include <mutex>
#include <string>

#include "http/transport.h"
#include "system/file_descriptor.h"

struct ssl_ctx_st;

namespace zorbd {

/// PEM files; all but the last are needed.
struct TlsFiles
{
    std::string certificate; ///< the server's, then those that lead to its authority
    std::string key;
    std::string
        client_ca; ///< authorities of clients; when there are some, every client must have a certificate
};

/// With what the server shows who it is, and judges who clients are: TLS 1.2 and later. The files can be read
/// again when they change; connections that stand go on with what they began with. Any thread may use it.
class TlsContext
{
public:
    /// Throws std::runtime_error that names the file and the cause: it cannot be read, is damaged, everyone
    /// may read the key, the key does not belong to the certificate, a certificate is not valid now.
    explicit TlsContext(TlsFiles files);

    /// Reads the files again. Throws what the constructor throws, and keeps what it has then.
    void reload();

    /// For a connection that has been accepted; the client begins. Throws std::bad_alloc.
    std::unique_ptr<Transport> make_transport(FileDescriptor socket) const;

private:
    const TlsFiles m_files;
    mutable std::mutex m_mutex;
    std::shared_ptr<ssl_ctx_st> m_context; // guarded by m_mutex
};

} // namespace zorbd

#endif
