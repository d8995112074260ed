# SPDX-License-Identifier: Apache-2.0
"""What the RMI layer is told of the interfaces; the proxies and the skeletons both refer to it."""

from ddsrmi_be import cpp_layout

_TYPE = "const org::opensplice::DDS_RMI::InterfaceInfo&"


def files(source, stem, interfaces):
    header = stem + "_InterfaceInfo.h"
    declarations = [cpp_layout.in_namespace(interface, [_declaration(interface)]) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface, [_definition(interface)]) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ['"ddsrmi/interface_info.h"'], declarations)
    includes = ['"%s"' % header, "", '"%s_topics.h"' % stem]
    yield stem + "_InterfaceInfo.cpp", cpp_layout.implementation(source, includes, definitions)


def _declaration(interface):
    return "/// The operations of %s and their topics.\n%s %s();\n" % (interface.scoped_name, _TYPE, interface.info)


def _definition(interface):
    statements = ["static const org::opensplice::DDS_RMI::OperationInfo operations[] = {"]
    for operation in interface.operations:
        statements += _operation(operation)
    statements += [
        "};",
        "static const org::opensplice::DDS_RMI::InterfaceInfo info = {",
        '    "%s", operations, sizeof operations / sizeof operations[0]};' % interface.scoped_name,
        "return info;",
    ]
    return cpp_layout.function("%s %s()" % (_TYPE, interface.info), statements)


def _operation(operation):
    rows = ['    {"%s",' % operation.name]
    for direction in ("request", "reply"):
        rows += ['     "%s",' % operation.topic(direction), "     &%s_desc," % operation.sample(direction)]
    rows[-1] = rows[-1][:-1] + "},"
    return rows
