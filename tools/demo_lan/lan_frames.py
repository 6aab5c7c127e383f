"""Builds Ethernet frames from field values, byte by byte, and knows nothing of the LAN that they come from.

Addresses are texts ("10.77.0.5", "00:11:22:33:44:55"). Every frame is padded to the 60 bytes that an Ethernet
card puts on the wire (the checksum behind them is never captured), unless the caller says otherwise.
"""

import socket
import struct

BROADCAST_MAC = "ff:ff:ff:ff:ff:ff"
ZERO_MAC = "00:00:00:00:00:00"

ETHERTYPE_IPV4 = 0x0800
ETHERTYPE_ARP = 0x0806
ETHERTYPE_RARP = 0x8035
ETHERTYPE_VLAN = 0x8100
ETHERTYPE_IPV6 = 0x86DD

PROTOCOL_ICMP = 1
PROTOCOL_TCP = 6
PROTOCOL_UDP = 17

ARP_REQUEST = 1
ARP_REPLY = 2
RARP_REQUEST = 3
RARP_REPLY = 4

PORT_NETBIOS_DATAGRAM = 138
PORT_SYSLOG = 514
PORT_SSDP = 1900
PORT_DEVICE_ANNOUNCEMENT = 22936

MINIMUM_FRAME_BYTES = 60

SMB_COM_TRANSACTION = 0x25
BROWSE_HOST_ANNOUNCEMENT = 1
BROWSE_DOMAIN_ANNOUNCEMENT = 12
BROWSE_LOCAL_MASTER_ANNOUNCEMENT = 15

DEVICE_ANNOUNCEMENT_BYTES = 320
DEVICE_NAME_OFFSET = 48
DEVICE_MODEL_OFFSET = 80
DEVICE_FIRMWARE_OFFSET = 188


def mac_bytes(mac):
    return bytes.fromhex(mac.replace(":", ""))


def ip_bytes(ip):
    return socket.inet_aton(ip)


def internet_checksum(data):
    """RFC 1071: the ones' complement of the ones' complement sum over 16-bit words."""
    if len(data) % 2:
        data += b"\0"
    total = sum(struct.unpack(f"!{len(data) // 2}H", data))
    while total >> 16:
        total = (total & 0xFFFF) + (total >> 16)
    return ~total & 0xFFFF


def ethernet(source_mac, target_mac, ethertype, payload, padded=True):
    frame = mac_bytes(target_mac) + mac_bytes(source_mac) + struct.pack("!H", ethertype) + payload
    return frame.ljust(MINIMUM_FRAME_BYTES, b"\0") if padded else frame


def vlan_tagged(frame, vlan_id):
    """The frame with an 802.1Q tag put in front of its EtherType."""
    return frame[:12] + struct.pack("!HH", ETHERTYPE_VLAN, vlan_id) + frame[12:]


def arp(operation, sender_mac, sender_ip, target_mac, target_ip, ethernet_source=None, ethernet_target=None):
    """RFC 826 over Ethernet; operations 3 and 4 go out with the EtherType of RARP (RFC 903)."""
    payload = struct.pack("!HHBBH", 1, ETHERTYPE_IPV4, 6, 4, operation)
    payload += mac_bytes(sender_mac) + ip_bytes(sender_ip) + mac_bytes(target_mac) + ip_bytes(target_ip)
    ethertype = ETHERTYPE_RARP if operation in (RARP_REQUEST, RARP_REPLY) else ETHERTYPE_ARP
    if ethernet_target is None:
        ethernet_target = BROADCAST_MAC if operation in (ARP_REQUEST, RARP_REQUEST) else target_mac
    return ethernet(ethernet_source or sender_mac, ethernet_target, ethertype, payload)


def ipv4(source_mac, source_ip, target_mac, target_ip, protocol, payload, identification=0, padded=True):
    """RFC 791: a header of 20 bytes without options, fragmenting forbidden, 64 hops to live."""
    header = struct.pack("!BBHHHBBH", 0x45, 0, 20 + len(payload), identification, 0x4000, 64, protocol, 0)
    header += ip_bytes(source_ip) + ip_bytes(target_ip)
    header = header[:10] + struct.pack("!H", internet_checksum(header)) + header[12:]
    return ethernet(source_mac, target_mac, ETHERTYPE_IPV4, header + payload, padded)


def transport_checksum(source_ip, target_ip, protocol, segment):
    pseudo_header = ip_bytes(source_ip) + ip_bytes(target_ip) + struct.pack("!BBH", 0, protocol, len(segment))
    return internet_checksum(pseudo_header + segment)


def udp(
    source_mac,
    source_ip,
    source_port,
    target_mac,
    target_ip,
    target_port,
    payload,
    identification=0,
    padded=True,
):
    header = struct.pack("!HHHH", source_port, target_port, 8 + len(payload), 0)
    # RFC 768: a sum that comes out as 0 is sent as 0xFFFF, since 0 means "no checksum".
    checksum = transport_checksum(source_ip, target_ip, PROTOCOL_UDP, header + payload) or 0xFFFF
    segment = header[:6] + struct.pack("!H", checksum) + payload
    return ipv4(source_mac, source_ip, target_mac, target_ip, PROTOCOL_UDP, segment, identification, padded)


def tcp(
    source_mac,
    source_ip,
    source_port,
    target_mac,
    target_ip,
    target_port,
    flags,
    sequence,
    acknowledged,
    payload=b"",
    identification=0,
):
    header = struct.pack(
        "!HHIIBBHHH", source_port, target_port, sequence, acknowledged, 0x50, flags, 64240, 0, 0
    )
    checksum = transport_checksum(source_ip, target_ip, PROTOCOL_TCP, header + payload)
    segment = header[:16] + struct.pack("!H", checksum) + header[18:] + payload
    return ipv4(source_mac, source_ip, target_mac, target_ip, PROTOCOL_TCP, segment, identification)


def icmp_echo(source_mac, source_ip, target_mac, target_ip, is_reply, identifier, sequence, identification=0):
    payload = bytes(range(0x61, 0x61 + 23)) + bytes(range(0x61, 0x61 + 9))
    message = struct.pack("!BBHHH", 0 if is_reply else 8, 0, 0, identifier, sequence) + payload
    message = message[:2] + struct.pack("!H", internet_checksum(message)) + message[4:]
    return ipv4(source_mac, source_ip, target_mac, target_ip, PROTOCOL_ICMP, message, identification)


def ipv6_multicast_dns(source_mac):
    """A frame of the other IP version: a multicast DNS query from a link-local address."""
    query = (
        struct.pack("!HHHHHH", 0, 0, 1, 0, 0, 0)
        + b"\x05_http\x04_tcp\x05local\x00"
        + struct.pack("!HH", 12, 1)
    )
    datagram = struct.pack("!HHHH", 5353, 5353, 8 + len(query), 0) + query
    octets = mac_bytes(source_mac)
    source = (
        bytes.fromhex("fe80000000000000") + bytes((octets[0] ^ 2,)) + octets[1:3] + b"\xff\xfe" + octets[3:]
    )
    target = bytes.fromhex("ff0200000000000000000000000000fb")
    checksum = internet_checksum(source + target + struct.pack("!II", len(datagram), PROTOCOL_UDP) + datagram)
    datagram = datagram[:6] + struct.pack("!H", checksum or 0xFFFF) + datagram[8:]
    header = struct.pack("!IHBB", 6 << 28, len(datagram), PROTOCOL_UDP, 255) + source + target
    return ethernet(source_mac, "33:33:00:00:00:fb", ETHERTYPE_IPV6, header + datagram)


def spanning_tree_hello(source_mac):
    """An IEEE 802.3 frame: offset 12 holds a length, not an EtherType."""
    bridge = b"\x80\x00" + mac_bytes(source_mac)
    hello = bytes.fromhex("424203" + "0000000000") + bridge + bytes(4) + bridge
    hello += struct.pack("!HHHHH", 0x8001, 0, 20 * 256, 2 * 256, 15 * 256)
    return ethernet(source_mac, "01:80:c2:00:00:00", len(hello), hello)


def netbios_encoded(name, suffix):
    """RFC 1001 first-level encoding: each half octet of the 16-byte name as a letter from A on, a NUL."""
    padded = name.upper().encode("ascii").ljust(15)[:15] + bytes((suffix,))
    letters = bytes(0x41 + half for octet in padded for half in (octet >> 4, octet & 15))
    return bytes((len(letters),)) + letters + b"\0"


def browse_announcement(
    operation,
    name,
    major,
    minor,
    server_type,
    comment="",
    mailslot="\\MAILSLOT\\BROWSE",
    command=SMB_COM_TRANSACTION,
    word_count=17,
):
    """The SMB block of an announcement: a mailslot write, three setup words, slot name, data."""
    data = struct.pack("<BBI", operation, 0, 720000) + name.upper().encode("ascii")[:15].ljust(16, b"\0")
    data += struct.pack("<BBIBBH", major, minor, server_type, 15, 1, 0xAA55) + comment.encode("ascii") + b"\0"
    slot = mailslot.encode("ascii") + b"\0"
    data_offset = 32 + 1 + 34 + 2 + len(slot)
    header = b"\xffSMB" + bytes((command,)) + bytes(27)
    words = struct.pack(
        "<HHHHBBHIHHHHHBB", 0, len(data), 0, 0, 0, 0, 0, 1000, 0, 0, 0, len(data), data_offset, 3, 0
    )
    setup = struct.pack("<HHH", 1, 1, 2)
    return (
        header + bytes((word_count,)) + words + setup + struct.pack("<H", len(slot) + len(data)) + slot + data
    )


def netbios_datagram(
    source_mac,
    source_ip,
    broadcast_ip,
    source_name,
    group_name,
    smb_block,
    identification=0,
    source_port=PORT_NETBIOS_DATAGRAM,
):
    """RFC 1002 direct group datagram, broadcast on the LAN."""
    names_and_data = netbios_encoded(source_name, 0x20) + netbios_encoded(group_name, 0x1D) + smb_block
    header = struct.pack("!BBH", 0x11, 0x0A, identification) + ip_bytes(source_ip)
    header += struct.pack("!HHH", PORT_NETBIOS_DATAGRAM, len(names_and_data), 0)
    return udp(
        source_mac,
        source_ip,
        source_port,
        BROADCAST_MAC,
        broadcast_ip,
        PORT_NETBIOS_DATAGRAM,
        header + names_and_data,
        identification,
    )


def device_announcement(host_name, model, firmware_major, firmware_minor, length=DEVICE_ANNOUNCEMENT_BYTES):
    """The payload by which a network storage box tells its name, model and firmware."""
    payload = bytearray(length)
    for offset, text in ((DEVICE_NAME_OFFSET, host_name), (DEVICE_MODEL_OFFSET, model)):
        encoded = text.encode("ascii") + b"\0"
        payload[offset : offset + len(encoded)] = encoded
    payload[DEVICE_FIRMWARE_OFFSET : DEVICE_FIRMWARE_OFFSET + 2] = bytes((firmware_major, firmware_minor))
    return bytes(payload)
