// SPDX-License-Identifier: Apache-2.0
// Stands between the plug-in and functions of other libraries: the linker's --wrap lets the plug-in's calls
// end here (the list is in CMakeLists.txt), where they are recorded and passed on.

#include <os_stdlib.h>
#include <zeb/api/CallbackMethod.h>
#include <zeb/api/KX_RPCHandler.h>
#include <zeb/api/data/KX_JSON.h>
#include <zeb/api/mdw/KX_DDS_RMI_RUNTIME.h>

#include <cstring>
#include <random>
#include <string>

#include "framework_probe.h"
#include "recording.h"
#include "rmi_layer.h"

using zeb::api::CallbackMethod;
using zeb::api::KX_RPCHandler;
using zeb::api::data::KX_JSON;
using zeb::api::mdw::KX_DDS_RMI_RUNTIME;

#define WRAPS(symbol) __asm__("__wrap_" symbol)
#define REAL(symbol) __asm__("__real_" symbol)

#define STRING_CODE "NSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE"
#define JSON_OBJECT_GETTER "_ZNK3zeb3api4data7KX_JSON15get_json_objectERK" STRING_CODE
#define JSON_STRING_GETTER "_ZNK3zeb3api4data7KX_JSON15get_json_stringERK" STRING_CODE
#define JSON_INT_GETTER "_ZNK3zeb3api4data7KX_JSON12get_json_intERK" STRING_CODE
#define JSON_DEFAULT "_ZN3zeb3api4data7KX_JSONC1Ev"
#define JSON_OF_OBJECT "_ZN3zeb3api4data7KX_JSONC1EPK11json_object"
#define JSON_COPY "_ZN3zeb3api4data7KX_JSONC1ERKS2_"
#define JSON_DESTRUCTOR "_ZN3zeb3api4data7KX_JSOND1Ev"
#define ADD_METHOD "_ZN3zeb3api13KX_RPCHandler9AddMethodEPNS0_14CallbackMethodE"
#define START_RUNTIME "_ZN3zeb3api3mdw18KX_DDS_RMI_RUNTIME12startRUNTIMEEb"
#define STOP_RUNTIME "_ZN3zeb3api3mdw18KX_DDS_RMI_RUNTIME11stopRUNTIMEEv"
#define REGISTER_INFO "_ZN7DDS_RMI9VarnelRMI30VarnelRMIServiceInterfaceProxy22_register_service_infoEv"
#define DEVICE_INIT "_ZNSt13random_device7_M_initERK" STRING_CODE
#define DEVICE_VALUE "_ZNSt13random_device9_M_getvalEv"
#define DEVICE_END "_ZNSt13random_device7_M_finiEv"

namespace conformance {
namespace {

const KX_JSON* request = nullptr;
const KX_JSON* response = nullptr;
JsonStep json_step;
unsigned device_value = 0;
KX_RPCHandler* filled_handler = nullptr;

/// What events call a value.
std::string name_of(const KX_JSON* value)
{
    if (value == request)
        return "request.";
    return value == response ? "response." : "";
}

void note_getter(const KX_JSON* value, const std::string& getter, const std::string& key)
{
    const Unobserved unobserved;
    record("json", name_of(value) + getter + "(" + key + ")");
    if (json_step)
        json_step();
}

} // namespace

WatchedValues::WatchedValues(const KX_JSON& in, const KX_JSON& out)
{
    request = &in;
    response = &out;
}

WatchedValues::~WatchedValues()
{
    request = nullptr;
    response = nullptr;
}

void at_each_getter(JsonStep step)
{
    json_step = std::move(step);
}

KX_RPCHandler& handler_being_filled()
{
    return *filled_handler;
}

void set_random_device_value(unsigned value)
{
    device_value = value;
}

KX_JSON real_get_object(const KX_JSON*, const std::string&) REAL(JSON_OBJECT_GETTER);
KX_JSON wrapped_get_object(const KX_JSON*, const std::string&) WRAPS(JSON_OBJECT_GETTER);
KX_JSON wrapped_get_object(const KX_JSON* value, const std::string& key)
{
    note_getter(value, "get_json_object", key);
    return real_get_object(value, key);
}

std::string real_get_string(const KX_JSON*, const std::string&) REAL(JSON_STRING_GETTER);
std::string wrapped_get_string(const KX_JSON*, const std::string&) WRAPS(JSON_STRING_GETTER);
std::string wrapped_get_string(const KX_JSON* value, const std::string& key)
{
    note_getter(value, "get_json_string", key);
    const Unobserved unobserved;
    return real_get_string(value, key);
}

int real_get_int(const KX_JSON*, const std::string&) REAL(JSON_INT_GETTER);
int wrapped_get_int(const KX_JSON*, const std::string&) WRAPS(JSON_INT_GETTER);
int wrapped_get_int(const KX_JSON* value, const std::string& key)
{
    note_getter(value, "get_json_int", key);
    return real_get_int(value, key);
}

void real_make_default(KX_JSON*) REAL(JSON_DEFAULT);
void wrapped_make_default(KX_JSON*) WRAPS(JSON_DEFAULT);
void wrapped_make_default(KX_JSON* value)
{
    record("json", "made by default");
    real_make_default(value);
}

void real_make_of_object(KX_JSON*, const json_object*) REAL(JSON_OF_OBJECT);
void wrapped_make_of_object(KX_JSON*, const json_object*) WRAPS(JSON_OF_OBJECT);
void wrapped_make_of_object(KX_JSON* value, const json_object* object)
{
    record("json", object == nullptr ? "made of no object" : "made of an object");
    real_make_of_object(value, object);
}

void real_copy(KX_JSON*, const KX_JSON*) REAL(JSON_COPY);
void wrapped_copy(KX_JSON*, const KX_JSON*) WRAPS(JSON_COPY);
void wrapped_copy(KX_JSON* value, const KX_JSON* other)
{
    record("json", name_of(other) + "copied");
    real_copy(value, other);
}

void real_destroy(KX_JSON*) REAL(JSON_DESTRUCTOR);
void wrapped_destroy(KX_JSON*) WRAPS(JSON_DESTRUCTOR);
void wrapped_destroy(KX_JSON* value)
{
    record("json", "dropped");
    real_destroy(value);
}

void real_add_method(KX_RPCHandler*, CallbackMethod*) REAL(ADD_METHOD);
void wrapped_add_method(KX_RPCHandler*, CallbackMethod*) WRAPS(ADD_METHOD);
void wrapped_add_method(KX_RPCHandler* handler, CallbackMethod* method)
{
    {
        const Unobserved unobserved;
        record("method", method->GetName());
    }
    real_add_method(handler, method);
    const Unobserved unobserved;
    filled_handler = handler;
    reach("method");
}

void real_start(KX_DDS_RMI_RUNTIME*, bool) REAL(START_RUNTIME);
void wrapped_start(KX_DDS_RMI_RUNTIME*, bool) WRAPS(START_RUNTIME);
void wrapped_start(KX_DDS_RMI_RUNTIME* runtime, bool several_threads)
{
    record("runtime", several_threads ? "startRUNTIME(true)" : "startRUNTIME(false)");
    real_start(runtime, several_threads);
}

void real_stop(KX_DDS_RMI_RUNTIME*) REAL(STOP_RUNTIME);
void wrapped_stop(KX_DDS_RMI_RUNTIME*) WRAPS(STOP_RUNTIME);
void wrapped_stop(KX_DDS_RMI_RUNTIME* runtime)
{
    record("runtime", "stopRUNTIME()");
    real_stop(runtime);
}

void real_register_info() REAL(REGISTER_INFO);
void wrapped_register_info() WRAPS(REGISTER_INFO);
void wrapped_register_info()
{
    const Unobserved unobserved;
    record("lookup", "register");
    reach("register");
    real_register_info();
}

char* real_strcpy(char*, const char*) REAL("os_strcpy");
char* wrapped_strcpy(char*, const char*) WRAPS("os_strcpy");
char* wrapped_strcpy(char* to, const char* from)
{
    // A long text would make the record unreadable.
    constexpr std::size_t shown = 40;
    const Unobserved unobserved;
    record("copy", std::string(*to == '\0' ? "" : "over garbage: ") + std::string(from).substr(0, shown));
    return real_strcpy(to, from);
}

void wrapped_device_init(std::random_device*, const std::string&) WRAPS(DEVICE_INIT);
void wrapped_device_init(std::random_device*, const std::string& token)
{
    const Unobserved unobserved;
    record("random", "device " + token);
    reach("device");
}

unsigned wrapped_device_value(std::random_device*) WRAPS(DEVICE_VALUE);
unsigned wrapped_device_value(std::random_device*)
{
    record("random", "value");
    return device_value;
}

void wrapped_device_end(std::random_device*) WRAPS(DEVICE_END);
void wrapped_device_end(std::random_device*)
{
    record("random", "closed");
}

} // namespace conformance
