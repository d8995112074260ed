# SPDX-License-Identifier: Apache-2.0
"""The topics file: the types of requests and replies, in IDL for idlc."""

from ddsrmi_be import cpp_layout
from ddsrmi_be.reserved_names import in_idl

_KEYS = "req_info.client_id.client_impl req_info.client_id.client_instance"


def files(source, stem, interfaces):
    parts = [cpp_layout.banner(source), '#include "dds_rmi.idl"\n']
    parts += [_module(interface) for interface in interfaces]
    yield stem + "_topics.idl", "\n".join(parts)


def _module(interface):
    scopes = [in_idl(scope) for scope in ("DDS_RMI",) + interface.path]
    opening = "".join("module %s {\n" % scope for scope in scopes)
    structs = "\n".join(_operation(operation) for operation in interface.operations)
    return opening + "\n" + structs + "\n" + "};\n" * len(scopes)


def _operation(operation):
    results = [] if operation.result.is_void else ["%s result" % operation.result.idl]
    arguments = ["%s %s" % (argument.type.idl, in_idl(argument.name)) for argument in operation.arguments]
    return _struct(operation.name + "_request", arguments) + _struct(operation.name + "_reply", results)


def _struct(name, members):
    lines = "".join("    %s;\n" % member for member in ["::DDS_RMI::Request_Header req_info"] + members)
    return "struct %s {\n%s};\n#pragma keylist %s %s\n" % (name, lines, name, _KEYS)
