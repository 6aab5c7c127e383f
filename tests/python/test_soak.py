"""The soak's account: what is lost, told twice or grown is seen, and nothing else is."""

import os
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "bench"))

import soak_account
import soak_traffic

import lan_description

SENT = {"new_hosts": 2, "emergencies": 2, "spoofs": 3}
OUTPUT = """\
10:00:00 | Vardelwatch started successfully |  |  |\x20
10:00:01 | New host found | 10.88.0.1 | Hostname not available |\x20
10:00:01 | New host found | 10.77.0.15 | Hostname not available |\x20
Alert: New host(s) found :
    Hostname not available [10.88.0.1]
    Hostname not available [10.77.0.15]
10:00:06 | New host found | 10.88.0.2 | Hostname not available |\x20
Alert: New host(s) found :
    Hostname not available [10.88.0.2]
Alert: MAC spoofing alert on following addresses :
    reception (10.77.0.15)
    ... (+2)
10:00:07 | Syslog notification |  | 10.77.0.1 | soak emergency 0.
10:00:08 | Syslog notification |  | 10.77.0.1 | soak emergency 1.
Alert: 10.77.0.1
    soak emergency 0.
    soak emergency 1.
Alert: Host watched is alive !
10:00:09 | Watched host is online | 10.77.0.60 | watched |\x20
10:00:10 | Vardelwatch exited |  |  |\x20

IP         MAC
3 hosts, 8 events
"""


class SoakAccountTest(unittest.TestCase):
    def complaints(self, output=OUTPUT, turns=1, log_lines=8):
        told = soak_account.read_output(output.splitlines(keepends=True))
        return soak_account.account(SENT, turns, told, log_lines)

    def without(self, text):
        self.assertIn(text, OUTPUT)
        return self.complaints(OUTPUT.replace(text, "", 1))

    def test_nothing_is_wrong_where_all_was_told_once(self):
        self.assertEqual(self.complaints(), [])

    def test_each_lost_alert_is_seen(self):
        for line, complaint in (
            ("    Hostname not available [10.88.0.1]\n", "alerts of new hosts"),
            ("    Hostname not available [10.77.0.15]\n", "alerts of new hosts"),
            ("    soak emergency 1.\n", "alerts of syslog messages"),
            ("    reception (10.77.0.15)\n", "alerts of MAC spoofing"),
            ("Alert: Host watched is alive !\n", "alerts of the watched host"),
        ):
            with self.subTest(line=line):
                (wrong,) = self.without(line)
                self.assertIn(complaint, wrong)

    def test_a_lost_event_is_seen(self):
        wrong = self.without("10:00:07 | Syslog notification |  | 10.77.0.1 | soak emergency 0.\n")
        self.assertIn("events of syslog messages", wrong[0])

    def test_what_is_told_twice_is_seen(self):
        line = "    Hostname not available [10.88.0.2]\n"
        (wrong,) = self.complaints(OUTPUT.replace(line, line * 2))
        self.assertIn("10.88.0.2 x2", wrong)

    def test_a_missing_line_of_the_log_and_a_missed_turn_are_seen(self):
        self.assertIn("lines of the event log", self.complaints(log_lines=7)[0])
        self.assertEqual(len(self.complaints(turns=2)), 2)

    def test_memory_may_grow_by_what_hosts_and_events_take(self):
        first = soak_account.Sample(90, 50_000_000, 10, 100)
        for hosts, events, allowed in ((10, 100, 1 << 20), (11, 100, (1 << 20) + 4096), (10, 102, (1 << 20) + 1024)):
            last = soak_account.Sample(1800, 50_000_001, hosts, events)
            self.assertEqual(soak_account.growth(first, last), (1, allowed))


class SoakTrafficTest(unittest.TestCase):
    def test_what_is_counted_begins_late_and_ends_early(self):
        counts = [soak_traffic.due(seconds, 1.0, 60) for seconds in (0, 5.5, 6.5, 30, 45, 59)]
        self.assertEqual(counts, [0, 0, 1, 25, 40, 40])

    def test_the_lans_own_emergencies_are_left_out_and_claims_are_known(self):
        frames = soak_traffic.made_frames(lan_description.Lan(), "http://10.77.0.3:1")
        self.assertFalse([data for data, _ in frames if b"temperature above limit" in data])
        rounds = soak_traffic.MADE_SECONDS / 10
        self.assertEqual(sum(is_claim for _, is_claim in frames), rounds)
        self.assertGreater(len(frames), 100 * rounds)

    def test_new_hosts_have_addresses_and_cards_of_their_own(self):
        frames = {soak_traffic.new_host_frame(number) for number in range(1000)}
        self.assertEqual(len(frames), 1000)
        self.assertEqual(len({frame[22:28] for frame in frames}), 1000)


if __name__ == "__main__":
    unittest.main()
