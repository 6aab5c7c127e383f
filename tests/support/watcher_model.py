"""A slow, literal model of what a watcher makes of frames, written to be compared with, never to be fast.

It has a resolver that finds no name (or answers in digits), and fetches documents from a given {URL: bytes}.
Local hosts, settings and lists play no part: it answers what the demo LAN's own frames lead to.
"""

import collections
import struct

NOT_AVAILABLE = "Hostname not available"
UNKNOWN = "Unkown operating system"
READ_BYTES = 4096
LABEL_CHARACTERS = 99
BLANKS = " \t\r\n"

# (major, minor or None for any, bits that must be set, label, class or None for "left as it is").
# A label of one blank is settled by the bits for Novell and Mac OS; None leaves the label as it is.
OS_ROWS = (
    (4, None, 0x800, "Unix/Linux", None),
    (4, None, 0x8000, "Microsoft Windows NT 4.0 Server", 2),
    (4, None, 0x1000, "Microsoft Windows NT 4.0 Workstation", 1),
    (4, None, 0, "Microsoft Windows 9x/ME", 1),
    (5, 0, 0x8000, "Microsoft Windows Server 2000", 2),
    (5, 0, 0, "Microsoft Windows 2000 Workstation", 1),
    (5, 1, 0, "Microsoft Windows XP", 1),
    (5, 2, 0, "Microsoft Windows Server 2003", 2),
    (5, None, 0, " ", None),
    (6, 0, 0x8000, "Microsoft Windows Server 2008", 2),
    (6, 0, 0, "Microsoft Windows Vista", 1),
    (6, 1, 0x8000, "Microsoft Windows Server 2008 R2", 2),
    (6, 1, 0, "Microsoft Windows 7", 1),
    (6, 2, 0x8000, "Microsoft Windows Server 2012", 2),
    (6, 2, 0, "Microsoft Windows 8", 1),
    (6, None, 0, None, None),
    (None, None, 0, " ", None),
)
BLANK_ROWS = ((0x80, "Novell", 2), (0x40, "Mac OS", 1), (0, UNKNOWN, None))


def text_at(data, offset):
    """The text from `offset` up to the NUL or the end, as it is."""
    return data[offset:].split(b"\0", 1)[0]


def os_row(major, minor, server_type):
    """The index of the first row that fits."""
    return next(
        index
        for index, (row_major, row_minor, bits, _, _) in enumerate(OS_ROWS)
        if row_major in (None, major) and row_minor in (None, minor) and server_type & bits == bits
    )


def read_announcement(datagram):
    """(name, major, minor, server type) of a NetBIOS datagram's announcement, or None if it is refused.

    `datagram` starts with the NetBIOS header. Offsets in the SMB block follow the setup count that stands in
    it.
    """
    length = struct.unpack_from("!H", datagram, 10)[0]
    source = text_at(datagram, 14)
    target = text_at(datagram, 14 + len(source) + 1)
    names = len(source) + 1 + len(target) + 1
    rest = min(length - names, 512)
    if rest < 1:
        return None
    block = datagram[14 + names : 14 + names + rest].ljust(600, b"\0")
    setup = block[59]
    slot = text_at(block, 63 + 2 * setup)
    if block[4] != 0x25 or block[61 + 2 * setup] == 0 or block[32] == 8 or not slot:
        return None
    if not slot.startswith(b"\\MAILSLOT\\") or slot[10:16] != b"BROWSE":
        return None
    at = 63 + 2 * setup + len(slot) + 1
    if block[at] not in (1, 15):
        return None
    name = text_at(block[at + 6 : at + 22], 0).decode("latin-1")
    return name, block[at + 22], block[at + 23], struct.unpack_from("<I", block, at + 24)[0]


def read_syslog(payload):
    """(severity, facility, text), or None for no record. The payload runs to the frame's end."""
    if payload[:1] != b"<":
        return None
    position, priority = 1, 0
    while position < len(payload) and payload[position : position + 1].isdigit() and position <= 3:
        priority = priority * 10 + int(payload[position : position + 1])
        position += 1
    if payload[position : position + 1] == b">":
        position += 1
    if not 1 <= len(payload) - position < 1024:
        return None
    text = text_at(payload, position)
    if not text:
        return None
    return priority & 7, (priority >> 3) & 127, text.rstrip(b"\n").decode("latin-1")


def text_between(document, opening, closing):
    """The text between two tags, the closing one behind the opening one; None where one is missing."""
    behind = document.partition(opening)
    text, found, _ = behind[2].partition(closing)
    return text if behind[1] and found else None


class WatcherModel:
    """Feed it frames with `see`; read `hosts`, `events`, `syslogs`, `spoofs`, `frames`, `os_rows_met`."""

    def __init__(self, documents, is_numeric=False):
        self._documents = documents
        self._is_numeric = is_numeric
        self.hosts = {}
        self.events = []
        self.syslogs = collections.defaultdict(list)
        self.spoofs = []
        self.frames = collections.Counter()
        self.os_rows_met = set()
        self.fetches = []

    def see(self, frame):
        self.frames["read"] += 1
        ethertype = struct.unpack_from("!H", frame, 12)[0]
        if ethertype in (0x0806, 0x8035):
            self.frames["arp"] += 1
            self._see_arp(frame)
        elif ethertype == 0x0800:
            self.frames["ip"] += 1
            self._see_ip(frame)

    def _event(self, kind, host, info, text=""):
        self.events.append({"kind": kind, "host": host, "info": info, "text": text})

    def _see_arp(self, frame):
        mac = ":".join(f"{octet:02x}" for octet in frame[22:28])
        ip = ".".join(str(octet) for octet in frame[28:32])
        if ip == "0.0.0.0":
            return
        if ip in self.hosts:
            if self.hosts[ip]["mac"] != mac:
                self.spoofs.append((ip, mac))
            return
        self.hosts[ip] = {
            "ip": ip,
            "mac": mac,
            "hostName": ip if self._is_numeric else NOT_AVAILABLE,
            "nameUnresolved": int(not self._is_numeric),
            "os": "",
            "osClass": 0,
            "osFromBrowse": 0,
            "friendlyName": "",
            "presentationUrl": "",
            "upnpDone": 0,
            "deviceProbed": 0,
        }
        self._event(5, self.hosts[ip]["hostName"], ip)

    def _see_ip(self, frame):
        if frame[23] != 17:
            return
        source_port, target_port, length = struct.unpack_from("!HHH", frame, 34)
        source_ip = ".".join(str(octet) for octet in frame[26:30])
        host = self.hosts.get(source_ip)
        payload = frame[42:]
        if (source_port, target_port) == (138, 138):
            self._see_browse(host, payload)
        elif target_port == 514:
            record = read_syslog(payload)
            if record:
                self.syslogs[source_ip].append(dict(zip(("severity", "facility", "text"), record)))
        elif 1900 in (source_port, target_port):
            self._see_ssdp(host, payload)
        elif source_port == 22936 and length - 8 == 320:
            self._see_storage(host, payload)

    def _name(self, host, name):
        if host["nameUnresolved"]:
            host["hostName"], host["nameUnresolved"] = name, 0

    def _see_browse(self, host, datagram):
        announcement = read_announcement(datagram)
        if not announcement or host is None:
            return
        name, major, minor, server_type = announcement
        row = os_row(major, minor, server_type)
        self.os_rows_met.add((row, None))
        _, _, _, label, os_class = OS_ROWS[row]
        if label == " ":
            blank = next(index for index, (bits, _, _) in enumerate(BLANK_ROWS) if server_type & bits == bits)
            self.os_rows_met.add((row, blank))
            _, label, os_class = BLANK_ROWS[blank]
        host["os"] = host["os"] if label is None else label
        host["osClass"] = host["osClass"] if os_class is None else os_class
        host["osFromBrowse"] = 1
        self._name(host, name.lower())

    def _see_ssdp(self, host, payload):
        if host is None or host["upnpDone"]:
            return
        text = text_at(payload, 0).decode("latin-1")
        if not text.startswith(("HTTP/1.1 200 OK\r\n", "NOTIFY * HTTP/1.1\r\n")) or "Location:" not in text:
            return
        url, end, _ = text.split("Location:", 1)[1].partition("\r\n")
        if not end:
            return
        host["upnpDone"] = 1
        url = url.strip(BLANKS)
        if not url.lower().startswith(("http://", "https://")):
            return
        self.fetches.append(url)
        document = text_at(self._documents.get(url, b"")[:READ_BYTES], 0).decode("latin-1")
        name = text_between(document, "<friendlyName>", "</friendlyName>")
        if name is not None:
            host["friendlyName"] = name.split(":", 1)[0].strip(BLANKS)
            self._event(11, host["friendlyName"], host["ip"])
        page = text_between(document, "<presentationURL>", "</presentationURL>")
        if page is not None:
            host["presentationUrl"] = page.strip(BLANKS)

    def _see_storage(self, host, payload):
        if host is None:
            return
        name, model = text_at(payload, 48).decode("latin-1"), text_at(payload, 80).decode("latin-1")
        if name:
            self._name(host, name)
        label = f"{model} FW: {payload[188]}.{payload[189]}"[:LABEL_CHARACTERS]
        if not host["deviceProbed"]:
            host["deviceProbed"] = host["osFromBrowse"] = 1
            self._event(12, host["hostName"], host["ip"], label)
        host["os"] = label
