"""vardel-replay: what it reads, prints and exits with. Other programs read its document, so whole documents are
compared."""

import contextlib
import json
import os
import socket
import subprocess
import sys
import tempfile
import threading
import time
import unittest
import unittest.mock

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.join(ROOT, "tools", "demo_lan")]

from capture_files import START, arp, ethernet, next_generation_savefile, savefile, syslog, udp
import lan_description
import lan_documents
import lan_expectations
import lan_schedule
from lan_frames import browse_announcement, device_announcement, netbios_datagram
from watcher_model import WatcherModel

PROGRAM = os.environ.get("VARDEL_REPLAY") or os.path.join(ROOT, "build", "linux-release", "tools", "vardel_replay",
                                                          "vardel-replay")
NO_NAME = "Hostname not available"
NO_VENDOR = "Unknown vendor"
SETTINGS_KEY = r"HKEY_CURRENT_USER\Software\Ostrand Software\Vardelwatch"


def host(ip, mac="02:00:00:00:00:01", **different):
    """A host's object as one ARP frame of the second START leaves it."""
    fields = {
        "ip": ip, "mac": mac, "vendor": NO_VENDOR, "lastSeenText": "22:13:20", "hostName": NO_NAME,
        "lastSeen": START, "greyedOut": 0, "vendorUnknown": 1, "trustState": 0, "rowDirty": 0, "wmiOsKnown": 0,
        "wmiStatus": 999, "os": "", "shareScanBusy": 0, "shareScanRefused": 0, "isLocal": 0, "nameUnresolved": 1,
        "osFromBrowse": 0, "offline": 0, "osClass": 0, "displayName": "", "friendlyName": "", "presentationUrl": "",
        "upnpDone": 0, "deviceProbed": 0,
    }
    assert not different.keys() - fields.keys()
    return {**fields, **different}


def local_host(ip, mac="", **different):
    return host(ip, mac, **{"vendor": "", "lastSeenText": "", "hostName": "", "lastSeen": 0, "trustState": 1,
                            "isLocal": 1, "nameUnresolved": 0, **different})


def new_host_event(ip, name=NO_NAME):
    return {"kind": 5, "host": name, "info": ip, "text": "", "syslogInfo": -1}


def document(**different):
    """A whole document of a run that saw nothing, but for what is told."""
    sections = {"frames": {"read": 0, "arp": 0, "ip": 0}, "hosts": [], "newEntries": [], "macSpoofs": [],
                "wmiWork": [], "netResWork": [], "events": [], "syslogs": {}, "syslogNotifications": []}
    assert not different.keys() - sections.keys()
    return {**sections, **different}


def registry_text(values, lists=None):
    """A registry text with `values` of the settings key and, by key name, lists of (value name, bytes)."""
    lines = ["REGEDIT4", "", f"[{SETTINGS_KEY}\\Settings]"]
    for name, value in values.items():
        lines.append(f'"{name}"="{value}"' if isinstance(value, str) else f'"{name}"=dword:{value:08x}')
    for key, entries in (lists or {}).items():
        lines += ["", f"[{SETTINGS_KEY}\\{key}]"]
        lines += [f'"{name}"=hex:' + ",".join(f"{byte:02x}" for byte in data) for name, data in entries]
    return "\r\n".join(lines) + "\r\n"


def listed_host(ip, name="", mac=""):
    return (name.encode().ljust(260, b"\0") + mac.encode().ljust(260, b"\0") + ip.encode().ljust(260, b"\0") +
            bytes(50))


class ReplayTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-replay-"))
        self.files = 0

    def file(self, content, name=None):
        self.files += 1
        path = os.path.join(self.folder, name or f"file{self.files}")
        with open(path, "wb") as out:
            out.write(content if isinstance(content, bytes) else content.encode("latin-1"))
        return path

    def capture(self, *frames, **form):
        return self.file(savefile(frames, **form))

    def run_program(self, *words, zone="UTC", **more):
        return subprocess.run([PROGRAM, *words], capture_output=True, timeout=60, check=False,
                              env={**os.environ, "TZ": zone}, **more)

    def parse(self, output):
        output.decode("ascii")  # Nothing else may stand in the document.
        result = json.loads(output)
        seconds = result.pop("handlerSeconds")
        self.assertIsInstance(seconds, float)
        self.assertGreaterEqual(seconds, 0)
        return result

    def replay(self, *words, **more):
        done = self.run_program(*words, **more)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return self.parse(done.stdout)

    def fails(self, code, *words):
        """The complaint of a run that prints no document."""
        done = self.run_program(*words)
        self.assertEqual((done.returncode, done.stdout), (code, b""), done.stderr)
        complaint = done.stderr.decode()
        self.assertTrue(complaint.startswith("vardel-replay: "), complaint)
        return complaint


class DocumentTest(ReplayTest):
    def test_a_savefile_without_frames_gives_an_empty_document(self):
        self.assertEqual(self.replay(self.capture()), document())

    def test_a_new_host_is_in_the_table_the_new_entries_and_the_events(self):
        self.assertEqual(self.replay(self.capture(arp("10.0.0.5", "00:1B:c5:00:00:0a"))), document(
            frames={"read": 1, "arp": 1, "ip": 0},
            hosts=[host("10.0.0.5", "00:1b:c5:00:00:0a")],
            newEntries=["10.0.0.5"],
            events=[new_host_event("10.0.0.5")]))

    def test_a_known_host_is_refreshed_with_the_time_of_its_last_frame(self):
        self.assertEqual(self.replay(self.capture(arp("10.0.0.5"), (START + 3661, arp("10.0.0.5")))), document(
            frames={"read": 2, "arp": 2, "ip": 0},
            hosts=[host("10.0.0.5", lastSeen=START + 3661, lastSeenText="23:14:21", rowDirty=1)],
            newEntries=["10.0.0.5"],
            events=[new_host_event("10.0.0.5")]))

    def test_members_stand_in_a_fixed_order(self):
        done = self.run_program(self.capture(arp("10.0.0.5")))
        told = json.loads(done.stdout)
        self.assertEqual(list(told), [*document(), "handlerSeconds"])
        self.assertEqual(list(told["frames"]), ["read", "arp", "ip"])
        self.assertEqual(list(told["hosts"][0]), list(host("")))
        self.assertEqual(list(told["events"][0]), ["kind", "host", "info", "text", "syslogInfo"])

    def test_hosts_are_sorted_by_address_as_a_number(self):
        addresses = ["10.0.0.10", "9.255.0.1", "10.0.0.9", "192.168.0.1", "10.0.0.100"]
        told = self.replay(self.capture(*map(arp, addresses)))
        self.assertEqual([entry["ip"] for entry in told["hosts"]],
                         ["9.255.0.1", "10.0.0.9", "10.0.0.10", "10.0.0.100", "192.168.0.1"])
        self.assertEqual(told["newEntries"], addresses)

    def test_every_frame_of_a_second_mac_is_a_spoof_entry_oldest_first(self):
        other = "02:00:00:00:00:99"
        told = self.replay(self.capture(arp("10.0.0.5"), arp("10.0.0.6"), arp("10.0.0.6", other),
                                        arp("10.0.0.5", other), arp("10.0.0.5"), arp("10.0.0.6", other)))
        self.assertEqual(told["macSpoofs"], ["10.0.0.6", "10.0.0.5", "10.0.0.6"])
        self.assertEqual([entry["mac"] for entry in told["hosts"]], ["02:00:00:00:00:01"] * 2)

    def test_frames_that_the_capture_filter_refuses_are_read_and_not_handed_on(self):
        tagged = ethernet(0x8100, b"\0\1" + arp("10.0.0.7")[12:])
        told = self.replay(self.capture(arp("10.0.0.5"), ethernet(0x86DD, bytes(46)), tagged, b"", b"\xff" * 13,
                                        arp("10.0.0.6", ether_type=0x8035), udp("10.0.0.5", 1, 2, b"")))
        self.assertEqual(told["frames"], {"read": 7, "arp": 2, "ip": 1})
        self.assertEqual([entry["ip"] for entry in told["hosts"]], ["10.0.0.5", "10.0.0.6"])

    def test_a_browse_announcement_tells_name_and_operating_system(self):
        block = browse_announcement(1, "FILESERVER", 6, 1, 0x8003)
        datagram = netbios_datagram("02:00:00:00:00:01", "10.0.0.5", "10.0.0.255", "FILESERVER", "WORKGROUP", block)
        told = self.replay(self.capture(arp("10.0.0.5"), datagram))
        self.assertEqual(told["frames"], {"read": 2, "arp": 1, "ip": 1})
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="fileserver", nameUnresolved=0, osFromBrowse=1,
                                              os="Microsoft Windows Server 2008 R2", osClass=2, rowDirty=0)])

    def test_times_are_told_in_the_zone_of_the_environment(self):
        path = self.capture(arp("10.0.0.5"))
        for zone, text in (("UTC", "22:13:20"), ("UTC-5:30", "03:43:20"), ("UTC+8", "14:13:20")):
            with self.subTest(zone=zone):
                told = self.replay(path, zone=zone)["hosts"][0]
                self.assertEqual((told["lastSeenText"], told["lastSeen"]), (text, START))


class SyslogTest(ReplayTest):
    def settings(self, **values):
        return self.file(registry_text({"Syslog": 1, "SyslogMaxEntries": 0, "SyslogNotification": 0, **values}))

    @staticmethod
    def record(serial, text, severity=5, facility=1, expired=0):
        return {"serial": serial, "severity": severity, "facility": facility, "text": text, "expired": expired}

    def test_messages_are_kept_by_source_with_their_count(self):
        path = self.capture(syslog("10.0.0.10", "<13>one"), syslog("10.0.0.9", "<191>two"),
                            syslog("10.0.0.10", "<0>three"))
        self.assertEqual(self.replay("--settings", self.settings(), path), document(
            frames={"read": 3, "arp": 0, "ip": 3},
            syslogs={"10.0.0.9": {"count": 1, "records": [self.record(1, "two", 7, 23)]},
                     "10.0.0.10": {"count": 2, "records": [self.record(1, "one"), self.record(2, "three", 0, 0)]}}))

    def test_sources_are_sorted_by_address_as_a_number(self):
        path = self.capture(syslog("10.0.0.10", "<13>one"), syslog("10.0.0.9", "<13>two"))
        self.assertEqual(list(self.replay("--settings", self.settings(), path)["syslogs"]), ["10.0.0.9", "10.0.0.10"])

    def test_records_past_the_limit_are_marked_oldest_first(self):
        path = self.capture(*(syslog("10.0.0.9", f"<13>{n}") for n in range(1, 5)))
        self.assertEqual(self.replay("--settings", self.settings(SyslogMaxEntries=2), path)["syslogs"]["10.0.0.9"], {
            "count": 4,
            "records": [self.record(1, "1", expired=1), self.record(2, "2", expired=1), self.record(3, "3"),
                        self.record(4, "4")]})

    def test_without_settings_syslog_is_off(self):
        self.assertEqual(self.replay(self.capture(syslog("10.0.0.9", "<13>one")))["syslogs"], {})

    def test_each_byte_of_a_text_can_be_told_from_the_document(self):
        text = bytes(range(1, 256)).replace(b"\n", b"")  # a line feed at the end would go
        path = self.capture(syslog("10.0.0.9", b"<13>" + text))
        done = self.run_program("--settings", self.settings(), path)
        self.assertEqual(self.parse(done.stdout)["syslogs"]["10.0.0.9"]["records"][0]["text"], text.decode("latin-1"))
        for escape in (rb"\u0001", rb"\u001f", rb"\"", rb"\\", rb"\u007f", rb"\u0080", rb"\u00ff"):
            self.assertIn(escape, done.stdout)

    def test_a_notification_is_an_event_and_an_entry(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=3, SyslogNotificationType=0,
                                 SyslogNotificationFacility=4, SyslogNotificationWords="")
        path = self.capture(syslog("10.0.0.9", "<11>level"), syslog("10.0.0.9", "<38>facility"),
                            syslog("10.0.0.9", "<13>neither"))
        told = self.replay("--settings", settings, path)
        self.assertEqual(told["events"], [
            {"kind": 10, "host": "10.0.0.9", "info": "", "text": "level", "syslogInfo": 1 << 16 | 3},
            {"kind": 10, "host": "10.0.0.9", "info": "", "text": "facility", "syslogInfo": 4 << 16 | 6}])
        self.assertEqual(told["syslogNotifications"], [
            {"source": "10.0.0.9", "severity": 3, "facility": 1, "text": "level"},
            {"source": "10.0.0.9", "severity": 6, "facility": 4, "text": "facility"}])
        self.assertEqual(told["syslogs"]["10.0.0.9"]["count"], 3)

    def test_notifications_of_the_other_type_are_events_alone(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=7, SyslogNotificationType=1,
                                 SyslogNotificationFacility=0)
        told = self.replay("--settings", settings, self.capture(syslog("10.0.0.9", "<13>one")))
        self.assertEqual((len(told["events"]), told["syslogNotifications"]), (1, []))

    def test_the_words_of_the_settings_are_in_force_from_the_first_frame(self):
        settings = self.settings(SyslogNotification=1, SyslogNotificationLevel=0, SyslogNotificationType=0,
                                 SyslogNotificationFacility=99, SyslogNotificationWords="failed,link down")
        path = self.capture(syslog("10.0.0.9", "<13>login failed"), syslog("10.0.0.9", "<13>Failed"),
                            syslog("10.0.0.9", "<13>eth0: link down"), syslog("10.0.0.9", "<13>link"))
        self.assertEqual([entry["text"] for entry in self.replay("--settings", settings, path)["syslogNotifications"]],
                         ["login failed", "eth0: link down"])


class SettingsTest(ReplayTest):
    def test_hosts_wait_for_inspection_and_share_search_oldest_first(self):
        settings = self.file(registry_text({"UseWMI": 1, "ShareSearch": 1}))
        path = self.capture(arp("10.0.0.5"), arp("10.0.0.6"), arp("10.0.0.5"))
        told = self.replay("--settings", settings, "--local", "10.0.0.1", path)
        self.assertEqual(told["wmiWork"], ["10.0.0.1", "10.0.0.5", "10.0.0.6"])
        self.assertEqual(told["netResWork"], ["10.0.0.1", "10.0.0.5", "10.0.0.6", "10.0.0.5"])
        self.assertEqual(told["newEntries"], ["10.0.0.5", "10.0.0.6"])

    def test_listed_hosts_are_trusted_or_distrusted(self):
        settings = self.file(registry_text({}, {
            "TrustedHosts": [("Host0", listed_host("10.0.0.5")), ("Host1", listed_host("10.0.0.7"))],
            "DistrustedHosts": [("Host0", listed_host("10.0.0.6")), ("Host1", listed_host("10.0.0.7"))]}))
        told = self.replay("--settings", settings, self.capture(*(arp(f"10.0.0.{n}") for n in (5, 6, 7, 8))))
        self.assertEqual([entry["trustState"] for entry in told["hosts"]], [1, 2, 2, 0])

    def test_a_registry_export_in_utf_16_is_read_as_well(self):
        text = registry_text({"UseWMI": 1}).replace("REGEDIT4", "Windows Registry Editor Version 5.00")
        settings = self.file(b"\xff\xfe" + text.encode("utf-16-le"))
        self.assertEqual(self.replay("--settings", settings, self.capture(arp("10.0.0.5")))["wmiWork"], ["10.0.0.5"])

    def test_a_damaged_line_is_reported_and_the_others_count(self):
        settings = self.file(registry_text({"UseWMI": 1}) + '"ShareSearch"=dword:zz\r\n')
        done = self.run_program("--settings", settings, self.capture(arp("10.0.0.5")))
        self.assertEqual(done.returncode, 0)
        self.assertEqual(self.parse(done.stdout)["wmiWork"], ["10.0.0.5"])
        self.assertEqual(done.stderr.decode(), f"vardel-replay: {settings}: line 5 is no registry text\n")

    def test_a_missing_settings_file_ends_the_run(self):
        self.assertIn("no-such-file", self.fails(1, "--settings", os.path.join(self.folder, "no-such-file"),
                                                 self.capture()))

    def test_a_file_that_is_no_registry_text_ends_the_run(self):
        self.assertIn("line 1", self.fails(1, "--settings", self.file("something else\n"), self.capture()))


class LocalAndVendorTest(ReplayTest):
    VENDORS = "02:00:00\tExample Networks \t02-00-00\n0:1b:2\tOther Cards\n"

    def test_local_records_are_trusted_and_never_new(self):
        told = self.replay("--local", "10.0.0.1=02:00:00:AB:CD:ef", "--local", "10.0.0.2", self.capture())
        self.assertEqual(told, document(hosts=[local_host("10.0.0.1", "02:00:00:ab:cd:ef"), local_host("10.0.0.2")]))

    def test_the_vendor_file_comes_after_the_local_records_and_fills_them_in(self):
        told = self.replay("--vendors", self.file(self.VENDORS), "--local", "10.0.0.1=02:00:00:00:00:09",
                           "--local", "10.0.0.2", self.capture())
        self.assertEqual(told["hosts"], [
            local_host("10.0.0.1", "02:00:00:00:00:09", vendor="Example Networks", vendorUnknown=0),
            local_host("10.0.0.2", vendor=NO_VENDOR)])

    def test_hosts_get_their_vendor_from_the_file(self):
        told = self.replay("--vendors", self.file(self.VENDORS), self.capture(
            arp("10.0.0.5", "02:00:00:00:00:05"), arp("10.0.0.6", "00:1b:02:00:00:06"),
            arp("10.0.0.7", "00:1b:03:00:00:07")))
        self.assertEqual([(entry["vendor"], entry["vendorUnknown"]) for entry in told["hosts"]],
                         [("Example Networks", 0), ("Other Cards", 0), (NO_VENDOR, 1)])

    def test_a_local_record_without_mac_takes_the_first_one_seen(self):
        told = self.replay("--local", "10.0.0.1", self.capture(arp("10.0.0.1", "02:00:00:00:00:07")))
        self.assertEqual((told["macSpoofs"], told["newEntries"], told["events"]), ([], [], []))
        self.assertEqual(told["hosts"], [local_host("10.0.0.1", "02:00:00:00:00:07", vendor=NO_VENDOR, rowDirty=1,
                                                    lastSeen=START, lastSeenText="22:13:20")])

    def test_a_local_record_with_a_mac_is_spoofed_by_another_one(self):
        told = self.replay("--local", "10.0.0.1=02:00:00:00:00:01", self.capture(arp("10.0.0.1", "02:00:00:00:00:07")))
        self.assertEqual(told["macSpoofs"], ["10.0.0.1"])
        self.assertEqual(told["hosts"][0]["mac"], "02:00:00:00:00:01")

    def test_a_missing_vendor_file_ends_the_run(self):
        self.assertIn("no-such-file", self.fails(1, "--vendors", os.path.join(self.folder, "no-such-file"),
                                                 self.capture()))


class FeedingTest(ReplayTest):
    def test_frames_of_several_files_are_fed_in_the_order_of_the_arguments(self):
        first, second = self.capture(arp("10.0.0.7"), arp("10.0.0.5")), self.capture(arp("10.0.0.6"))
        told = self.replay(second, first, second)
        self.assertEqual(told["frames"], {"read": 4, "arp": 4, "ip": 0})
        self.assertEqual(told["newEntries"], ["10.0.0.6", "10.0.0.7", "10.0.0.5"])

    def test_all_forms_of_savefiles_give_the_same_document(self):
        frames = [arp("10.0.0.5"), (START + 1, arp("10.0.0.6")), udp("10.0.0.5", 7, 9, b"payload")]
        plain = self.replay(self.file(savefile(frames)))
        self.assertEqual(plain["frames"], {"read": 3, "arp": 2, "ip": 1})
        for name, content in (("big-endian", savefile(frames, order=">")),
                              ("nanoseconds", savefile(frames, is_nanosecond=True)),
                              ("big-endian nanoseconds", savefile(frames, order=">", is_nanosecond=True)),
                              ("next generation", next_generation_savefile(frames))):
            with self.subTest(name):
                self.assertEqual(self.replay(self.file(content)), plain)

    def test_standard_input_is_a_savefile_of_the_name_minus(self):
        done = self.run_program("-", input=savefile([arp("10.0.0.5")]))
        self.assertEqual(self.parse(done.stdout)["newEntries"], ["10.0.0.5"])

    def test_repeated_frames_are_counted_and_fed_each_time(self):
        path = self.capture(arp("10.0.0.5"), arp("10.0.0.5", "02:00:00:00:00:99"), ethernet(0x86DD, bytes(46)),
                            udp("10.0.0.5", 7, 9, b""))
        told = self.replay("--repeat", "3", path, path)
        self.assertEqual(told["frames"], {"read": 24, "arp": 12, "ip": 6})
        self.assertEqual(told["macSpoofs"], ["10.0.0.5"] * 6)
        self.assertEqual(told["newEntries"], ["10.0.0.5"])

    def test_frames_held_in_memory_give_the_same_document_as_frames_read_on_the_way(self):
        frames = [arp(f"10.0.{n % 7}.{n % 250}", f"02:00:00:00:00:{n % 11:02x}") for n in range(10_000)]
        path = self.capture(*frames)
        told = self.replay(path)
        self.assertEqual(told["frames"], {"read": 10_000, "arp": 10_000, "ip": 0})
        self.assertEqual(len(told["hosts"]), 7 * 250)
        self.assertEqual(self.replay("--repeat", "1", path), told)

    def test_large_frames_are_all_fed(self):
        settings = self.file(registry_text({"Syslog": 1, "SyslogMaxEntries": 0, "SyslogNotification": 0}))
        frames = [syslog("10.0.0.9", f"<13>{n}") + bytes(60_000) for n in range(100)]
        frames = [frame[:42 + 900] if n % 2 else frame for n, frame in enumerate(frames)]
        told = self.replay("--settings", settings, self.capture(*frames))
        self.assertEqual(told["frames"], {"read": 100, "arp": 0, "ip": 100})
        self.assertEqual([record["text"] for record in told["syslogs"]["10.0.0.9"]["records"]],
                         [str(n) for n in range(1, 100, 2)])  # the long ones are too long for a message

    def test_draining_empties_the_lists_of_the_tick_every_thousand_frames(self):
        other = "02:00:00:00:00:99"
        frames = [arp(f"10.1.{n // 250}.{n % 250 + 1}") for n in range(999)]
        frames += [arp("10.1.0.1", other), arp("10.2.0.1"), arp("10.1.0.2", other)]
        path = self.capture(*frames)
        told = self.replay("--drain", path)
        self.assertEqual((told["newEntries"], told["macSpoofs"]), (["10.2.0.1"], ["10.1.0.2"]))
        self.assertEqual((len(told["hosts"]), len(told["events"])), (1000, 1000))
        whole = self.replay(path)
        self.assertEqual((len(whole["newEntries"]), whole["macSpoofs"]), (1000, ["10.1.0.1", "10.1.0.2"]))

    def test_a_full_thousand_leaves_nothing_behind_and_refused_frames_count(self):
        refused = ethernet(0x86DD, bytes(46))
        for count, left in ((999, ["10.0.0.5"]), (1000, [])):
            with self.subTest(count=count):
                path = self.capture(arp("10.0.0.5"), *[refused] * (count - 1))
                self.assertEqual(self.replay("--drain", path)["newEntries"], left)

    def test_the_thousand_goes_on_over_files_and_repeats(self):
        first, second = self.capture(arp("10.0.0.5"), *[arp("10.0.0.6")] * 299), self.capture(*[arp("10.0.0.7")] * 300)
        other = self.capture(arp("10.0.0.7", "02:00:00:00:00:99"))
        told = self.replay("--drain", "--repeat", "3", first, second, other)  # 601 frames each time, 3 spoofs
        self.assertEqual(told["frames"]["read"], 1803)
        self.assertEqual(told["macSpoofs"], ["10.0.0.7"] * 2)
        self.assertEqual(told["newEntries"], [])

    def test_draining_empties_syslog_notifications_and_leaves_the_queues(self):
        settings = self.file(registry_text({"UseWMI": 1, "ShareSearch": 1, "Syslog": 1, "SyslogMaxEntries": 0,
                                            "SyslogNotification": 1, "SyslogNotificationLevel": 7,
                                            "SyslogNotificationType": 0, "SyslogNotificationFacility": 0}))
        frames = [arp("10.0.0.5")] + [syslog("10.0.0.9", f"<13>{n}") for n in range(1, 1001)]
        told = self.replay("--settings", settings, "--drain", self.capture(*frames))
        self.assertEqual([entry["text"] for entry in told["syslogNotifications"]], ["1000"])
        self.assertEqual((told["wmiWork"], told["netResWork"]), (["10.0.0.5"], ["10.0.0.5"]))
        self.assertEqual(told["syslogs"]["10.0.0.9"]["count"], 1000)

    def test_quiet_tells_the_counts_alone(self):
        done = self.run_program("--quiet", "--repeat", "2", self.capture(arp("10.0.0.5"), udp("10.0.0.5", 7, 9, b"")))
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        self.assertEqual(list(json.loads(done.stdout)), ["frames", "handlerSeconds"])
        self.assertEqual(self.parse(done.stdout), {"frames": {"read": 4, "arp": 2, "ip": 2}})

    def test_the_handlers_time_is_told_and_grows_with_the_repeats(self):
        path = self.capture(*(arp(f"10.0.{n % 4}.{n % 250}") for n in range(2000)))

        def seconds(times):
            return json.loads(self.run_program("--quiet", "--repeat", str(times), path).stdout)["handlerSeconds"]

        once = seconds(1)
        self.assertGreater(once, 0)
        self.assertGreater(seconds(500), once)


class ResolverTest(ReplayTest):
    HOSTS = "127.0.0.1 localhost\n10.0.0.5 printer.example printer\n10.0.0.1 watcher.example\n"

    def in_namespace(self, *words):
        """Runs the program with a hosts file of its own and without any network."""
        hosts, switch = self.file(self.HOSTS), self.file("hosts: files\n")
        script = f"mount --bind {hosts} /etc/hosts && mount --bind {switch} /etc/nsswitch.conf && exec \"$@\""
        return subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "sh", "-c", script, "sh", PROGRAM,
                               *words], capture_output=True, timeout=60, check=False,
                              env={**os.environ, "TZ": "UTC"})

    def setUp(self):
        super().setUp()
        probe = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "true"], capture_output=True,
                               check=False)
        if probe.returncode != 0:
            self.skipTest("this user may make no namespaces: " + probe.stderr.decode().strip())

    def test_names_are_looked_up_on_request_alone(self):
        path = self.capture(arp("10.0.0.5"))
        self.assertEqual(self.parse(self.in_namespace(path).stdout)["hosts"], [host("10.0.0.5")])
        told = self.parse(self.in_namespace("--resolve", path).stdout)
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="printer.example", nameUnresolved=0)])
        self.assertEqual(told["events"], [new_host_event("10.0.0.5", "printer.example")])

    def test_a_local_record_is_named_by_its_address(self):
        told = self.parse(self.in_namespace("--resolve", "--local", "10.0.0.1", self.capture()).stdout)
        self.assertEqual(told["hosts"], [local_host("10.0.0.1", hostName="watcher.example")])


class LoopbackServer:
    """Listens at a port of the loopback address and hands each connection, its request read, to `answer`."""

    def __init__(self, answer):
        self.requests = []
        self._answer = answer
        self._ends = threading.Event()
        self._socket = socket.create_server(("127.0.0.1", 0))
        self._socket.settimeout(0.05)
        self.base = f"http://127.0.0.1:{self._socket.getsockname()[1]}"
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def _serve(self):
        while not self._ends.is_set():
            try:
                client = self._socket.accept()[0]
            except TimeoutError:
                continue
            with client, contextlib.suppress(OSError):
                client.settimeout(0.2)
                self.requests.append(client.recv(65536).decode("latin-1"))
                self._answer(client, self._ends)

    def close(self):
        self._ends.set()
        self._thread.join()
        self._socket.close()


def silence(_, ends):
    ends.wait()


def one_byte_a_second(client, ends):
    client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 4000\r\n\r\n")
    while not ends.wait(1):
        client.sendall(b"x")


def documents_of(content):
    def answer(client, _):
        client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\n" % len(content) + content)

    return answer


class DeviceTest(ReplayTest):
    """Device messages and storage announcements. The servers are this machine's own."""

    DOCUMENT = (b"<root><friendlyName> NAS: Living Room </friendlyName>"
                b"<presentationURL>http://10.0.0.5/</presentationURL></root>")
    # What the fetch may take in all, and what starting and ending the program may add on a busy machine.
    HELD_SECONDS = 5
    RUN_SECONDS = HELD_SECONDS + 5

    def serve(self, answer):
        server = LoopbackServer(answer)
        self.addCleanup(server.close)
        return server

    def message(self, url, count=1):
        text = f"NOTIFY * HTTP/1.1\r\nLocation: {url}\r\nNTS: ssdp:alive\r\n\r\n".encode("latin-1")
        return self.capture(arp("10.0.0.5"), *[udp("10.0.0.5", 1900, 1900, text)] * count)

    def run_program(self, *words, **more):
        with unittest.mock.patch.dict(os.environ, no_proxy="127.0.0.1"):
            return super().run_program(*words, **more)

    def test_without_fetching_each_fetch_counts_as_failed(self):
        server = self.serve(documents_of(self.DOCUMENT))
        told = self.replay(self.message(server.base + "/nas.xml"))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])
        self.assertEqual(told["events"], [new_host_event("10.0.0.5")])
        self.assertEqual(server.requests, [])

    def test_fetching_names_a_device_once(self):
        server = self.serve(documents_of(self.DOCUMENT))
        told = self.replay("--fetch", self.message(server.base + "/nas.xml", 3))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1, friendlyName="NAS",
                                              presentationUrl="http://10.0.0.5/")])
        self.assertEqual(told["events"], [
            new_host_event("10.0.0.5"),
            {"kind": 11, "host": "NAS", "info": "10.0.0.5", "text": "", "syslogInfo": -1}])
        self.assertEqual(len(server.requests), 1)
        self.assertTrue(server.requests[0].startswith("GET /nas.xml HTTP/1.1\r\n"), server.requests[0])
        self.assertIn("\r\nUser-Agent: Vardelwatch-UPNP-Resolve\r\n", server.requests[0])

    def test_names_behind_the_first_4096_bytes_are_not_read(self):
        server = self.serve(documents_of(b" " * 4096 + self.DOCUMENT))
        told = self.replay("--fetch", self.message(server.base))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_a_file_is_no_address(self):
        path = self.file(self.DOCUMENT)
        for url in (f"file://{path}", path):
            with self.subTest(url):
                told = self.replay("--fetch", self.message(url))
                self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_no_server_holds_the_handlers_longer_than_five_seconds(self):
        for answer in (silence, one_byte_a_second):
            with self.subTest(answer.__name__):
                server = self.serve(answer)
                start = time.monotonic()
                done = self.run_program("--fetch", self.message(server.base, 2))
                self.assertLess(time.monotonic() - start, self.RUN_SECONDS)
                self.assertEqual((done.returncode, done.stderr), (0, b""))
                self.assertLess(json.loads(done.stdout)["handlerSeconds"], self.HELD_SECONDS)
                self.assertEqual(self.parse(done.stdout)["hosts"], [host("10.0.0.5", upnpDone=1)])
                self.assertEqual(len(server.requests), 1)

    def test_a_name_that_nobody_resolves_holds_the_handlers_no_longer(self):
        probe = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "true"], capture_output=True,
                               check=False)
        if probe.returncode != 0:
            self.skipTest("this user may make no namespaces: " + probe.stderr.decode().strip())
        switch, server = self.file("hosts: dns\n"), self.file("nameserver 127.0.0.1\n")
        silent = self.file("import socket, subprocess, sys\n"
                           "names = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)\n"
                           "names.bind(('127.0.0.1', 53))\n"
                           "code = subprocess.run(sys.argv[1:]).returncode\n"
                           "names.settimeout(0)\n"
                           "print(b'device' in names.recv(512), file=sys.stderr)\n"
                           "sys.exit(code)\n")
        script = (f"mount --bind {switch} /etc/nsswitch.conf && mount --bind {server} /etc/resolv.conf && "
                  "ip link set lo up && exec \"$@\"")
        done = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "sh", "-c", script, "sh",
                               "/usr/bin/python3", silent, PROGRAM, "--fetch", self.message("http://device.example/")],
                              capture_output=True, timeout=60, check=False, env={**os.environ, "TZ": "UTC"})
        self.assertEqual((done.returncode, done.stderr), (0, b"True\n"))
        self.assertLess(json.loads(done.stdout)["handlerSeconds"], self.HELD_SECONDS)
        self.assertEqual(self.parse(done.stdout)["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_a_storage_announcement_tells_name_model_and_firmware(self):
        path = self.capture(arp("10.0.0.5"), *(
            udp("10.0.0.5", 22936, 22936, device_announcement("LS-Attic", "LS-WVL", 1, minor)) for minor in (64, 65)))
        told = self.replay(path)
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="LS-Attic", nameUnresolved=0, osFromBrowse=1,
                                              deviceProbed=1, os="LS-WVL FW: 1.65")])
        self.assertEqual(told["events"], [
            new_host_event("10.0.0.5"),
            {"kind": 12, "host": "LS-Attic", "info": "10.0.0.5", "text": "LS-WVL FW: 1.64", "syslogInfo": -1}])

    def test_an_announcement_of_another_length_is_none(self):
        path = self.capture(arp("10.0.0.5"), *(
            udp("10.0.0.5", 22936, 22936, device_announcement("LS", "LS", 1, 1, length)) for length in (319, 321)))
        self.assertEqual(self.replay(path)["hosts"], [host("10.0.0.5")])

    def test_the_demo_lan_is_known_by_all_its_device_messages(self):
        documents = lan_documents.DocumentServer("127.0.0.1")
        self.addCleanup(documents.close)
        description = lan_description.Lan(3)
        # Two rounds, so that every host is known before it tells of itself.
        seconds = 2 * lan_schedule.ROUND_SECONDS
        frames = [frame.data for frame in lan_schedule.frames(description, seconds, documents.base)]
        told = self.replay("--fetch", self.capture(*frames))

        model = WatcherModel({documents.base + path: body for path, body in lan_documents.documents().items()})
        for frame in frames:
            if lan_expectations.frame_class(frame) != "filtered":
                model.see(frame)
        fields = list(next(iter(model.hosts.values())))
        self.assertEqual({entry["ip"]: {name: entry[name] for name in fields} for entry in told["hosts"]}, model.hosts)
        events = [{name: event[name] for name in ("kind", "host", "info", "text")} for event in told["events"]]
        self.assertEqual([event for event in events if event["kind"] != 10], model.events)

        expected = lan_expectations.expectations(description)
        for wanted in expected["hosts"]:
            entry = next(entry for entry in told["hosts"] if entry["ip"] == wanted["ip"])
            for name in ("friendlyName", "presentationUrl", "upnpDone", "deviceProbed", "osFromBrowse", "os"):
                self.assertEqual(entry[name], wanted[name], (wanted["ip"], name))
        devices = [event for event in expected["events"] if event["kind"] in (11, 12)]
        for event in devices:
            self.assertIn(event, events)
        self.assertEqual(len([event for event in events if event["kind"] in (11, 12)]), len(devices))


class FailureTest(ReplayTest):
    def test_a_torn_savefile_is_fed_up_to_the_tear(self):
        content = savefile([arp("10.0.0.5"), arp("10.0.0.6")])
        for cut in (1, 30, 60, 70):  # in the last frame's bytes, and in its header
            with self.subTest(cut=cut):
                path = self.file(content[:-cut])
                done = self.run_program(path)
                self.assertEqual(done.returncode, 1)
                self.assertEqual(self.parse(done.stdout)["frames"], {"read": 1, "arp": 1, "ip": 0})
                self.assertTrue(done.stderr.decode().startswith(f"vardel-replay: {path}: "), done.stderr)

    def test_files_behind_a_torn_one_are_fed(self):
        torn = self.file(savefile([arp("10.0.0.5")])[:-1])
        whole = self.capture(arp("10.0.0.6"))
        for words in ((torn, whole), ("--repeat", "2", torn, whole)):
            with self.subTest(words):
                done = self.run_program(*words)
                self.assertEqual(done.returncode, 1)
                self.assertEqual(self.parse(done.stdout)["newEntries"], ["10.0.0.6"])

    def test_what_is_no_savefile_ends_the_run(self):
        for name, content in (("nothing", b""), ("text", b"hello, this is a text and no savefile"),
                              ("half a header", savefile([])[:12])):
            with self.subTest(name):
                path = self.file(content)
                self.assertIn(path, self.fails(1, path))
                self.assertIn(path, self.fails(1, self.capture(arp("10.0.0.5")), path))

    def test_a_missing_savefile_ends_the_run(self):
        self.assertIn("no-such-file", self.fails(1, os.path.join(self.folder, "no-such-file")))

    def test_another_link_type_ends_the_run(self):
        self.assertIn("NULL", self.fails(2, self.capture(link_type=0)))
        self.assertIn("LINUX_SLL", self.fails(2, self.capture(arp("10.0.0.5")), self.capture(link_type=113)))
        path = self.file(next_generation_savefile([], link_type=113))
        self.assertIn(path, self.fails(2, path))

    def test_wrong_arguments_end_the_run_with_the_usage(self):
        path = self.capture()
        for words in ((), ("--quiet",), ("--unknown", path), ("-q", path), (path, "--settings"), (path, "--vendors"),
                      (path, "--local"), (path, "--repeat"), ("--settings", "", path), ("--vendors", "", path),
                      *(("--repeat", times, path) for times in ("0", "-1", "x", "", "1x", "1.5", "99999999999")),
                      *(("--local", local, path) for local in (
                          "", "10.0.0", "10.0.0.256", "10.0.0.01", "10.0.0.1.2", "ten", "10.0.0.1=", "0.0.0.0",
                          "10.0.0.1=02:00:00:00:00", "10.0.0.1=02:00:00:00:00:0g", "10.0.0.1=02-00-00-00-00-01",
                          "=02:00:00:00:00:01", " 10.0.0.1"))):
            with self.subTest(words):
                self.assertIn("usage: vardel-replay ", self.fails(2, *words))

    def test_names_behind_two_dashes_are_savefiles(self):
        path = self.file(savefile([arp("10.0.0.5")]), "--quiet")
        done = subprocess.run([PROGRAM, "--", "--quiet"], capture_output=True, cwd=self.folder, check=False,
                              env={**os.environ, "TZ": "UTC"})
        self.assertEqual(self.parse(done.stdout), self.replay(path))

    def test_a_document_that_can_not_be_written_is_a_failure(self):
        with open("/dev/full", "wb") as full:
            done = subprocess.run([PROGRAM, self.capture()], stdout=full, stderr=subprocess.PIPE, check=False)
        self.assertEqual((done.returncode, done.stderr), (1, b"vardel-replay: the document could not be written\n"))


if __name__ == "__main__":
    unittest.main()
