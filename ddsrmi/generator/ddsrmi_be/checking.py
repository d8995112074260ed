# SPDX-License-Identifier: Apache-2.0
"""Refuses what the generator does not support. Each refusal reads "file:line: reason"."""

from omniidl import idlast

from ddsrmi_be import basic_types, clashes, model, reserved_names

_KINDS = {
    idlast.Const: "constant",
    idlast.Exception: "exception",
    idlast.StructForward: "struct",
    idlast.UnionForward: "union",
    idlast.Value: "valuetype",
    idlast.ValueAbs: "valuetype",
    idlast.ValueBox: "valuetype",
    idlast.ValueForward: "valuetype",
}

# What carries no code of its own. The types behind typedefs are looked at where they are used.
_ACCEPTED = (idlast.Module, idlast.Interface, idlast.Forward, idlast.Typedef)


def refusals(tree):
    """All refusals of a file, in the order of its lines."""
    found = [refusal for declaration in model.declarations(tree) for refusal in _declaration(declaration)]
    interfaces = model.interface_declarations(tree)
    if not found:
        found = list(clashes.refusals(interfaces))
    if not interfaces and not found:
        found = [(1, "the file declares no interface")]
    return ["%s:%d: %s" % (tree.file(), line, reason) for line, reason in sorted(found, key=lambda entry: entry[0])]


def _declaration(declaration):
    if not isinstance(declaration, _ACCEPTED):
        yield declaration.line(), "%s is not supported; only interfaces can be declared" % _named(declaration)
    if isinstance(declaration, idlast.Module):
        yield from _name(declaration, "module")
    if isinstance(declaration, idlast.Interface):
        yield from _interface(declaration)


def _named(declaration):
    kind = _KINDS.get(type(declaration), type(declaration).__name__.lower())
    return "%s '%s'" % (kind, declaration.identifier())


def _name(declaration, what):
    objection = reserved_names.objection(declaration.identifier())
    if objection is not None:
        yield declaration.line(), "the name of %s '%s' %s; choose another" % (what, declaration.identifier(), objection)


def _interface(declaration):
    yield from _name(declaration, "interface")
    for reason in _interface_reasons(declaration):
        yield declaration.line(), "interface '%s' %s" % (declaration.identifier(), reason)
    for member in declaration.contents():
        yield from _member(member)


def _interface_reasons(declaration):
    if len(declaration.scopedName()) < 2:
        yield "is not in a module"
    if not declaration.local():
        yield "is not local; write 'local interface'"
    bases = ["::" + "::".join(base.scopedName()) for base in declaration.inherits()]
    if "::DDS_RMI::Services" not in bases:
        yield "does not extend ::DDS_RMI::Services"
    for base in bases:
        if base != "::DDS_RMI::Services":
            yield "extends %s; only ::DDS_RMI::Services can be extended" % base
    if not model.operation_declarations(declaration):
        yield "has no operation"


def _member(member):
    if isinstance(member, idlast.Operation):
        yield from _operation(member)
    elif isinstance(member, idlast.Attribute):
        yield member.line(), "attribute '%s' is not supported; declare operations" % ", ".join(member.identifiers())
    elif not isinstance(member, idlast.Typedef):
        yield member.line(), "%s is not supported; an interface has operations only" % _named(member)


def _operation(operation):
    yield from _name(operation, "operation")
    what = "operation '%s'" % operation.identifier()
    if operation.oneway():
        yield operation.line(), what + " is oneway; every operation has a reply"
    if operation.raises():
        yield operation.line(), what + " raises exceptions; tell a failure by the result"
    if operation.contexts():
        yield operation.line(), what + " has a context, which is not supported"
    if reserved_names.is_member(operation.identifier()):
        yield operation.line(), what + " has the name of a member of the proxy's base; choose another"
    yield from _type(operation.line(), "the result of " + what, operation.returnType())
    for parameter in operation.parameters():
        yield from _argument(parameter, what)


def _argument(parameter, operation):
    what = "argument '%s' of %s" % (parameter.identifier(), operation)
    yield from _name(parameter, "argument")
    if parameter.is_out():
        yield parameter.line(), "%s is %s; only in-arguments are supported" % (what, parameter.dirtext())
    yield from _type(parameter.line(), what, parameter.paramType())


def _type(line, what, idl_type):
    if basic_types.of(idl_type) is None:
        reason = "%s is %s; only basic types and unbounded strings are supported"
        yield line, reason % (what, basic_types.description(idl_type))
