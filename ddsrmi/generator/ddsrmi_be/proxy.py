# SPDX-License-Identifier: Apache-2.0
"""The client side: the proxies and the bases of the reply handlers."""

from ddsrmi_be import cpp_layout, waiter
from ddsrmi_be.reserved_names import free_name

_RMI = "org::opensplice::DDS_RMI::"


def files(source, stem, interfaces, includes):
    header = stem + "_InterfaceProxy.h"
    declarations = [cpp_layout.in_namespace(interface.modules, _declarations(interface)) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface.modules, _definitions(interface)) for interface in interfaces]
    yield header, cpp_layout.header(source, header, includes.header, declarations)
    standard = ["<memory>"] + (["<utility>"] if includes.moves else [])
    all_includes = ['"%s"' % header, ""] + standard + [""] + includes.source
    yield stem + "_InterfaceProxy.cpp", cpp_layout.implementation(source, all_includes, definitions)


# The header.


def _declarations(interface):
    return [_handler_class(operation) for operation in _answered(interface)] + [_proxy_class(interface)]


def _answered(interface):
    return [operation for operation in interface.operations if not operation.is_oneway]


def _handler_class(operation):
    return """\
/// Receives the reply of one call of {proxy}::{async_name}.
{failure}class {handler} : public {rmi}CAsyncReplyHandlerImpl {{
public:
    ~{handler}() override;
    void handleReply(DDS::ReadCondition* condition) override;
{comment}    {hook} = 0;
}};
""".format(proxy=operation.interface.proxy, async_name=operation.async_name, handler=operation.handler, rmi=_RMI,
           failure=_exceptions_comment(operation), comment=_hook_comment(operation),
           hook=cpp_layout.signature("virtual void " + operation.hook, operation.hook_parameters, "    "))


def _exceptions_comment(operation):
    if not operation.raised:
        return ""
    names = "".join("///   %s\n" % exception.cpp for exception in operation.raised)
    return "/// A CallFailureHandler learns of these exceptions of the implementation:\n" + names


def _hook_comment(operation):
    if operation.returns_composed:
        return "    /// Texts and what is referred to stay the RMI layer's and are valid until the function returns.\n"
    if any(argument.type.is_text for argument in operation.returned):
        return "    /// The texts stay the RMI layer's and are valid until the function returns.\n"
    if not operation.result.is_text:
        return ""
    return "    /// The text stays the RMI layer's and is valid until the function returns.\n"


def _proxy_class(interface):
    return """\
/// A client's view of one service of the interface {scoped_name}.
/// Of each pair of operations the first waits for the reply and throws TIMEOUT when none comes in time; the
/// second returns at once, and the handler receives the reply. A text argument is the callee's, which frees it
/// with DDS::string_free, also when it throws; a text result is the caller's to free.
{returned}{oneway}class {proxy} : public {rmi}CInterfaceProxy {{
public:
    explicit {proxy}(const {rmi}ProxySeed& seed);
    ~{proxy}() override;

{operations}
    /// Makes the interface known to the lookup.
    static void _register_service_info();
}};
""".format(scoped_name=interface.scoped_name, proxy=interface.proxy, rmi=_RMI, returned=_returned_comment(interface),
           oneway=_oneway_comment(interface),
           operations="\n".join(_operation_functions(operation) for operation in interface.operations))


def _returned_comment(interface):
    if not any(argument.type.is_text for operation in interface.operations for argument in operation.returned):
        return ""
    return """\
/// A text that an out or inout argument brings back is the caller's to free, too. The text that an inout argument
/// came with is then freed; when the call throws, it stays the caller's. (The asynchronous form takes it over like
/// any other argument.)
"""


def _oneway_comment(interface):
    if len(_answered(interface)) == len(interface.operations):
        return ""
    return "/// A oneway operation returns when the call has been accepted, and has no second form.\n"


def _operation_functions(operation):
    waiting = _declaration(operation.result.cpp, operation.name, operation.parameters)
    if operation.is_oneway:
        return waiting
    return waiting + _declaration("void", operation.async_name, _async_parameters(operation))


def _declaration(result, name, parameters):
    return "    %s;\n" % cpp_layout.signature("virtual %s %s" % (result, name), parameters, "    ")


def _async_parameters(operation):
    given = [argument.read_only for argument in operation.given]
    return given + ["%s* %s" % (operation.handler, operation.local("handler"))]


# The source file.


def _definitions(interface):
    yield cpp_layout.unnamed_namespace(_helpers(interface))
    for operation in _answered(interface):
        yield _handler_members(operation)
    yield _constructor_and_destructor(interface)
    for operation in interface.operations:
        yield _oneway_form(operation) if operation.is_oneway else _waiting_form(operation)
        if not operation.is_oneway:
            yield _starting_form(operation)
    yield _registration(interface)


def _helpers(interface):
    for operation in _answered(interface):
        yield waiter.definition(operation)
        if operation.raised:
            yield _raiser(operation)
    seed = interface.local("seed")
    signature = "rmi::CInterfaceProxy* %s(const rmi::ProxySeed& %s)" % (interface.factory, seed)
    yield cpp_layout.function(signature, ["return new %s(%s);" % (interface.proxy, seed)])


def _raiser(operation):
    """Throws what the reply says that the implementation threw. Exceptions have the numbers of their places."""
    reply = operation.local("reply")
    statements = ["switch (rmi::codec::raised(%s)) {" % reply, "case rmi::codec::nothing_raised:", "    return;"]
    for number, exception in enumerate(operation.raised, 1):
        statements += ["case %d:" % number, "    rmi::codec::rethrow<%s>(%s);" % (exception.codec, reply)]
    statements += ["default:", "    throw rmi::DecodingError();", "}"]
    return cpp_layout.function("void %s(rmi::Decoder& %s)" % (operation.raiser, reply), statements)


def _handler_members(operation):
    destructor = "%s::~%s() = default;\n" % (operation.handler, operation.handler)
    return destructor + "\n" + _handle_reply(operation)


def _handle_reply(operation):
    reply, condition = operation.local("reply"), operation.local("condition")
    statements = ["rmi::Decoder %s(*%s);" % (reply, condition)]
    if operation.raised:
        statements.append("%s(%s);" % (operation.raiser, reply))
    names = []
    for type, name in operation.returned_values:
        statements += ["%s %s;" % (type.cpp, name), type.get(reply, name)]
        names.append(name)
    statements += ["%s.finish();" % reply, "%s(%s);" % (operation.hook, ", ".join(names))]
    signature = "void %s::handleReply(DDS::ReadCondition* %s)" % (operation.handler, condition)
    return cpp_layout.function(signature, statements)


def _constructor_and_destructor(interface):
    return """\
{proxy}::{proxy}(const rmi::ProxySeed& {seed}) : rmi::CInterfaceProxy({seed}) {{}}

{proxy}::~{proxy}() = default;
""".format(proxy=interface.proxy, seed=interface.local("seed"))


def _waiting_form(operation):
    waiting = operation.local("waiter")
    name = operation.waiter
    statements = _make_request(operation, _given_away(operation)) + [
        "const rmi::shared_ptr<%s> %s(new %s);" % (name, waiting, name),
        "send_request_and_wait(%s, %s, %s);" % (_index(operation), operation.local("request"), waiting),
    ]
    if operation.returned:
        statements.append("%s->give(%s);" % (waiting, ", ".join(argument.name for argument in operation.returned)))
    if not operation.result.is_void:
        statements.append("return %s->result();" % waiting)
    return _member(operation, operation.result.cpp, operation.name, operation.parameters, statements)


def _starting_form(operation):
    arguments = (_index(operation), operation.local("request"), operation.local("handler"))
    statements = _make_request(operation, operation.given) + ["send_request(%s, %s, %s);" % arguments]
    return _member(operation, "void", operation.async_name, _async_parameters(operation), statements)


def _oneway_form(operation):
    statements = _make_request(operation, _given_away(operation))
    statements.append("send_oneway(%s, %s);" % (_index(operation), operation.local("request")))
    return _member(operation, "void", operation.name, operation.parameters, statements)


def _member(operation, result, name, parameters, statements):
    head = "%s %s::%s" % (result, operation.interface.proxy, name)
    return cpp_layout.function(cpp_layout.signature(head, parameters), statements)


def _index(operation):
    return operation.interface.operations.index(operation)


def _given_away(operation):
    """The arguments whose texts a waiting caller gives away."""
    return [argument for argument in operation.given if not argument.is_out]


def _make_request(operation, given_away):
    request = operation.local("request")
    statements = list(_owners(operation, given_away)) + ["rmi::Encoder %s;" % request]
    return statements + [argument.type.put(request, argument.name, argument.what) for argument in operation.given]


def _owners(operation, given_away):
    """First of all the texts get owners, so that they are freed whichever way the operation ends."""
    taken = {argument.name for argument in operation.arguments} | operation.interface.constants
    for argument in given_away:
        if argument.type.is_text:
            owner = free_name("owned_" + argument.name, taken)
            taken.add(owner)
            yield "const rmi::OwnedString %s(%s);" % (owner, argument.name)


def _registration(interface):
    registration = interface.local("registration")
    arguments = (registration, interface.info, interface.factory)
    statements = ["static const rmi::ProxyRegistration %s(%s(), %s);" % arguments]
    return cpp_layout.function("void %s::_register_service_info()" % interface.proxy, statements)
