// SPDX-License-Identifier: Apache-2.0
#include "client.h"

#include <cstdlib>
#include <fstream>
#include <new>

#include "failure.h"

namespace zorbctl {
namespace {

std::string read_token(const Options& options)
{
    if (options.token_file) {
        std::ifstream file(*options.token_file);
        std::string token;
        if (!std::getline(file, token))
            throw Failure(exit_usage, "cannot read a token from " + *options.token_file);
        return token;
    }
    const char* token = std::getenv("ZORBCTL_TOKEN");
    return token == nullptr ? "" : token;
}

std::string without_slash(std::string url)
{
    while (!url.empty() && url.back() == '/')
        url.pop_back();
    return url;
}

std::size_t append_received(char* data, std::size_t /*one*/, std::size_t size, void* text)
{
    static_cast<std::string*>(text)->append(data, size);
    return size;
}

/// What a stream's bytes are given to.
struct Taker
{
    const std::function<bool(std::string_view)>& take;
    std::string& refusal; ///< the body, where the host does not let the request in
    CURL* handle;
    bool has_ended = false;
};

std::size_t take_received(char* data, std::size_t /*one*/, std::size_t size, void* closure)
{
    auto& taker = *static_cast<Taker*>(closure);
    long status = 0;
    curl_easy_getinfo(taker.handle, CURLINFO_RESPONSE_CODE, &status);
    if (status != 200) {
        taker.refusal.append(data, size);
        return size;
    }
    taker.has_ended = !taker.take({data, size});
    return taker.has_ended ? 0 : size; // 0 ends the transfer
}

} // namespace

std::string error_text(const Json& response)
{
    const Json error = response.value("error", Json::object());
    std::string text = error.value("message", "an answer that is no JSON-RPC");
    if (error.contains("code"))
        text += " (" + error["code"].dump() + ')';
    if (error.contains("data"))
        text += ": " + (error["data"].is_string() ? error["data"].get<std::string>() : error["data"].dump());
    return text;
}

Client::Client(const Options& options)
    : m_options(options), m_token(read_token(options)), m_handle(curl_easy_init())
{
    if (m_handle == nullptr)
        throw Failure(exit_unreachable, "libcurl cannot be used");
}

void Client::prepare(const std::string& path, double seconds)
{
    CURL* handle = m_handle.get();
    curl_easy_reset(handle);
    m_headers.reset();
    m_received.clear();
    curl_easy_setopt(handle, CURLOPT_URL, (without_slash(m_options.url) + path).c_str());
    curl_easy_setopt(handle, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(handle, CURLOPT_NOPROXY, "*");
    curl_easy_setopt(handle, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(handle, CURLOPT_ERRORBUFFER, m_error);
    curl_easy_setopt(handle, CURLOPT_TIMEOUT_MS, static_cast<long>(seconds * 1000));
    curl_easy_setopt(handle, CURLOPT_WRITEFUNCTION, &append_received);
    curl_easy_setopt(handle, CURLOPT_WRITEDATA, &m_received);
    if (m_options.unix_socket)
        curl_easy_setopt(handle, CURLOPT_UNIX_SOCKET_PATH, m_options.unix_socket->c_str());
    if (m_options.ca_file)
        curl_easy_setopt(handle, CURLOPT_CAINFO, m_options.ca_file->c_str());
    if (!m_token.empty()) {
        curl_easy_setopt(handle, CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BEARER));
        curl_easy_setopt(handle, CURLOPT_XOAUTH2_BEARER, m_token.c_str());
    }
}

void Client::add_header(const std::string& line)
{
    curl_slist* longer = curl_slist_append(m_headers.get(), line.c_str());
    if (longer == nullptr)
        throw std::bad_alloc();
    static_cast<void>(m_headers.release()); // the longer list owns it
    m_headers.reset(longer);
}

CURLcode Client::perform()
{
    if (m_headers != nullptr)
        curl_easy_setopt(m_handle.get(), CURLOPT_HTTPHEADER, m_headers.get());
    return curl_easy_perform(m_handle.get());
}

void Client::fail_unreachable(CURLcode code) const
{
    const std::string where = m_options.unix_socket ? *m_options.unix_socket : m_options.url;
    throw Failure(exit_unreachable, "cannot reach zorbd at " + where + ": " +
                                        (*m_error != '\0' ? m_error : curl_easy_strerror(code)));
}

Answer Client::finish()
{
    if (const CURLcode code = perform(); code != CURLE_OK)
        fail_unreachable(code);
    Answer answer;
    curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    answer.body = std::move(m_received);
    return answer;
}

void Client::check_let_in(const Answer& answer) const
{
    if (answer.status == 200)
        return;
    const Json response = Json::parse(answer.body, nullptr, false);
    throw Failure(exit_unreachable, "the host answers with status " + std::to_string(answer.status) + ": " +
                                        (response.is_object() ? error_text(response) : answer.body));
}

Answer Client::get(const std::string& path)
{
    prepare(path, m_options.timeout);
    return finish();
}

Json Client::call(const std::string& method, const Json& params)
{
    Json request = {{"jsonrpc", "2.0"}, {"id", 1}, {"method", method}};
    if (!params.is_null())
        request["params"] = params;
    prepare("/", m_options.timeout);
    add_header("Content-Type: application/json");
    const std::string body = request.dump();
    curl_easy_setopt(m_handle.get(), CURLOPT_POSTFIELDSIZE, static_cast<long>(body.size()));
    curl_easy_setopt(m_handle.get(), CURLOPT_POSTFIELDS, body.c_str());
    const Answer answer = finish();
    check_let_in(answer);
    Json response = Json::parse(answer.body, nullptr, false);
    if (!response.is_object())
        throw Failure(exit_unreachable, "what answers at " + m_options.url + " is no zorbd");
    return response;
}

Json Client::result_of(const std::string& method)
{
    const Json response = call(method, nullptr);
    if (!response.contains("result"))
        throw Failure(exit_refused, method + ": " + error_text(response));
    return response["result"];
}

bool Client::stream(const std::string& after, double seconds,
                    const std::function<bool(std::string_view)>& take)
{
    prepare("/events", seconds);
    if (!after.empty())
        add_header("Last-Event-ID: " + after);
    Taker taker{take, m_received, m_handle.get()};
    curl_easy_setopt(m_handle.get(), CURLOPT_WRITEFUNCTION, &take_received);
    curl_easy_setopt(m_handle.get(), CURLOPT_WRITEDATA, &taker);
    const CURLcode code = perform();
    if (taker.has_ended)
        return true;
    if (code == CURLE_OPERATION_TIMEDOUT && seconds > 0)
        return false;
    if (code != CURLE_OK)
        fail_unreachable(code);
    Answer answer;
    curl_easy_getinfo(m_handle.get(), CURLINFO_RESPONSE_CODE, &answer.status);
    answer.body = m_received;
    check_let_in(answer);
    throw Failure(exit_unreachable, "the host has ended the stream of events");
}

} // namespace zorbctl
