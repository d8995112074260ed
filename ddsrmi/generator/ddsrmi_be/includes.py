# SPDX-License-Identifier: Apache-2.0
"""What the code of proxies and skeletons includes: no more than the types of the file's operations ask for."""

from ddsrmi_be import types_header


class Includes:
    def __init__(self, stem, interfaces, types):
        operations = [operation for interface in interfaces for operation in interface.operations]
        used = [type for operation in operations for type in operation.types]
        raises = any(operation.raised for operation in operations)
        needs_types = len(types) > 0 or any(type.is_composed for type in used)
        needs_codecs = raises or not all(type.is_plain or type.is_void for type in used)
        self.header = ['"ddsrmi.h"'] + (['"%s"' % types_header.name(stem)] if needs_types else [])
        encoding = '"ddsrmi/codecs.h"' if needs_codecs else '"ddsrmi/encoding.h"'
        self.source = [encoding, '"%s_InterfaceInfo.h"' % stem]
        self.moves = any(operation.returns_composed for operation in operations)
