"""What the soak's injector sends: the demo LAN's frames at a steady rate, and what must each be told exactly once.

Run inside the injector's namespace: `soak_traffic.py INTERFACE RATE SECONDS HTTP_ADDRESS`. Beside the demo LAN's
frames go new hosts and emergencies by syslog, each with a number of its own. Prints a JSON line of what was sent.
"""

import dataclasses
import json
import os
import sys
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tools", "demo_lan"))

import lan_description
import lan_documents
import lan_frames
import lan_injector
import lan_schedule

# Making frames costs more than sending them, so a run of the LAN is made once and sent again and again.
MADE_SECONDS = 300
BATCH_SECONDS = 0.01
# The program is there before anything counts: both come from these seconds on.
FIRST_SECONDS = 5.0
NEW_HOST_SECONDS = 5.0
EMERGENCY_SECONDS = 1.0
# Nothing new in the last seconds, which the slowest tick gets to tell the rest.
QUIET_SECONDS = 15.0
EMERGENCY = "soak emergency"


@dataclasses.dataclass
class Sent:
    frames: int = 0
    late_seconds: float = 0.0
    new_hosts: int = 0
    emergencies: int = 0
    spoofs: int = 0


def is_emergency(frame):
    return frame.syslog is not None and frame.syslog[1].text is not None and frame.syslog[1].severity == 0


def is_arp(data):
    return int.from_bytes(data[12:14], "big") == lan_frames.ETHERTYPE_ARP


def claims(description):
    """(sender's hardware address, sender's address) of the frames that claim another host's address."""
    return {
        lan_frames.mac_bytes(description.mac(host.spoofed_by)) + lan_frames.ip_bytes(host.ip)
        for host in lan_description.HOSTS
        if host.spoofed_by
    }


def made_frames(description, http_base):
    """[(bytes, whether it is a claim)] without the LAN's own emergencies: all that are told are numbered ones."""
    wanted = claims(description)
    return [
        (frame.data, is_arp(frame.data) and frame.data[22:32] in wanted)
        for frame in lan_schedule.frames(description, MADE_SECONDS, http_base)
        if not is_emergency(frame)
    ]


def new_host_ip(number):
    return f"10.88.{number // 250}.{number % 250 + 1}"


def new_host_frame(number):
    mac = f"02:88:00:00:{number >> 8:02x}:{number & 255:02x}"
    return lan_frames.arp(
        lan_frames.ARP_REQUEST, mac, new_host_ip(number), lan_frames.ZERO_MAC, lan_description.GATEWAY_IP
    )


def emergency_frame(description, number):
    gateway, watcher = lan_description.GATEWAY_IP, lan_description.WATCHER_IP
    mac = description.mac(gateway)
    return lan_frames.udp(mac, gateway, 514, mac, watcher, 514, f"<8>{EMERGENCY} {number}.".encode("ascii"))


def due(seconds, period, total):
    """How many of one kind must have been sent after `seconds` of a run of `total`."""
    return int(max(0.0, min(seconds, total - QUIET_SECONDS) - FIRST_SECONDS) / period)


def send(injector, description, frames, rate, total):
    sent = Sent()
    start = time.monotonic()
    while (seconds := time.monotonic() - start) < total:
        while sent.new_hosts < due(seconds, NEW_HOST_SECONDS, total):
            injector.send(new_host_frame(sent.new_hosts))
            sent.new_hosts += 1
        while sent.emergencies < due(seconds, EMERGENCY_SECONDS, total):
            injector.send(emergency_frame(description, sent.emergencies))
            sent.emergencies += 1
        wanted = int(seconds * rate)
        sent.late_seconds = max(sent.late_seconds, (wanted - sent.frames) / rate)
        # A sender that was held up catches up in steps that a receive buffer takes.
        for number in range(sent.frames, min(wanted, sent.frames + int(rate * BATCH_SECONDS) * 2)):
            data, is_claim = frames[number % len(frames)]
            injector.send(data)
            sent.spoofs += is_claim
            sent.frames = number + 1
        time.sleep(BATCH_SECONDS)
    return sent


def main(arguments):
    interface, rate, seconds, http_address = arguments
    description = lan_description.Lan()
    server = lan_documents.DocumentServer(http_address, None)
    try:
        frames = made_frames(description, server.base)
        injector = lan_injector.Injector(interface, threading.Event())
        print("ready", flush=True)
        sys.stdin.readline()
        sent = send(injector, description, frames, int(rate), float(seconds))
        injector.close()
    finally:
        server.close()
    print(json.dumps(dataclasses.asdict(sent)), flush=True)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
