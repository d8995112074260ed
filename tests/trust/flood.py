#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Floods a DDS domain on the loopback interface, as somebody who has no certificate can.

usage: flood.py <domain> <packets a second>
Writes "flooding" after the first round and "<n> packets" when standard input ends. Noise, messages cut short and
announcements of participants that do not exist go to all participants; the numbers make every run the same.
"""

import random
import select
import socket
import struct
import sys
import time

PORTS = range(10, 10 + 2 * 8)  # unicast ports of the first eight participants
SPDP_WRITER, SPDP_READER = 0x000100C2, 0x000100C7


def parameter(number, content):
    return struct.pack("<HH", number, len(content)) + content


def header(prefix):
    return b"RTPS" + bytes([2, 1, 1, 16]) + prefix


def announcement(prefix):
    """A participant without a certificate that claims to stay for an hour."""
    locator = struct.pack("<iI", 1, 7) + bytes(12) + socket.inet_aton("127.0.0.1")
    content = b"".join(
        [
            bytes([0, 3, 0, 0]),
            parameter(0x0015, bytes([2, 1, 0, 0])),
            parameter(0x0016, bytes([1, 16, 0, 0])),
            parameter(0x0050, prefix + struct.pack(">I", 0x000001C1)),
            parameter(0x0058, struct.pack("<I", 0x00000C3F)),
            parameter(0x0002, struct.pack("<iI", 3600, 0)),
            parameter(0x0031, locator),
            parameter(0x0032, locator),
            struct.pack("<HH", 1, 0),
        ]
    )
    data = struct.pack("<HH", 0, 16) + struct.pack(">II", SPDP_READER, SPDP_WRITER) + struct.pack("<iI", 0, 1) + content
    return header(prefix) + struct.pack("<BBH", 0x15, 0x05, len(data)) + data


def packet(source):
    prefix = source.randbytes(12)
    kind = source.randrange(3)
    if kind == 0:
        return source.randbytes(source.randrange(1, 1400))
    whole = announcement(prefix)
    return whole if kind == 1 else whole[: source.randrange(20, len(whole))] + source.randbytes(8)


def main():
    domain, rate = int(sys.argv[1]), int(sys.argv[2])
    source, sent = random.Random(domain), 0
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as sender:
        while not select.select([sys.stdin], [], [], 0)[0]:
            begin = time.monotonic()
            for number in range(rate // 20):
                port = 7400 + 250 * domain + PORTS[number % len(PORTS)]
                try:
                    sender.sendto(packet(source), ("127.0.0.1", port))
                except ConnectionRefusedError:
                    pass  # nobody has that port
                sent += 1
            if sent == rate // 20:
                print("flooding", flush=True)
            time.sleep(max(0.0, begin + 0.05 - time.monotonic()))
    print("%d packets" % sent, flush=True)


main()
