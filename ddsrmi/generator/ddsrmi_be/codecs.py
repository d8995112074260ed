# SPDX-License-Identifier: Apache-2.0
"""How the structs and exceptions of an interface file travel."""

from omniidl import idlast

from ddsrmi_be import cpp_layout, idl_types, types_header
from ddsrmi_be.reserved_names import free_name

_RMI = "org::opensplice::DDS_RMI::"


def having_codecs(declarations):
    """The declarations that have codecs."""
    return [d for d in declarations if isinstance(d, (idlast.Struct, idlast.Exception))]


def declaration(declared):
    return """\
struct {name}_Codec {{
    typedef {name} Value;
    static std::size_t least_size();
    static void put({rmi}Encoder& encoder, const {name}& value, const char* what);
    static void get({rmi}Decoder& decoder, {name}& value);
}};
""".format(name=declared.identifier(), rmi=_RMI)


def definitions(declared, constants):
    """The members of the codec, and those of an exception."""
    if isinstance(declared, idlast.Exception):
        yield from _exception_members(declared, constants)
    yield _least_size(declared)
    yield _put(declared, constants)
    yield _get(declared, constants)


def _exception_members(declared, constants):
    name = declared.identifier()
    base = 'rmi::UserException("%s")' % idl_types.scoped_name(declared)
    yield "%s::%s() : %s {}\n" % (name, name, base)
    parameters = types_header.constructor_parameters(declared, constants)
    if parameters:
        signature = cpp_layout.signature("%s::%s" % (name, name), [text for text, _, _ in parameters])
        values = [base] + ["%s(%s)" % (member, parameter) for _, parameter, member in parameters]
        yield "%s\n    : %s\n{\n}\n" % (signature, ",\n      ".join(values))
    yield "%s::~%s() noexcept = default;\n" % (name, name)


def _least_size(declared):
    sizes = ["%s::least_size()" % type.codec for _, type in idl_types.members(declared)]
    return "std::size_t %s_Codec::least_size()\n{\n    return %s;\n}\n" % (
        declared.identifier(), " +\n           ".join(sizes) or "0")


def _put(declared, constants):
    members = idl_types.members(declared)
    encoder, value = _parameter("encoder", members, constants), _parameter("value", members, constants)
    owner = idl_types.scoped_name(declared)
    statements = [
        '%s::put(%s, %s.%s, "member \'%s\' of %s");' % (type.codec, encoder, value, name, name, owner)
        for name, type in members
    ]
    parameters = ["rmi::Encoder& " + encoder, "const %s& %s" % (declared.identifier(), value), "const char* /*what*/"]
    return _function(declared, "put", parameters, statements)


def _get(declared, constants):
    members = idl_types.members(declared)
    decoder, value = _parameter("decoder", members, constants), _parameter("value", members, constants)
    statements = ["%s::get(%s, %s.%s);" % (type.codec, decoder, value, name) for name, type in members]
    parameters = ["rmi::Decoder& " + decoder, "%s& %s" % (declared.identifier(), value)]
    return _function(declared, "get", parameters, statements)


def _parameter(wanted, members, constants):
    """What nothing is done with has no name."""
    return free_name(wanted, constants) if members else "/*%s*/" % wanted


def _function(declared, name, parameters, statements):
    head = "void %s_Codec::%s" % (declared.identifier(), name)
    return cpp_layout.function(cpp_layout.signature(head, parameters), statements)
