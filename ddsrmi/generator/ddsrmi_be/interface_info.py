# SPDX-License-Identifier: Apache-2.0
"""What the proxies and the skeletons share: what the RMI layer is told of the interfaces, and how types travel."""

from itertools import groupby

from ddsrmi_be import codecs, cpp_layout, types_header

_TYPE = "const org::opensplice::DDS_RMI::InterfaceInfo&"


def files(source, stem, interfaces, types, constants):
    header = stem + "_InterfaceInfo.h"
    declarations = list(_codec_declarations(types))
    definitions = list(_codec_definitions(types, constants))
    for interface in interfaces:
        declarations.append(cpp_layout.in_namespace(interface.modules, [_declaration(interface)]))
        definitions.append(cpp_layout.in_namespace(interface.modules, [_definition(interface)]))
    has_codecs = len(codecs.having_codecs(types)) > 0
    yield header, cpp_layout.header(source, header, _header_includes(stem, has_codecs), declarations)
    includes = ['"%s"' % header] + (["", '"ddsrmi/codecs.h"'] if has_codecs else [])
    yield stem + "_InterfaceInfo.cpp", cpp_layout.implementation(source, includes, definitions)


def _header_includes(stem, has_codecs):
    own = ['"ddsrmi/interface_info.h"']
    if not has_codecs:
        return own
    return ["<cstddef>", "", '"ddsrmi/encoding.h"'] + own + ['"%s"' % types_header.name(stem)]


def _codec_declarations(types):
    for modules, group in groupby(codecs.having_codecs(types), key=types_header.modules):
        yield cpp_layout.in_namespace(modules, map(codecs.declaration, group))


def _codec_definitions(types, constants):
    for modules, group in groupby(codecs.having_codecs(types), key=types_header.modules):
        parts = [part for declared in group for part in codecs.definitions(declared, constants)]
        yield cpp_layout.in_namespace(modules, [cpp_layout.unnamed_namespace([])] + parts)


def _declaration(interface):
    return "/// The operations of %s.\n%s %s();\n" % (interface.scoped_name, _TYPE, interface.info)


def _definition(interface):
    operations, info = interface.local("operations"), interface.local("info")
    statements = ["static const org::opensplice::DDS_RMI::OperationInfo %s[] = {" % operations]
    for operation in interface.operations:
        row = '    {"%s", "%s", 0x%016xULL},'
        statements.append(row % (operation.name, operation.signature, operation.hash))
    statements += [
        "};",
        "static const org::opensplice::DDS_RMI::InterfaceInfo %s = {" % info,
        '    "%s", "%s", "%s",' % (interface.scoped_name, interface.topic("request"), interface.topic("reply")),
        "    {0}, sizeof {0} / sizeof {0}[0]}};".format(operations),
        "return %s;" % info,
    ]
    return cpp_layout.function("%s %s()" % (_TYPE, interface.info), statements)
