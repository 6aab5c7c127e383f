"""Captures what arrives on an interface for some seconds; prints a line "SECONDS HEX" for each frame.

    capture_frames.py INTERFACE SECONDS

Prints "ready" first, once nothing can be missed any more. An interface that goes away and comes back is
opened anew.
"""

import socket
import struct
import sys
import time

ETH_P_ALL = 0x0003
PACKET_OUTGOING = 4
# linux/if_packet.h; the socket module has no names for these.
SOL_PACKET = 263
PACKET_AUXDATA = 8
AUXDATA = struct.Struct("=IIIHHHH")
TP_STATUS_VLAN_VALID = 0x10


def open_socket(interface):
    """A socket with a short time-out on the interface, or None while there is no such interface."""
    capture = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, socket.htons(ETH_P_ALL))
    try:
        capture.bind((interface, ETH_P_ALL))
    except OSError:
        capture.close()
        return None
    capture.setsockopt(SOL_PACKET, PACKET_AUXDATA, 1)
    capture.settimeout(0.1)
    return capture


def receive(capture):
    """(frame, whether it came in). An 802.1Q tag, which the system tells aside, is put back."""
    frame, notes, _, address = capture.recvmsg(65536, socket.CMSG_SPACE(AUXDATA.size))
    for _, _, data in notes:
        status, _, _, _, _, tag, tag_type = AUXDATA.unpack(data)
        if status & TP_STATUS_VLAN_VALID:
            frame = frame[:12] + struct.pack("!HH", tag_type or 0x8100, tag) + frame[12:]
    return frame, address[2] != PACKET_OUTGOING


def main(interface, seconds):
    capture = open_socket(interface)
    print("ready", flush=True)
    start = time.monotonic()
    while time.monotonic() - start < seconds:
        try:
            if capture is None:
                time.sleep(0.05)
                capture = open_socket(interface)
                continue
            frame, is_incoming = receive(capture)
        except TimeoutError:
            continue
        except OSError:
            capture.close()
            capture = None
            continue
        if is_incoming:
            print(f"{time.monotonic() - start:.6f} {frame.hex()}", flush=True)


if __name__ == "__main__":
    main(sys.argv[1], float(sys.argv[2]))
