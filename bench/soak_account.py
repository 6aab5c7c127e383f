"""The soak's account: what the program told, held against what was sent, and whether its memory stayed."""

import collections
import dataclasses
import re

import soak_traffic

# What a host and an event cost at the most, their places in tables, lists, log and reports included (memory_bench
# tells the plain figures), and what an allocator may take beside them.
BYTES_EACH_HOST = 4 * 1024
BYTES_EACH_EVENT = 512
SLACK_BYTES = 1024 * 1024

EVENT = re.compile(r"^\d\d:\d\d:\d\d \| (?P<kind>[^|]+) \| (?P<info>[^|]*) \| (?P<host>[^|]*) \| (?P<text>.*)$")
NEW_HOST_LINE = re.compile(r"^    .* \[(?P<ip>[\d.]+)\]$")
SPOOF_LINE = re.compile(r"^    .* \((?P<ip>[\d.]+)\)$")
NUMBERED = re.compile(rf"{soak_traffic.EMERGENCY} (\d+)\.")
CUT_LINE = re.compile(r"^    \.\.\. \(\+(\d+)\)$")
TOTAL = re.compile(r"^(?P<hosts>\d+) hosts, (?P<events>\d+) events$")

NEW_HOST, SYSLOG = "New host found", "Syslog notification"
ONLINE, OFFLINE = "Watched host is online", "Watched host is offline"


@dataclasses.dataclass(frozen=True)
class Sample:
    seconds: float
    resident: int  # bytes
    hosts: int
    events: int


@dataclasses.dataclass
class Told:
    """Counts of what the program's output holds; keys are addresses and numbers."""

    host_events: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    host_alerts: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    emergency_events: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    emergency_alerts: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    kinds: collections.Counter = dataclasses.field(default_factory=collections.Counter)
    spoofs: int = 0
    watch_alerts: int = 0
    events: int = 0
    total_events: int = -1
    total_hosts: int = -1


def _take_event(told, event):
    told.events += 1
    told.kinds[event["kind"]] += 1
    if event["kind"] == NEW_HOST:
        told.host_events[event["info"]] += 1
    if event["kind"] == SYSLOG:
        told.emergency_events.update(NUMBERED.findall(event["text"]))


def _take_alert_line(told, line):
    told.emergency_alerts.update(NUMBERED.findall(line))
    if line.startswith("Alert: Host watched"):
        told.watch_alerts += 1
    if found := NEW_HOST_LINE.match(line):
        told.host_alerts[found["ip"]] += 1
    elif SPOOF_LINE.match(line):
        told.spoofs += 1
    elif found := CUT_LINE.match(line):
        told.spoofs += int(found[1])  # only spoofing is told often enough for an alert to be cut


def read_output(lines):
    told = Told()
    for line in lines:
        line = line.rstrip("\n")
        if event := EVENT.match(line):
            _take_event(told, event)
        elif total := TOTAL.match(line):
            told.total_hosts, told.total_events = int(total["hosts"]), int(total["events"])
        else:
            _take_alert_line(told, line)
    return told


def once_each(what, wanted, counts):
    """[complaint] where a key was told another number of times than once."""
    wrong = [f"{key} x{counts[key]}" for key in wanted if counts[key] != 1]
    return [f"{what}: {len(wrong)} of {len(wanted)} not told exactly once ({', '.join(wrong[:5])})"] if wrong else []


def account(sent, turns, told, log_lines):
    """[complaint]; empty where everything that was sent was told, once."""
    hosts = [soak_traffic.new_host_ip(number) for number in range(sent["new_hosts"])]
    numbers = [str(number) for number in range(sent["emergencies"])]
    complaints = once_each("events of new hosts", hosts, told.host_events)
    complaints += once_each("alerts of new hosts", sorted({*hosts, *told.host_events}), told.host_alerts)
    complaints += once_each("events of syslog messages", numbers, told.emergency_events)
    complaints += once_each("alerts of syslog messages", numbers, told.emergency_alerts)
    watched = told.kinds[ONLINE] + told.kinds[OFFLINE]
    for what, count, wanted in (
        ("alerts of MAC spoofing", told.spoofs, sent["spoofs"]),
        ("events of the watched host", watched, turns),
        ("alerts of the watched host", told.watch_alerts, turns),
        ("events in the program's own count", told.total_events, told.events),
        ("lines of the event log", log_lines, told.events),
    ):
        if count != wanted:
            complaints.append(f"{what}: {count} instead of {wanted}")
    return complaints


def growth(baseline, last):
    """(bytes grown, bytes allowed) between two samples."""
    allowed = (
        (last.hosts - baseline.hosts) * BYTES_EACH_HOST
        + (last.events - baseline.events) * BYTES_EACH_EVENT
        + SLACK_BYTES
    )
    return last.resident - baseline.resident, allowed
