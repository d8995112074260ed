// SPDX-License-Identifier: Apache-2.0
#include "http/tls_context.h"

#include <openssl/err.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509.h>

#include <new>
#include <stdexcept>
#include <utility>

#include "http/tls_transport.h"
#include "system/private_file.h"

namespace zorbd {
namespace {

constexpr std::size_t largest_key = 1U << 16U;

template <auto free>
struct Release
{
    template <class Object>
    void operator()(Object* object) const noexcept
    {
        free(object);
    }
};
using Bio = std::unique_ptr<BIO, Release<BIO_free>>;
using Key = std::unique_ptr<EVP_PKEY, Release<EVP_PKEY_free>>;
using Certificate = std::unique_ptr<X509, Release<X509_free>>;

[[noreturn]] void fail(const std::string& cause)
{
    ERR_clear_error();
    throw std::runtime_error(cause);
}

/// Otherwise OpenSSL would ask at the terminal.
int no_password(char* /*buffer*/, int /*size*/, int /*writing*/, void* /*closure*/)
{
    return 0;
}

/// The first certificate of a file.
void require_valid_now(const std::string& file, const std::string& what)
{
    const Bio stream(BIO_new_file(file.c_str(), "r"));
    if (stream == nullptr)
        fail("cannot read " + what + ' ' + file);
    const Certificate certificate(PEM_read_bio_X509(stream.get(), nullptr, no_password, nullptr));
    if (certificate == nullptr)
        fail(what + ' ' + file + " holds no certificate in PEM form");
    if (X509_cmp_current_time(X509_get0_notAfter(certificate.get())) < 0)
        fail(what + ' ' + file + " has expired; get a new one");
    if (X509_cmp_current_time(X509_get0_notBefore(certificate.get())) > 0)
        fail(what + ' ' + file + " is not valid yet; is this machine's clock right?");
}

Key read_key(const std::string& file)
{
    const std::string pem = read_private_file(file, "TLS key", largest_key);
    const Bio stream(BIO_new_mem_buf(pem.data(), static_cast<int>(pem.size())));
    Key key(stream == nullptr ? nullptr
                              : PEM_read_bio_PrivateKey(stream.get(), nullptr, no_password, nullptr));
    if (key == nullptr)
        fail("TLS key " + file + " holds no key in PEM form without a password");
    return key;
}

void forbid_what_is_old(SSL_CTX& context)
{
    // A client that may begin anew over and over costs the server more than itself; a session that may be
    // taken up again would outlive a client's certificate.
    SSL_CTX_set_options(&context, SSL_OP_NO_RENEGOTIATION | SSL_OP_CIPHER_SERVER_PREFERENCE |
                                      SSL_OP_NO_TICKET | SSL_OP_NO_COMPRESSION);
    SSL_CTX_set_session_cache_mode(&context, SSL_SESS_CACHE_OFF);
    SSL_CTX_set_num_tickets(&context, 0);
    if (SSL_CTX_set_min_proto_version(&context, TLS1_2_VERSION) != 1 ||
        SSL_CTX_set_cipher_list(&context, "ECDHE+AESGCM:ECDHE+CHACHA20") != 1)
        fail("TLS cannot be set up");
}

void use_certificate(SSL_CTX& context, const TlsFiles& files)
{
    require_valid_now(files.certificate, "TLS certificate");
    if (SSL_CTX_use_certificate_chain_file(&context, files.certificate.c_str()) != 1)
        fail("TLS certificate " + files.certificate + " cannot be used: it is damaged or too weak");
    const Key key = read_key(files.key);
    if (SSL_CTX_use_PrivateKey(&context, key.get()) != 1 || SSL_CTX_check_private_key(&context) != 1)
        fail("TLS key " + files.key + " does not belong to the certificate " + files.certificate);
}

void ask_for_client_certificates(SSL_CTX& context, const std::string& file)
{
    require_valid_now(file, "file of client authorities");
    if (SSL_CTX_load_verify_file(&context, file.c_str()) != 1)
        fail("file of client authorities " + file + " cannot be used: it is damaged");
    SSL_CTX_set_client_CA_list(&context, SSL_load_client_CA_file(file.c_str()));
    SSL_CTX_set_verify(&context, SSL_VERIFY_PEER | SSL_VERIFY_FAIL_IF_NO_PEER_CERT, nullptr);
}

std::shared_ptr<SSL_CTX> make_context(const TlsFiles& files)
{
    std::shared_ptr<SSL_CTX> context(SSL_CTX_new(TLS_server_method()), SSL_CTX_free);
    if (context == nullptr)
        throw std::bad_alloc();
    SSL_CTX_set_mode(context.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER |
                                        SSL_MODE_RELEASE_BUFFERS);
    forbid_what_is_old(*context);
    use_certificate(*context, files);
    if (!files.client_ca.empty())
        ask_for_client_certificates(*context, files.client_ca);
    return context;
}

} // namespace

TlsContext::TlsContext(TlsFiles files) : m_files(std::move(files)), m_context(make_context(m_files)) {}

void TlsContext::reload()
{
    auto context = make_context(m_files);
    const std::lock_guard lock(m_mutex);
    m_context = std::move(context);
}

std::unique_ptr<Transport> TlsContext::make_transport(FileDescriptor socket) const
{
    const std::lock_guard lock(m_mutex);
    return std::make_unique<TlsTransport>(std::move(socket), *m_context);
}

} // namespace zorbd
