# SPDX-License-Identifier: Apache-2.0
"""The wrong changes that tests/mutate tries. `old` stands in its file exactly once."""

from typing import NamedTuple

INTERFACE = "plugin/varnel_interf.cpp"
INTERFACE_HEADER = "plugin/varnel_interf.h"
REPLIES = "plugin/varnel_reply_handlers.h"
HOLDER = "framework/include/zeb/api/mdw/KX_DDS_RMI_PROXY.h"
METHOD = "framework/include/zeb/api/RpcMethod.h"
METHOD_BASE = "framework/include/zeb/api/CallbackMethod.h"


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
    Mutation("method-registered-twice", INTERFACE,
             '    {"network_get_info", &VarnelInterface::network_get_info},\n',
             (
                 '    {"network_get_info", &VarnelInterface::network_get_info},\n'
                 '    {"network_get_info", &VarnelInterface::network_get_info},\n')),
    Mutation("method-not-registered", INTERFACE,
             '    {"node_set_config_revert", &VarnelInterface::node_set_config_revert},\n',
             ''),
    Mutation("method-misnamed", INTERFACE,
             '{"node_get_data", &Varnel',
             '{"node_getData", &Varnel'),
    Mutation("methods-in-another-order", INTERFACE,
             (
                 '    {"network_decommission", &VarnelInterface::network_decommission},\n'
                 '    {"network_get_info", &VarnelInterface::network_get_info},\n'),
             (
                 '    {"network_get_info", &VarnelInterface::network_get_info},\n'
                 '    {"network_decommission", &VarnelInterface::network_decommission},\n')),
    Mutation("method-bound-to-another", INTERFACE,
             '{"node_get_config", &VarnelInterface::node_get_config}',
             '{"node_get_config", &VarnelInterface::node_get_data}'),
    Mutation("introspection-method-added", INTERFACE,
             '    {"node_set_config_revert", &VarnelInterface::node_set_config_revert},\n',
             (
                 '    {"node_set_config_revert", &VarnelInterface::node_set_config_revert},\n'
                 '    {"list_methods", &VarnelInterface::network_get_info},\n')),
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
    Mutation("interface-with-more-virtual-functions", INTERFACE_HEADER,
             '    int network_commission(const KX_JSON& in, KX_JSON& out);',
             '    virtual int network_commission(const KX_JSON& in, KX_JSON& out);'),
    Mutation("interface-destructor-not-first", INTERFACE_HEADER,
             '    virtual ~VarnelInterface();',
             (
                 '    virtual void reserved() {}\n'
                 '    virtual ~VarnelInterface();')),
    Mutation("commission-reply-by-the-pattern", REPLIES,
             'async_net_commission returns: ',
             'async_network_commission returns: '),
    Mutation("advertising-reply-by-the-pattern", REPLIES,
             'async_set_advertising returns: ',
             'async_advertising returns: '),
    Mutation("reply-without-its-blank", REPLIES,
             'async_node_get_data returns: ',
             'async_node_get_data returns:'),
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
    Mutation("reply-texts-exchanged", REPLIES,
             '(network_get_node_list, "async_network_get_node_list returns: ")',
             '(network_get_node_list, "async_network_get_info returns: ")'),
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
    Mutation("method-slots-exchanged", METHOD_BASE,
             (
                 '    /// The JSON-RPC method name.\n'
                 '    virtual std::string GetName() const = 0;\n'
                 '\n'
                 '    /// A JSON description of the method; holds no object where there is none.\n'
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'),
             (
                 '    virtual data::KX_JSON GetDescription() const = 0;\n'
                 '    virtual std::string GetName() const = 0;\n')),
]
