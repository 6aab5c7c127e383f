"""The demo LAN: who is on it, what each host says, and what a watcher must make of it.

Everything else (the frames, their times, the device documents, the expectations) is derived from this one
description. The labels beside the announcements are written out by hand, not computed, so that they can be
held against a program's own table.
"""

import dataclasses
import random

NETWORK = "10.77.0.0/24"
BROADCAST_IP = "10.77.0.255"
GATEWAY_IP = "10.77.0.1"
# Left free for the machines that watch and inject: nobody on the LAN uses these two.
WATCHER_IP = "10.77.0.2"
INJECTOR_IP = "10.77.0.3"
WORKGROUP = "VALLEY"

# Server type bits of a browse announcement.
WORKSTATION = 0x1
SERVER = 0x2
DOMAIN_CONTROLLER = 0x8
APPLE_FILES = 0x40
NOVELL = 0x80
PRINT_QUEUE = 0x200
UNIX = 0x800
NT = 0x1000
SERVER_NT = 0x8000
MASTER_BROWSER = 0x40000
BASIC = WORKSTATION | SERVER

UNKNOWN_OS = "Unkown operating system"


@dataclasses.dataclass(frozen=True)
class Announcement:
    """A NetBIOS browse announcement: operation 1 (host) or 15 (local master) counts, others are passed by."""
    major: int
    minor: int
    server_type: int
    operation: int = 1


@dataclasses.dataclass(frozen=True)
class SsdpDevice:
    """A device's SSDP messages and document, and what a watcher takes from them.

    `message` is "notify", "response", or one of the forms that are passed by. `name_element` is the friendly
    name as the document spells it, where that differs from the name that is taken. A dead device's document
    is served by nobody; a late one tells its name behind the bytes that are read.
    """
    document: str
    message: str = "notify"
    friendly_name: str = ""
    presentation_url: str = ""
    name_element: str = ""
    is_fetched: bool = True
    is_dead: bool = False
    is_late: bool = False


@dataclasses.dataclass(frozen=True)
class StorageBox:
    """A network storage box that announces itself in a datagram of `length` bytes; only 320 are right."""
    name: str
    model: str
    firmware: tuple
    length: int = 320


@dataclasses.dataclass(frozen=True)
class Syslog:
    """A syslog payload and the record that it makes (`text` None: none; bytes of 0x80 and up stay bytes)."""
    payload: bytes
    facility: int = 0
    severity: int = 0
    text: bytes = None
    source_port: int = 514
    is_padded: bool = True


@dataclasses.dataclass(frozen=True)
class Host:
    """One host as the watcher must see it. `prefix` holds the three octets of its card's maker."""
    ip: str
    prefix: str
    about: str
    name: str = ""
    announcements: tuple = ()
    os: str = ""
    os_class: int = 0
    arp_style: str = "request"
    ssdp: SsdpDevice = None
    storage: tuple = ()
    spoofed_by: str = ""
    has_vendor: bool = True


def _announcer(ip, prefix, name, about, major, minor, server_type, os, os_class, operation=1, **more):
    announcements = (Announcement(major, minor, server_type, operation),)
    return Host(ip, prefix, about, name, announcements, os, os_class, **more)


# Every row of the table of operating systems has a host of its own.
ANNOUNCING_HOSTS = (
    _announcer("10.77.0.10", "40:f2:e9", "OLDPDC", "file server of the office", 4, 0,
               BASIC | DOMAIN_CONTROLLER | NT | SERVER_NT, "Microsoft Windows NT 4.0 Server", 2),
    _announcer("10.77.0.11", "08:00:2b", "DRAFTING", "drawing workstation", 4, 0, BASIC | NT,
               "Microsoft Windows NT 4.0 Workstation", 1),
    _announcer("10.77.0.12", "00:e0:4c", "TILL", "cash desk", 4, 10, BASIC | 0x400000,
               "Microsoft Windows 9x/ME", 1, arp_style="gratuitous request"),
    # The Unix bit comes before the server bit, and it leaves the class alone.
    _announcer("10.77.0.13", "0c:c4:7a", "PENGUIN", "mail and print server", 4, 9,
               BASIC | PRINT_QUEUE | UNIX | NT | SERVER_NT, "Unix/Linux", 0, arp_style="behind a repeater"),
    _announcer("10.77.0.14", "98:e7:43", "LEDGER", "bookkeeping server", 5, 0, BASIC | NT | SERVER_NT,
               "Microsoft Windows Server 2000", 2),
    _announcer("10.77.0.15", "ac:ed:5c", "RECEPTION", "its address is claimed by another card", 5, 0,
               BASIC | NT, "Microsoft Windows 2000 Workstation", 1, spoofed_by="10.77.0.31"),
    _announcer("10.77.0.16", "04:92:26", "WORKSHOP", "bench computer", 5, 1, BASIC | NT,
               "Microsoft Windows XP", 1, arp_style="gratuitous reply"),
    _announcer("10.77.0.17", "98:e7:43", "ARCHIVE", "archive server", 5, 2, BASIC | NT | SERVER_NT,
               "Microsoft Windows Server 2003", 2),
    _announcer("10.77.0.18", "00:00:d8", "NETWARE", "old file server", 5, 3, BASIC | NOVELL, "Novell", 2),
    _announcer("10.77.0.19", "60:8b:0e", "STUDIO", "sound desk", 5, 3, BASIC | APPLE_FILES, "Mac OS", 1),
    _announcer("10.77.0.20", "68:84:7e", "ODDBOX", "a version that nobody shipped", 5, 3, BASIC | NT,
               UNKNOWN_OS, 0),
    _announcer("10.77.0.21", "0c:c4:7a", "BUILD", "build server", 6, 0, BASIC | NT | SERVER_NT,
               "Microsoft Windows Server 2008", 2),
    _announcer("10.77.0.22", "40:8d:5c", "LIBRARY", "reading room", 6, 0, BASIC | NT,
               "Microsoft Windows Vista", 1),
    _announcer("10.77.0.23", "98:e7:43", "BACKUP", "backup server", 6, 1, BASIC | NT | SERVER_NT,
               "Microsoft Windows Server 2008 R2", 2),
    _announcer("10.77.0.24", "ac:ed:5c", "PLANNING", "local master browser", 6, 1,
               BASIC | NT | MASTER_BROWSER, "Microsoft Windows 7", 1, operation=15),
    _announcer("10.77.0.25", "40:f2:e9", "DIRECTORY", "directory server, a local master too", 6, 2,
               BASIC | DOMAIN_CONTROLLER | NT | SERVER_NT | MASTER_BROWSER, "Microsoft Windows Server 2012",
               2, operation=15),
    # Its search requests are nobody's business: only answers and notifications count.
    _announcer("10.77.0.26", "04:92:26", "TABLET", "searches for devices", 6, 2, BASIC | NT,
               "Microsoft Windows 8", 1, ssdp=SsdpDevice("", "search", is_fetched=False)),
    # A minor version above 2 leaves the label as it is, here: empty.
    _announcer("10.77.0.27", "ac:ed:5c", "LAPTOP81", "newer laptop", 6, 3, BASIC | NT, "", 0),
    Host("10.77.0.28", "24:6f:28", "first announces 6.1, then 6.3", "TWOFACED",
         (Announcement(6, 1, BASIC | NT), Announcement(6, 3, BASIC | NT)), "Microsoft Windows 7", 1),
    _announcer("10.77.0.29", "bc:c3:42", "MODERN", "a major version out of the table", 10, 0, BASIC | NT,
               UNKNOWN_OS, 0),
    _announcer("10.77.0.30", "00:00:d8", "ANCIENT", "another major version, with both bits", 3, 12,
               BASIC | NOVELL | APPLE_FILES, "Novell", 2),
    _announcer("10.77.0.31", "60:8b:0e", "ORCHARD", "claims a second address besides its own", 8, 1,
               BASIC | APPLE_FILES, "Mac OS", 1),
)

QUIET_HOSTS = (
    Host(GATEWAY_IP, "98:9b:cb", "router; answers everybody's requests", arp_style="replies",
         ssdp=SsdpDevice("gateway", friendly_name="Valley Gateway", presentation_url="http://10.77.0.1/")),
    Host("10.77.0.35", "f4:bd:9e", "switch; sends spanning tree hellos"),
    Host("10.77.0.36", "80:5e:c0", "desk telephone that boots by RARP", arp_style="rarp request"),
    Host("10.77.0.37", "00:21:b7", "printer, known from a RARP server's reply only", arp_style="rarp reply"),
    Host("10.77.0.38", "3e:5b:7c", "telephone with a random card address", has_vendor=False,
         arp_style="probes first"),
    Host("10.77.0.39", "dc:a6:32", "sends announcements that must all be refused", "REFUSED"),
    Host("10.77.0.40", "d0:d0:03", "television",
         ssdp=SsdpDevice("television", friendly_name="Meeting Room TV",
                         presentation_url="http://10.77.0.40:8001/")),
    Host("10.77.0.41", "54:2a:1b", "loudspeaker; answers searches",
         ssdp=SsdpDevice("loudspeaker", "response", friendly_name="NAS",
                         name_element=" NAS: Living Room ")),
    Host("10.77.0.42", "00:11:32", "media server whose document tells its name too late",
         ssdp=SsdpDevice("media-server", name_element="Too Late", is_late=True)),
    Host("10.77.0.43", "b8:a4:4f", "camera that spells the header LOCATION",
         ssdp=SsdpDevice("camera", "upper case", is_fetched=False)),
    Host("10.77.0.44", "00:80:77", "printer without a friendly name",
         ssdp=SsdpDevice("printer", presentation_url="http://10.77.0.44/status.html")),
    Host("10.77.0.45", "d0:4d:2c", "player whose document nobody serves",
         ssdp=SsdpDevice("player", is_dead=True)),
    Host("10.77.0.46", "00:17:88", "bridge whose notification starts with another line",
         ssdp=SsdpDevice("bridge", "late start", is_fetched=False)),
    Host("10.77.0.50", "34:3d:c4", "network storage box", "LS-Attic", os="LS-WVL FW: 1.64",
         storage=(StorageBox("LS-Attic", "LS-WVL", (1, 64)),)),
    Host("10.77.0.51", "34:3d:c4", "storage box with announcements of a wrong length",
         storage=(StorageBox("LS-Short", "LS-QL", (1, 2), 319), StorageBox("LS-Long", "LS-QL", (1, 2), 321))),
)

HOSTS = QUIET_HOSTS[:1] + ANNOUNCING_HOSTS + QUIET_HOSTS[1:]

# Addresses that stand in frames without ever being an ARP sender.
UNANSWERED_IP = "10.77.0.200"
PROBED_IP = "10.77.0.201"
TAGGED_IP = "10.77.0.202"
STRANGER_IP = "10.77.0.90"
REMOTE_SYSLOG_IP = "198.51.100.7"
INTERNET_IP = "203.0.113.80"
NEVER_HOSTS = ("0.0.0.0", UNANSWERED_IP, PROBED_IP, TAGGED_IP, STRANGER_IP, REMOTE_SYSLOG_IP, INTERNET_IP,
               BROADCAST_IP, "239.255.255.250")

# What each sender says in one round, in this order.
SYSLOG = {
    GATEWAY_IP: (
        Syslog(b"<13>hello", 1, 5, b"hello"),
        Syslog(b"<134>Mar  4 08:15:02 gateway dhcpd: DHCPACK on 10.77.0.38", 16, 6,
               b"Mar  4 08:15:02 gateway dhcpd: DHCPACK on 10.77.0.38"),
        Syslog(b"<4>kernel: DROP IN=wan SRC=203.0.113.80", 0, 4, b"kernel: DROP IN=wan SRC=203.0.113.80"),
        Syslog(b"<0>kernel: temperature above limit", 0, 0, b"kernel: temperature above limit"),
    ),
    "10.77.0.35": (
        Syslog(b"<1234>x", 15, 3, b"4>x"),
        Syslog(b"<13hello", 1, 5, b"hello"),
        Syslog(b"<>text", 0, 0, b"text"),
        Syslog(b"no number in front"),
        Syslog(b"<13>"),
        Syslog(b"<13>", is_padded=False),
        Syslog(b"<191>" + b"l" * 1023, 23, 7, b"l" * 1023),
        Syslog(b"<191>" + b"m" * 1024),
        Syslog(b"<189>%LINK-5-UPDOWN: port 7 changed state to up", 23, 5,
               b"%LINK-5-UPDOWN: port 7 changed state to up"),
    ),
    "10.77.0.13": (
        Syslog(b"<38>sshd[812]: Failed password for root\n\n", 4, 6, b"sshd[812]: Failed password for root"),
        Syslog(b"<78>cron[77]: (root) CMD (backup)\r\n", 9, 6, b"cron[77]: (root) CMD (backup)\r"),
        Syslog(b"<14>only line feeds follow\n\n\n\n", 1, 6, b"only line feeds follow"),
        Syslog(b"<14>\n", 1, 6, b""),
        Syslog(b"<14>100 %s of %n and %x", 1, 6, b"100 %s of %n and %x"),
        Syslog(b"<14>caf\xe9 opened", 1, 6, b"caf\xe9 opened"),
        Syslog(b"<14>before\0behind", 1, 6, b"before"),
        Syslog(b"<14>from the NetBIOS port", 1, 6, b"from the NetBIOS port", source_port=138),
    ),
    STRANGER_IP: (
        Syslog(b"<29>ups: on battery", 3, 5, b"ups: on battery", source_port=40514),
    ),
    REMOTE_SYSLOG_IP: (
        Syslog(b"<165>branch office: tunnel up", 20, 5, b"branch office: tunnel up", source_port=51400),
        Syslog(b"<1>branch office: intruder", 0, 1, b"branch office: intruder", source_port=51400),
    ),
}


@dataclasses.dataclass(frozen=True)
class Lan:
    """The description with its seed: the same seed gives the same cards, frames and times."""
    seed: int = 1

    def mac(self, ip):
        """The card's address: the host's prefix and three octets drawn from the seed."""
        host = next((host for host in HOSTS if host.ip == ip), None)
        prefix = host.prefix if host else "00:1c:14"
        serial = random.Random(f"{self.seed}/card/{ip}").randrange(1, 1 << 24)
        return prefix + "".join(f":{octet:02x}" for octet in serial.to_bytes(3, "big"))
