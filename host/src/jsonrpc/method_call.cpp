// SPDX-License-Identifier: Apache-2.0
#include "jsonrpc/method_call.h"

#include <ddsrmi.h>

#include <stdexcept>
#include <utility>

#include "zeb/api/CallbackMethod.h"
#include "zeb/api/RpcError.h"
#include "json/json_reader.h"
#include "json/utf8.h"

namespace zorbd {

using namespace strict_json;

namespace {

namespace rmi = org::opensplice::DDS_RMI;
using zeb::api::data::KX_JSON;

std::string run(zeb::api::CallbackMethod& method, json_object* request)
{
    const KX_JSON in(request);
    KX_JSON out = KX_JSON::empty_object(); // from the start, for plug-ins that use json-c on it
    const int returned = method.Call(in, out);
    if (!out.has_key("result"))
        return std::to_string(returned);
    std::string result = json_text(member(out.get(), "result"));
    if (!is_json(result)) // json-c writes NaN, and bytes as they are
        throw std::runtime_error(
            "its result is not JSON: it has a number that is not finite, or a text that is "
            "not UTF-8");
    return result;
}

/// What goes out must be JSON, whatever was thrown.
RpcError error_of(RpcErrorCode code, const std::string& method, const char* cause)
{
    if (find_invalid_utf8(cause))
        return {RpcErrorCode::internal_error, method + ": it threw an error whose text is not UTF-8"};
    return {code, method + ": " + cause};
}

/// What the method says of its failure itself.
RpcError own_error(const zeb::api::RpcError& error, const std::string& method)
{
    const auto failed = [&method](const std::string& cause) {
        return error_of(RpcErrorCode::internal_error, method, cause.c_str());
    };
    if (!is_open_to_methods(error.code()))
        return failed("it threw an error with the code " + std::to_string(error.code()) +
                      ", which is no method's to use: " + error.what());
    if (find_invalid_utf8(error.what()))
        return failed(error.what());
    if (error.data().get() == nullptr)
        return {error.code(), error.what(), ""};
    std::string data = json_text(error.data().get());
    if (!is_json(data))
        return failed(
            "the data of its error is not JSON: it has a number that is not finite, or a text that is "
            "not UTF-8");
    return {error.code(), error.what(), std::move(data)};
}

} // namespace

CallOutcome call_method(zeb::api::CallbackMethod& method, const std::string& name, json_object* request)
{
    const auto failed = [&name](RpcErrorCode code, const char* cause) { return error_of(code, name, cause); };
    try {
        return run(method, request);
    } catch (const zeb::api::RpcError& error) {
        return own_error(error, name);
    } catch (const std::invalid_argument& error) {
        return failed(RpcErrorCode::invalid_params, error.what());
    } catch (const std::out_of_range& error) {
        return failed(RpcErrorCode::invalid_params, error.what());
    } catch (const rmi::SERVICE_NOT_FOUND& error) {
        return failed(RpcErrorCode::remote_service_not_found, error.what());
    } catch (const rmi::TIMEOUT& error) {
        return failed(RpcErrorCode::remote_timeout, error.what());
    } catch (const std::exception& error) {
        return failed(RpcErrorCode::internal_error, error.what());
    } catch (...) {
        return failed(RpcErrorCode::internal_error, "the method threw something that is no std::exception");
    }
}

} // namespace zorbd
