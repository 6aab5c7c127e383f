"""What a watcher of the demo LAN must know after one whole round, derived from the description."""

import collections

import lan_description as lan
import lan_frames as wire
import lan_schedule

HOST_NAME_NOT_AVAILABLE = "Hostname not available"
EVENT_NEW_HOST = 5
EVENT_SSDP_DEVICE = 11
EVENT_STORAGE_FOUND = 12


def announced_name(host):
    """The name from the host's own frames: a NetBIOS name lower-cased, a storage box's as it stands."""
    right_boxes = [box for box in host.storage if box.length == wire.DEVICE_ANNOUNCEMENT_BYTES]
    if host.announcements:
        return host.name.lower()
    return right_boxes[0].name if right_boxes else None


def host_expectation(description, host, is_numeric):
    """A host's fields; a resolver that answers in digits closes the record to other names."""
    device = host.ssdp
    is_storage = any(box.length == wire.DEVICE_ANNOUNCEMENT_BYTES for box in host.storage)
    return {
        "ip": host.ip,
        "about": host.about,
        "mac": description.mac(host.ip),
        "vendorPrefix": host.prefix,
        "vendorUnknown": int(not host.has_vendor),
        "hostName": host.ip if is_numeric else announced_name(host),
        "nameUnresolved": int(not is_numeric and announced_name(host) is None),
        "os": host.os,
        "osClass": host.os_class,
        "osFromBrowse": int(bool(host.announcements) or is_storage),
        "isSpoofed": bool(host.spoofed_by),
        "friendlyName": device.friendly_name if device else "",
        "presentationUrl": device.presentation_url if device else "",
        "upnpDone": int(bool(device and device.is_fetched)),
        "deviceProbed": int(is_storage),
    }


def event_expectations(is_numeric):
    """The events that each host causes once in a run, whatever the settings are."""
    events = []
    for host in lan.HOSTS:
        first_name = host.ip if is_numeric else HOST_NAME_NOT_AVAILABLE
        events.append({"kind": EVENT_NEW_HOST, "host": first_name, "info": host.ip, "text": ""})
        if host.ssdp and host.ssdp.friendly_name:
            events.append(
                {"kind": EVENT_SSDP_DEVICE, "host": host.ssdp.friendly_name, "info": host.ip, "text": ""}
            )
        if any(box.length == wire.DEVICE_ANNOUNCEMENT_BYTES for box in host.storage):
            name = host.ip if is_numeric else announced_name(host)
            events.append({"kind": EVENT_STORAGE_FOUND, "host": name, "info": host.ip, "text": host.os})
    return events


def syslog_expectations():
    """By sender, the records of one round in order; a byte of 0x80 and up as the character of its number."""
    return {
        source: [
            {
                "severity": message.severity,
                "facility": message.facility,
                "text": message.text.decode("latin-1"),
            }
            for message in messages
            if message.text is not None
        ]
        for source, messages in lan.SYSLOG.items()
    }


def frame_class(data):
    """ "arp" and "ip" for the two packet handlers, "filtered" for what the capture filter holds back."""
    ethertype = int.from_bytes(data[12:14], "big")
    if ethertype in (wire.ETHERTYPE_ARP, wire.ETHERTYPE_RARP):
        return "arp"
    return "ip" if ethertype == wire.ETHERTYPE_IPV4 else "filtered"


def counts(description, seconds):
    """The exact numbers of a savefile of this length: frames, syslog records, claims of spoofed addresses."""
    kinds = collections.Counter()
    syslogs = collections.Counter()
    spoofs = collections.Counter()
    macs = {host.ip: description.mac(host.ip) for host in lan.HOSTS}
    for frame in lan_schedule.frames(description, seconds):
        kind = frame_class(frame.data)
        kinds[kind] += 1
        if frame.syslog and frame.syslog[1].text is not None:
            syslogs[frame.syslog[0]] += 1
        if kind == "arp":
            sender_mac, sender_ip = frame.data[22:28].hex(":"), ".".join(map(str, frame.data[28:32]))
            spoofs[sender_ip] += sender_ip in macs and macs[sender_ip] != sender_mac
    return {
        "frames": {"read": sum(kinds.values()), "arp": kinds["arp"], "ip": kinds["ip"]},
        "syslogs": dict(syslogs),
        "spoofs": {ip: count for ip, count in spoofs.items() if count},
    }


def expectations(description, is_numeric=False, seconds=None):
    hosts = [host_expectation(description, host, is_numeric) for host in lan.HOSTS]
    result = {
        "seed": description.seed,
        "network": lan.NETWORK,
        "roundSeconds": lan_schedule.ROUND_SECONDS,
        "reserved": {"watcher": lan.WATCHER_IP, "injector": lan.INJECTOR_IP},
        "hosts": hosts,
        "spoofs": [
            {
                "ip": host.ip,
                "firstMac": description.mac(host.ip),
                "otherMac": description.mac(host.spoofed_by),
            }
            for host in lan.HOSTS
            if host.spoofed_by
        ],
        "syslogs": syslog_expectations(),
        "events": event_expectations(is_numeric),
        "neverHosts": list(lan.NEVER_HOSTS),
    }
    if seconds is not None:
        result["counts"] = counts(description, seconds)
    return result
