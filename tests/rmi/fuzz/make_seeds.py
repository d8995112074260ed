#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Writes the seeds of the fuzz targets rmi_requests and rmi_replies anew, in seeds/ beside this file: to be run when the
messages of dds_rmi.idl or the operations of fuzzed.idl have changed. A seed's name says what it is."""

import struct
from pathlib import Path

WIRE_VERSION = 2
OWN_SESSION, NEXT, CHOSEN = 1, 2, 4  # the switches of input.h
HELLO, CALL, PING, WANT = 1, 2, 3, 4
WELCOME, RESULT, FAILED, UNKNOWN_OPERATION, OVERDUE, PONG, GRANT, FORGOTTEN, SECOND_CHOICE = range(1, 10)
NUMBER, TEXT, TEXTS, SMALL, LARGE, REAL, NOTHING, FAILING, COMPOSED, UNHEEDED = range(10)  # in the order of fuzzed.idl
SIGNATURES = ["long number(long)", "string text(string)", "string texts(string, long, string)",
              "octet small(boolean, octet, char, short, unsigned short)",
              "long long large(long long, unsigned long long, unsigned long)", "double real(float, double)",
              "void nothing()", "long failing()",
              "Fuzzed::Whole#f9c517a8be39de11 composed(Fuzzed::Whole#f9c517a8be39de11, "
              "inout Fuzzed::Colour#aec0ed38883abb68, out string<8>) raises (Fuzzed::Broken#5d38c2848ac3450b)",
              "oneway void unheeded(Fuzzed::Whole#f9c517a8be39de11)"]
PATIENCE_MS = 60000
LITTLE_ENDIAN, BIG_ENDIAN, UNKNOWN_ENCODING = b"\0\1\0\0", b"\0\0\0\0", b"\x7f\x7f\0\0"


class Cdr:
    """A serialized sample."""

    def __init__(self, order="<"):
        self.order, self.bytes = order, b""

    def number(self, code, value):
        size = struct.calcsize(code)
        self.bytes += bytes(-len(self.bytes) % size) + struct.pack(self.order + code, value)
        return self

    def text(self, value):
        raw = value.encode("latin-1") + b"\0"
        self.number("I", len(raw))
        self.bytes += raw
        return self

    def octets(self, value):
        self.number("I", len(value))
        self.bytes += value
        return self

    def introduction(self, introduction):
        if introduction is None:
            return self.number("I", 0)
        service, instance, signatures = introduction
        self.number("I", 1).text("Fuzzed::Target").text(service).number("i", instance)
        self.text("fuzz_Proxy").number("i", 1).number("I", 0)
        self.text("Fuzzed::Target").number("I", len(signatures))
        for signature in signatures:
            self.text(signature)
        return self


def request(kind, *, number=1, operation=0, arguments=b"", about=None, session=0x1234, version=WIRE_VERSION,
            patience_ms=PATIENCE_MS, order="<"):
    cdr = Cdr(order).number("H", version).number("H", kind).number("I", patience_ms)
    cdr.number("Q", session).number("Q", number).number("Q", operation)
    return cdr.introduction(about).octets(arguments).bytes


def reply(kind, *, number=1, result=b"", about=None, session=0x1234, version=WIRE_VERSION, requests=1000,
          size=1 << 20, order="<"):
    cdr = Cdr(order).number("H", version).number("H", kind)
    cdr.number("Q", session).number("Q", number).number("Q", requests).number("Q", size)
    return cdr.introduction(about).octets(result).bytes


def encoded(code, *values):
    """Arguments or results, as ddsrmi/encoding.h has them: s stands for a text."""
    out = b""
    for one, value in zip(code, values):
        if one == "s":
            raw = value.encode("latin-1") + b"\0"
            out += struct.pack("<I", len(raw)) + raw
        else:
            out += struct.pack("<" + one, value)
    return out


def part(colour, name):
    return encoded("Is", colour, name)


def whole(parts, rows, text="text"):
    """A value of the struct Whole; its parts and its rows are bytes already."""
    out = struct.pack("<I", len(parts)) + b"".join(parts) + struct.pack("<I", len(rows))
    for row in rows:
        out += struct.pack("<I", len(row)) + row
    return out + b"\1\0" + encoded("s", text)


def seed(operation, switches, message, encoding=LITTLE_ENDIAN):
    return bytes([operation, switches]) + encoding + message


def call(operation, arguments):
    """A call that the server runs, if the arguments are right."""
    return seed(operation, OWN_SESSION | NEXT | CHOSEN, request(CALL, arguments=arguments))


def result(operation, bytes_of_result):
    """The result of a call that the client has made."""
    return seed(operation, OWN_SESSION | NEXT, reply(RESULT, result=bytes_of_result))


OURS = ("fuzz", 1, SIGNATURES)

REQUESTS = {
    "call_number": call(NUMBER, encoded("i", 42)),
    "call_text": call(TEXT, encoded("s", "a text")),
    "call_text_empty": call(TEXT, encoded("s", "")),
    "call_text_long": call(TEXT, encoded("s", "x" * 3000)),
    "call_text_without_end": call(TEXT, struct.pack("<I", 4) + b"text"),
    "call_text_of_size_0": call(TEXT, struct.pack("<I", 0)),
    "call_text_of_false_size": call(TEXT, struct.pack("<I", 0xFFFFFFFF) + b"text\0"),
    "call_texts": call(TEXTS, encoded("sis", "first", 1, "last")),
    "call_small": call(SMALL, encoded("BBbhH", 1, 255, -1, -32768, 65535)),
    "call_large": call(LARGE, encoded("qQI", -(1 << 63), (1 << 64) - 1, (1 << 32) - 1)),
    "call_real": call(REAL, encoded("fd", 0.5, float("nan"))),
    "call_nothing": call(NOTHING, b""),
    "call_failing": call(FAILING, b""),
    "call_composed": call(COMPOSED, whole([part(0, "red one"), part(2, "8 bytes.")], [b"", b"ab", b"c"])
                          + encoded("I", 1)),
    "call_composed_that_raises": call(COMPOSED, whole([], []) + encoded("I", 0)),
    "call_composed_cut_short": call(COMPOSED, whole([part(0, "red one")], [b"row"])[:-3]),
    "call_composed_of_false_count": call(COMPOSED, struct.pack("<I", 0xFFFFFFFF) + part(0, "red one")),
    "call_composed_of_false_inner_count": call(COMPOSED, encoded("III", 0, 1, 0xFFFFFFFF) + b"row"),
    "call_composed_over_its_bound": call(COMPOSED, whole([], [b"", b"", b"", b""]) + encoded("I", 0)),
    "call_composed_with_overlong_name": call(COMPOSED, whole([part(0, "nine byte")], []) + encoded("I", 0)),
    "call_composed_without_such_an_enum": call(COMPOSED, whole([part(3, "")], []) + encoded("I", 0)),
    "call_composed_without_such_a_tint": call(COMPOSED, whole([part(1, "")], []) + encoded("I", 0xFFFFFFFF)),
    "call_unheeded": call(UNHEEDED, whole([part(1, "green")], [b"row"])),
    "call_unheeded_cut_short": call(UNHEEDED, whole([part(1, "green")], [b"row"])[:7]),
    "call_number_cut_short": call(NUMBER, b"\1\2\3"),
    "call_number_with_bytes_behind": call(NUMBER, encoded("iB", 42, 7)),
    "call_unknown_operation": seed(0, OWN_SESSION | NEXT, request(CALL, operation=0xDEAD)),
    "call_overdue": seed(NUMBER, OWN_SESSION | NEXT | CHOSEN, request(CALL, arguments=encoded("i", 1), patience_ms=0)),
    "call_of_other_number": seed(NUMBER, OWN_SESSION | CHOSEN, request(CALL, number=1 << 60, arguments=encoded("i", 1))),
    "call_in_false_session": seed(NUMBER, NEXT | CHOSEN, request(CALL, arguments=encoded("i", 1))),
    "call_in_other_wire_version": seed(NUMBER, CHOSEN, request(CALL, arguments=encoded("i", 1), version=3)),
    "call_big_endian": seed(NUMBER, OWN_SESSION | NEXT | CHOSEN, request(CALL, arguments=encoded("i", 1), order=">"),
                            BIG_ENDIAN),
    "hello": seed(0, 0, request(HELLO, number=77, about=OURS)),
    "hello_without_introduction": seed(0, 0, request(HELLO, number=78)),
    "hello_to_another_service": seed(0, 0, request(HELLO, number=79, about=("fuz", 1, SIGNATURES))),
    "hello_to_another_instance": seed(0, 0, request(HELLO, number=80, about=("fuzz", -7, SIGNATURES))),
    "hello_of_another_interface": seed(0, 0, request(HELLO, number=81, about=(
        "fuzz", 1, ["string number(long)", "long extra(string)", "no signature", "", "(", "a b(", "\x1b[2J\n"]))),
    "hello_that_knows_nothing": seed(0, 0, request(HELLO, number=82, about=("fuzz", 1, []))),
    "ping": seed(0, OWN_SESSION, request(PING)),
    "ping_in_false_session": seed(0, 0, request(PING)),
    "want_little": seed(0, OWN_SESSION, request(WANT, number=2, operation=1000)),
    "want_everything": seed(0, OWN_SESSION, request(WANT, number=(1 << 64) - 1, operation=(1 << 64) - 1)),
    "unknown_kind": seed(0, OWN_SESSION, request(4711)),
    "unknown_encoding": seed(0, OWN_SESSION, request(PING), UNKNOWN_ENCODING),
    "cut_short": seed(0, OWN_SESSION, request(PING)[:20]),
    "arguments_of_false_size": seed(0, OWN_SESSION | NEXT, request(CALL, arguments=b"")[:-4] + b"\xff\xff\xff\x7f"),
}

REPLIES = {
    "result_text": result(0, encoded("s", "a text")),
    "result_text_empty": result(0, encoded("s", "")),
    "result_text_long": result(0, encoded("s", "x" * 3000)),
    "result_composed": result(4, encoded("I", 0) + whole([part(2, "blue")], [b"row"]) + encoded("Is", 2, "name")),
    "result_composed_cut_short": result(4, encoded("I", 0) + whole([part(2, "blue")], [b"row"])),
    "result_composed_of_false_count": result(4, encoded("II", 0, 0xFFFFFFFF)),
    "result_composed_without_such_an_enum": result(4, encoded("I", 0) + whole([], []) + encoded("Is", 3, "name")),
    "result_raised": result(4, encoded("I", 1) + part(1, "green") + encoded("Iss", 2, "one", "two")),
    "result_raised_cut_short": result(4, encoded("I", 1) + part(1, "green") + encoded("Is", 2, "one")),
    "result_raised_of_false_count": result(4, encoded("I", 1) + part(1, "green") + encoded("I", 0x7FFFFFFF)),
    "result_raised_unknown": result(4, encoded("I", 2) + part(1, "green")),
    "result_text_without_end": result(0, struct.pack("<I", 4) + b"text"),
    "result_text_of_false_size": result(0, struct.pack("<I", 0x80000000) + b"text\0"),
    "result_small": result(1, b"\xff"),
    "result_large": result(2, encoded("q", -(1 << 63))),
    "result_real": result(3, encoded("d", float("inf"))),
    "result_large_cut_short": result(2, b"\1\2\3"),
    "result_small_with_bytes_behind": result(1, b"\1\2"),
    "result_empty": result(0, b""),
    "result_big_endian": seed(2, OWN_SESSION | NEXT, reply(RESULT, result=encoded("q", 1), order=">"), BIG_ENDIAN),
    "result_of_no_call": seed(0, OWN_SESSION, reply(RESULT, number=99, result=encoded("s", "text"))),
    "result_in_false_session": seed(0, NEXT, reply(RESULT, result=encoded("s", "text"))),
    "result_in_other_wire_version": seed(0, 0, reply(RESULT, result=encoded("s", "text"), version=3)),
    "failed_of_no_call": seed(0, OWN_SESSION, reply(FAILED, result=b"no end, and \x1b[2J")),
    "unknown_operation_of_no_call": seed(0, OWN_SESSION, reply(UNKNOWN_OPERATION)),
    "overdue_of_no_call": seed(0, OWN_SESSION, reply(OVERDUE)),
    "pong": seed(0, OWN_SESSION, reply(PONG)),
    "grant_little": seed(0, OWN_SESSION, reply(GRANT, requests=0, size=0)),
    "grant_everything": seed(0, OWN_SESSION, reply(GRANT, requests=(1 << 64) - 1, size=(1 << 64) - 1)),
    "forgotten": seed(0, OWN_SESSION, reply(FORGOTTEN)),
    "forgotten_false_session": seed(0, 0, reply(FORGOTTEN)),
    "welcome_again": seed(0, OWN_SESSION | CHOSEN, reply(WELCOME, about=OURS)),
    "welcome_to_another_session": seed(0, CHOSEN, reply(WELCOME, about=OURS)),
    "welcome_without_room": seed(0, CHOSEN, reply(WELCOME, about=OURS, session=0x77, requests=0, size=0)),
    "welcome_without_introduction": seed(0, CHOSEN, reply(WELCOME, session=0x78)),
    "welcome_of_another_interface": seed(0, CHOSEN, reply(WELCOME, session=0x79, about=(
        "fuzz", 1, ["string number(long)", "long text(\x1b[2J)", "", "(", "a b("]))),
    "welcome_to_another_meeting": seed(0, 0, reply(WELCOME, about=OURS)),
    "second_choice_to_another_meeting": seed(0, 0, reply(SECOND_CHOICE, about=OURS)),
    "unknown_kind": seed(0, OWN_SESSION, reply(4711)),
    "unknown_encoding": seed(0, OWN_SESSION, reply(PONG), UNKNOWN_ENCODING),
    "cut_short": seed(0, OWN_SESSION, reply(PONG)[:20]),
}


def main():
    for target, seeds in (("rmi_requests", REQUESTS), ("rmi_replies", REPLIES)):
        folder = Path(__file__).parent / "seeds" / target
        folder.mkdir(parents=True, exist_ok=True)
        for old in folder.iterdir():
            old.unlink()
        for name, content in seeds.items():
            (folder / name).write_bytes(content)


if __name__ == "__main__":
    main()
