# SPDX-License-Identifier: Apache-2.0
"""The types that arguments and results can have."""

from dataclasses import dataclass

from omniidl import idltype


@dataclass(frozen=True)
class BasicType:
    idl: str  # in an operation's signature
    cpp: str  # in proxies and skeletons

    @property
    def is_void(self):
        return self.idl == "void"

    @property
    def is_text(self):
        return self.idl == "string"

    def to_encode(self, value):
        """The C++ expression of what is encoded of `value`."""
        return value + " != 0" if self.idl == "boolean" else value

_BY_KIND = {
    idltype.tk_void: BasicType("void", "void"),
    idltype.tk_boolean: BasicType("boolean", "DDS::Boolean"),
    idltype.tk_char: BasicType("char", "DDS::Char"),
    idltype.tk_octet: BasicType("octet", "DDS::Octet"),
    idltype.tk_short: BasicType("short", "DDS::Short"),
    idltype.tk_ushort: BasicType("unsigned short", "DDS::UShort"),
    idltype.tk_long: BasicType("long", "DDS::Long"),
    idltype.tk_ulong: BasicType("unsigned long", "DDS::ULong"),
    idltype.tk_longlong: BasicType("long long", "DDS::LongLong"),
    idltype.tk_ulonglong: BasicType("unsigned long long", "DDS::ULongLong"),
    idltype.tk_float: BasicType("float", "DDS::Float"),
    idltype.tk_double: BasicType("double", "DDS::Double"),
    idltype.tk_string: BasicType("string", "DDS::String"),
}

_UNSUPPORTED = {
    idltype.tk_any: "an any",
    idltype.tk_array: "an array",
    idltype.tk_alias: "an array",  # the one alias that unalias() leaves
    idltype.tk_enum: "an enum",
    idltype.tk_fixed: "a fixed-point number",
    idltype.tk_local_interface: "an interface",
    idltype.tk_longdouble: "a long double",
    idltype.tk_objref: "an interface",
    idltype.tk_sequence: "a sequence",
    idltype.tk_struct: "a struct",
    idltype.tk_union: "a union",
    idltype.tk_wchar: "a wide character",
    idltype.tk_wstring: "a wide string",
}


def of(idl_type):
    """The type, with typedefs resolved; None for one that is not supported."""
    plain = idl_type.unalias()
    if plain.kind() == idltype.tk_string and plain.bound() != 0:
        return None
    return _BY_KIND.get(plain.kind())


def description(idl_type):
    """What an unsupported type is, for people."""
    plain = idl_type.unalias()
    if plain.kind() == idltype.tk_string:
        return "a bounded string"
    return _UNSUPPORTED.get(plain.kind(), "of an unknown type")
