# SPDX-License-Identifier: Apache-2.0
"""The server side: the skeletons, from which implementations derive."""

from ddsrmi_be import cpp_layout

_RMI = "org::opensplice::DDS_RMI::"


def files(source, stem, interfaces):
    header = stem + "_Interface.h"
    declarations = [cpp_layout.in_namespace(interface, [_skeleton_class(interface)]) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface, _definitions(interface)) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ["<cstddef>", "<memory>", "", '"ddsrmi.h"'], declarations)
    includes = ['"%s"' % header, "", "<utility>", "", '"%s_InterfaceInfo.h"' % stem, '"%s_topics.h"' % stem]
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
    std::unique_ptr<{rmi}ReplySample> _dispatch(std::size_t operation, const void* request) override;
}};
""".format(scoped_name=interface.scoped_name, skeleton=interface.skeleton, rmi=_RMI, operations=operations)


def _declaration(operation):
    return cpp_layout.signature("virtual %s %s" % (operation.result.cpp, operation.name), operation.parameters, "    ")


def _definitions(interface):
    yield cpp_layout.unnamed_namespace(_runners(interface))
    yield _plain_members(interface)
    yield _dispatch(interface)


def _runners(interface):
    yield "typedef std::unique_ptr<rmi::ReplySample> Reply;\n"
    for operation in interface.operations:
        yield _runner(operation)


def _runner_name(operation):
    return "run_%s_%s" % (operation.interface.name, operation.name)


def _runner(operation):
    reply = "TextReply" if operation.result.is_text else "PlainReply"
    statements = [
        "typedef rmi::%s<%s> OwnReply;" % (reply, operation.sample("reply")),
        "std::unique_ptr<OwnReply> reply(new OwnReply);",
        _call(operation),
        "return Reply(std::move(reply));",
    ]
    if operation.arguments:
        cast = "const auto* const request = static_cast<const %s*>(sample);"
        statements.insert(2, cast % operation.sample("request"))
    sample = "const void* sample" if operation.arguments else "const void* /*sample*/"
    parameters = ["%s& implementation" % operation.interface.skeleton, sample]
    return cpp_layout.function(cpp_layout.signature("Reply " + _runner_name(operation), parameters), statements)


def _call(operation):
    arguments = ", ".join("request->%s" % argument.name for argument in operation.arguments)
    call = "implementation.%s(%s)" % (operation.name, arguments)
    if operation.result.is_void:
        return call + ";"
    return "reply->value.result = %s;" % operation.result.to_sample(call)


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
    signature = "std::unique_ptr<rmi::ReplySample> %s::_dispatch(std::size_t operation, const void* request)"
    statements = ["static Reply (*const runners[])(%s&, const void*) = {" % interface.skeleton]
    statements += ["    %s," % _runner_name(operation) for operation in interface.operations]
    statements += [
        "};",
        "if (operation >= sizeof runners / sizeof runners[0])",
        '    throw rmi::BAD_PARAM("%s has no such operation");' % interface.scoped_name,
        "return runners[operation](*this, request);",
    ]
    return cpp_layout.function(signature % interface.skeleton, statements)
