"""The order and the times of the demo LAN's frames.

The LAN speaks in rounds of ten seconds. Each round holds everything that the LAN has to say, each host's
frames in the order of its script (ARP first), the scripts of the hosts mixed by the seed, ordinary traffic
strewn in between. The frames of a round are spread evenly over it, so the LAN never falls silent, and whoever
starts to listen in the middle of a round has heard all of it one round later.
"""

import dataclasses
import random

import lan_description as lan
import lan_documents
import lan_frames as wire

ROUND_SECONDS = 10.0
# Frames of one burst follow each other at this distance; a burst is never broken up by another host's frames.
BURST_SECONDS = 0.002
SSDP_GROUP_IP = "239.255.255.250"
SSDP_GROUP_MAC = "01:00:5e:7f:ff:fa"
DEFAULT_HTTP_BASE = "http://127.0.0.1:8977"

TCP_SYN, TCP_ACK, TCP_PUSH_ACK, TCP_FIN_ACK = 0x02, 0x10, 0x18, 0x11


@dataclasses.dataclass(frozen=True)
class Frame:
    """A frame, `seconds` after the start; `syslog` is (sender, the description's message) if it has one."""
    seconds: float
    data: bytes
    syslog: tuple = None


class Speaker:
    """Makes the frames of one LAN. A burst is a list of (frame, syslog note) that stays together."""

    def __init__(self, description, http_base=DEFAULT_HTTP_BASE):
        self._lan = description
        self._http_base = http_base
        self._identification = 0
        self.gateway_mac = description.mac(lan.GATEWAY_IP)

    def _next_identification(self):
        self._identification = (self._identification + 1) & 0xFFFF
        return self._identification

    def _mac(self, ip):
        return self._lan.mac(ip)

    # ARP and RARP

    def _arp_request(self, ip, wanted_ip, **more):
        return wire.arp(wire.ARP_REQUEST, self._mac(ip), ip, wire.ZERO_MAC, wanted_ip, **more)

    def _gateway_reply(self, ip):
        return wire.arp(wire.ARP_REPLY, self.gateway_mac, lan.GATEWAY_IP, self._mac(ip), ip)

    def _arp_replies(self, host):
        """The gateway answers a request, so that it is known without asking anything itself."""
        return [self._gateway_reply("10.77.0.10"), self._arp_request(host.ip, lan.UNANSWERED_IP)]

    def _arp_plain(self, host):
        return [self._arp_request(host.ip, lan.GATEWAY_IP), self._gateway_reply(host.ip)]

    def _arp_gratuitous_request(self, host):
        return [self._arp_request(host.ip, host.ip)]

    def _arp_gratuitous_reply(self, host):
        mac = self._mac(host.ip)
        return [wire.arp(wire.ARP_REPLY, mac, host.ip, wire.BROADCAST_MAC, host.ip)]

    def _arp_behind_repeater(self, host):
        """The Ethernet source is the repeater's; the card's own address stands in the ARP part alone."""
        return [self._arp_request(host.ip, lan.GATEWAY_IP, ethernet_source=self._mac("repeater"))]

    def _rarp_request(self, host):
        mac = self._mac(host.ip)
        unknown = wire.arp(wire.RARP_REQUEST, mac, "0.0.0.0", mac, "0.0.0.0")
        return [unknown, wire.arp(wire.RARP_REQUEST, mac, host.ip, mac, "0.0.0.0")]

    def _rarp_reply(self, host):
        mac = self._mac(host.ip)
        return [wire.arp(wire.RARP_REPLY, mac, host.ip, self._mac("10.77.0.36"), "10.77.0.36")]

    def _arp_with_probes(self, host):
        """RFC 5227: probes from 0.0.0.0, then the announcement. The first address probed for was taken."""
        mac = self._mac(host.ip)
        probes = [wire.arp(wire.ARP_REQUEST, mac, "0.0.0.0", wire.ZERO_MAC, ip)
                  for ip in (lan.PROBED_IP, host.ip)]
        return probes + [self._arp_request(host.ip, host.ip)]

    ARP_STYLES = {
        "replies": _arp_replies, "request": _arp_plain, "gratuitous request": _arp_gratuitous_request,
        "gratuitous reply": _arp_gratuitous_reply, "behind a repeater": _arp_behind_repeater,
        "rarp request": _rarp_request, "rarp reply": _rarp_reply, "probes first": _arp_with_probes,
    }

    def _introduction(self, host):
        return [(frame, None) for frame in self.ARP_STYLES[host.arp_style](self, host)]

    def _spoof(self, host):
        """The owner speaks right before the other card, so that a listener meets the owner's card first."""
        other_mac = self._mac(host.spoofed_by)
        claim = wire.arp(wire.ARP_REPLY, other_mac, host.ip, self.gateway_mac, lan.GATEWAY_IP)
        return [(self._arp_request(host.ip, lan.GATEWAY_IP), None), (claim, None)]

    # Browse announcements

    def _browse_frame(self, ip, name, block, **more):
        return wire.netbios_datagram(self._mac(ip), ip, lan.BROADCAST_IP, name, lan.WORKGROUP, block,
                                     self._next_identification(), **more)

    def _announcement(self, ip, name, announcement, **more):
        block = wire.browse_announcement(announcement.operation, name, announcement.major, announcement.minor,
                                         announcement.server_type, **more)
        return (self._browse_frame(ip, name, block), None)

    def _refused_announcements(self, ip, name):
        """What looks like an announcement and must name no operating system."""
        windows = lan.Announcement(6, 1, lan.BASIC | lan.NT)
        workgroup = lan.Announcement(6, 1, lan.BASIC | lan.NT, wire.BROWSE_DOMAIN_ANNOUNCEMENT)
        block = wire.browse_announcement(1, name, 6, 1, lan.BASIC | lan.NT)
        return [[self._announcement(ip, name, workgroup)],
                [self._announcement(ip, name, windows, command=0x26)],
                [self._announcement(ip, name, windows, word_count=8)],
                [self._announcement(ip, name, windows, mailslot="\\MAILSLOT\\NET\\NETLOGON")],
                [(self._browse_frame(ip, name, block, source_port=1138), None)]]

    # SSDP and storage boxes

    def _ssdp_text(self, host):
        device = host.ssdp
        url = lan_documents.location(host, self._http_base)
        name = f"uuid:{lan_documents.unique_name(host)}"
        server = "SERVER: Valley/1.0 UPnP/1.0\r\n"
        notify = (f"NOTIFY * HTTP/1.1\r\nHOST: {SSDP_GROUP_IP}:1900\r\nCACHE-CONTROL: max-age=1800\r\n"
                  f"Location: {url}\r\nNT: upnp:rootdevice\r\nNTS: ssdp:alive\r\n{server}"
                  f"USN: {name}::upnp:rootdevice\r\n\r\n")
        return {
            "notify": notify,
            "upper case": notify.replace("Location:", "LOCATION:"),
            "late start": "X-Before: 1\r\n" + notify,
            "search": (f"M-SEARCH * HTTP/1.1\r\nHOST: {SSDP_GROUP_IP}:1900\r\nMAN: \"ssdp:discover\"\r\n"
                       f"MX: 2\r\nST: ssdp:all\r\nLocation: {url}\r\n\r\n"),
            "response": (f"HTTP/1.1 200 OK\r\nCACHE-CONTROL: max-age=1800\r\nEXT:\r\n"
                         f"Location:   {url}  \r\n{server}ST: upnp:rootdevice\r\n"
                         f"USN: {name}::upnp:rootdevice\r\n\r\n"),
        }[device.message].encode("ascii")

    def _ssdp(self, host):
        mac, text = self._mac(host.ip), self._ssdp_text(host)
        if host.ssdp.message == "response":
            searcher = "10.77.0.26"
            return (wire.udp(mac, host.ip, wire.PORT_SSDP, self._mac(searcher), searcher, 50126, text,
                             self._next_identification()), None)
        source_port = 50126 if host.ssdp.message == "search" else wire.PORT_SSDP
        return (wire.udp(mac, host.ip, source_port, SSDP_GROUP_MAC, SSDP_GROUP_IP, wire.PORT_SSDP, text,
                         self._next_identification()), None)

    def _storage(self, ip, box):
        payload = wire.device_announcement(box.name, box.model, *box.firmware, length=box.length)
        port = wire.PORT_DEVICE_ANNOUNCEMENT
        return (wire.udp(self._mac(ip), ip, port, wire.BROADCAST_MAC, lan.BROADCAST_IP, port, payload,
                         self._next_identification()), None)

    # Syslog

    def _syslog(self, ip, message):
        source_mac = self.gateway_mac if ip == lan.REMOTE_SYSLOG_IP else self._mac(ip)
        collector = "10.77.0.17"
        frame = wire.udp(source_mac, ip, message.source_port, self._mac(collector), collector,
                         wire.PORT_SYSLOG, message.payload, self._next_identification(), message.is_padded)
        return (frame, (ip, message))

    # Scripts

    def script(self, host):
        """The bursts of one host in one round, in order."""
        bursts = [self._introduction(host)]
        if host.spoofed_by:
            bursts.append(self._spoof(host))
        if host.announcements:
            # One burst: a listener who hears the last announcement has heard those before it.
            bursts.append([self._announcement(host.ip, host.name, each) for each in host.announcements])
        elif host.name == "REFUSED":
            bursts += self._refused_announcements(host.ip, host.name)
        if host.ssdp:
            bursts.append([self._ssdp(host)])
        bursts += [[self._storage(host.ip, box)] for box in host.storage]
        return bursts + [[self._syslog(host.ip, message)] for message in lan.SYSLOG.get(host.ip, ())]

    def stranger_script(self):
        """Frames from addresses that ARP never tells of: nothing of this may become a host."""
        ip, name = lan.STRANGER_IP, "STRANGER"
        windows = lan.Announcement(6, 1, lan.BASIC | lan.NT)
        device = lan.Host(ip, "", "", ssdp=lan.SsdpDevice("television"))
        box = lan.StorageBox("LS-Stranger", "LS-WVL", (1, 64))
        tagged = wire.arp(wire.ARP_REQUEST, self._mac(ip), lan.TAGGED_IP, wire.ZERO_MAC, lan.GATEWAY_IP)
        bursts = [[self._announcement(ip, name, windows)], [self._ssdp(device)], [self._storage(ip, box)],
                  [(wire.vlan_tagged(tagged, 12), None)]]
        return bursts + [[self._syslog(sender, message)] for sender in (ip, lan.REMOTE_SYSLOG_IP)
                         for message in lan.SYSLOG[sender]]

    def ordinary_traffic(self, chance):
        """TCP, UDP and ICMP that leads nowhere, and frames that the capture filter holds back."""
        bursts = [self._web_visit(chance) for _ in range(4)]
        bursts += [self._name_lookup(chance) for _ in range(4)] + [self._ping(chance) for _ in range(3)]
        switch_mac = self._mac("10.77.0.35")
        bursts += [[(wire.spanning_tree_hello(switch_mac), None)] for _ in range(5)]
        return bursts + [[(wire.ipv6_multicast_dns(self._mac(self._anyone(chance))), None)] for _ in range(2)]

    @staticmethod
    def _anyone(chance):
        return chance.choice(lan.ANNOUNCING_HOSTS).ip

    def _web_visit(self, chance):
        client, port, start = self._anyone(chance), chance.randrange(49152, 65536), chance.randrange(1 << 31)
        answer = chance.randrange(1 << 31)
        request = b"GET / HTTP/1.1\r\nHost: shop.example\r\n\r\n"
        page = b"HTTP/1.1 200 OK\r\nContent-Length: 5\r\n\r\nhello"
        out = (self._mac(client), client, port, self.gateway_mac, lan.INTERNET_IP, 80)
        back = (self.gateway_mac, lan.INTERNET_IP, 80, self._mac(client), client, port)
        steps = ((out, TCP_SYN, start, 0, b""), (back, TCP_SYN | TCP_ACK, answer, start + 1, b""),
                 (out, TCP_ACK, start + 1, answer + 1, b""),
                 (out, TCP_PUSH_ACK, start + 1, answer + 1, request),
                 (back, TCP_PUSH_ACK, answer + 1, start + 1 + len(request), page),
                 (out, TCP_FIN_ACK, start + 1 + len(request), answer + 1 + len(page), b""))
        return [(wire.tcp(*ends, flags, sequence, acknowledged, data, self._next_identification()), None)
                for ends, flags, sequence, acknowledged, data in steps]

    def _name_lookup(self, chance):
        client, port = self._anyone(chance), chance.randrange(49152, 65536)
        query = chance.randbytes(2) + b"\x01\0\0\x01\0\0\0\0\0\0\x04shop\x07example\0\0\x01\0\x01"
        answer = query[:2] + b"\x81\x80\0\x01\0\x01" + query[8:] + b"\xc0\x0c\0\x01\0\x01\0\0\x0e\x10\0\x04"
        answer += wire.ip_bytes(lan.INTERNET_IP)
        return [(wire.udp(self._mac(client), client, port, self.gateway_mac, lan.GATEWAY_IP, 53, query,
                          self._next_identification()), None),
                (wire.udp(self.gateway_mac, lan.GATEWAY_IP, 53, self._mac(client), client, port, answer,
                          self._next_identification()), None)]

    def _ping(self, chance):
        client, identifier = self._anyone(chance), chance.randrange(1 << 16)
        mac = self._mac(client)
        return [(wire.icmp_echo(mac, client, self.gateway_mac, lan.GATEWAY_IP, False, identifier, 1,
                                self._next_identification()), None),
                (wire.icmp_echo(self.gateway_mac, lan.GATEWAY_IP, mac, client, True, identifier, 1,
                                self._next_identification()), None)]

    def round_bursts(self, number):
        """All bursts of one round, mixed by the seed with each script in its own order."""
        chance = random.Random(f"{self._lan.seed}/round/{number}")
        scripts = [self.script(host) for host in lan.HOSTS] + [self.stranger_script()]
        scripts += [[burst] for burst in self.ordinary_traffic(chance)]
        turns = [index for index, script in enumerate(scripts) for _ in script]
        chance.shuffle(turns)
        remaining = [iter(script) for script in scripts]
        return [next(remaining[turn]) for turn in turns], chance


def frames(description, seconds=None, http_base=DEFAULT_HTTP_BASE):
    """Yields the `Frame`s of the LAN in the order of their times, without end unless `seconds` says so."""
    speaker = Speaker(description, http_base)
    number = 0
    while True:
        bursts, chance = speaker.round_bursts(number)
        spacing = ROUND_SECONDS / len(bursts)
        for index, burst in enumerate(bursts):
            start = number * ROUND_SECONDS + (index + chance.uniform(0.0, 0.5)) * spacing
            for position, (data, syslog) in enumerate(burst):
                at = start + position * BURST_SECONDS
                if seconds is not None and at >= seconds:
                    return
                yield Frame(at, data, syslog)
        number += 1
