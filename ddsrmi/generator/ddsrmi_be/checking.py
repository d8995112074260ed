# SPDX-License-Identifier: Apache-2.0
"""Refuses what the generator does not support. Each refusal reads "file:line: reason"."""

from omniidl import idlast

from ddsrmi_be import basic_types, model, reserved_names

# DDS carries the name of a topic in a field of 256 bytes, its end included.
_LONGEST_TOPIC = 255

_KINDS = {
    idlast.Const: "constant",
    idlast.Exception: "exception",
    idlast.StructForward: "struct",
    idlast.UnionForward: "union",
}

# What carries no code of its own. The types behind typedefs are looked at where they are used.
_ACCEPTED = (idlast.Module, idlast.Interface, idlast.Forward, idlast.Typedef)


def refusals(tree):
    """All refusals of a file, in the order of its lines."""
    found = [refusal for declaration in model.declarations(tree) for refusal in _declaration(declaration)]
    interfaces = model.interface_declarations(tree)
    if not found:
        found = list(_clashes(interfaces))
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
    if parameter.identifier().lower() == "req_info":
        yield parameter.line(), what + " has the name of the request's header; choose another"
    if parameter.is_out():
        yield parameter.line(), "%s is %s; only in-arguments are supported" % (what, parameter.dirtext())
    yield from _type(parameter.line(), what, parameter.paramType())


def _type(line, what, idl_type):
    if basic_types.of(idl_type) is None:
        reason = "%s is %s; only basic types and unbounded strings are supported"
        yield line, reason % (what, basic_types.description(idl_type))


def _clashes(declarations):
    """Two things that would get the same name, and names that would be too long."""
    owners = {}
    for declaration in declarations:
        interface = model.interface(declaration)
        for line, name, owner in _generated_names(declaration, interface):
            if owners.setdefault(name, owner) != owner:
                yield line, "%s would both be given the name '%s'" % (_both(owners[name], owner), name)
        yield from _long_topics(declaration, interface)
    for declaration in declarations:
        yield from _hidden_names(declaration, {name.split("::")[-1] for name in owners})


def _both(first, second):
    return "%s and %s" % (first, second)


def _generated_names(declaration, interface):
    """The names that an interface brings into the generated code, each with its line and what it is for."""
    namespace = "::".join(interface.modules) + "::"
    owner = "interface '%s'" % interface.scoped_name
    for name in (interface.proxy, interface.skeleton, interface.info):
        yield declaration.line(), namespace + name, owner
    for line, operation in _lines(declaration, interface):
        what = "operation '%s::%s'" % (interface.scoped_name, operation.name)
        member = namespace + interface.name + "::"
        scoped = (namespace + operation.handler, member + operation.name, member + operation.async_name)
        for name in scoped + tuple(_global_names(operation)):
            yield line, name, what


def _lines(declaration, interface):
    lines = (operation.line() for operation in model.operation_declarations(declaration))
    return zip(lines, interface.operations)


def _global_names(operation):
    for direction in ("request", "reply"):
        yield operation.topic(direction)
        yield operation.sample(direction)


def _long_topics(declaration, interface):
    for line, operation in _lines(declaration, interface):
        if len(operation.topic("request")) > _LONGEST_TOPIC:
            reason = "the topic of operation '%s' would have a name of %d characters; DDS allows %d"
            yield line, reason % (operation.name, len(operation.topic("request")), _LONGEST_TOPIC)


def _hidden_names(declaration, generated):
    """Arguments that would hide a class which the operation needs, and operations that are named like one."""
    members = {operation.identifier() for operation in model.operation_declarations(declaration)}
    members |= {"async_" + member for member in members}
    for operation in model.operation_declarations(declaration):
        if operation.identifier() in generated - members:
            yield operation.line(), "operation '%s' has the name of generated code" % operation.identifier()
        for parameter in operation.parameters():
            if parameter.identifier() in generated - members:
                reason = "argument '%s' of operation '%s' has the name of generated code; choose another"
                yield parameter.line(), reason % (parameter.identifier(), operation.identifier())
