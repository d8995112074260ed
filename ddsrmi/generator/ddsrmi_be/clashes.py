# SPDX-License-Identifier: Apache-2.0
"""Refuses what would give two things in the generated code the same name, or one a name that is too long. Each
refusal is a line and a reason. To be asked about declarations that are otherwise in order."""

from omniidl import idlast

from ddsrmi_be import codecs, idl_types, model

# DDS carries the name of a topic in a field of 256 bytes, its end included.
_LONGEST_TOPIC = 255


def refusals(declarations, types):
    found = [(declaration, model.interface(declaration, frozenset())) for declaration in declarations]
    yield from _same_names(found, types)
    classes = {name.split("::")[-1] for pair in found for _, name, _ in _class_names(*pair)}
    for declaration, interface in found:
        yield from _long_topics(declaration, interface)
        yield from _hidden_classes(declaration, classes)


def _same_names(found, types):
    owners = {}
    names = [entry for declaration in types for entry in _type_names(declaration)]
    for pair in found:
        names += [*_class_names(*pair), *_helper_names(*pair), *_member_names(*pair)]
    for line, name, owner in names:
        if owners.setdefault(name, owner) != owner:
            yield line, "%s and %s would both be given the name '%s'" % (owners[name], owner, name)


def _type_names(declaration):
    """What a type or a constant brings into its namespace, as line, name and what it is for."""
    named = [declaration]
    if isinstance(declaration, idlast.Typedef):
        named = declaration.declarators()
    elif isinstance(declaration, idlast.Enum):
        named = [declaration] + declaration.enumerators()
    for one in named:
        name = idl_types.scoped_name(one)
        yield one.line(), name, "'%s'" % name
        if codecs.having_codecs([one]):
            yield one.line(), name + "_Codec", "'%s'" % name


def _class_names(declaration, interface):
    """What an interface brings into namespaces and the set of topics, as line, name and what it is for."""
    namespace = "::".join(interface.modules) + "::"
    for name in (interface.proxy, interface.skeleton, interface.info):
        yield declaration.line(), namespace + name, "interface '%s'" % interface.scoped_name
    yield declaration.line(), interface.topic("request"), "interface '%s'" % interface.scoped_name
    for line, operation in _lines(declaration, interface):
        if not operation.is_oneway:
            yield line, namespace + operation.handler, _named(operation)


def _helper_names(declaration, interface):
    """What it brings into the namespaces of the source files, in the same form."""
    namespace = "::".join(interface.modules) + "::"
    yield declaration.line(), namespace + "rmi", "generated code"
    yield declaration.line(), namespace + interface.factory, "interface '%s'" % interface.scoped_name
    for line, operation in _lines(declaration, interface):
        for name in (operation.waiter, operation.runner, operation.raiser):
            yield line, namespace + name, _named(operation)


def _member_names(declaration, interface):
    """What an interface brings into its own classes, in the same form."""
    for line, operation in _lines(declaration, interface):
        for name in [operation.name] + ([] if operation.is_oneway else [operation.async_name]):
            yield line, "%s::%s" % (interface.scoped_name, name), _named(operation)


def _lines(declaration, interface):
    lines = (operation.line() for operation in model.operation_declarations(declaration))
    return zip(lines, interface.operations)


def _named(operation):
    return "operation '%s::%s'" % (operation.interface.scoped_name, operation.name)


def _long_topics(declaration, interface):
    length = len(interface.topic("request"))
    if length > _LONGEST_TOPIC:
        reason = "the topic of interface '%s' would have a name of %d characters; DDS allows %d"
        yield declaration.line(), reason % (interface.scoped_name, length, _LONGEST_TOPIC)


def _hidden_classes(declaration, classes):
    """Operations and arguments inside which the name of a class would mean something else."""
    for operation in model.operation_declarations(declaration):
        what = "operation '%s'" % operation.identifier()
        if operation.identifier() in classes:
            yield operation.line(), what + " has the name of generated code; choose another"
        for parameter in operation.parameters():
            if parameter.identifier() in classes:
                reason = "argument '%s' of %s has the name of generated code; choose another"
                yield parameter.line(), reason % (parameter.identifier(), what)
