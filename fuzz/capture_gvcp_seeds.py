#!/usr/bin/env python3
# Copyright (C) 2026 The kivcamui authors
# SPDX-License-Identifier: BSD-3-Clause
"""Writes the seeds of fuzz_gvcp_ack: the answers of the test peers fake-gige-camera (Aravis's
fake camera) and gvcp-responder to the commands the camera library sends, captured over the
loopback of a network namespace this script makes for itself (unshare -rn), plus a few cut short.

    fuzz/capture_gvcp_seeds.py BUILD_BIN_FOLDER OUTPUT_FOLDER

Nothing leaves the namespace: the peers and this script see only its loopback."""

import os
import socket
import struct
import subprocess
import sys
import time

MARKER = "KIVCAM_GVCP_SEEDS_NAMESPACE"


def command(code, ident, payload=b"", flags=0x01):
    return struct.pack(">BBHHH", 0x42, flags, code, len(payload), ident) + payload


COMMANDS = {
    "discovery": command(0x0002, 1, flags=0x11),
    "readreg-privilege": command(0x0080, 2, struct.pack(">I", 0x0A00)),
    "readreg-heartbeat": command(0x0080, 3, struct.pack(">I", 0x0938)),
    "writereg-privilege": command(0x0082, 5, struct.pack(">II", 0x0A00, 0)),
    "readmem-first-url": command(0x0084, 6, struct.pack(">IHH", 0x0200, 0, 512)),
    "readmem-model": command(0x0084, 7, struct.pack(">IHH", 0x0068, 0, 32)),
    # Last: Aravis's fake camera leaves it unanswered and then stops answering.
    "readreg-invalid-address": command(0x0080, 4, struct.pack(">I", 0xFFFFFFF0)),
}


def ack(status, code, ident, payload):
    return struct.pack(">HHHH", status, code, len(payload), ident) + payload


# Answers the peers never give: a camera asking for more time, refusals, a payload length past
# the datagram's end.
MADE = {
    "pending": ack(0x0000, 0x0089, 2, struct.pack(">HH", 0, 1000)),
    "pending-short": ack(0x0000, 0x0089, 2, b"\0\0"),
    "readreg-access-denied": ack(0x8006, 0x0081, 2, b""),
    "readmem-busy": ack(0x8007, 0x0085, 6, struct.pack(">I", 0x0200)),
    "length-past-end": ack(0x0000, 0x0003, 1, b"")[:4] + b"\xff\xff\x00\x01",
}


def capture(peer, out, prefix):
    sock = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
    # Even the discovery broadcast goes out through the namespace's loopback alone.
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_BINDTODEVICE, b"lo")
    sock.setsockopt(socket.SOL_SOCKET, socket.SO_BROADCAST, 1)
    sock.bind(("127.0.0.1", 0))
    sock.settimeout(0.5)
    for name, packet in COMMANDS.items():
        target = "255.255.255.255" if name == "discovery" else "127.0.0.1"
        sock.sendto(packet, (target, 3956))
        try:
            answer, _ = sock.recvfrom(65536)
        except socket.timeout:
            continue
        with open(os.path.join(out, f"{prefix}-{name}.bin"), "wb") as seed:
            seed.write(answer)
        if name in ("discovery", "readmem-first-url"):
            # Cut short: the header alone, and the payload's first half.
            for cut, size in (("header", 8), ("half", 8 + (len(answer) - 8) // 2)):
                with open(os.path.join(out, f"{prefix}-{name}-{cut}.bin"), "wb") as seed:
                    seed.write(answer[:size])
    sock.close()
    peer.stdin.close()
    peer.wait(10)


def main():
    binaries, out = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    # The marker holds the network namespace the script started in; the script sends nothing
    # until it runs in another one, made by unshare for it.
    here = os.readlink("/proc/self/ns/net")
    started_in = os.environ.get(MARKER)
    if not started_in:
        os.environ[MARKER] = here
        os.execvp("unshare", ["unshare", "-rn", "--", sys.executable] + sys.argv)
    if started_in == here:
        sys.exit("capture_gvcp_seeds.py: not in a network namespace of its own; nothing sent")
    subprocess.run(["ip", "link", "set", "lo", "up"], check=True)
    os.makedirs(out, exist_ok=True)
    for name, packet in MADE.items():
        with open(os.path.join(out, f"made-{name}.bin"), "wb") as seed:
            seed.write(packet)
    fake = subprocess.Popen([os.path.join(binaries, "fake-gige-camera"),
                             "127.0.0.1,GV-SEED,020000000001,Seed Model,seed"],
                            stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    assert fake.stdout.readline().strip() == b"ready"
    capture(fake, out, "fake-camera")
    # The responder takes the loopback as its adapter and gives it its address.
    responder = subprocess.Popen([os.path.join(binaries, "gvcp-responder"), "lo", "127.0.0.1/8",
                                  "0200000000aa", "RESP-1"],
                                 stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    assert responder.stdout.readline().strip() == b"ready"
    time.sleep(0.1)
    capture(responder, out, "responder")


if __name__ == "__main__":
    main()
