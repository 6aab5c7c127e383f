"""What a run on the demo LAN must have found, held against the demo LAN's own description."""

import os

import watch_run

import lan_description
import lan_expectations

UNKNOWN_VENDOR = "Unknown vendor"
NO_NAME = lan_expectations.HOST_NAME_NOT_AVAILABLE
TRUST_TEXTS = ("unknown", "trusted", "distrusted")


def vendors(program):
    """{prefix: name as printed} of the vendor list beside a program."""
    table = {}
    with open(
        os.path.join(os.path.dirname(program), "ethercodes.dat"), encoding="latin-1", newline="\n"
    ) as source:
        for line in source:
            prefix, name = line.rstrip("\n").split("\t")[:2]
            table.setdefault(prefix, watch_run.printable(name.strip()))
    return table


def listed_host(ip, name=""):
    """A record of the trusted or distrusted list: name, MAC, address and last packet, 830 bytes."""
    return name.encode().ljust(260, b"\0") + bytes(260) + ip.encode().ljust(260, b"\0") + bytes(50)


def list_key(ips):
    return {f"Host{number}": listed_host(ip) for number, ip in enumerate(ips)}


def expected_hosts(seed, names=None, trusted=(), distrusted=(), is_numeric=False, has_documents=True):
    """{ip: {heading: cell}}. `names` are those that the resolver knows; they close a record to others. Where the
    devices' documents are not to be had, no device is named."""
    table = vendors(watch_run.LINUX_PROGRAM)
    result = {}
    for host in lan_expectations.expectations(lan_description.Lan(seed), is_numeric)["hosts"]:
        ip = host["ip"]
        cells = {
            "MAC": host["mac"],
            "Vendor": UNKNOWN_VENDOR if host["vendorUnknown"] else table[host["vendorPrefix"]],
            "Trust": TRUST_TEXTS[2 if ip in distrusted else 1 if ip in trusted else 0],
            "OS": host["os"],
            "Name": (names or {}).get(ip) or host["hostName"] or NO_NAME,
            "Device": host["friendlyName"] if has_documents else "",
        }
        result[ip] = cells
    return result


def check_hosts(test, found, expected, own_addresses):
    """Every cell that is expected, and no host but those and the machines' own."""
    for ip, cells in expected.items():
        test.assertIn(ip, found)
        test.assertEqual({heading: found[ip][heading] for heading in cells}, cells, ip)
    test.assertEqual(set(found) - set(expected) - set(own_addresses), set())
    test.assertFalse(set(found) & set(lan_description.NEVER_HOSTS))


def check_log(test, run, interface):
    """Five columns, start first and exit last, one start of capture, and line by line what was printed."""
    events = run.log_events()
    for event in events:
        test.assertRegex(event.time, r"^\d\d:\d\d:\d\d$")
    test.assertEqual(
        [(event.event, event.info, event.host, event.text) for event in (events[0], events[-1])],
        [(watch_run.STARTED, "", "", ""), (watch_run.EXITED, "", "", "")],
    )
    started = [event for event in events if event.event == watch_run.CAPTURING]
    test.assertEqual([(event.info, event.host, event.text) for event in started], [("", interface, "")])
    test.assertEqual([watch_run.printable(line) for line in run.log_lines()], run.printed_events())


def check_new_host_events(test, events, names, is_numeric=False):
    """One event for each host, with the name it had at first sight; a second card's claim causes none."""
    ips = {host.ip for host in lan_description.HOSTS}
    found = [(event.info, event.host, event.text) for event in events if event.event == watch_run.NEW_HOST]
    found = [each for each in found if each[0] in ips or each[0] in lan_description.NEVER_HOSTS]
    test.assertEqual(
        sorted(found), sorted((ip, names.get(ip, ip if is_numeric else NO_NAME), "") for ip in ips)
    )


def check_device_events(test, events, is_numeric=False):
    """One event for each device that its document names, and one for each storage box, told to the end."""
    kinds = {
        lan_expectations.EVENT_SSDP_DEVICE: watch_run.DEVICE_NAME,
        lan_expectations.EVENT_STORAGE_FOUND: watch_run.STORAGE_FOUND,
    }
    expected = [
        (kinds[event["kind"]], event["info"], event["host"], event["text"])
        for event in lan_expectations.event_expectations(is_numeric)
        if event["kind"] in kinds
    ]
    found = [
        (event.event, event.info, event.host, event.text) for event in events if event.event in kinds.values()
    ]
    test.assertEqual(sorted(found), sorted(expected))


def syslog_texts(is_hit):
    """[(sender, text)] of the messages of one round that `is_hit(severity, facility, text)` picks."""
    return [
        (source, record["text"])
        for source, records in lan_expectations.syslog_expectations().items()
        for record in records
        if is_hit(record["severity"], record["facility"], record["text"])
    ]
