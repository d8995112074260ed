# SPDX-License-Identifier: Apache-2.0
"""What the generator has against a type, and what to write in its place."""

from omniidl import idlast, idltype

_UNION = "a union; write a struct with an enum that says which member counts"
_ANY = "an any; write the type that is meant, or a string that holds JSON"
_REFERENCE = "an interface; write a string with the name of the service"
_WIDE = "; write string, which takes UTF-8"
_VALUE = "a valuetype; write a struct"

_REFUSED = {
    idltype.tk_any: _ANY,
    idltype.tk_fixed: "a fixed-point number; write a double, or a long long that counts the smallest unit",
    idltype.tk_abstract_interface: _REFERENCE,
    idltype.tk_local_interface: _REFERENCE,
    idltype.tk_longdouble: "a long double; write double",
    idltype.tk_native: "a native; write a type that both sides know",
    idltype.tk_objref: _REFERENCE,
    idltype.tk_Principal: "a Principal; write a string",
    idltype.tk_TypeCode: "a TypeCode; write an enum",
    idltype.tk_union: _UNION,
    idltype.tk_value: _VALUE,
    idltype.tk_value_box: _VALUE,
    idltype.tk_wchar: "a wide character" + _WIDE,
    idltype.tk_wstring: "a wide string" + _WIDE,
    idltype.ot_structforward: "a struct that is not declared yet; declare it first. (No type can contain itself: write "
    "a sequence of all, and in each the index of the one that it belongs to)",
}

_DECLARATIONS = {
    idlast.StructForward: "declare the struct itself before it is used",
    idlast.Union: "write a struct with an enum that says which member counts",
    idlast.UnionForward: "write a struct with an enum that says which member counts",
    idlast.Value: "write a struct",
    idlast.ValueAbs: "write a struct",
    idlast.ValueBox: "write a struct",
    idlast.ValueForward: "write a struct",
    idlast.Native: "write a type that both sides know",
}

# An array lies on the stack of the thread that runs an operation.
_MOST_ELEMENTS = 4096


def advice(declaration):
    """What to write instead of a declaration that is refused whatever is in it; None for others."""
    return _DECLARATIONS.get(type(declaration))


def objection(idl_type, owner=None):
    """What is wrong with a type, as "a ...; write ..."; None when nothing is. The struct `owner` is being declared."""
    kind = idl_type.kind()
    if kind in _REFUSED:
        return _REFUSED[kind]
    if kind == idltype.tk_alias:
        declarator = idl_type.decl()
        return of_array(declarator.sizes()) or objection(declarator.alias().aliasType(), owner)
    if kind == idltype.tk_sequence:
        return objection(idl_type.seqType(), owner)
    if kind in (idltype.tk_struct, idltype.tk_enum):
        return _of_declared(idl_type.decl(), owner)
    return None


def of_array(sizes):
    elements = 1
    for size in sizes:
        elements *= size
    if elements > _MOST_ELEMENTS:
        return "an array of %d elements; write a sequence for more than %d" % (elements, _MOST_ELEMENTS)
    return None


def _of_declared(declaration, owner):
    if declaration is owner:
        return ("the struct that it is in; write a sequence of all '%s', and in each the index of the one that it "
                "belongs to" % declaration.identifier())
    if not declaration.mainFile():
        return "declared in another file; declare '%s' in this one" % declaration.identifier()
    return None
