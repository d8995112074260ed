# SPDX-License-Identifier: Apache-2.0
"""The server side: the skeletons, from which implementations derive."""

from ddsrmi_be import cpp_layout

_RMI = "org::opensplice::DDS_RMI::"


def files(source, stem, interfaces, includes):
    header = stem + "_Interface.h"
    declarations = [cpp_layout.in_namespace(interface.modules, [_skeleton_class(interface)]) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface.modules, _definitions(interface)) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ["<cstddef>", ""] + includes.header, declarations)
    all_includes = ['"%s"' % header, ""] + includes.source
    yield stem + "_Interface.cpp", cpp_layout.implementation(source, all_includes, definitions)


def _skeleton_class(interface):
    operations = "".join("    %s = 0;\n" % _declaration(operation) for operation in interface.operations)
    return """\
/// Server side of the interface {scoped_name}; derive the implementation from it.
/// Text arguments stay the RMI layer's and are valid until the operation returns; a text result, which is made
/// with DDS::string_dup, becomes the RMI layer's.
{returned}class {skeleton} : public {rmi}CInterfaceSkeleton {{
public:
    ~{skeleton}() override;

{operations}
    static void _register_service_info();
    const {rmi}InterfaceInfo& _interface_info() const override;
    void _dispatch(std::size_t operation, {rmi}Decoder& request, {rmi}Encoder& reply) override;
}};
""".format(scoped_name=interface.scoped_name, skeleton=interface.skeleton, rmi=_RMI, operations=operations,
           returned=_returned_comment(interface))


def _returned_comment(interface):
    if not any(argument.type.is_text for operation in interface.operations for argument in operation.returned):
        return ""
    return """\
/// The text of an out argument is made in the same way and becomes the RMI layer's, too. Who puts another text into
/// an inout argument frees the one that is there, with DDS::string_free.
"""


def _declaration(operation):
    return cpp_layout.signature("virtual %s %s" % (operation.result.cpp, operation.name), operation.parameters, "    ")


def _definitions(interface):
    yield cpp_layout.unnamed_namespace(_runners(interface))
    yield _plain_members(interface)
    yield _dispatch(interface)


def _runners(interface):
    for operation in interface.operations:
        yield _runner(operation)


def _runner(operation):
    request, implementation = operation.local("request"), operation.local("implementation")
    statements = [line for argument in operation.arguments for line in _variable(argument, request)]
    statements.append("%s.finish();" % request)
    reply = operation.local("reply")
    statements += _guarded(operation, reply) if operation.raised else _run(operation, reply)
    uses_reply = operation.raised or not operation.result.is_void or operation.returned
    parameters = [
        "%s& %s" % (operation.interface.skeleton, implementation),
        "rmi::Decoder& " + request,
        "rmi::Encoder& " + (reply if uses_reply else "/*reply*/"),
    ]
    return cpp_layout.function(cpp_layout.signature("void " + operation.runner, parameters), statements)


def _variable(argument, request):
    """A text that the implementation may replace needs an owner."""
    if argument.is_out and argument.type.is_text:
        yield "rmi::OwnedString %s;" % argument.name
        if argument.is_in:
            yield "%s::get(%s, %s);" % (argument.type.codec, request, argument.name)
    elif argument.is_in:
        yield "%s %s;" % (argument.type.cpp, argument.name)
        yield argument.type.get(request, argument.name)
    else:
        yield "%s %s = %s();" % (argument.type.cpp, argument.name, argument.type.cpp)


def _guarded(operation, reply):
    run = _run(operation, reply, "%s.put(rmi::codec::nothing_raised);" % reply)
    statements = ["try {"] + ["    " + statement for statement in run]
    raised = operation.local("raised")
    for number, exception in enumerate(operation.raised, 1):
        statements += [
            "} catch (const %s& %s) {" % (exception.cpp, raised),
            "    rmi::codec::put_raised<%s>(%s, %d, %s);" % (exception.codec, reply, number, raised),
        ]
    return statements + ["}"]


def _run(operation, reply, *before_result):
    """Runs the implementation, then encodes what is to be returned."""
    arguments = ", ".join(_passed(argument) for argument in operation.arguments)
    call = "%s.%s(%s)" % (operation.local("implementation"), operation.name, arguments)
    outs = [_put_argument(argument, reply) for argument in operation.returned]
    if operation.result.is_void:
        return [call + ";", *before_result, *outs]
    if not before_result and not outs and not operation.result.is_text:
        return [operation.result.put(reply, call, "the result")]
    result = operation.local("result")
    if operation.result.is_text:
        kept, value = "const rmi::OwnedString %s(%s);" % (result, call), result + ".get()"
    else:
        kept, value = "const %s %s = %s;" % (operation.result.cpp, result, call), result
    return [kept, *before_result, operation.result.put(reply, value, "the result"), *outs]


def _passed(argument):
    return argument.name + ".slot()" if argument.is_out and argument.type.is_text else argument.name


def _put_argument(argument, reply):
    value = argument.name + ".get()" if argument.type.is_text else argument.name
    return argument.type.put(reply, value, argument.what)


def _plain_members(interface):
    return """\
{skeleton}::~{skeleton}() = default;

void {skeleton}::_register_service_info() {{}}

const rmi::InterfaceInfo& {skeleton}::_interface_info() const
{{
    return {info}();
}}
""".format(skeleton=interface.skeleton, info=interface.info)


def _dispatch(interface):
    head = "void %s::_dispatch" % interface.skeleton
    names = [interface.local(wanted) for wanted in ("operation", "request", "reply", "runners")]
    operation, request, reply, runners = names
    parameters = ["std::size_t " + operation, "rmi::Decoder& " + request, "rmi::Encoder& " + reply]
    statements = ["static void (*const %s[])(%s&, rmi::Decoder&, rmi::Encoder&) = {" % (runners, interface.skeleton)]
    statements += ["    %s," % one.runner for one in interface.operations]
    statements += [
        "};",
        "if ({0} >= sizeof {1} / sizeof {1}[0])".format(operation, runners),
        '    throw rmi::BAD_PARAM("%s has no such operation");' % interface.scoped_name,
        "%s[%s](*this, %s, %s);" % (runners, operation, request, reply),
    ]
    return cpp_layout.function(cpp_layout.signature(head, parameters), statements)
