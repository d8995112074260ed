# SPDX-License-Identifier: Apache-2.0
"""The wrong changes that tests/mutate tries. `old` stands in its file exactly once."""

from typing import NamedTuple

INTERFACE = "plugin/varnel_interf.cpp"
INTERFACE_HEADER = "plugin/varnel_interf.h"
OPERATIONS = "plugin/varnel_operations.h"
PLUGIN_BUILD = "plugin/CMakeLists.txt"
EXPORTS = "plugin/varnelrpc.map"
IDL = "rmi/VarnelRMI.idl"
REPLIES = "plugin/varnel_reply_handlers.h"
HOLDER = "framework/include/zeb/api/mdw/KX_DDS_RMI_PROXY.h"
METHOD = "framework/include/zeb/api/RpcMethod.h"
METHOD_BASE = "framework/include/zeb/api/CallbackMethod.h"
HANDLER_BASE = "framework/include/zeb/api/KX_RPCHandler.h"
VALUE = "framework/include/zeb/api/data/KX_JSON.h"
RUNTIME = "framework/include/zeb/api/mdw/KX_DDS_RMI_RUNTIME.h"
RUNTIME_SOURCE = "framework/src/kx_dds_rmi_runtime.cpp"
HANDLER_SOURCE = "framework/src/kx_rpc_handler.cpp"
VALUE_SOURCE = "framework/src/kx_json.cpp"
JSON_SOURCE = "framework/json/json_value.cpp"


class Mutation(NamedTuple):
    name: str
    file: str
    old: str
    new: str


MUTATIONS = [
    Mutation("params-at-top-level", INTERFACE,
             'return in.get_json_object("params").get_json_string(key);',
             'return in.get_json_string(key);'),
    Mutation("other-params-key", INTERFACE,
             'return in.get_json_object("params").get_json_string(key);',
             'return in.get_json_object("param").get_json_string(key);'),
    Mutation("params-looked-up-twice", INTERFACE,
             'return in.get_json_object("params").get_json_string(key);',
             (
                 'in.get_json_object("params");\n'
                 '    return in.get_json_object("params").get_json_string(key);')),
    Mutation("key-read-twice", INTERFACE,
             'return in.get_json_object("params").get_json_string(key);',
             (
                 'in.get_json_object("params").get_json_string(key);\n'
                 '    return in.get_json_object("params").get_json_string(key);')),
    Mutation("params-cached-between-keys", INTERFACE,
             (
                 '    const DDS::String node = copiedParameter(in, "mac_addr");\n'
                 '    const DDS::String config = copiedParameter(in, "newCfg");\n'
                 '    return'),
             (
                 '    const KX_JSON params = in.get_json_object("params");\n'
                 '    const DDS::String node = handOverCopy(params.get_json_string("mac_addr").c_str());\n'
                 '    const DDS::String config = handOverCopy(params.get_json_string("newCfg").c_str());\n'
                 '    return')),
    Mutation("integer-at-top-level", INTERFACE,
             'return in.get_json_object("params").get_json_int(key);',
             'return in.get_json_int(key);'),
    Mutation("duration-from-text", INTERFACE,
             'return in.get_json_object("params").get_json_int(key);',
             'return std::atoi(in.get_json_object("params").get_json_string(key).c_str());'),
    Mutation("duration-not-negative", INTERFACE,
             'const int duration = intParameter(in, "duration");',
             'const int duration = intParameter(in, "duration") < 0 ? 0 : intParameter(in, "duration");'),
    Mutation("duration-default", INTERFACE,
             'const int duration = intParameter(in, "duration");',
             (
                 'const int read = intParameter(in, "duration");\n'
                 '    const int duration = read == 0 ? 60 : read;')),
    Mutation("list-copied-after-the-value-is-dropped", INTERFACE,
             'return handOverCopy(in.get_json_object("params").get_json_string("mac_addr_list").c_str());',
             'return copiedParameter(in, "mac_addr_list");'),
    Mutation("text-copied-while-the-value-is-held", INTERFACE,
             'return handOverCopy(textParameter(in, key).c_str());',
             'return handOverCopy(in.get_json_object("params").get_json_string(key).c_str());'),
    Mutation("other-list-key", INTERFACE,
             'get_json_string("mac_addr_list")',
             'get_json_string("mac_addrs")'),
    Mutation("copy-one-byte-short", INTERFACE,
             'new char[std::strlen(text) + 1]',
             'new char[std::strlen(text)]'),
    Mutation("copy-one-byte-long", INTERFACE,
             'new char[std::strlen(text) + 1]',
             'new char[std::strlen(text) + 2]'),
    Mutation("copy-not-begun-with-nul", INTERFACE,
             "    copy[0] = '\\0';\n",
             ''),
    Mutation("empty-text-as-null", INTERFACE,
             '    if (text == nullptr)\n',
             "    if (text == nullptr || text[0] == '\\0')\n"),
    Mutation("copy-by-memcpy", INTERFACE,
             'os_strcpy(copy, text);',
             'std::memcpy(copy, text, std::strlen(text) + 1);'),
    Mutation("copy-by-malloc", INTERFACE,
             'const DDS::String copy = new char[std::strlen(text) + 1];',
             'const DDS::String copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));'),
    Mutation("list-handed-over-without-a-copy", INTERFACE,
             'return handOverCopy(in.get_json_object("params").get_json_string("mac_addr_list").c_str());',
             (
                 'static std::string list;\n'
                 '    list = in.get_json_object("params").get_json_string("mac_addr_list");\n'
                 '    return &list[0];')),
    Mutation("copy-freed-after-the-call", INTERFACE,
             (
                 '    return logThenCall<MY_node_set_config_handler>(m_proxy, "node_set_config", &Proxy::async_node_set_config,\n'
                 '                                                   node, config);'),
             (
                 '    logThenCall<MY_node_set_config_handler>(m_proxy, "node_set_config", &Proxy::async_node_set_config, node,\n'
                 '                                            config);\n'
                 '    delete[] config;\n'
                 '    return 0;')),
    Mutation("copy-freed-when-the-type-is-bad", INTERFACE,
             'const int type = std::stoi(textParameter(in, "type"));',
             (
                 'int type = 0;\n'
                 '    try {\n'
                 '        type = std::stoi(textParameter(in, "type"));\n'
                 '    } catch (...) {\n'
                 '        delete[] node;\n'
                 '        throw;\n'
                 '    }')),
    Mutation("copy-of-the-switch", INTERFACE,
             'const bool on = textParameter(in, "on") == "true";',
             (
                 'copiedParameter(in, "on");\n'
                 '    const bool on = true;')),
    Mutation("log-text", INTERFACE,
             '"CALL RPC " <<',
             '"CALL RPC: " <<'),
    Mutation("log-without-flush", INTERFACE,
             'std::cout << "CALL RPC " << operation << std::endl;',
             'std::cout << "CALL RPC " << operation << \'\\n\';'),
    Mutation("log-in-two-flushes", INTERFACE,
             'std::cout << "CALL RPC " << operation << std::endl;',
             'std::cout << "CALL RPC " << std::flush << operation << std::endl;'),
    Mutation("log-to-standard-error", INTERFACE,
             'std::cout << "CALL RPC "',
             'std::cerr << "CALL RPC "'),
    Mutation("log-after-the-handler", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy'),
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);\n'
                 '    (proxy')),
    Mutation("log-before-the-handler", INTERFACE,
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);\n'
                 '    (proxy'),
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy')),
    Mutation("log-after-the-call", INTERFACE,
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;'),
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    logCall(operation);\n'
                 '    return 0;')),
    Mutation("one-operation-logs-first", INTERFACE,
             'return makeHandlerThenCall<MY_node_get_data_handler>(',
             'return logThenCall<MY_node_get_data_handler>('),
    Mutation("one-operation-logs-second", INTERFACE,
             'return logThenCall<MY_node_get_config_handler>(',
             'return makeHandlerThenCall<MY_node_get_config_handler>('),
    Mutation("creation-logs-second", INTERFACE,
             'return logThenCall<MY_test_node_create_handler>(',
             'return makeHandlerThenCall<MY_test_node_create_handler>('),
    Mutation("log-of-another-operation", INTERFACE,
             'm_proxy, "network_add_nodes", &Proxy',
             'm_proxy, "network_remove_nodes", &Proxy'),
    Mutation("handler-leaked", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy'),
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler>& handler = *new shared_ptr<Handler>(new Handler);\n'
                 '    (proxy')),
    Mutation("handler-not-counted", INTERFACE,
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());'),
             (
                 '    Handler* const handler = new Handler;\n'
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler);')),
    Mutation("handler-shared-between-calls", INTERFACE,
             (
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);'),
             (
                 '    static const shared_ptr<Handler> handler(new Handler);\n'
                 '    logCall(operation);')),
    Mutation("result-from-the-handler", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;'),
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return handler->bActive ? 0 : 1;')),
    Mutation("result-not-0", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;'),
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 1;')),
    Mutation("call-made-twice", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;'),
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;')),
    Mutation("call-failure-caught", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;'),
             (
                 '    logCall(operation);\n'
                 '    try {\n'
                 '        (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    } catch (org::opensplice::DDS_RMI::SystemException&) {\n'
                 '    }\n'
                 '    return 0;')),
    Mutation("call-under-a-lock", INTERFACE,
             ("    logCall(operation);\n"
              "    (proxy.get()->*start)(arguments..., handler.get());\n"),
             ("    logCall(operation);\n"
              "    static pthread_mutex_t calls = PTHREAD_MUTEX_INITIALIZER;\n"
              "    struct Lock {\n"
              "        Lock() { pthread_mutex_lock(&calls); }\n"
              "        ~Lock() { pthread_mutex_unlock(&calls); }\n"
              "    } const lock;\n"
              "    (proxy.get()->*start)(arguments..., handler.get());\n")),
    Mutation("proxy-reference-for-each-call", INTERFACE,
             'int logThenCall(const shared_ptr<Proxy>& proxy,',
             'int logThenCall(const shared_ptr<Proxy> proxy,'),
    Mutation("other-remote-operation", INTERFACE,
             '&Proxy::async_network_add_nodes',
             'reinterpret_cast<void (Proxy::*)(DDS::String, DDS_RMI::VarnelRMI::VarnelRMIService_network_add_nodes_Reply_Handler*)>(&Proxy::async_network_remove_nodes)'),
    Mutation("configuration-arguments-swapped", INTERFACE,
             (
                 '&Proxy::async_node_set_config,\n'
                 '                                                   node, config);'),
             (
                 '&Proxy::async_node_set_config,\n'
                 '                                                   config, node);')),
    Mutation("revert-arguments-swapped", INTERFACE,
             '&Proxy::async_node_set_config_revert, node, config, duration',
             '&Proxy::async_node_set_config_revert, config, node, duration'),
    Mutation("sensor-data-arguments-swapped", INTERFACE,
             '&Proxy::async_test_node_set_sensor_data, node, data',
             '&Proxy::async_test_node_set_sensor_data, data, node'),
    Mutation("configuration-keys-read-in-the-other-order", INTERFACE,
             (
                 '    const DDS::String node = copiedParameter(in, "mac_addr");\n'
                 '    const DDS::String data = copiedParameter(in, "newData");'),
             (
                 '    const DDS::String data = copiedParameter(in, "newData");\n'
                 '    const DDS::String node = copiedParameter(in, "mac_addr");')),
    Mutation("type-read-before-the-address", INTERFACE,
             (
                 '    const DDS::String node = copiedParameter(in, "mac_addr");\n'
                 '    const int type = std::stoi(textParameter(in, "type"));'),
             (
                 '    const int type = std::stoi(textParameter(in, "type"));\n'
                 '    const DDS::String node = copiedParameter(in, "mac_addr");')),
    Mutation("type-by-atoi", INTERFACE,
             'std::stoi(textParameter(in, "type"))',
             'std::atoi(textParameter(in, "type").c_str())'),
    Mutation("type-in-any-base", INTERFACE,
             'std::stoi(textParameter(in, "type"))',
             'std::stoi(textParameter(in, "type"), nullptr, 0)'),
    Mutation("type-from-integer", INTERFACE,
             'std::stoi(textParameter(in, "type"))',
             'intParameter(in, "type")'),
    Mutation("type-as-long", INTERFACE,
             'std::stoi(textParameter(in, "type"))',
             'static_cast<int>(std::stoll(textParameter(in, "type")))'),
    Mutation("switch-by-prefix", INTERFACE,
             'textParameter(in, "on") == "true"',
             'textParameter(in, "on").compare(0, 4, "true") == 0'),
    Mutation("switch-by-c-text", INTERFACE,
             'textParameter(in, "on") == "true"',
             'std::strcmp(textParameter(in, "on").c_str(), "true") == 0'),
    Mutation("switch-on-for-1", INTERFACE,
             'textParameter(in, "on") == "true"',
             '(textParameter(in, "on") == "true" || textParameter(in, "on") == "1")'),
    Mutation("switch-inverted", INTERFACE,
             'textParameter(in, "on") == "true"',
             'textParameter(in, "on") != "true"'),
    Mutation("network-operation-looks-at-the-request", INTERFACE,
             (
                 'int VarnelInterface::network_decommission(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_decommission(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    in.get_json_object("params");\n')),
    Mutation("response-written", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON& out)\n'
                 '{\n'
                 '    out.set_json_int("result", 0);\n')),
    Mutation("response-replaced", INTERFACE,
             (
                 'int VarnelInterface::advertising(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::advertising(const KX_JSON& in, KX_JSON& out)\n'
                 '{\n'
                 '    out = KX_JSON();\n')),
    Mutation("methods-described", INTERFACE,
             'const KX_JSON description(static_cast<const json_object*>(nullptr));',
             (
                 'KX_JSON description;\n'
                 '        description.set_json_string("name", name);')),
    Mutation("proxy-not-asked-for-again", INTERFACE,
             (
                 '    m_interface.m_proxy = m_proxyHolder.getProxy();\n'
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;\n'),
             '    m_interface.m_proxy = m_proxyHolder.getProxy();\n'),
    Mutation("proxy-handed-over-last", INTERFACE,
             (
                 '    m_interface.m_proxy = m_proxyHolder.getProxy();\n'
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;\n'),
             (
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;\n'
                 '    m_interface.m_proxy = m_proxyHolder.getProxy();\n')),
    Mutation("proxy-not-handed-over", INTERFACE,
             '    m_interface.m_proxy = m_proxyHolder.getProxy();\n',
             ''),
    Mutation("other-service-name", INTERFACE,
             'm_proxyHolder("VarnelDE_Server")',
             'm_proxyHolder("Varnel_Server")'),
    Mutation("constructor-line-missing", INTERFACE,
             '    std::cout << "VarnelRPCHandler constructor" << std::endl;\n',
             ''),
    Mutation("constructor-line-after-the-question", INTERFACE,
             (
                 '    std::cout << "VarnelRPCHandler constructor" << std::endl;\n'
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;\n'),
             (
                 '    const bool found = m_proxyHolder.isProxyFound();\n'
                 '    std::cout << "VarnelRPCHandler constructor" << std::endl;\n'
                 '    if (!found)\n'
                 '        return;\n')),
    Mutation("bound-without-a-service", INTERFACE,
             'm_bound(false)',
             'm_bound(true)'),
    Mutation("never-bound", INTERFACE,
             '    m_bound = true;\n',
             ''),
    Mutation("bound-before-the-table-is-filled", INTERFACE,
             "    BuildInterface();\n    m_bound = true;\n",
             "    m_bound = true;\n    BuildInterface();\n"),
    Mutation("methods-without-a-service", INTERFACE,
             (
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;\n'
                 '    BuildInterface();'),
             (
                 '    BuildInterface();\n'
                 '    if (!m_proxyHolder.isProxyFound())\n'
                 '        return;')),
    Mutation("factory-hides-unbound-handlers", INTERFACE,
             '    return new VarnelRPCHandler;\n',
             (
                 '    zeb::api::KX_RPCHandler* const handler = new VarnelRPCHandler;\n'
                 '    if (handler->isBound())\n'
                 '        return handler;\n'
                 '    delete handler;\n'
                 '    return nullptr;\n')),
    Mutation("factory-keeps-one-handler", INTERFACE,
             '    return new VarnelRPCHandler;\n',
             (
                 '    static VarnelRPCHandler* const handler = new VarnelRPCHandler;\n'
                 '    return handler;\n')),
    Mutation("factory-catches", INTERFACE,
             '    return new VarnelRPCHandler;\n',
             (
                 '    try {\n'
                 '        return new VarnelRPCHandler;\n'
                 '    } catch (const std::exception&) {\n'
                 '        return nullptr;\n'
                 '    }\n')),
    Mutation("bound-line-in-words", INTERFACE,
             '"VarnelRPCHandler isBound:" << bound',
             '"VarnelRPCHandler isBound:" << std::boolalpha << bound << std::noboolalpha'),
    Mutation("bound-line-missing", INTERFACE,
             '    std::cout << "VarnelRPCHandler isBound:" << bound << std::endl;\n',
             ''),
    Mutation("bound-asks-the-holder", INTERFACE,
             'const bool bound = m_bound;',
             'const bool bound = m_proxyHolder.isProxyFound();'),
    Mutation("interface-line-changed", INTERFACE,
             '"VarnelInterface constructor"',
             '"VarnelInterface construct"'),
    Mutation("interface-lets-go-first", INTERFACE,
             '    std::cout << "VarnelInterface destructor" << std::endl;\n',
             (
                 '    m_proxy.reset();\n'
                 '    std::cout << "VarnelInterface destructor" << std::endl;\n')),
    Mutation("destructor-line-missing", INTERFACE,
             '    std::cout << "VarnelRPCHandler destructor" << std::endl;\n',
             ''),
    Mutation("interface-destroyed-before-the-holder", INTERFACE_HEADER,
             (
                 '    VarnelInterface m_interface;\n'
                 '    zeb::api::mdw::KX_DDS_RMI_PROXY<VarnelInterface::Proxy> m_proxyHolder;\n'),
             (
                 '    zeb::api::mdw::KX_DDS_RMI_PROXY<VarnelInterface::Proxy> m_proxyHolder;\n'
                 '    VarnelInterface m_interface;\n')),
    Mutation("interface-destructor-not-first", INTERFACE_HEADER,
             '    virtual ~VarnelInterface();',
             (
                 '    virtual void reserved() {}\n'
                 '    virtual ~VarnelInterface();')),
    Mutation("reply-without-flush", REPLIES,
             'text << result << std::endl;',
             "text << result << '\\n';"),
    Mutation("failure-reply-not-logged", REPLIES,
             '    std::cout << text << result << std::endl;',
             (
                 '    if (result >= 0)\n'
                 '        std::cout << text << result << std::endl;')),
    Mutation("reply-in-hexadecimal", REPLIES,
             'text << result << std::endl;',
             'text << std::hex << result << std::dec << std::endl;'),
    Mutation("handler-not-derived-virtually", REPLIES,
             'public virtual DDS_RMI::',
             'public DDS_RMI::'),
    Mutation("handler-destructor-first", REPLIES,
             '    public:                                                                                                  \\\n',
             (
                 '    public:                                                                                                  \\\n'
                 '        ~MY_##op##_handler() override {}                                                                     \\\n')),
    Mutation("holder-line-changed", HOLDER,
             'std::cout << "KX_DDS_RMI_PROXY construct"',
             'std::cout << "KX_DDS_RMI_PROXY constructor"'),
    Mutation("holder-message-missing", HOLDER,
             '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n',
             ''),
    Mutation("holder-message-as-error", HOLDER,
             'syslog(LOG_INFO, " *** Failed',
             'syslog(LOG_ERR, " *** Failed'),
    Mutation("missing-service-as-error", HOLDER,
             'syslog(LOG_INFO, " *** Unable',
             'syslog(LOG_ERR, " *** Unable'),
    Mutation("holder-destroy-to-the-system-log", HOLDER,
             '    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;\n',
             (
                 '    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;\n'
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY destroy");\n')),
    Mutation("runtime-for-one-thread", HOLDER,
             'startRUNTIME(true);',
             'startRUNTIME(false);'),
    Mutation("runtime-started-first", HOLDER,
             (
                 '    std::cout << "KX_DDS_RMI_PROXY construct" << std::endl;\n'
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n'
                 '    startRUNTIME(true);\n'),
             (
                 '    startRUNTIME(true);\n'
                 '    std::cout << "KX_DDS_RMI_PROXY construct" << std::endl;\n'
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n')),
    Mutation("instance-from-0", HOLDER,
             'instances(1, 10000)',
             'instances(0, 10000)'),
    Mutation("instance-to-9999", HOLDER,
             'instances(1, 10000)',
             'instances(1, 9999)'),
    Mutation("instance-fixed", HOLDER,
             'm_instanceId = instances(engine);',
             'instances(engine);'),
    Mutation("other-random-engine", HOLDER,
             'std::mt19937 engine',
             'std::minstd_rand engine'),
    Mutation("instance-drawn-twice", HOLDER,
             'm_instanceId = instances(engine);',
             (
                 'm_instanceId = instances(engine);\n'
                 '    m_instanceId = instances(engine);')),
    Mutation("device-of-another-name", HOLDER,
             'device("default")',
             'device("/dev/urandom")'),
    Mutation("announcement-without-its-number", HOLDER,
             '<< m_serviceName << " " << m_instanceId << std::endl;',
             '<< m_serviceName << std::endl;'),
    Mutation("every-system-exception-caught", HOLDER,
             'catch (org::opensplice::DDS_RMI::SERVICE_NOT_FOUND&)',
             'catch (org::opensplice::DDS_RMI::SystemException&)'),
    Mutation("every-exception-caught", HOLDER,
             'catch (org::opensplice::DDS_RMI::SERVICE_NOT_FOUND&)',
             'catch (...)'),
    Mutation("start-guarded-too", HOLDER,
             (
                 '    startRUNTIME(true);\n'
                 '\n'
                 '    std::random_device'),
             (
                 '    try {\n'
                 '        startRUNTIME(true);\n'
                 '    } catch (std::exception&) {\n'
                 '    }\n'
                 '\n'
                 '    std::random_device')),
    Mutation("runtime-not-stopped", HOLDER,
             '        stopRUNTIME();\n',
             ''),
    Mutation("runtime-stopped-when-the-answer-is-empty", HOLDER,
             '        syslog(LOG_INFO, " *** Failed to get the server proxy !");\n',
             (
                 '        syslog(LOG_INFO, " *** Failed to get the server proxy !");\n'
                 '        stopRUNTIME();\n')),
    Mutation("runtime-stopped-by-the-destructor", HOLDER,
             '    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;\n',
             (
                 '    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;\n'
                 '    stopRUNTIME();\n')),
    Mutation("failure-said-on-standard-output", HOLDER,
             '        syslog(LOG_INFO, " *** Failed to get the server proxy !");\n',
             (
                 '        syslog(LOG_INFO, " *** Failed to get the server proxy !");\n'
                 '        std::cout << " *** Failed to get the server proxy !" << std::endl;\n')),
    Mutation("lookup-retried", HOLDER,
             '    if (m_serverProxy.get() == nullptr) {\n',
             (
                 '    if (m_serverProxy.get() == nullptr)\n'
                 '        org::opensplice::DDS_RMI::DDS_Service::getServerProxy<TProxy>(m_serviceName, m_instanceId, m_serverProxy);\n'
                 '    if (m_serverProxy.get() == nullptr) {\n')),
    Mutation("lookup-of-instance-1", HOLDER,
             'getServerProxy<TProxy>(m_serviceName, m_instanceId, m_serverProxy)',
             'getServerProxy<TProxy>(m_serviceName, 1, m_instanceId, m_serverProxy)'),
    Mutation("found-flag-not-set", HOLDER,
             '    m_proxyFound = true;\n',
             ''),
    Mutation("found-line-in-words", HOLDER,
             '"KX_DDS_RMI_PROXY isProxyFound" << m_proxyFound',
             '"KX_DDS_RMI_PROXY isProxyFound " << m_proxyFound'),
    Mutation("message-not-a-format", HOLDER,
             'syslog(LOG_INFO, " *** Unable to find the service !");',
             'syslog(LOG_INFO, "%s", " *** Unable to find the service !");'),
    Mutation("proxy-let-go-after-the-line-only", HOLDER,
             'std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;',
             (
                 'm_serverProxy.reset();\n'
                 '    std::cout << "KX_DDS_RMI_PROXY destroy" << std::endl;')),
    Mutation("method-name-fixed", METHOD,
             'return m_name; }',
             'return "method"; }'),
    Mutation("method-result-dropped", METHOD,
             '{ return (m_owner->*m_method)(in, out); }',
             (
                 '\n'
                 '    {\n'
                 '        (m_owner->*m_method)(in, out);\n'
                 '        return 0;\n'
                 '    }')),
    Mutation("method-catches", METHOD,
             '{ return (m_owner->*m_method)(in, out); }',
             (
                 '\n'
                 '    {\n'
                 '        try {\n'
                 '            return (m_owner->*m_method)(in, out);\n'
                 '        } catch (...) {\n'
                 '            return -1;\n'
                 '        }\n'
                 '    }')),
    Mutation("method-copies-the-request", METHOD,
             '{ return (m_owner->*m_method)(in, out); }',
             '{ return (m_owner->*m_method)(data::KX_JSON(in), out); }'),
    Mutation("method-makes-a-description", METHOD,
             'return m_description;',
             (
                 'data::KX_JSON copy(m_description);\n'
                 '        copy.set_json_string("name", m_name);\n'
                 '        return copy;')),
    Mutation("copy-as-long-as-the-string", INTERFACE,
             (
                 '    return handOverCopy(textParameter(in, key).c_str());\n'),
             (
                 '    const std::string text = textParameter(in, key);\n'
                 '    const DDS::String copy = new char[text.size() + 1];\n'
                 "    copy[0] = '\\0';\n"
                 '    os_strcpy(copy, text.c_str());\n'
                 '    return copy;\n')),
    Mutation("list-copy-as-long-as-the-string", INTERFACE,
             (
                 '    return handOverCopy(in.get_json_object("params").get_json_string("mac_addr_list").c_str());\n'),
             (
                 '    const KX_JSON params = in.get_json_object("params");\n'
                 '    const std::string text = params.get_json_string("mac_addr_list");\n'
                 '    const DDS::String copy = new char[text.size() + 1];\n'
                 "    copy[0] = '\\0';\n"
                 '    os_strcpy(copy, text.c_str());\n'
                 '    return copy;\n')),
    Mutation("copy-filled-with-blanks-first", INTERFACE,
             (
                 "    copy[0] = '\\0';\n"),
             (
                 "    std::memset(copy, ' ', std::strlen(text) + 1);\n")),
    Mutation("copy-without-new-that-throws", INTERFACE,
             'new char[std::strlen(text) + 1]',
             'new (std::nothrow) char[std::strlen(text) + 1]'),
    Mutation("request-asked-for-a-key", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    in.has_key("params");\n')),
    Mutation("request-read-as-a-text", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    in.to_string();\n')),
    Mutation("request-s-object-looked-at", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    if (in.get() == nullptr)\n'
                 '        return 0;\n')),
    Mutation("request-copied", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    const KX_JSON copy(in);\n')),
    Mutation("request-read-as-an-integer", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON& in, KX_JSON&)\n'
                 '{\n'
                 '    in.get_json_int("id");\n')),
    Mutation("response-read", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON& out)\n'
                 '{\n'
                 '    out.get_json_string("result");\n')),
    Mutation("response-copied", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON& out)\n'
                 '{\n'
                 '    const KX_JSON copy(out);\n')),
    Mutation("response-asked-for-a-key", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON& out)\n'
                 '{\n'
                 '    out.has_key("result");\n')),
    Mutation("response-read-as-a-text", INTERFACE,
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON&)\n'
                 '{\n'),
             (
                 'int VarnelInterface::network_get_info(const KX_JSON&, KX_JSON& out)\n'
                 '{\n'
                 '    out.to_string();\n')),
    Mutation("description-made-by-default", INTERFACE,
             'const KX_JSON description(static_cast<const json_object*>(nullptr));',
             'const KX_JSON description;'),
    Mutation("description-shared-by-all-rows", INTERFACE,
             (
                 '    for (const Method& method : methods) {\n'
                 '        const std::string name(method.name);\n'
                 '        const KX_JSON description(static_cast<const json_object*>(nullptr));\n'),
             (
                 '    const KX_JSON description(static_cast<const json_object*>(nullptr));\n'
                 '    for (const Method& method : methods) {\n'
                 '        const std::string name(method.name);\n')),
    Mutation("description-copied-once-more", INTERFACE,
             'const KX_JSON description(static_cast<const json_object*>(nullptr));',
             (
                 'const KX_JSON empty(static_cast<const json_object*>(nullptr));\n'
                 '        const KX_JSON description(empty);')),
    Mutation("service-name-static", INTERFACE,
             (
                 'VarnelRPCHandler::VarnelRPCHandler() : m_proxyHolder("VarnelDE_Server"), m_bound(false)\n'),
             (
                 'static std::string service = "VarnelDE_Server";\n'
                 '\n'
                 'VarnelRPCHandler::VarnelRPCHandler() : m_proxyHolder(service), m_bound(false)\n')),
    Mutation("last-call-kept", INTERFACE,
             (
                 '    std::cout << "CALL RPC " << operation << std::endl;\n'),
             (
                 '    static const char* last;\n'
                 '    last = operation;\n'
                 '    std::cout << "CALL RPC " << last << std::endl;\n')),
    Mutation("handlers-counted", INTERFACE,
             (
                 '    return new VarnelRPCHandler;\n'),
             (
                 '    static int handlers = 0;\n'
                 '    ++handlers;\n'
                 '    return new VarnelRPCHandler;\n')),
    Mutation("call-line-under-a-lock", INTERFACE,
             (
                 '    std::cout << "CALL RPC " << operation << std::endl;\n'),
             (
                 '    static pthread_mutex_t lines = PTHREAD_MUTEX_INITIALIZER;\n'
                 '    pthread_mutex_lock(&lines);\n'
                 '    std::cout << "CALL RPC " << operation << std::endl;\n'
                 '    pthread_mutex_unlock(&lines);\n')),
    Mutation("call-line-under-the-stream-s-lock", INTERFACE,
             (
                 '    std::cout << "CALL RPC " << operation << std::endl;\n'),
             (
                 '    flockfile(stdout);\n'
                 '    std::cout << "CALL RPC " << operation << std::endl;\n'
                 '    funlockfile(stdout);\n')),
    Mutation("table-of-methods-writable", INTERFACE,
             'const Method methods[] = {',
             'Method methods[] = {'),
    Mutation("factory-without-new-that-throws", INTERFACE,
             (
                 '    return new VarnelRPCHandler;\n'),
             (
                 '    return new (std::nothrow) VarnelRPCHandler;\n')),
    Mutation("factory-makes-two", INTERFACE,
             (
                 '    return new VarnelRPCHandler;\n'),
             (
                 '    delete new VarnelRPCHandler;\n'
                 '    return new VarnelRPCHandler;\n')),
    Mutation("table-filled-twice", INTERFACE,
             (
                 '    BuildInterface();\n'
                 '    m_bound = true;\n'),
             (
                 '    BuildInterface();\n'
                 '    BuildInterface();\n'
                 '    m_bound = true;\n')),
    Mutation("method-registered-twice", INTERFACE,
             '{VARNEL_OPERATIONS(VARNEL_METHOD)}',
             '{VARNEL_OPERATIONS(VARNEL_METHOD){"network_get_info", &VarnelInterface::network_get_info}}'),
    Mutation("introspection-method-added", INTERFACE,
             '{VARNEL_OPERATIONS(VARNEL_METHOD)}',
             '{VARNEL_OPERATIONS(VARNEL_METHOD){"list_methods", &VarnelInterface::network_get_info}}'),
    Mutation("method-not-registered", INTERFACE,
             (
                 '        const std::string name(method.name);\n'),
             (
                 '        if (&method == &methods[13])\n'
                 '            break;\n'
                 '        const std::string name(method.name);\n')),
    Mutation("method-misnamed", INTERFACE,
             '{#op, &VarnelInterface::op}',
             '{#op[0] == \'a\' ? "advertise" : #op, &VarnelInterface::op}'),
    Mutation("methods-bound-to-one-function", INTERFACE,
             '{#op, &VarnelInterface::op}',
             '{#op, &VarnelInterface::node_get_data}'),
    Mutation("methods-registered-backwards", INTERFACE,
             'new zeb::api::RpcMethod<VarnelInterface>(name, &m_interface, method.function, description)',
             'new zeb::api::RpcMethod<VarnelInterface>(methods[13 - (&method - methods)].name, &m_interface, methods[13 - (&method - methods)].function, description)'),
    Mutation("methods-of-another-interface", INTERFACE,
             'new zeb::api::RpcMethod<VarnelInterface>(name, &m_interface, method.function, description)',
             'new zeb::api::RpcMethod<VarnelInterface>(name, new VarnelInterface, method.function, description)'),
    Mutation("handle-kept-while-the-table-is-filled", INTERFACE,
             (
                 '    m_interface.m_proxy = m_proxyHolder.getProxy();\n'),
             (
                 '    const shared_ptr<Proxy> kept = m_proxyHolder.getProxy();\n'
                 '    m_interface.m_proxy = kept;\n')),
    Mutation("handler-held-twice", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'),
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> first(new Handler);\n'
                 '    const shared_ptr<Handler> handler(first);\n')),
    Mutation("handler-referred-to-for-ever", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    return 0;\n'),
             (
                 '    logCall(operation);\n'
                 '    (proxy.get()->*start)(arguments..., handler.get());\n'
                 '    handler->inc_refcount();\n'
                 '    return 0;\n')),
    Mutation("call-on-a-missing-proxy-ignored", INTERFACE,
             (
                 '    logCall(operation);\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy.get()->*start)'),
             (
                 '    logCall(operation);\n'
                 '    if (shared_ptr<Proxy>(proxy).get() == nullptr)\n'
                 '        return 0;\n'
                 '    const shared_ptr<Handler> handler(new Handler);\n'
                 '    (proxy.get()->*start)')),
    Mutation("type-of-three-digits", INTERFACE,
             'std::stoi(textParameter(in, "type"))',
             'std::stoi(textParameter(in, "type").substr(0, 3))'),
    Mutation("switch-on-in-capitals-too", INTERFACE,
             'textParameter(in, "on") == "true"',
             '(textParameter(in, "on") == "true" || textParameter(in, "on") == "True")'),
    Mutation("flag-first", INTERFACE_HEADER,
             (
                 '    VarnelInterface m_interface;\n'
                 '    zeb::api::mdw::KX_DDS_RMI_PROXY<VarnelInterface::Proxy> m_proxyHolder;\n'
                 '    bool m_bound;\n'),
             (
                 '    bool m_bound;\n'
                 '    VarnelInterface m_interface;\n'
                 '    zeb::api::mdw::KX_DDS_RMI_PROXY<VarnelInterface::Proxy> m_proxyHolder;\n')),
    Mutation("builder-virtual", INTERFACE_HEADER,
             '    void BuildInterface();',
             '    virtual void BuildInterface();'),
    Mutation("flag-as-an-integer", INTERFACE_HEADER,
             '    bool m_bound;',
             '    int m_bound;'),
    Mutation("table-with-another-virtual-function", INTERFACE_HEADER,
             '    bool isBound() override;',
             (
                 '    bool isBound() override;\n'
                 '    virtual void reserved() {}')),
    Mutation("table-with-another-member", INTERFACE_HEADER,
             '    bool m_bound;',
             (
                 '    bool m_bound;\n'
                 '    int m_calls = 0;')),
    Mutation("interface-with-virtual-operations", INTERFACE_HEADER,
             'int op(const KX_JSON& in, KX_JSON& out);',
             'virtual int op(const KX_JSON& in, KX_JSON& out);'),
    Mutation("interface-with-another-virtual-function", INTERFACE_HEADER,
             '    virtual ~VarnelInterface();',
             (
                 '    virtual ~VarnelInterface();\n'
                 '    virtual void reserved() {}')),
    Mutation("interface-with-another-member", INTERFACE_HEADER,
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<Proxy> m_proxy;\n'),
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<Proxy> m_proxy;\n'
                 '    int m_calls = 0;\n')),
    Mutation("interface-s-handle-second", INTERFACE_HEADER,
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<Proxy> m_proxy;\n'),
             (
                 '    void* m_reserved = nullptr;\n'
                 '    org::opensplice::DDS_RMI::shared_ptr<Proxy> m_proxy;\n')),
    Mutation("interface-destructor-not-virtual", INTERFACE_HEADER,
             '    virtual ~VarnelInterface();',
             '    ~VarnelInterface();'),
    Mutation("factory-with-a-c++-name", INTERFACE_HEADER,
             'extern "C" zeb::api',
             'zeb::api'),
    Mutation("methods-in-another-order", OPERATIONS,
             (
                 '    row(network_decommission, "async_network_decommission returns: ") \\\n'
                 '    row(network_get_info, "async_network_get_info returns: ") \\\n'),
             (
                 '    row(network_get_info, "async_network_get_info returns: ") \\\n'
                 '    row(network_decommission, "async_network_decommission returns: ") \\\n')),
    Mutation("methods-sorted", OPERATIONS,
             (
                 '    row(network_commission, "async_net_commission returns: ") \\\n'
                 '    row(network_decommission, "async_network_decommission returns: ") \\\n'
                 '    row(network_get_info, "async_network_get_info returns: ") \\\n'
                 '    row(network_add_nodes, "async_network_add_nodes returns: ") \\\n'),
             (
                 '    row(network_add_nodes, "async_network_add_nodes returns: ") \\\n'
                 '    row(network_commission, "async_net_commission returns: ") \\\n'
                 '    row(network_decommission, "async_network_decommission returns: ") \\\n'
                 '    row(network_get_info, "async_network_get_info returns: ") \\\n')),
    Mutation("commission-reply-by-the-pattern", OPERATIONS,
             'async_net_commission returns: ',
             'async_network_commission returns: '),
    Mutation("advertising-reply-by-the-pattern", OPERATIONS,
             'async_set_advertising returns: ',
             'async_advertising returns: '),
    Mutation("reply-without-its-blank", OPERATIONS,
             'async_node_get_data returns: ',
             'async_node_get_data returns:'),
    Mutation("reply-texts-exchanged", OPERATIONS,
             '"async_network_get_node_list returns: "',
             '"async_network_get_info returns: "'),
    Mutation("last-reply-kept", REPLIES,
             (
                 '    std::cout << text << result << std::endl;\n'),
             (
                 '    static DDS::Long last;\n'
                 '    last = result;\n'
                 '    std::cout << text << last << std::endl;\n')),
    Mutation("reply-line-under-a-lock", REPLIES,
             (
                 '    std::cout << text << result << std::endl;\n'),
             (
                 '    static pthread_mutex_t lines = PTHREAD_MUTEX_INITIALIZER;\n'
                 '    pthread_mutex_lock(&lines);\n'
                 '    std::cout << text << result << std::endl;\n'
                 '    pthread_mutex_unlock(&lines);\n')),
    Mutation("reply-line-under-the-stream-s-lock", REPLIES,
             (
                 '    std::cout << text << result << std::endl;\n'),
             (
                 '    flockfile(stdout);\n'
                 '    std::cout << text << result << std::endl;\n'
                 '    funlockfile(stdout);\n')),
    Mutation("reply-to-standard-error", REPLIES,
             '    std::cout << text <<',
             '    std::cerr << text <<'),
    Mutation("reply-in-two-flushes", REPLIES,
             'text << result << std::endl;',
             'text << std::flush << result << std::endl;'),
    Mutation("reply-unsigned", REPLIES,
             'text << result <<',
             'text << static_cast<DDS::ULong>(result) <<'),
    Mutation("handler-overrides-asyncWait", REPLIES,
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'),
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'
                 '        void asyncWait(DDS::QueryCondition* condition) override { CAsyncReplyHandlerImpl::asyncWait(condition); } \\\n')),
    Mutation("handler-with-a-member", REPLIES,
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'),
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'
                 '        DDS::Long m_result = 0;                                                                              \\\n')),
    Mutation("handler-with-another-virtual-function", REPLIES,
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'),
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'
                 '        virtual void reserved() {}                                                                           \\\n')),
    Mutation("handler-writes-when-it-goes", REPLIES,
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'),
             (
                 '        void op##_Reply(DDS::Long result) override { logReply(text, result); }                               \\\n'
                 '        ~MY_##op##_handler() override { std::cout.flush(); }                                                 \\\n')),
    Mutation("soname-with-a-version", PLUGIN_BUILD,
             (
                 '    OUTPUT_NAME varnelrpc_${PROJECT_VERSION}\n'),
             (
                 '    OUTPUT_NAME varnelrpc_${PROJECT_VERSION}\n'
                 '    SOVERSION 1\n')),
    Mutation("library-without-a-soname", PLUGIN_BUILD,
             (
                 '    OUTPUT_NAME varnelrpc_${PROJECT_VERSION}\n'),
             (
                 '    OUTPUT_NAME varnelrpc_${PROJECT_VERSION}\n'
                 '    NO_SONAME ON\n')),
    Mutation("everything-exported", EXPORTS,
             '    local: *;',
             '    local: nothing;'),
    Mutation("operations-of-the-idl-in-another-order", IDL,
             (
                 '        long network_get_node_list();\n'
                 '        long network_get_info();\n'),
             (
                 '        long network_get_info();\n'
                 '        long network_get_node_list();\n')),
    Mutation("holder-name-before-proxy", HOLDER,
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<TProxy> m_serverProxy;\n'
                 '    bool m_proxyFound;\n'
                 '    std::string m_serviceName;\n'
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    std::string m_serviceName;\n'
                 '    org::opensplice::DDS_RMI::shared_ptr<TProxy> m_serverProxy;\n'
                 '    bool m_proxyFound;\n'
                 '    std::int32_t m_instanceId;\n')),
    Mutation("holder-flag-last", HOLDER,
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<TProxy> m_serverProxy;\n'
                 '    bool m_proxyFound;\n'
                 '    std::string m_serviceName;\n'
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<TProxy> m_serverProxy;\n'
                 '    std::string m_serviceName;\n'
                 '    std::int32_t m_instanceId;\n'
                 '    bool m_proxyFound;\n')),
    Mutation("holder-number-of-16-bits", HOLDER,
             (
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    std::int16_t m_instanceId;\n')),
    Mutation("holder-number-of-64-bits", HOLDER,
             (
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    std::int64_t m_instanceId;\n')),
    Mutation("holder-number-before-name", HOLDER,
             (
                 '    std::string m_serviceName;\n'
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    std::int32_t m_instanceId;\n'
                 '    std::string m_serviceName;\n')),
    Mutation("holder-with-a-protected-base", HOLDER,
             'class KX_DDS_RMI_PROXY : public KX_DDS_RMI_RUNTIME',
             'class KX_DDS_RMI_PROXY : protected KX_DDS_RMI_RUNTIME'),
    Mutation("holder-with-a-virtual-base", HOLDER,
             'class KX_DDS_RMI_PROXY : public KX_DDS_RMI_RUNTIME',
             'class KX_DDS_RMI_PROXY : public virtual KX_DDS_RMI_RUNTIME'),
    Mutation("holder-with-a-virtual-destructor", HOLDER,
             '    ~KX_DDS_RMI_PROXY();',
             '    virtual ~KX_DDS_RMI_PROXY();'),
    Mutation("holder-with-another-member", HOLDER,
             (
                 '    std::int32_t m_instanceId;\n'),
             (
                 '    std::int32_t m_instanceId;\n'
                 '    int m_lookups = 0;\n')),
    Mutation("proxy-emptied-when-the-service-is-missing", HOLDER,
             (
                 '        stopRUNTIME();\n'),
             (
                 '        stopRUNTIME();\n'
                 '        m_serverProxy.reset();\n')),
    Mutation("proxy-given-out-by-reference", HOLDER,
             '    org::opensplice::DDS_RMI::shared_ptr<TProxy> getProxy() {',
             '    const org::opensplice::DDS_RMI::shared_ptr<TProxy>& getProxy() {'),
    Mutation("proxy-given-away", HOLDER,
             'getProxy() { return m_serverProxy; }',
             (
                 'getProxy()\n'
                 '    {\n'
                 '        const org::opensplice::DDS_RMI::shared_ptr<TProxy> given = m_serverProxy;\n'
                 '        m_serverProxy.reset();\n'
                 '        return given;\n'
                 '    }')),
    Mutation("found-unless-shown-otherwise", HOLDER,
             'm_proxyFound(false)',
             'm_proxyFound(true)'),
    Mutation("message-before-the-line", HOLDER,
             (
                 '    std::cout << "KX_DDS_RMI_PROXY construct" << std::endl;\n'
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n'),
             (
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n'
                 '    std::cout << "KX_DDS_RMI_PROXY construct" << std::endl;\n')),
    Mutation("holder-line-without-flush", HOLDER,
             '"KX_DDS_RMI_PROXY construct" << std::endl;',
             '"KX_DDS_RMI_PROXY construct\\n";'),
    Mutation("identity-set-in-the-system-log", HOLDER,
             (
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n'),
             (
                 '    openlog("varnelrpc", 0, LOG_DAEMON);\n'
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY construct");\n')),
    Mutation("number-by-the-remainder", HOLDER,
             (
                 '    m_instanceId = instances(engine);\n'),
             (
                 '    m_instanceId = static_cast<std::int32_t>(1 + engine() % 10000);\n')),
    Mutation("engine-of-64-bits", HOLDER,
             'std::mt19937 engine',
             'std::mt19937_64 engine'),
    Mutation("engine-advanced-first", HOLDER,
             (
                 '    m_instanceId = instances(engine);\n'),
             (
                 '    engine.discard(1);\n'
                 '    m_instanceId = instances(engine);\n')),
    Mutation("device-asked-twice", HOLDER,
             'std::mt19937 engine(device());',
             (
                 'device();\n'
                 '    std::mt19937 engine(device());')),
    Mutation("engine-kept", HOLDER,
             'std::mt19937 engine(device());',
             'static std::mt19937 engine(device());'),
    Mutation("device-opened-before-the-start", HOLDER,
             (
                 '    startRUNTIME(true);\n'
                 '\n'
                 '    std::random_device device("default");\n'),
             (
                 '    std::random_device device("default");\n'
                 '    startRUNTIME(true);\n')),
    Mutation("service-announced-in-quotes", HOLDER,
             'server proxy " << m_serviceName << " "',
             'server proxy \'" << m_serviceName << "\' "'),
    Mutation("service-looked-up-by-its-proxy-s-name", HOLDER,
             'getServerProxy<TProxy>(m_serviceName, m_instanceId',
             'getServerProxy<TProxy>(m_serviceName + "_Proxy", m_instanceId'),
    Mutation("lookup-outside-the-guard", HOLDER,
             (
                 '    try {\n'
                 '        lookUpProxy();\n'
                 '    } catch'),
             (
                 '    lookUpProxy();\n'
                 '    try {\n'
                 '    } catch')),
    Mutation("runtime-stopped-before-the-line", HOLDER,
             (
                 '        std::cout << " *** Unable to find the service !" << std::endl;\n'
                 '        syslog(LOG_INFO, " *** Unable to find the service !");\n'
                 '        stopRUNTIME();\n'),
             (
                 '        stopRUNTIME();\n'
                 '        std::cout << " *** Unable to find the service !" << std::endl;\n'
                 '        syslog(LOG_INFO, " *** Unable to find the service !");\n')),
    Mutation("missing-service-not-said", HOLDER,
             (
                 '        std::cout << " *** Unable to find the service !" << std::endl;\n'),
             ''),
    Mutation("missing-service-passed-on", HOLDER,
             (
                 '        m_proxyFound = false;\n'),
             (
                 '        m_proxyFound = false;\n'
                 '        throw;\n')),
    Mutation("success-without-its-name", HOLDER,
             'named %s", m_serviceName.c_str());',
             'named %s", "it");'),
    Mutation("question-told-to-the-system-log-too", HOLDER,
             (
                 '    return m_proxyFound;\n'),
             (
                 '    syslog(LOG_INFO, "KX_DDS_RMI_PROXY isProxyFound%d", m_proxyFound ? 1 : 0);\n'
                 '    return m_proxyFound;\n')),
    Mutation("question-without-flush", HOLDER,
             'isProxyFound" << m_proxyFound << std::endl;',
             'isProxyFound" << m_proxyFound << \'\\n\';'),
    Mutation("runtime-not-stopped-in-the-end", RUNTIME,
             '~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }',
             '~KX_DDS_RMI_RUNTIME() {}'),
    Mutation("runtime-stopped-twice-in-the-end", RUNTIME,
             '~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }',
             (
                 '~KX_DDS_RMI_RUNTIME()\n'
                 '    {\n'
                 '        m_runtime->stop();\n'
                 '        m_runtime->stop();\n'
                 '    }')),
    Mutation("runtime-stopped-by-the-library-in-the-end", RUNTIME,
             '~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }',
             '~KX_DDS_RMI_RUNTIME() { stopRUNTIME(); }'),
    Mutation("runtime-released-instead-of-stopped", RUNTIME,
             '~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }',
             '~KX_DDS_RMI_RUNTIME() { m_runtime.reset(); }'),
    Mutation("runtime-s-failure-caught-in-the-end", RUNTIME,
             '~KX_DDS_RMI_RUNTIME() { m_runtime->stop(); }',
             (
                 '~KX_DDS_RMI_RUNTIME()\n'
                 '    {\n'
                 '        try {\n'
                 '            m_runtime->stop();\n'
                 '        } catch (...) {\n'
                 '        }\n'
                 '    }')),
    Mutation("runtime-with-a-virtual-destructor", RUNTIME,
             '    ~KX_DDS_RMI_RUNTIME()',
             '    virtual ~KX_DDS_RMI_RUNTIME()'),
    Mutation("runtime-with-another-member", RUNTIME,
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<org::opensplice::DDS_RMI::CRuntime> m_runtime;\n'),
             (
                 '    org::opensplice::DDS_RMI::shared_ptr<org::opensplice::DDS_RMI::CRuntime> m_runtime;\n'
                 '    int m_starts = 0;\n')),
    Mutation("runtime-released-when-stopped", RUNTIME_SOURCE,
             (
                 '    m_runtime->stop();\n'),
             (
                 '    m_runtime->stop();\n'
                 '    m_runtime.reset();\n')),
    Mutation("no-idle-hold", RUNTIME_SOURCE,
             (
                 '    m_runtime = idle_hold;\n'),
             ''),
    Mutation("only-the-idle-hold", RUNTIME_SOURCE,
             (
                 '    m_runtime = CRuntime::getDefaultRuntime();\n'),
             ''),
    Mutation("threading-exchanged", RUNTIME_SOURCE,
             '? "MT" : "ST"',
             '? "ST" : "MT"'),
    Mutation("discovery-time-not-passed-on", RUNTIME_SOURCE,
             'sizeof arguments / sizeof arguments[0], arguments',
             '2, arguments'),
    Mutation("runtime-not-stopped-when-told", RUNTIME_SOURCE,
             (
                 '    m_runtime->stop();\n'),
             ''),
    Mutation("method-name-and-description-exchanged", METHOD,
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'),
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    data::KX_JSON m_description;\n'
                 '    std::string m_name;\n')),
    Mutation("method-owner-last", METHOD,
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'),
             (
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'
                 '    T* m_owner;\n')),
    Mutation("method-function-first", METHOD,
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'),
             (
                 '    Method m_method;\n'
                 '    T* m_owner;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n')),
    Mutation("method-with-another-member", METHOD,
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'),
             (
                 '    T* m_owner;\n'
                 '    Method m_method;\n'
                 '    std::string m_name;\n'
                 '    data::KX_JSON m_description;\n'
                 '    int m_calls = 0;\n')),
    Mutation("method-with-another-virtual-function", METHOD,
             '    std::string GetName() const override',
             (
                 '    virtual void reserved() {}\n'
                 '    std::string GetName() const override')),
    Mutation("method-deletes-its-owner", METHOD,
             '    int Call(',
             (
                 '    ~RpcMethod() override { delete m_owner; }\n'
                 '    int Call(')),
    Mutation("method-describes-deeply", METHOD,
             'return m_description;',
             'return m_description.deep_copy();'),
    Mutation("method-describes-nothing", METHOD,
             'return m_description;',
             'return data::KX_JSON();'),
    Mutation("method-forgets-its-description", METHOD,
             'm_description(description)',
             'm_description()'),
    Mutation("method-keeps-a-reference-to-its-name", METHOD,
             '    std::string m_name;',
             '    const std::string& m_name;'),
    Mutation("method-answers-into-a-copy", METHOD,
             'return (m_owner->*m_method)(in, out);',
             'data::KX_JSON copy(out); return (m_owner->*m_method)(in, copy);'),
    Mutation("method-hands-over-the-response-twice", METHOD,
             'return (m_owner->*m_method)(in, out);',
             'return (m_owner->*m_method)(out, out);'),
    Mutation("method-calls-twice", METHOD,
             'return (m_owner->*m_method)(in, out);',
             '(m_owner->*m_method)(in, out); return (m_owner->*m_method)(in, out);'),
    Mutation("method-result-as-a-flag", METHOD,
             'return (m_owner->*m_method)(in, out);',
             'return (m_owner->*m_method)(in, out) != 0;'),
    Mutation("method-writes-the-result", METHOD,
             'return (m_owner->*m_method)(in, out);',
             'const int result = (m_owner->*m_method)(in, out); out.set_json_int("result", result); return result;'),
    Mutation("method-base-with-another-virtual-function", METHOD_BASE,
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'),
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'
                 '    virtual void reserved() {}\n')),
    Mutation("method-base-with-data", METHOD_BASE,
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'),
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'
                 '    int m_calls = 0;\n')),
    Mutation("method-base-destructor-not-first", METHOD_BASE,
             (
                 '    virtual ~CallbackMethod();\n'),
             (
                 '    virtual int reserved() { return 0; }\n'
                 '    virtual ~CallbackMethod();\n')),
    Mutation("method-base-described-before-named", METHOD_BASE,
             (
                 '    /// The JSON-RPC method name.\n'
                 '    virtual std::string GetName() const = 0;\n'
                 '\n'
                 '    /// A JSON description of the method (see RpcMethod); holds no object where there is none. The host asks\n'
                 '    /// for it on the thread that made the handler, before any method is called, and keeps nothing of what it\n'
                 '    /// gets.\n'
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'),
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'
                 '    virtual std::string GetName() const = 0;\n')),
    Mutation("handler-base-with-another-virtual-function", HANDLER_BASE,
             (
                 '    virtual bool isBound();\n'),
             (
                 '    virtual bool isBound();\n'
                 '    virtual void reserved() {}\n')),
    Mutation("handler-base-destructor-not-first", HANDLER_BASE,
             (
                 '    virtual ~KX_RPCHandler();\n'),
             (
                 '    virtual bool reserved() { return true; }\n'
                 '    virtual ~KX_RPCHandler();\n')),
    Mutation("handler-base-adds-methods-virtually", HANDLER_BASE,
             '    void AddMethod(CallbackMethod* method);',
             '    virtual void AddMethod(CallbackMethod* method);'),
    Mutation("value-with-a-virtual-destructor", VALUE,
             '    ~KX_JSON();',
             '    virtual ~KX_JSON();'),
    Mutation("value-with-another-member", VALUE,
             (
                 '    json_object* m_object;\n'),
             (
                 '    json_object* m_object;\n'
                 '    int m_copies = 0;\n')),
    Mutation("second-method-of-a-name-taken", HANDLER_SOURCE,
             'if (m_methodsByName.emplace(name, method).second)',
             'if (m_methodsByName.emplace(name, method).second || true)'),
    Mutation("methods-deleted-first-added-first", HANDLER_SOURCE,
             (
                 '        const std::unique_ptr<CallbackMethod> last(m_methods.back());\n'
                 '        m_methods.pop_back();\n'),
             (
                 '        const std::unique_ptr<CallbackMethod> first(m_methods.front());\n'
                 '        m_methods.erase(m_methods.begin());\n')),
    Mutation("methods-never-deleted", HANDLER_SOURCE,
             'const std::unique_ptr<CallbackMethod> last(m_methods.back());',
             'static_cast<void>(m_methods.back());'),
    Mutation("plain-handler-unbound", HANDLER_SOURCE,
             (
                 '    return true;\n'
                 '}\n'
                 '\n'
                 'void'),
             (
                 '    return false;\n'
                 '}\n'
                 '\n'
                 'void')),
    Mutation("null-method-taken", HANDLER_SOURCE,
             'method == nullptr || contains(method)',
             'contains(method)'),
    Mutation("method-taken-twice", HANDLER_SOURCE,
             'method == nullptr || contains(method)',
             'method == nullptr'),
    Mutation("any-method-found", HANDLER_SOURCE,
             'found == m_methodsByName.end() ? nullptr : found->second',
             'm_methodsByName.empty() ? nullptr : m_methodsByName.begin()->second'),
    Mutation("text-cut-at-a-nul", JSON_SOURCE,
             'return {json_object_get_string(string), static_cast<std::size_t>(json_object_get_string_len(string))};',
             'return json_object_get_string(string);'),
    Mutation("null-as-a-text", VALUE_SOURCE,
             (
                 '    case json_type_null:\n'
                 '        return std::string();'),
             (
                 '    case json_type_null:\n'
                 '        return std::string("null");')),
    Mutation("number-not-clamped", VALUE_SOURCE,
             'return static_cast<Integer>(std::max(value, static_cast<double>(Limits::min())));',
             'return static_cast<Integer>(static_cast<long long>(std::max(value, -4e9)));'),
    Mutation("copy-takes-no-reference", VALUE_SOURCE,
             'KX_JSON::KX_JSON(const KX_JSON& other) noexcept : m_object(json_object_get(other.m_object)) {}',
             'KX_JSON::KX_JSON(const KX_JSON& other) noexcept : m_object(other.m_object) {}'),
    Mutation("member-set-without-a-reference", VALUE_SOURCE,
             '    set_member(key, json_object_get(value.m_object));',
             '    set_member(key, value.m_object);'),
    Mutation("deep-copy-shares", VALUE_SOURCE,
             (
                 '    KX_JSON copy;\n'
                 '    if (m_object'),
             (
                 '    KX_JSON copy(*this);\n'
                 '    return copy;\n'
                 '    if (m_object')),
]
