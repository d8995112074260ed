# SPDX-License-Identifier: Apache-2.0
"""The interfaces of a file, and the names of what is generated for them."""

from dataclasses import dataclass
from hashlib import sha256

from omniidl import idlast

from ddsrmi_be import basic_types
from ddsrmi_be.basic_types import BasicType


@dataclass(frozen=True)
class Argument:
    name: str
    type: BasicType

    @property
    def declaration(self):
        return "%s %s" % (self.type.cpp, self.name)


@dataclass(frozen=True)
class Operation:
    interface: "Interface"
    name: str
    result: BasicType
    arguments: tuple

    @property
    def handler(self):
        return "%s_%s_Reply_Handler" % (self.interface.name, self.name)

    @property
    def hook(self):
        return self.name + "_Reply"

    @property
    def async_name(self):
        return "async_" + self.name

    @property
    def parameters(self):
        return [argument.declaration for argument in self.arguments]

    @property
    def signature(self):
        """All that a client and a server must have in common to understand each other."""
        return "%s %s(%s)" % (self.result.idl, self.name, ", ".join(argument.type.idl for argument in self.arguments))

    @property
    def hash(self):
        """What requests name the operation by: 64 bits of its signature."""
        return int.from_bytes(sha256(self.signature.encode()).digest()[:8], "big")


@dataclass(frozen=True, eq=False)
class Interface:
    modules: tuple
    name: str
    operations: list

    @property
    def path(self):
        return self.modules + (self.name,)

    @property
    def scoped_name(self):
        return "::".join(self.path)

    @property
    def proxy(self):
        return self.name + "InterfaceProxy"

    @property
    def skeleton(self):
        return self.name + "Interface"

    @property
    def info(self):
        """The function that gives the InterfaceInfo."""
        return self.name + "_interface_info"

    def topic(self, direction):
        return "topic___%s__%s" % ("__".join(self.path), direction)

    @property
    def argument_names(self):
        return {argument.name for operation in self.operations for argument in operation.arguments}


def interface_declarations(tree):
    """The interfaces that the file itself declares, not those of the files that it includes."""
    return [d for d in declarations(tree) if isinstance(d, idlast.Interface)]


def declarations(tree):
    """What the file itself declares, in its order, the modules and what is in them too."""
    return [d for top in tree.declarations() for d in _with_contents(top) if d.mainFile()]


def _with_contents(declaration):
    yield declaration
    if isinstance(declaration, idlast.Module):
        for inner in declaration.definitions():
            yield from _with_contents(inner)


def interfaces(tree):
    return [interface(declaration) for declaration in interface_declarations(tree)]


def interface(declaration):
    *modules, name = declaration.scopedName()
    result = Interface(tuple(modules), name, [])
    result.operations.extend(_operation(result, callable) for callable in operation_declarations(declaration))
    return result


def operation_declarations(declaration):
    return [member for member in declaration.contents() if isinstance(member, idlast.Operation)]


def _operation(owner, declaration):
    arguments = (Argument(p.identifier(), basic_types.of(p.paramType())) for p in declaration.parameters())
    return Operation(owner, declaration.identifier(), basic_types.of(declaration.returnType()), tuple(arguments))
