# SPDX-License-Identifier: Apache-2.0
"""The code generator for interface files: an omniidl back end.

    omniidl -p<folder above this one> -bddsrmi_be -I<folder of dds_rmi.idl> -C<output folder> <stem>.idl

writes, or rewrites, in the output folder
    <stem>_Types.h                  the types and constants that the file declares
    <stem>_InterfaceInfo.h/.cpp     what the RMI layer is told of the interfaces, and how types travel
    <stem>_InterfaceProxy.h/.cpp    for clients: the proxies and the bases of the reply handlers
    <stem>_Interface.h/.cpp         for servers: the skeletons
A file that asks for more than the generator supports is refused, with file, line and reason; then nothing is
written."""

import os
import sys

from ddsrmi_be import checking, interface_info, model, proxy, skeleton, types_header
from ddsrmi_be.includes import Includes

usage_string = "  (none; the output folder is the current one, or omniidl's -C)"


def run(tree, arguments):
    refusals = checking.refusals(tree)
    if arguments:
        refusals.append("ddsrmi_be: unknown argument '%s'; there are none" % arguments[0])
    if refusals:
        sys.exit("\n".join(refusals))
    for name, text in _files(tree):
        _write(name, text)


def _files(tree):
    source = os.path.basename(tree.file())
    stem = os.path.splitext(source)[0]
    interfaces, types = model.interfaces(tree), model.type_declarations(tree)
    yield from types_header.files(source, stem, types)
    yield from interface_info.files(source, stem, interfaces, types, model.constants(tree))
    includes = Includes(stem, interfaces, types)
    for part in (proxy, skeleton):
        yield from part.files(source, stem, interfaces, includes)


def _write(name, text):
    with open(name, "w", encoding="utf-8") as output:
        output.write(text)
