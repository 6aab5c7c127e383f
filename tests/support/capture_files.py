"""Savefiles and the few frames that tests put into them, from plain values."""

import socket
import struct

ETHERNET = 1
START = 1_700_000_000  # 2023-11-14 22:13:20 UTC
SHORTEST_FRAME = 60


def mac_bytes(mac):
    return bytes(int(octet, 16) for octet in mac.split(":"))


def ethernet(ether_type, payload, source="02:00:00:00:00:01", target="ff:ff:ff:ff:ff:ff"):
    frame = mac_bytes(target) + mac_bytes(source) + struct.pack(">H", ether_type) + payload
    return frame.ljust(SHORTEST_FRAME, b"\0")


def arp(ip, mac="02:00:00:00:00:01", ether_type=0x0806):
    """A request of `ip` at `mac`; with EtherType 0x8035 the same as RARP."""
    sender = mac_bytes(mac) + socket.inet_aton(ip)
    body = struct.pack(">HHBBH", 1, 0x0800, 6, 4, 1) + sender + bytes(6) + socket.inet_aton("10.0.0.254")
    return ethernet(ether_type, body, mac)


def udp(source_ip, source_port, target_port, payload, target_ip="10.0.0.255"):
    datagram = struct.pack(">HHHH", source_port, target_port, 8 + len(payload), 0) + payload
    header = struct.pack(">BBHHHBBH4s4s", 0x45, 0, 20 + len(datagram), 0, 0, 64, 17, 0, socket.inet_aton(source_ip),
                         socket.inet_aton(target_ip))
    return ethernet(0x0800, header + datagram)


def syslog(source_ip, text):
    return udp(source_ip, 514, 514, text if isinstance(text, bytes) else text.encode("latin-1"))


def savefile(frames, order="<", is_nanosecond=False, link_type=ETHERNET, start=START):
    """The bytes of a savefile; a frame may be bytes, taken in the second `start`, or (seconds, bytes)."""
    magic = 0xA1B23C4D if is_nanosecond else 0xA1B2C3D4
    parts = [struct.pack(order + "IHHiIII", magic, 2, 4, 0, 0, 262144, link_type)]
    for frame in frames:
        seconds, data = frame if isinstance(frame, tuple) else (start, frame)
        fraction = 999_999_999 if is_nanosecond else 999_999
        parts.append(struct.pack(order + "IIII", seconds, fraction, len(data), len(data)) + data)
    return b"".join(parts)


def next_generation_savefile(frames, link_type=ETHERNET, start=START):
    """The same as pcapng: a section, an interface and one enhanced packet block a frame."""

    def block(kind, body):
        length = struct.pack("<I", 12 + len(body))
        return struct.pack("<I", kind) + length + body + length

    parts = [block(0x0A0D0D0A, struct.pack("<IHHq", 0x1A2B3C4D, 1, 0, -1)),
             block(1, struct.pack("<HHI", link_type, 0, 262144))]
    for frame in frames:
        seconds, data = frame if isinstance(frame, tuple) else (start, frame)
        stamp = seconds * 1_000_000
        padded = data + bytes(-len(data) % 4)
        parts.append(block(6, struct.pack("<IIIII", 0, stamp >> 32, stamp & 0xFFFFFFFF, len(data), len(data)) + padded))
    return b"".join(parts)
