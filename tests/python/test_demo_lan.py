"""The demo LAN: its frames are right, they never pause, and they lead to what the description promises."""

import collections
import json
import os
import random
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
DEMO_LAN = os.path.join(ROOT, "tools", "demo_lan", "demo_lan.py")
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.dirname(DEMO_LAN)]

import frame_reader
import lan_description
import lan_documents
import lan_expectations
import lan_schedule
import watcher_model

LEAST_FRAMES_PER_SECOND = 5
HOST_FIELDS = (
    "ip",
    "mac",
    "nameUnresolved",
    "os",
    "osClass",
    "osFromBrowse",
    "friendlyName",
    "presentationUrl",
    "upnpDone",
    "deviceProbed",
)


def served_documents(base=lan_schedule.DEFAULT_HTTP_BASE):
    return {base + path: document for path, document in lan_documents.documents().items()}


def model_of(frames, is_numeric=False):
    model = watcher_model.WatcherModel(served_documents(), is_numeric)
    for data in frames:
        model.see(data)
    return model


def frames_of(seconds, seed=1):
    return list(lan_schedule.frames(lan_description.Lan(seed), seconds))


def run_tool(*words):
    return subprocess.run(
        ["/usr/bin/python3", DEMO_LAN, *words], capture_output=True, text=True, timeout=60, check=True
    ).stdout


def fewest_in_any_second(times, end):
    """The fewest frames in any second between 0 and `end`; the worst ones start right after a frame."""
    starts = [0.0] + [time for time in times if time <= end - 1.0]
    return min(sum(start < time <= start + 1.0 for time in times) for start in starts)


class ExpectationChecks(unittest.TestCase):
    """What a model of the watcher makes of frames, compared with what the description promises."""

    def assert_hosts(self, model, expected):
        found = {ip: {field: host[field] for field in HOST_FIELDS} for ip, host in model.hosts.items()}
        promised = {host["ip"]: {field: host[field] for field in HOST_FIELDS} for host in expected["hosts"]}
        self.assertEqual(found, promised)
        names = {host["ip"]: host["hostName"] or watcher_model.NOT_AVAILABLE for host in expected["hosts"]}
        self.assertEqual({ip: host["hostName"] for ip, host in model.hosts.items()}, names)
        for ip in expected["neverHosts"]:
            self.assertNotIn(ip, model.hosts)

    def assert_events(self, model, expected):
        self.assertCountEqual(model.events, expected["events"])

    def assert_spoofs(self, model, expected):
        promised = {(spoof["ip"], spoof["otherMac"]) for spoof in expected["spoofs"]}
        self.assertEqual(set(model.spoofs), promised)
        self.assertEqual(
            {host["ip"] for host in expected["hosts"] if host["isSpoofed"]}, {ip for ip, _ in promised}
        )


class DemoLanTest(ExpectationChecks):
    def test_leads_to_the_promised_hosts_events_and_spoofs(self):
        for seed in (1, 2, 77):
            model = model_of(frame.data for frame in frames_of(20, seed))
            expected = lan_expectations.expectations(lan_description.Lan(seed))
            self.assert_hosts(model, expected)
            self.assert_events(model, expected)
            self.assert_spoofs(model, expected)

    def test_leads_to_addresses_for_names_where_the_resolver_answers_in_digits(self):
        model = model_of((frame.data for frame in frames_of(20)), is_numeric=True)
        expected = lan_expectations.expectations(lan_description.Lan(1), is_numeric=True)
        self.assert_hosts(model, expected)
        self.assert_events(model, expected)

    def test_whoever_joins_at_any_moment_knows_all_after_two_rounds(self):
        expected = lan_expectations.expectations(lan_description.Lan(1))
        frames = frames_of(60)
        chance = random.Random(5)
        for start in [chance.uniform(0, 39) for _ in range(100)]:
            model = model_of(frame.data for frame in frames if start <= frame.seconds < start + 20)
            self.assert_hosts(model, expected)
            self.assert_events(model, expected)
            self.assert_spoofs(model, expected)

    def test_the_first_round_introduces_every_host(self):
        for seed in range(1, 20):
            model = model_of(frame.data for frame in frames_of(lan_schedule.ROUND_SECONDS, seed))
            self.assertEqual(set(model.hosts), {host.ip for host in lan_description.HOSTS})

    def test_syslog_records_of_each_round_are_the_promised_ones_in_order(self):
        rounds = 3
        model = model_of(frame.data for frame in frames_of(rounds * lan_schedule.ROUND_SECONDS))
        expected = lan_expectations.expectations(lan_description.Lan(1))["syslogs"]
        self.assertEqual(
            dict(model.syslogs), {source: records * rounds for source, records in expected.items()}
        )

    def test_every_row_of_the_os_table_is_met(self):
        model = model_of(frame.data for frame in frames_of(20))
        rows = {(row, None) for row in range(len(watcher_model.OS_ROWS))}
        rows |= {
            (row, blank)
            for row, (_, _, _, label, _) in enumerate(watcher_model.OS_ROWS)
            if label == " "
            for blank in range(len(watcher_model.BLANK_ROWS))
        }
        self.assertEqual(rows - model.os_rows_met, set())

    def test_announcements_of_both_operations_are_sent(self):
        operations = {each.operation for host in lan_description.HOSTS for each in host.announcements}
        self.assertEqual(operations, {1, 15})

    def test_never_falls_below_five_frames_a_second(self):
        for seed in (1, 2, 3):
            times = [frame.seconds for frame in frames_of(60, seed)]
            self.assertEqual(times, sorted(times))
            self.assertGreaterEqual(fewest_in_any_second(times, 60), LEAST_FRAMES_PER_SECOND)

    def test_every_frame_is_well_formed(self):
        kinds = collections.Counter()
        for frame in frames_of(20):
            self.assertGreaterEqual(len(frame.data), 46)
            ethertype = frame_reader.ethertype(frame.data)
            if ethertype in (0x0806, 0x8035):
                parsed = frame_reader.read_arp(frame.data)
                kinds["rarp" if parsed.is_rarp else "arp", parsed.operation] += 1
            elif ethertype == 0x0800:
                self.assertTrue(frame_reader.has_right_checksum(frame.data))
                protocol, _ = frame_reader.ip_segment(frame.data)
                kinds[protocol] += 1
                if protocol == 17:
                    self.assertEqual(frame_reader.read_udp(frame.data).rest.strip(b"\0"), b"")
            else:
                kinds[hex(ethertype) if ethertype > 1500 else "802.3"] += 1
        self.assertEqual(
            set(kinds),
            {("arp", 1), ("arp", 2), ("rarp", 3), ("rarp", 4), 1, 6, 17, "0x8100", "0x86dd", "802.3"},
        )

    def test_arp_has_probes_gratuitous_frames_and_a_repeater(self):
        parsed = [
            frame_reader.read_arp(frame.data)
            for frame in frames_of(10)
            if frame_reader.ethertype(frame.data) in (0x0806, 0x8035)
        ]
        self.assertTrue(any(arp.sender_ip == "0.0.0.0" and not arp.is_rarp for arp in parsed))
        self.assertEqual(
            {arp.operation for arp in parsed if arp.sender_ip == arp.target_ip and not arp.is_rarp}, {1, 2}
        )
        self.assertTrue(any(arp.ethernet_source != arp.sender_mac for arp in parsed))

    def test_addresses_are_taken_once_and_the_reserved_ones_never(self):
        ips = [host.ip for host in lan_description.HOSTS]
        self.assertEqual(len(set(ips)), len(ips))
        for seed in range(50):
            self.assertEqual(len({lan_description.Lan(seed).mac(ip) for ip in ips}), len(ips))
        reserved = {lan_description.WATCHER_IP, lan_description.INJECTOR_IP}
        senders = set()
        for frame in frames_of(20):
            if frame_reader.ethertype(frame.data) == 0x0806:
                parsed = frame_reader.read_arp(frame.data)
                senders |= {parsed.sender_ip, parsed.target_ip}
            elif frame_reader.ethertype(frame.data) == 0x0800:
                senders |= {frame_reader.ip_text(frame.data[26:30]), frame_reader.ip_text(frame.data[30:34])}
        self.assertFalse(senders & reserved)

    def test_the_same_seed_gives_the_same_frames_and_another_seed_others(self):
        self.assertEqual(frames_of(25, 4), frames_of(25, 4))
        self.assertNotEqual(
            lan_description.Lan(4).mac("10.77.0.10"), lan_description.Lan(5).mac("10.77.0.10")
        )

    def test_documents_are_read_whole_in_one_read_but_for_the_late_one(self):
        sizes = {path: len(document) for path, document in lan_documents.documents().items()}
        self.assertEqual(
            [path for path, size in sizes.items() if size > watcher_model.READ_BYTES], ["/media-server.xml"]
        )
        self.assertGreater(lan_documents.documents()["/media-server.xml"].index(b"<friendlyName>"), 4096)


class CommandLineTest(ExpectationChecks):
    def test_savefile_holds_what_expect_counts(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "lan.pcap")
            run_tool("write", "--out", path, "--seconds", "23.5", "--seed", "9")
            frames = frame_reader.read_savefile(path)
        expected = json.loads(run_tool("expect", "--seconds", "23.5", "--seed", "9"))
        model = model_of(data for _, data in frames)
        self.assert_hosts(model, expected)
        self.assert_events(model, expected)
        counts = expected["counts"]
        self.assertEqual(dict(model.frames), counts["frames"])
        self.assertEqual(
            {source: len(records) for source, records in model.syslogs.items()}, counts["syslogs"]
        )
        self.assertEqual(dict(collections.Counter(ip for ip, _ in model.spoofs)), counts["spoofs"])
        times = [time - frames[0][0] for time, _ in frames]
        self.assertGreaterEqual(fewest_in_any_second(times, 23), LEAST_FRAMES_PER_SECOND)

    def test_savefile_names_the_given_place_of_the_documents(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "lan.pcap")
            run_tool("write", "--out", path, "--seconds", "10", "--http-base", "http://127.0.0.1:4711/")
            content = b"".join(data for _, data in frame_reader.read_savefile(path))
        self.assertIn(b"Location: http://127.0.0.1:4711/television.xml\r\n", content)
        self.assertIn(b"Location: http://127.0.0.1:9/player.xml\r\n", content)

    def test_wrong_arguments_and_an_unknown_interface_fail_with_a_message(self):
        for words, status in (
            (["write", "--out", "/nonexistent/x.pcap", "--seconds", "1"], 1),
            (["write", "--out", "x.pcap", "--seconds", "0"], 2),
            (["inject", "--interface", "nosuchif0"], 1),
            ([], 2),
        ):
            done = subprocess.run(
                ["/usr/bin/python3", DEMO_LAN, *words],
                capture_output=True,
                text=True,
                timeout=60,
                check=False,
            )
            self.assertEqual(done.returncode, status, words)
            self.assertIn("demo_lan", done.stderr)


if __name__ == "__main__":
    unittest.main()
