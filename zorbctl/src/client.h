// SPDX-License-Identifier: Apache-2.0
#ifndef ZORBCTL_CLIENT_H
#define ZORBCTL_CLIENT_H

#include <curl/curl.h>

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "options.h"

namespace zorbctl {

using Json = nlohmann::ordered_json;

struct Answer
{
    long status = 0;
    std::string body;
};

/// What the host says of an error: the particulars if there are some.
std::string error_text(const Json& response);

/// Speaks HTTP with one zorbd. Every operation throws Failure when the host cannot be reached.
class Client
{
public:
    /// Reads the token, if there is one. `options` must outlive it. Throws Failure.
    explicit Client(const Options& options);

    Answer get(const std::string& path);

    /// Calls a method and gives the whole response object. Throws Failure when the host does not let the
    /// request in.
    Json call(const std::string& method, const Json& params);

    /// The result of a call that cannot fail by itself. Throws Failure for an error response.
    Json result_of(const std::string& method);

    /// Gives a stream's bytes to `take` as they come, until that returns false; throws Failure when the host
    /// ends it. `after` is the id of an event, or empty. `seconds` bounds it; 0 for ever. True when `take`
    /// has ended it, false when the time was over.
    bool stream(const std::string& after, double seconds, const std::function<bool(std::string_view)>& take);

private:
    struct Release
    {
        void operator()(CURL* handle) const noexcept { curl_easy_cleanup(handle); }
        void operator()(curl_slist* list) const noexcept { curl_slist_free_all(list); }
    };

    void prepare(const std::string& path, double seconds);
    void add_header(const std::string& line);
    CURLcode perform();
    Answer finish();
    [[noreturn]] void fail_unreachable(CURLcode code) const;
    void check_let_in(const Answer& answer) const;

    const Options& m_options;
    std::string m_token;
    std::unique_ptr<CURL, Release> m_handle;
    std::unique_ptr<curl_slist, Release> m_headers;
    std::string m_received;
    char m_error[CURL_ERROR_SIZE] = "";
};

} // namespace zorbctl

#endif
