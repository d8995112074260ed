# SPDX-License-Identifier: Apache-2.0
"""Refuses what the generator does not support. Each refusal reads "file:line: reason"."""

from math import isfinite

from omniidl import idlast

from ddsrmi_be import clashes, model, reserved_names, type_refusals

_KINDS = {
    idlast.Const: "constant",
    idlast.StructForward: "struct",
    idlast.UnionForward: "union",
    idlast.Value: "valuetype",
    idlast.ValueAbs: "valuetype",
    idlast.ValueBox: "valuetype",
    idlast.ValueForward: "valuetype",
}


def refusals(tree):
    """All refusals of a file, in the order of its lines."""
    found = [refusal for declaration in model.declarations(tree) for refusal in _declaration(declaration)]
    interfaces = model.interface_declarations(tree)
    if not found:
        found = list(clashes.refusals(interfaces, model.type_declarations(tree)))
    if not interfaces and not found:
        found = [(1, "the file declares no interface")]
    return ["%s:%d: %s" % (tree.file(), line, reason) for line, reason in sorted(found, key=lambda entry: entry[0])]


def _declaration(declaration):
    advice = type_refusals.advice(declaration)
    if advice is not None:
        yield declaration.line(), "%s is not supported; %s" % (_named(declaration), advice)
    elif isinstance(declaration, idlast.Module):
        yield from _name(declaration, "module")
    elif isinstance(declaration, idlast.Interface):
        yield from _interface(declaration)
    elif isinstance(declaration, idlast.Typedef):
        yield from _typedef(declaration, must_be_in_module=True)
    elif not isinstance(declaration, idlast.Forward):
        yield from _type(declaration)


def _kind(declaration):
    return _KINDS.get(type(declaration), type(declaration).__name__.lower())


def _named(declaration):
    return "%s '%s'" % (_kind(declaration), declaration.identifier())


def _name(declaration, what):
    objection = reserved_names.objection(declaration.identifier())
    if objection is not None:
        yield declaration.line(), "the name of %s '%s' %s; choose another" % (what, declaration.identifier(), objection)


# Types and constants.


def _type(declaration):
    yield from _name(declaration, _kind(declaration))
    yield from _in_module(declaration, _named(declaration))
    if isinstance(declaration, idlast.Enum):
        for enumerator in declaration.enumerators():
            yield from _name(enumerator, "enumerator")
    elif isinstance(declaration, idlast.Const):
        yield from _constant(declaration)
    else:
        yield from _members(declaration)


def _in_module(declaration, what):
    if len(declaration.scopedName()) < 2:
        yield declaration.line(), what + " is not in a module; declare it in one"


def _constant(declaration):
    what = _named(declaration)
    yield from _use(declaration.line(), what, type_refusals.objection(declaration.constType()))
    if isinstance(declaration.value(), float) and not isfinite(declaration.value()):
        yield declaration.line(), what + " is beyond what its type can hold"


def _members(declaration):
    owner = _named(declaration)
    for member in declaration.members():
        yield from _constructed(member)
        for declarator in member.declarators():
            what = "member '%s' of %s" % (declarator.identifier(), owner)
            yield from _name(declarator, "member")
            if isinstance(declaration, idlast.Exception) and reserved_names.is_exception_member(declarator.identifier()):
                yield declarator.line(), what + " has the name of a member of every exception; choose another"
            objection = type_refusals.of_array(declarator.sizes())
            objection = objection or type_refusals.objection(member.memberType(), declaration)
            yield from _use(declarator.line(), what, objection)


def _constructed(declaration):
    """Refuses a type that is declared where it is used."""
    if declaration.constrType():
        used = declaration.aliasType() if isinstance(declaration, idlast.Typedef) else declaration.memberType()
        yield declaration.line(), "%s is declared inside another declaration; declare it before" % _named(used.decl())


def _typedef(declaration, must_be_in_module):
    yield from _constructed(declaration)
    for declarator in declaration.declarators():
        what = "typedef '%s'" % declarator.identifier()
        yield from _name(declarator, "typedef")
        if must_be_in_module:
            yield from _in_module(declarator, what)
        objection = type_refusals.of_array(declarator.sizes()) or type_refusals.objection(declaration.aliasType())
        yield from _use(declarator.line(), what, objection)


def _use(line, what, objection):
    if objection is not None:
        yield line, "%s is %s" % (what, objection)


# Interfaces.


def _interface(declaration):
    yield from _name(declaration, "interface")
    for reason in _interface_reasons(declaration):
        yield declaration.line(), "interface '%s' %s" % (declaration.identifier(), reason)
    for member in declaration.contents():
        yield from _member(member)


def _interface_reasons(declaration):
    if len(declaration.scopedName()) < 2:
        yield "is not in a module; declare it in one"
    if not declaration.local():
        yield "is not local; write 'local interface'"
    bases = ["::" + "::".join(base.scopedName()) for base in declaration.inherits()]
    if "::DDS_RMI::Services" not in bases:
        yield "does not extend ::DDS_RMI::Services; write 'local interface %s : ::DDS_RMI::Services'" % (
            declaration.identifier())
    for base in bases:
        if base != "::DDS_RMI::Services":
            yield "extends %s; repeat its operations, and extend only ::DDS_RMI::Services" % base
    if not model.operation_declarations(declaration):
        yield "has no operation; declare one"


def _member(member):
    if isinstance(member, idlast.Operation):
        yield from _operation(member)
    elif isinstance(member, idlast.Attribute):
        names = ", ".join(member.identifiers())
        yield member.line(), "attribute '%s' is not supported; declare operations that get and set it" % names
    elif isinstance(member, idlast.Typedef):
        yield from _typedef(member, must_be_in_module=False)
    else:
        yield member.line(), "%s is declared in an interface; declare it in the module" % _named(member)


def _operation(operation):
    yield from _name(operation, "operation")
    what = "operation '%s'" % operation.identifier()
    if operation.contexts():
        yield operation.line(), what + " has a context; write an in-argument"
    if reserved_names.is_member(operation.identifier()):
        yield operation.line(), what + " has the name of a member of the proxy's base; choose another"
    yield from _use(operation.line(), "the result of " + what, type_refusals.objection(operation.returnType()))
    for parameter in operation.parameters():
        yield from _name(parameter, "argument")
        what_argument = "argument '%s' of %s" % (parameter.identifier(), what)
        yield from _use(parameter.line(), what_argument, type_refusals.objection(parameter.paramType()))
    for exception in operation.raises():
        if not exception.mainFile():
            reason = "%s raises '%s', which is declared in another file; declare it in this one"
            yield operation.line(), reason % (what, exception.identifier())
