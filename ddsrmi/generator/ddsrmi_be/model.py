# SPDX-License-Identifier: Apache-2.0
"""What a file declares, and the names of what is generated for it."""

from dataclasses import dataclass
from hashlib import sha256

from omniidl import idlast

from ddsrmi_be import idl_types
from ddsrmi_be.idl_types import Type
from ddsrmi_be.reserved_names import free_name


@dataclass(frozen=True)
class Argument:
    idl_name: str
    name: str  # in C++
    type: Type
    is_in: bool  # what the client gives: also an inout argument
    is_out: bool  # what the server gives: also an inout argument

    @property
    def declaration(self):
        return "%s %s" % (self.type.cpp + "&" if self.is_out else self.type.parameter, self.name)

    @property
    def read_only(self):
        """The declaration for who only reads its value."""
        return "%s %s" % (self.type.parameter, self.name)

    @property
    def what(self):
        """What messages call it."""
        return "argument '%s'" % self.idl_name

    @property
    def signature(self):
        direction = {(True, False): "", (False, True): "out ", (True, True): "inout "}[self.is_in, self.is_out]
        return direction + self.type.idl


@dataclass(frozen=True)
class Operation:
    interface: "Interface"
    name: str
    result: Type
    arguments: tuple
    raised: tuple  # the types of the exceptions
    is_oneway: bool

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
    def given(self):
        """The arguments that travel to the server."""
        return [argument for argument in self.arguments if argument.is_in]

    @property
    def returned(self):
        """The arguments that travel back, behind the result."""
        return [argument for argument in self.arguments if argument.is_out]

    @property
    def parameters(self):
        return [argument.declaration for argument in self.arguments]

    @property
    def signature(self):
        """All that a client and a server must have in common to understand each other."""
        arguments = ", ".join(argument.signature for argument in self.arguments)
        text = "%s %s(%s)" % (self.result.idl, self.name, arguments)
        if self.raised:
            text += " raises (%s)" % ", ".join(exception.idl for exception in self.raised)
        return "oneway " + text if self.is_oneway else text

    @property
    def types(self):
        return [self.result] + [argument.type for argument in self.arguments]

    @property
    def result_name(self):
        """What the result is called beside the arguments that travel back."""
        return self.local("result")

    @property
    def returned_values(self):
        """All that a reply brings, as types and names."""
        result = [] if self.result.is_void else [(self.result, self.result_name)]
        return result + [(argument.type, argument.name) for argument in self.returned]

    @property
    def hook_parameters(self):
        return ["%s %s" % (type.parameter, name) for type, name in self.returned_values]

    @property
    def returns_composed(self):
        return any(type.is_composed for type, _ in self.returned_values)

    @property
    def waiter(self):
        """The reply handler of the form that waits."""
        return free_name("%s_%s_Waiter" % (self.interface.name, self.name), self.interface.argument_names)

    @property
    def runner(self):
        """The function that decodes a request and runs the operation."""
        return "run_%s_%s" % (self.interface.name, self.name)

    @property
    def raiser(self):
        """The function that throws what a reply says was thrown."""
        return "throw_what_%s_%s_raised" % (self.interface.name, self.name)

    def local(self, wanted):
        """A name for something inside a function of the operation: another one than the arguments have, and than the
        file's constants, which it would hide."""
        return free_name(wanted, {argument.name for argument in self.arguments} | self.interface.constants)

    @property
    def hash(self):
        """What requests name the operation by: 64 bits of its signature."""
        return int.from_bytes(sha256(self.signature.encode()).digest()[:8], "big")


@dataclass(frozen=True, eq=False)
class Interface:
    modules: tuple
    name: str
    constants: frozenset  # the names of the file's constants
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

    @property
    def factory(self):
        """The function that makes the proxy."""
        return "make_%s_proxy" % self.name

    def local(self, wanted):
        """A name for something inside a function, which hides no constant."""
        return free_name(wanted, self.constants)

    def topic(self, direction):
        return "topic___%s__%s" % ("__".join(self.path), direction)

    @property
    def argument_names(self):
        return {argument.name for operation in self.operations for argument in operation.arguments}


def interface_declarations(tree):
    """The interfaces that the file itself declares, not those of the files that it includes."""
    return [d for d in declarations(tree) if isinstance(d, idlast.Interface)]


def type_declarations(tree):
    """The types and constants that the file itself declares in modules."""
    kinds = (idlast.Const, idlast.Enum, idlast.Exception, idlast.Struct, idlast.Typedef)
    return [d for d in declarations(tree) if isinstance(d, kinds)]


def declarations(tree):
    """What the file itself declares, in its order, the modules and what is in them too."""
    return [d for top in tree.declarations() for d in _with_contents(top) if d.mainFile()]


def _with_contents(declaration):
    yield declaration
    if isinstance(declaration, idlast.Module):
        for inner in declaration.definitions():
            yield from _with_contents(inner)


def interfaces(tree):
    return [interface(declaration, constants(tree)) for declaration in interface_declarations(tree)]


def constants(tree):
    return frozenset(d.identifier() for d in declarations(tree) if isinstance(d, idlast.Const))


def interface(declaration, constants_of_file):
    *modules, name = declaration.scopedName()
    result = Interface(tuple(modules), name, constants_of_file, [])
    result.operations.extend(_operation(result, callable) for callable in operation_declarations(declaration))
    return result


def operation_declarations(declaration):
    return [member for member in declaration.contents() if isinstance(member, idlast.Operation)]


def _operation(owner, declaration):
    arguments = tuple(_arguments(declaration, owner.constants))
    raised = tuple(idl_types.composed(exception, "exception") for exception in declaration.raises())
    result = idl_types.of(declaration.returnType())
    return Operation(owner, declaration.identifier(), result, arguments, raised, bool(declaration.oneway()))


def _arguments(declaration, constants_of_file):
    """An argument that would hide a constant has another name in C++, where argument names mean nothing to others."""
    taken = set(constants_of_file)
    for parameter in declaration.parameters():
        name = parameter.identifier()
        others = {other.identifier() for other in declaration.parameters()} - {name}
        cpp_name = free_name(name, taken | others)
        taken.add(cpp_name)
        is_in, is_out = bool(parameter.is_in()), bool(parameter.is_out())
        yield Argument(name, cpp_name, idl_types.of(parameter.paramType()), is_in, is_out)
