"""Says "IP is at MAC" on an interface, five times a second until it is ended.

An interface that goes away is waited for.

    speak_arp.py INTERFACE MAC IP...
"""

import os
import sys
import threading

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools", "demo_lan"))

import lan_frames
import lan_injector
import lan_schedule

PERIOD_SECONDS = 0.2


def announcements(mac, addresses):
    number = 0
    while True:
        for ip in addresses:
            data = lan_frames.arp(lan_frames.ARP_REQUEST, mac, ip, lan_frames.ZERO_MAC, ip)
            yield lan_schedule.Frame(number * PERIOD_SECONDS, data, None)
        number += 1


def main(interface, mac, *addresses):
    lan_injector.Injector(interface, threading.Event()).run(announcements(mac, addresses))


if __name__ == "__main__":
    main(*sys.argv[1:])
