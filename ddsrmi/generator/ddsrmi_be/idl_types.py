# SPDX-License-Identifier: Apache-2.0
"""The types that arguments, results and members can have, and what they are in C++. To be asked about types that
type_refusals has nothing against."""

import re
from dataclasses import dataclass
from hashlib import sha256

from omniidl import idltype

_CODEC = "rmi::codec::"


@dataclass(frozen=True)
class Type:
    idl: str  # in an operation's signature
    cpp: str  # as an argument or a result
    member: str  # as a member or an element
    codec: str  # how it travels as a member or an element
    is_plain: bool = False  # encoders and decoders take it as it is
    is_text: bool = False
    is_composed: bool = False

    @property
    def is_void(self):
        return self.idl == "void"

    @property
    def parameter(self):
        """What a function takes that only reads it."""
        return "const %s&" % self.cpp if self.is_composed else self.cpp

    def put(self, encoder, value, what):
        """The statement that encodes `value`; `what` names it in messages."""
        if self.idl == "boolean":
            return "%s.put(%s != 0);" % (encoder, value)
        if self.is_plain:
            return "%s.put(%s);" % (encoder, value)
        return '%s::put(%s, %s, "%s");' % (self.codec, encoder, value, what)

    def get(self, decoder, variable):
        """The statement that decodes into `variable`."""
        if self.is_plain:
            return "%s.get(%s);" % (decoder, variable)
        return "%s::get(%s, %s);" % (self.codec, decoder, variable)


def _basic(idl, cpp):
    return Type(idl, cpp, cpp, "%sNumber<%s>" % (_CODEC, cpp), is_plain=True)


_BASIC = {
    idltype.tk_void: Type("void", "void", "void", ""),
    idltype.tk_boolean: Type("boolean", "DDS::Boolean", "DDS::Boolean", _CODEC + "Truth", is_plain=True),
    idltype.tk_char: _basic("char", "DDS::Char"),
    idltype.tk_octet: _basic("octet", "DDS::Octet"),
    idltype.tk_short: _basic("short", "DDS::Short"),
    idltype.tk_ushort: _basic("unsigned short", "DDS::UShort"),
    idltype.tk_long: _basic("long", "DDS::Long"),
    idltype.tk_ulong: _basic("unsigned long", "DDS::ULong"),
    idltype.tk_longlong: _basic("long long", "DDS::LongLong"),
    idltype.tk_ulonglong: _basic("unsigned long long", "DDS::ULongLong"),
    idltype.tk_float: _basic("float", "DDS::Float"),
    idltype.tk_double: _basic("double", "DDS::Double"),
}


def of(idl_type):
    kind = idl_type.kind()
    if kind == idltype.tk_alias:
        return declared(idl_type.decl())
    if kind == idltype.tk_string:
        return _text(idl_type.bound())
    if kind == idltype.tk_sequence:
        return _sequence(of(idl_type.seqType()), idl_type.bound())
    if kind == idltype.tk_enum:
        return _enum(idl_type.decl())
    if kind == idltype.tk_struct:
        return composed(idl_type.decl(), "struct")
    return _BASIC[kind]


def _text(bound):
    idl = "string<%d>" % bound if bound else "string"
    codec = "%sText<%d>" % (_CODEC, bound)
    return Type(idl, "DDS::String", "std::string", codec, is_plain=not bound, is_text=True)


def _sequence(element, bound):
    idl = "sequence<%s, %d>" % (element.idl, bound) if bound else "sequence<%s>" % element.idl
    cpp = "std::vector<%s>" % element.member
    return Type(idl, cpp, cpp, "%sSequence<%s, %d>" % (_CODEC, element.codec, bound), is_composed=True)


def _array(element, sizes):
    for size in reversed(sizes):
        cpp = "std::array<%s, %d>" % (element.member, size)
        codec = "%sArray<%s, %d>" % (_CODEC, element.codec, size)
        element = Type(_in_brackets(element.idl, size), cpp, cpp, codec, is_composed=True)
    return element


def _in_brackets(element, size):
    """IDL has the outer size of an array of arrays in front."""
    base, inner = re.fullmatch(r"(.*?)((?:\[\d+\])*)", element).groups()
    return "%s[%d]%s" % (base, size, inner)


def _enum(declaration):
    names = [enumerator.identifier() for enumerator in declaration.enumerators()]
    cpp = cpp_name(declaration)
    codec = "%sEnumeration<%s, %d>" % (_CODEC, cpp, len(names))
    return Type(_fingerprinted(declaration, "enum {%s}" % ", ".join(names)), cpp, cpp, codec)


def composed(declaration, kind):
    """A struct or an exception."""
    listed = "; ".join("%s %s" % (type.idl, name) for name, type in members(declaration))
    cpp = cpp_name(declaration)
    return Type(_fingerprinted(declaration, "%s {%s}" % (kind, listed)), cpp, cpp, cpp + "_Codec", is_composed=True)


def members(declaration):
    """The names and types of the members of a struct or an exception."""
    return [
        (declarator.identifier(), _array(of(member.memberType()), declarator.sizes()))
        for member in declaration.members()
        for declarator in member.declarators()
    ]


def declared(declarator):
    """The type that a typedef gives a name to."""
    return _array(of(declarator.alias().aliasType()), declarator.sizes())


def cpp_name(declaration):
    return "::".join(["DDS_RMI"] + declaration.scopedName())


def scoped_name(declaration):
    return "::".join(declaration.scopedName())


def _fingerprinted(declaration, meaning):
    """A name that another one of the same name but another meaning does not have: so is each operation that uses it
    told from one that uses the other. Signatures travel, so they name types rather than spell them out."""
    return "%s#%s" % (scoped_name(declaration), sha256(meaning.encode()).hexdigest()[:16])
