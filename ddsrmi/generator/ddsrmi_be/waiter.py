# SPDX-License-Identifier: Apache-2.0
"""The reply handlers of calls that wait: they keep what the reply brings."""

from ddsrmi_be import cpp_layout


def definition(operation):
    parts = [_hook(operation), _result(operation), _give(operation)]
    members = "".join("    %s\n" % _member(type, name) for type, name in operation.returned_values)
    return "class %s : public %s {\npublic:\n%s%s};\n" % (
        operation.waiter, operation.handler, "".join(parts), "\nprivate:\n" + members if members else "")


def _hook(operation):
    head = cpp_layout.signature("void " + operation.hook, operation.hook_parameters, "    ") + " override"
    return _function(head, [_keep(type, name) for type, name in operation.returned_values])


def _keep(type, name):
    if type.is_text:
        return "m_%s.reset(DDS::string_dup(%s));" % (name, name)
    return "m_%s = %s;" % (name, name)


def _result(operation):
    if operation.result.is_void:
        return ""
    kept = "m_" + operation.result_name
    const = "" if operation.result.is_text or operation.result.is_composed else " const"
    return _function("%s result()%s" % (operation.result.cpp, const), ["return %s;" % _given(operation.result, kept)])


def _give(operation):
    """Fills the arguments of the caller."""
    if not operation.returned:
        return ""
    head = cpp_layout.signature("void give", [argument.declaration for argument in operation.returned], "    ")
    statements = []
    for argument in operation.returned:
        if argument.is_in and argument.type.is_text:
            statements.append("DDS::string_free(%s);" % argument.name)
        statements.append("%s = %s;" % (argument.name, _given(argument.type, "m_" + argument.name)))
    return _function(head, statements)


def _given(type, kept):
    if type.is_text:
        return kept + ".release()"
    return "std::move(%s)" % kept if type.is_composed else kept


def _member(type, name):
    if type.is_text:
        return "std::unique_ptr<char[]> m_%s;" % name
    if type.is_composed:
        return "%s m_%s{};" % (type.cpp, name)
    return "%s m_%s = %s();" % (type.cpp, name, type.cpp)


def _function(head, statements):
    """A function inside a class, on one line when it does one thing or none."""
    if len(statements) < 2:
        return "    %s {%s}\n" % (head, "".join(" %s " % statement for statement in statements))
    return "    %s\n    {\n%s    }\n" % (head, "".join("        %s\n" % statement for statement in statements))
