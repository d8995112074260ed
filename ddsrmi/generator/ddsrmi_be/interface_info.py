# SPDX-License-Identifier: Apache-2.0
"""What the RMI layer is told of the interfaces; the proxies and the skeletons both refer to it."""

from ddsrmi_be import cpp_layout

_TYPE = "const org::opensplice::DDS_RMI::InterfaceInfo&"


def files(source, stem, interfaces):
    header = stem + "_InterfaceInfo.h"
    declarations = [cpp_layout.in_namespace(interface, [_declaration(interface)]) for interface in interfaces]
    definitions = [cpp_layout.in_namespace(interface, [_definition(interface)]) for interface in interfaces]
    yield header, cpp_layout.header(source, header, ['"ddsrmi/interface_info.h"'], declarations)
    includes = ['"%s"' % header]
    yield stem + "_InterfaceInfo.cpp", cpp_layout.implementation(source, includes, definitions)


def _declaration(interface):
    return "/// The operations of %s.\n%s %s();\n" % (interface.scoped_name, _TYPE, interface.info)


def _definition(interface):
    statements = ["static const org::opensplice::DDS_RMI::OperationInfo operations[] = {"]
    for operation in interface.operations:
        row = '    {"%s", "%s", 0x%016xULL},'
        statements.append(row % (operation.name, operation.signature, operation.hash))
    statements += [
        "};",
        "static const org::opensplice::DDS_RMI::InterfaceInfo info = {",
        '    "%s", "%s", "%s",' % (interface.scoped_name, interface.topic("request"), interface.topic("reply")),
        "    operations, sizeof operations / sizeof operations[0]};",
        "return info;",
    ]
    return cpp_layout.function("%s %s()" % (_TYPE, interface.info), statements)
