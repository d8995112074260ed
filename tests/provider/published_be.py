# SPDX-License-Identifier: Apache-2.0
"""What every RMI layer's generator makes of an interface file, as far as it is published: an omniidl back end that
writes the declarations alone."""

import os

from ddsrmi_be import model

_RMI = "org::opensplice::DDS_RMI::"


def run(tree, _arguments):
    stem = os.path.splitext(os.path.basename(tree.file()))[0]
    interfaces = model.interfaces(tree)
    _write(stem + "_InterfaceProxy.h", _proxies(interfaces))
    _write(stem + "_Interface.h", _skeletons(interfaces))
    _write(stem + "_InterfaceProxy.cpp", ['#include "%s_InterfaceProxy.h"' % stem])
    _write(stem + "_topics.idl", [])


def _write(name, lines):
    with open(name, "w", encoding="utf-8") as output:
        output.write("\n".join(lines) + "\n")


def _opening():
    return ["#pragma once", "#include <ddsrmi.h>"]


def _scoped(interface, lines):
    scopes = ("DDS_RMI",) + interface.modules
    return ["namespace %s {" % scope for scope in scopes] + lines + ["}" for _ in scopes]


def _class(name, base, members):
    return ["class %s : public virtual %s%s {" % (name, _RMI, base), "public:"] + members + ["};"]


def _proxies(interfaces):
    lines = _opening()
    for interface in interfaces:
        lines += _scoped(interface, _handlers(interface) + _class(interface.proxy, "CInterfaceProxy", _pairs(interface)))
    return lines


def _handlers(interface):
    lines = []
    for operation in interface.operations:
        lines += _class(operation.handler, "CAsyncReplyHandlerImpl", [
            "void handleReply(DDS::ReadCondition* condition) override;",
            "virtual void %s(%s result) = 0;" % (operation.hook, operation.result.cpp)])
    return lines


def _pairs(interface):
    lines = ["static void _register_service_info();"]
    for operation in interface.operations:
        lines.append(_waiting_form(operation) + ";")
        parameters = operation.parameters + [operation.handler + "* handler"]
        lines.append("virtual void %s(%s);" % (operation.async_name, ", ".join(parameters)))
    return lines


def _waiting_form(operation):
    return "virtual %s %s(%s)" % (operation.result.cpp, operation.name, ", ".join(operation.parameters))


def _skeletons(interfaces):
    lines = _opening()
    for interface in interfaces:
        members = ["static void _register_service_info();"]
        members += [_waiting_form(operation) + " = 0;" for operation in interface.operations]
        lines += _scoped(interface, _class(interface.skeleton, "RefCounted", members))
    return lines
