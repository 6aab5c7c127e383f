"""Takes frames apart, with code of its own: nothing here is shared with what builds the demo LAN's frames."""

import dataclasses
import struct


@dataclasses.dataclass(frozen=True)
class ArpFrame:
    is_rarp: bool
    operation: int
    ethernet_source: str
    sender_mac: str
    sender_ip: str
    target_ip: str


@dataclasses.dataclass(frozen=True)
class UdpFrame:
    source_ip: str
    target_ip: str
    source_port: int
    target_port: int
    payload: bytes
    # What stands behind the payload up to the end of the frame: padding.
    rest: bytes


def mac_text(octets):
    return octets.hex(":")


def ip_text(octets):
    return ".".join(str(octet) for octet in octets)


def ethertype(frame):
    return struct.unpack_from("!H", frame, 12)[0]


def read_arp(frame):
    hardware, protocol, hardware_length, protocol_length, operation = struct.unpack_from("!HHBBH", frame, 14)
    if (hardware, protocol, hardware_length, protocol_length) != (1, 0x0800, 6, 4):
        raise ValueError("no ARP of IPv4 over Ethernet")
    return ArpFrame(
        ethertype(frame) == 0x8035,
        operation,
        mac_text(frame[6:12]),
        mac_text(frame[22:28]),
        ip_text(frame[28:32]),
        ip_text(frame[38:42]),
    )


def folded_sum(data):
    """0xFFFF for data that holds its own right Internet checksum."""
    total = 0
    for index in range(0, len(data), 2):
        total += (data[index] << 8) + (data[index + 1] if index + 1 < len(data) else 0)
    return total % 0xFFFF or 0xFFFF


def ip_segment(frame):
    """(protocol, segment) of an IPv4 frame whose lengths and header checksum are right."""
    header_bytes = (frame[14] & 15) * 4
    total = struct.unpack_from("!H", frame, 16)[0]
    if frame[14] != 0x45 or folded_sum(frame[14 : 14 + header_bytes]) != 0xFFFF or 14 + total > len(frame):
        raise ValueError("no right IPv4 header")
    return frame[23], frame[14 + header_bytes : 14 + total]


def has_right_checksum(frame):
    """True if the checksum of the frame's TCP segment, UDP datagram or ICMP message is right."""
    protocol, segment = ip_segment(frame)
    if protocol == 1:
        return folded_sum(segment) == 0xFFFF
    pseudo_header = frame[26:34] + struct.pack("!BBH", 0, protocol, len(segment))
    return folded_sum(pseudo_header + segment) == 0xFFFF


def read_udp(frame):
    protocol, segment = ip_segment(frame)
    source_port, target_port, length, _ = struct.unpack_from("!HHHH", segment)
    if protocol != 17 or length != len(segment):
        raise ValueError("no right UDP datagram")
    return UdpFrame(
        ip_text(frame[26:30]),
        ip_text(frame[30:34]),
        source_port,
        target_port,
        segment[8:],
        frame[34 + length :],
    )


def read_savefile(path):
    """[(seconds since 1970, frame bytes)] of a little-endian libpcap savefile of link type Ethernet."""
    with open(path, "rb") as source:
        content = source.read()
    magic, major, minor, _, _, _, link_type = struct.unpack_from("<IHHiIII", content)
    if (magic, major, minor, link_type) != (0xA1B2C3D4, 2, 4, 1):
        raise ValueError(f"{path}: no savefile of this kind")
    frames, position = [], 24
    while position < len(content):
        seconds, microseconds, captured, original = struct.unpack_from("<IIII", content, position)
        if captured != original or position + 16 + captured > len(content):
            raise ValueError(f"{path}: torn at {position}")
        frames.append((seconds + microseconds / 1000000, content[position + 16 : position + 16 + captured]))
        position += 16 + captured
    return frames
