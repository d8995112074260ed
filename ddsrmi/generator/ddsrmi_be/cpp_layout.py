# SPDX-License-Identifier: Apache-2.0
"""What all generated files have in common."""

import re

_LINE = 110


def banner(source):
    return "// Generated from %s by the RMI code generator. Changes are lost at the next build.\n" % source


def header(source, name, includes, parts):
    """The text of the header file `name`."""
    guard = re.sub(r"\W", "_", name).upper()
    opening = "%s#ifndef GENERATED_%s\n#define GENERATED_%s\n" % (banner(source), guard, guard)
    return "\n".join([opening + "\n" + _include_lines(includes)] + parts + ["#endif\n"])


def implementation(source, includes, parts):
    """The text of a source file."""
    return "\n".join([banner(source) + "\n" + _include_lines(includes)] + parts)


def _include_lines(includes):
    return "".join("#include %s\n" % include if include else "\n" for include in includes)


def in_namespace(modules, parts):
    """`parts` inside the namespace that belongs to modules of the interface file."""
    scopes = ("DDS_RMI",) + tuple(modules)
    opening = "".join("namespace %s {\n" % scope for scope in scopes)
    closing = "".join("} // namespace %s\n" % scope for scope in reversed(scopes))
    return "\n".join([opening] + list(parts) + [closing])


def unnamed_namespace(parts):
    return "\n".join(["namespace {\n\nnamespace rmi = org::opensplice::DDS_RMI;\n"] + list(parts) + ["} // namespace\n"])


def signature(head, parameters, indent=""):
    """`head`(`parameters`), on as many lines as it takes, after an indentation that the caller writes."""
    line = "%s(%s)" % (head, ", ".join(parameters))
    if not parameters or len(indent + line) <= _LINE:
        return line
    inner = "\n" + indent + "        "
    return "%s(%s%s)" % (head, inner, ("," + inner).join(parameters))


def function(signature, statements):
    """A function definition. Each statement is a line."""
    return "%s\n{\n%s}\n" % (signature, "".join("    %s\n" % statement if statement else "\n" for statement in statements))
