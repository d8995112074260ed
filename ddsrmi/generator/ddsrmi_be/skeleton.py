# SPDX-License-Identifier: Apache-2.0
"""The server side: the skeletons, from which implementations derive."""

from ddsrmi_be import cpp_layout
from ddsrmi_be.reserved_names import free_name

_RMI = "org::opensplice::DDS_RMI::"


def files(source, stem, interfaces):
    header = stem + "_Interface.h"
    declarations = [cpp_layout.in_namespace(interface, [_skeleton_class(interface)]) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface, _definitions(interface)) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ["<cstddef>", "", '"ddsrmi.h"'], declarations)
    includes = ['"%s"' % header, "", '"ddsrmi/encoding.h"', '"%s_InterfaceInfo.h"' % stem]
    yield stem + "_Interface.cpp", cpp_layout.implementation(source, includes, definitions)


def _skeleton_class(interface):
    operations = "".join("    %s = 0;\n" % _declaration(operation) for operation in interface.operations)
    return """\
/// Server side of the interface {scoped_name}; derive the implementation from it.
/// Text arguments stay the RMI layer's and are valid until the operation returns; a text result, which is made
/// with DDS::string_dup, becomes the RMI layer's.
class {skeleton} : public {rmi}CInterfaceSkeleton {{
public:
    ~{skeleton}() override;

{operations}
    static void _register_service_info();
    const {rmi}InterfaceInfo& _interface_info() const override;
    void _dispatch(std::size_t operation, {rmi}Decoder& request, {rmi}Encoder& reply) override;
}};
""".format(scoped_name=interface.scoped_name, skeleton=interface.skeleton, rmi=_RMI, operations=operations)


def _declaration(operation):
    return cpp_layout.signature("virtual %s %s" % (operation.result.cpp, operation.name), operation.parameters, "    ")


def _definitions(interface):
    yield cpp_layout.unnamed_namespace(_runners(interface))
    yield _plain_members(interface)
    yield _dispatch(interface)


def _runners(interface):
    for operation in interface.operations:
        yield _runner(operation)


def _runner_name(operation):
    return "run_%s_%s" % (operation.interface.name, operation.name)


def _runner(operation):
    names = {wanted: _local(wanted, operation) for wanted in ("implementation", "request", "reply", "result")}
    statements = []
    for argument in operation.arguments:
        statements += ["%s %s;" % (argument.type.cpp, argument.name), "%s.get(%s);" % (names["request"], argument.name)]
    statements.append("%s.finish();" % names["request"])
    statements += _call(operation, names)
    reply = "rmi::Encoder& " + ("/*reply*/" if operation.result.is_void else names["reply"])
    parameters = [
        "%s& %s" % (operation.interface.skeleton, names["implementation"]),
        "rmi::Decoder& " + names["request"],
        reply,
    ]
    return cpp_layout.function(cpp_layout.signature("void " + _runner_name(operation), parameters), statements)


def _local(wanted, operation):
    """A name for something inside a runner, other than the arguments' names."""
    return free_name(wanted, {argument.name for argument in operation.arguments})


def _call(operation, names):
    arguments = ", ".join(argument.name for argument in operation.arguments)
    call = "%s.%s(%s)" % (names["implementation"], operation.name, arguments)
    if operation.result.is_void:
        return [call + ";"]
    if operation.result.is_text:
        owned = "const rmi::OwnedString %s(%s);" % (names["result"], call)
        return [owned, "%s.put(%s.get());" % (names["reply"], names["result"])]
    return ["%s.put(%s);" % (names["reply"], operation.result.to_encode(call))]


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
    parameters = ["std::size_t operation", "rmi::Decoder& request", "rmi::Encoder& reply"]
    statements = ["static void (*const runners[])(%s&, rmi::Decoder&, rmi::Encoder&) = {" % interface.skeleton]
    statements += ["    %s," % _runner_name(operation) for operation in interface.operations]
    statements += [
        "};",
        "if (operation >= sizeof runners / sizeof runners[0])",
        '    throw rmi::BAD_PARAM("%s has no such operation");' % interface.scoped_name,
        "runners[operation](*this, request, reply);",
    ]
    return cpp_layout.function(cpp_layout.signature(head, parameters), statements)
