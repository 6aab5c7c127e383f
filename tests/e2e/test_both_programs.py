"""Both programs watch the live demo LAN at once, on one wire, and must tell of it what it really is."""

import contextlib
import os
import tempfile
import time
import unittest

import lan_checks
import watch_run

import lan_description
import lan_expectations
import lan_namespace
import watch_settings
import wine_prefix

SEED = 7
# Two whole rounds of the LAN and some more, counted from when both programs capture.
WATCH_SECONDS = 25
# What the resolver knows; of everybody else it knows nothing.
NAMES = {
    "10.77.0.2": "watchpost",
    "10.77.0.10": "files.valley.example",
    "10.77.0.35": "switch.valley.example",
}
TRUSTED = ("10.77.0.1", "10.77.0.10", "10.77.0.35")
DISTRUSTED = ("10.77.0.15", "10.77.0.35")
NOTIFY_LEVEL = 1
NOTIFY_FACILITY = 9
NOTIFY_WORDS = "Failed password,UPDOWN"
SETTINGS = {
    "AutoCapture": 1,
    "EventLogSave": 1,
    "UsingEventLog": 1,
    "MaxEventLogFileSize": 0,
    "UpdateCheck": 0,
    "Syslog": 1,
    "SyslogMaxEntries": 100,
    "SyslogNotification": 1,
    "SyslogNotificationLevel": NOTIFY_LEVEL,
    "SyslogNotificationType": 1,
    "SyslogNotificationFacility": NOTIFY_FACILITY,
    "SyslogNotificationWords": NOTIFY_WORDS,
}
LISTS = {"TrustedHosts": lan_checks.list_key(TRUSTED), "DistrustedHosts": lan_checks.list_key(DISTRUSTED)}
KNOWN_EVENTS = {
    watch_run.STARTED,
    watch_run.CAPTURING,
    watch_run.NEW_HOST,
    watch_run.SYSLOG,
    watch_run.EXITED,
    watch_run.DEVICE_NAME,
    watch_run.STORAGE_FOUND,
}
LOCAL_IPS = {lan_description.WATCHER_IP, lan_description.INJECTOR_IP, "127.0.0.1"}

REASON = lan_namespace.unavailable_reason() or wine_prefix.unavailable_reason()
runs = {}
stack = contextlib.ExitStack()


def setUpModule():
    if REASON:
        return
    watch_run.require(
        watch_run.LINUX_PROGRAM, watch_run.WINDOWS_PROGRAM, watch_run.POST_COMMAND, watch_run.WINE_PACKET
    )
    try:
        watch_the_lan()
    except BaseException:
        stack.close()
        raise


def watch_the_lan():
    folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="vardelwatch-e2e-"))
    lan = stack.enter_context(lan_namespace.LanNamespace(hosts=NAMES, resolver="silent"))
    wine = stack.enter_context(wine_prefix.WinePrefix(lan.watcher))
    device = watch_settings.wine_device_of_index(lan_namespace.INTERFACE_INDEX)
    windows = watch_run.WindowsRun(
        lan.watcher, os.path.join(folder, "windows"), wine, {**SETTINGS, "Interface": device}, LISTS
    )
    linux = watch_run.LinuxRun(
        lan.watcher, os.path.join(folder, "linux"), {**SETTINGS, "Interface": lan.watcher.interface}, LISTS
    )
    runs.update(linux=(linux, lan.watcher.interface), windows=(windows, device))
    windows.start().wait_for(watch_run.CAPTURING)
    linux.start().wait_for(watch_run.CAPTURING)
    watch_run.start_demo_lan(lan, folder, "--seed", str(SEED))
    time.sleep(WATCH_SECONDS)
    for run, _ in runs.values():
        run.end()


def tearDownModule():
    stack.close()


def is_notified(severity, facility, text):
    return (
        severity <= NOTIFY_LEVEL
        or facility == NOTIFY_FACILITY
        or any(word in text for word in NOTIFY_WORDS.split(","))
    )


@unittest.skipIf(REASON, REASON)
class LinuxProgramTest(unittest.TestCase):
    NAME = "linux"
    EXIT_CODE = 0

    def setUp(self):
        self.run_, self.interface = runs[self.NAME]

    def test_ends_with_its_code_and_leaves_no_process(self):
        self.assertEqual(self.run_.exit_code, self.EXIT_CODE, self.run_.output + self.run_.errors)
        self.assertEqual(self.run_.processes(), [])
        self.assertEqual(self.run_.errors, "")

    def test_finds_the_hosts_of_the_lan_and_nobody_else(self):
        expected = lan_checks.expected_hosts(SEED, NAMES, TRUSTED, DISTRUSTED)
        lan_checks.check_hosts(self, self.run_.hosts(), expected, LOCAL_IPS)

    def test_knows_its_own_address_as_trusted(self):
        own = self.run_.hosts()[lan_description.WATCHER_IP]
        self.assertEqual(
            (own["Name"], own["Trust"], own["Vendor"]), ("watchpost", "trusted", "Unknown vendor")
        )
        self.assertEqual(own["MAC"], self.run_.namespace.mac)

    def test_posts_one_event_for_each_new_host(self):
        lan_checks.check_new_host_events(self, self.run_.log_events(), NAMES)

    def test_posts_one_event_for_each_device(self):
        lan_checks.check_device_events(self, self.run_.log_events())

    def test_a_claimed_address_is_no_event(self):
        spoof = lan_expectations.expectations(lan_description.Lan(SEED))["spoofs"][0]
        events = {event.event for event in self.run_.log_events()}
        self.assertLessEqual(events, KNOWN_EVENTS)
        self.assertNotIn(spoof["otherMac"], "\n".join(self.run_.log_lines()))
        self.assertEqual(self.run_.hosts()[spoof["ip"]]["MAC"], spoof["firstMac"])

    def test_notifies_of_syslog_by_severity_facility_and_word(self):
        expected = set(lan_checks.syslog_texts(is_notified))
        # The settings pick some by each of the three, and not all.
        self.assertLess(len(expected), len(lan_checks.syslog_texts(lambda *_: True)))
        found = [
            (event.host, event.text) for event in self.run_.log_events() if event.event == watch_run.SYSLOG
        ]
        self.assertEqual(set(found), expected)
        for each in expected:
            self.assertGreaterEqual(found.count(each), 2, each)

    def test_log_has_the_printed_events_from_start_to_exit(self):
        lan_checks.check_log(self, self.run_, self.interface)

    def test_last_line_counts_hosts_and_events(self):
        last = self.run_.output.rstrip("\n").rsplit("\n", 1)[1]
        self.assertEqual(last, f"{len(self.run_.hosts())} hosts, {len(self.run_.log_lines())} events")


class WindowsProgramTest(LinuxProgramTest):
    NAME = "windows"
    # On all paths.
    EXIT_CODE = 1


if __name__ == "__main__":
    unittest.main()
