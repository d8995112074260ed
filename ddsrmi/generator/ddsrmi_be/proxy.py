# SPDX-License-Identifier: Apache-2.0
"""The client side: the proxies and the bases of the reply handlers."""

from ddsrmi_be import cpp_layout
from ddsrmi_be.reserved_names import free_name

_RMI = "org::opensplice::DDS_RMI::"


def files(source, stem, interfaces):
    header = stem + "_InterfaceProxy.h"
    declarations = [cpp_layout.in_namespace(interface, _declarations(interface)) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface, _definitions(interface)) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ['"ddsrmi.h"'], declarations)
    includes = ['"%s"' % header, "", "<memory>", "", '"ddsrmi/encoding.h"', '"%s_InterfaceInfo.h"' % stem]
    yield stem + "_InterfaceProxy.cpp", cpp_layout.implementation(source, includes, definitions)


# The header.


def _declarations(interface):
    return [_handler_class(operation) for operation in interface.operations] + [_proxy_class(interface)]


def _handler_class(operation):
    return """\
/// Receives the reply of one call of {proxy}::{async_name}.
class {handler} : public {rmi}CAsyncReplyHandlerImpl {{
public:
    ~{handler}() override;
    void handleReply(DDS::ReadCondition* condition) override;
{comment}    virtual void {hook}({result}) = 0;
}};
""".format(proxy=operation.interface.proxy, async_name=operation.async_name, handler=operation.handler, rmi=_RMI,
           comment=_hook_comment(operation), hook=operation.hook, result=_hook_parameter(operation))


def _hook_comment(operation):
    if not operation.result.is_text:
        return ""
    return "    /// The text stays the RMI layer's and is valid until the function returns.\n"


def _hook_parameter(operation):
    return "" if operation.result.is_void else operation.result.cpp + " result"


def _proxy_class(interface):
    return """\
/// A client's view of one service of the interface {scoped_name}.
/// Of each pair of operations the first waits for the reply and throws TIMEOUT when none comes in time; the
/// second returns at once, and the handler receives the reply. A text argument is the callee's, which frees it
/// with DDS::string_free, also when it throws; a text result is the caller's to free.
class {proxy} : public {rmi}CInterfaceProxy {{
public:
    explicit {proxy}(const {rmi}ProxySeed& seed);
    ~{proxy}() override;

{operations}
    /// Makes the interface known to the lookup.
    static void _register_service_info();
}};
""".format(scoped_name=interface.scoped_name, proxy=interface.proxy, rmi=_RMI,
           operations="\n".join(_operation_pair(operation) for operation in interface.operations))


def _operation_pair(operation):
    waiting = _declaration(operation.result.cpp, operation.name, operation.parameters)
    return waiting + _declaration("void", operation.async_name, _async_parameters(operation))


def _declaration(result, name, parameters):
    return "    %s;\n" % cpp_layout.signature("virtual %s %s" % (result, name), parameters, "    ")


def _async_parameters(operation):
    return operation.parameters + ["%s* %s" % (operation.handler, _local("handler", operation))]


def _local(wanted, operation):
    """A name for something inside an operation, other than its arguments' names."""
    return free_name(wanted, {argument.name for argument in operation.arguments})


# The source file.


def _definitions(interface):
    yield cpp_layout.unnamed_namespace(_helpers(interface))
    for operation in interface.operations:
        yield _handler_members(operation)
    yield _constructor_and_destructor(interface)
    for operation in interface.operations:
        yield _waiting_form(operation)
        yield _starting_form(operation)
    yield _registration(interface)


def _helpers(interface):
    for operation in interface.operations:
        yield _waiter_class(operation)
    signature = "rmi::CInterfaceProxy* %s(const rmi::ProxySeed& seed)" % _factory_name(interface)
    yield cpp_layout.function(signature, ["return new %s(seed);" % interface.proxy])


def _factory_name(interface):
    return "make_%s_proxy" % interface.name


def _waiter_name(operation):
    return free_name("%s_%s_Waiter" % (operation.interface.name, operation.name), operation.interface.argument_names)


def _waiter_class(operation):
    store, access, member = _waiter_parts(operation)
    return """\
class {name} : public {handler} {{
public:
    void {hook}({parameter}) override {{{store}}}
{access}}};
""".format(name=_waiter_name(operation), handler=operation.handler, hook=operation.hook, store=store,
           parameter=_hook_parameter(operation), access=access + member)


def _waiter_parts(operation):
    """How the result is stored, how it is fetched, and where it is kept."""
    if operation.result.is_void:
        return "", "", ""
    fetch = "    %s result() %s\n" % (operation.result.cpp, "{ return m_result.release(); }")
    if operation.result.is_text:
        return " m_result.reset(DDS::string_dup(result)); ", fetch, "\nprivate:\n    std::unique_ptr<char[]> m_result;\n"
    fetch = "    %s result() const { return m_result; }\n" % operation.result.cpp
    return " m_result = result; ", fetch, "\nprivate:\n    %s m_result = %s();\n" % ((operation.result.cpp,) * 2)


def _handler_members(operation):
    destructor = "%s::~%s() = default;\n" % (operation.handler, operation.handler)
    return destructor + "\n" + _handle_reply(operation)


def _handle_reply(operation):
    statements = ["rmi::Decoder reply(*condition);"]
    if not operation.result.is_void:
        statements += ["%s result;" % operation.result.cpp, "reply.get(result);"]
    statements += ["reply.finish();", "%s(%s);" % (operation.hook, "" if operation.result.is_void else "result")]
    signature = "void %s::handleReply(DDS::ReadCondition* condition)" % operation.handler
    return cpp_layout.function(signature, statements)


def _constructor_and_destructor(interface):
    return """\
{proxy}::{proxy}(const rmi::ProxySeed& seed) : rmi::CInterfaceProxy(seed) {{}}

{proxy}::~{proxy}() = default;
""".format(proxy=interface.proxy)


def _waiting_form(operation):
    waiter = _local("waiter", operation)
    name = _waiter_name(operation)
    statements = _make_request(operation) + [
        "const rmi::shared_ptr<%s> %s(new %s);" % (name, waiter, name),
        "send_request_and_wait(%s, %s, %s);" % (_index(operation), _local("request", operation), waiter),
    ]
    if not operation.result.is_void:
        statements.append("return %s->result();" % waiter)
    return _member(operation, operation.result.cpp, operation.name, operation.parameters, statements)


def _starting_form(operation):
    arguments = (_index(operation), _local("request", operation), _local("handler", operation))
    statements = _make_request(operation) + ["send_request(%s, %s, %s);" % arguments]
    return _member(operation, "void", operation.async_name, _async_parameters(operation), statements)


def _member(operation, result, name, parameters, statements):
    head = "%s %s::%s" % (result, operation.interface.proxy, name)
    return cpp_layout.function(cpp_layout.signature(head, parameters), statements)


def _index(operation):
    return operation.interface.operations.index(operation)


def _make_request(operation):
    request = _local("request", operation)
    statements = list(_owners(operation)) + ["rmi::Encoder %s;" % request]
    return statements + ["%s.put(%s);" % (request, a.type.to_encode(a.name)) for a in operation.arguments]


def _owners(operation):
    """First of all the texts get owners, so that they are freed whichever way the operation ends."""
    taken = {argument.name for argument in operation.arguments}
    for argument in operation.arguments:
        if argument.type.is_text:
            owner = free_name("owned_" + argument.name, taken)
            taken.add(owner)
            yield "const rmi::OwnedString %s(%s);" % (owner, argument.name)


def _registration(interface):
    arguments = (interface.info, _factory_name(interface))
    statements = ["static const rmi::ProxyRegistration registration(%s(), %s);" % arguments]
    return cpp_layout.function("void %s::_register_service_info()" % interface.proxy, statements)
