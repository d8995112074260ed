# SPDX-License-Identifier: Apache-2.0
"""The header of the types and constants that an interface file declares, for clients and servers."""

from itertools import groupby

from omniidl import idlast, idltype

from ddsrmi_be import cpp_layout, idl_types
from ddsrmi_be.reserved_names import free_name

_INCLUDES = ["<array>", "<string>", "<vector>", "", '"ddsrmi/dds_types.h"', '"ddsrmi/exceptions.h"']


def name(stem):
    return stem + "_Types.h"


def files(source, stem, declarations):
    groups = groupby(declarations, key=modules)
    parts = [cpp_layout.in_namespace(scopes, _texts(group)) for scopes, group in groups]
    yield name(stem), cpp_layout.header(source, name(stem), _INCLUDES, parts)


def modules(declaration):
    named = declaration.declarators()[0] if isinstance(declaration, idlast.Typedef) else declaration
    return tuple(named.scopedName()[:-1])


def _texts(declarations):
    """Constants and typedefs that follow each other stand together."""
    for kind, group in groupby(declarations, key=type):
        texts = [_TEXTS[kind](declaration) for declaration in group]
        yield from ["".join(texts)] if kind in (idlast.Const, idlast.Typedef) else texts


def _enum(declaration):
    names = ", ".join(enumerator.identifier() for enumerator in declaration.enumerators())
    return "enum %s : DDS::ULong { %s };\n" % (declaration.identifier(), names)


def _struct(declaration):
    return "struct %s {\n%s};\n" % (declaration.identifier(), _member_lines(declaration))


def _member_lines(declaration):
    return "".join("    %s %s{};\n" % (type.member, member) for member, type in idl_types.members(declaration))


def _exception(declaration):
    return """\
class {name} : public org::opensplice::DDS_RMI::UserException {{
public:
    {name}();
{constructor}    ~{name}() noexcept override;
{members}}};
""".format(name=declaration.identifier(), constructor=_declared_constructor(declaration),
           members=_spaced(_member_lines(declaration)))


def _spaced(lines):
    return "\n" + lines if lines else ""


def _declared_constructor(declaration):
    parameters = constructor_parameters(declaration)
    if not parameters:
        return ""
    head = ("explicit " if len(parameters) == 1 else "") + declaration.identifier()
    return "    %s;\n" % cpp_layout.signature(head, [text for text, _, _ in parameters], "    ")


def constructor_parameters(declaration, constants=frozenset()):
    """Of an exception: for each member the parameter, its name, which hides no constant, and the member's."""
    members = idl_types.members(declaration)
    taken = {member for member, _ in members} | constants
    result = []
    for member, type in members:
        parameter = free_name(member + "_value", taken)
        taken.add(parameter)
        by_reference = type.is_composed or type.is_text
        pattern = "const %s& %s" if by_reference else "%s %s"
        result.append((pattern % (type.member, parameter), parameter, member))
    return result


def _typedef(declaration):
    return "".join(_alias(declarator) for declarator in declaration.declarators())


def _alias(declarator):
    """A name for a text would be one for two types, as an argument and as a member."""
    type = idl_types.declared(declarator)
    return "" if type.is_text else "typedef %s %s;\n" % (type.cpp, declarator.identifier())


def _constant(declaration):
    value = declaration.value()
    kind = declaration.constKind()
    if kind == idltype.tk_string:
        return 'constexpr char %s[] = "%s";\n' % (declaration.identifier(), "".join(map(_escaped, value)))
    cpp = idl_types.of(declaration.constType()).cpp
    return "constexpr %s %s = %s;\n" % (cpp, declaration.identifier(), _literal(kind, value))


def _literal(kind, value):
    if kind == idltype.tk_enum:
        return idl_types.cpp_name(value)
    if kind == idltype.tk_char:
        return "'%s'" % _escaped(value)
    if kind in _LOWEST and value == _LOWEST[kind]:
        return "%d%s - 1" % (value + 1, _SUFFIXES.get(kind, ""))
    return repr(value) + _SUFFIXES.get(kind, "")


def _escaped(character):
    if character.isascii() and (character.isalnum() or character in " !#$%&()*+,-./:;<=>@[]^_`{|}~"):
        return character
    return "\\%03o" % ord(character)


_LOWEST = {idltype.tk_long: -(2**31), idltype.tk_longlong: -(2**63)}

_SUFFIXES = {
    idltype.tk_ulong: "U",
    idltype.tk_longlong: "LL",
    idltype.tk_ulonglong: "ULL",
    idltype.tk_float: "F",
}

_TEXTS = {
    idlast.Const: _constant,
    idlast.Enum: _enum,
    idlast.Exception: _exception,
    idlast.Struct: _struct,
    idlast.Typedef: _typedef,
}
