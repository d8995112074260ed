# SPDX-License-Identifier: Apache-2.0
"""An omniidl back end that lists the operations of an interface file for code that needs each of them by its name.

    omniidl -p<this folder> -boperation_list_be -I<folder of dds_rmi.idl> -C<output folder> <stem>.idl

writes <stem>_operations.h with the macro FOR_EVERY_OPERATION."""

import os
import sys

from omniidl import idlast, idltype

TYPES = {idltype.tk_string: "DDS::String", idltype.tk_boolean: "DDS::Boolean", idltype.tk_long: "DDS::Long"}

HEADER = """// Generated from %s; edits would be lost.
#ifndef %s_OPERATIONS_H
#define %s_OPERATIONS_H

/// Repeats `action`, a macro, for each operation in the order of the interface file, with its name, its parameters, its
/// parameters with the reply handler behind them, and its arguments, each of the three in parentheses.
#define FOR_EVERY_OPERATION(action)%s

#endif
"""


def run(tree, arguments):
    stem = os.path.splitext(os.path.basename(tree.file()))[0]
    rows = [" \\\n    action(%s)" % row(scope, interface, operation)
            for scope, interface in interfaces(tree.declarations(), [])
            for operation in interface.callables()]
    with open(stem + "_operations.h", "w", encoding="utf-8") as output:
        output.write(HEADER % (os.path.basename(tree.file()), stem.upper(), stem.upper(), "".join(rows)))


def interfaces(declarations, scope):
    for declaration in declarations:
        if not declaration.mainFile():
            continue
        if isinstance(declaration, idlast.Module):
            yield from interfaces(declaration.definitions(), scope + [declaration.identifier()])
        elif isinstance(declaration, idlast.Interface):
            yield "::".join(["DDS_RMI"] + scope), declaration


def row(scope, interface, operation):
    name = operation.identifier()
    parameters = ["%s %s" % (cpp_type(parameter), parameter.identifier()) for parameter in operation.parameters()]
    handler = "%s::%s_%s_Reply_Handler* handler" % (scope, interface.identifier(), name)
    arguments = [parameter.identifier() for parameter in operation.parameters()]
    return ", ".join([name] + ["(%s)" % ", ".join(each) for each in (parameters, parameters + [handler], arguments)])


def cpp_type(parameter):
    kind = parameter.paramType().kind()
    if kind not in TYPES:
        sys.exit("%s:%d: the list of operations knows no type of '%s'; add it to TYPES in %s" %
                 (parameter.file(), parameter.line(), parameter.identifier(), __file__))
    return TYPES[kind]
