"""vardel-replay: which frames are fed, in which order, and what ends a run."""

import json
import os
import subprocess
import sys
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.join(ROOT, "tools", "demo_lan")]

from capture_files import START, arp, ethernet, next_generation_savefile, savefile, syslog, udp
from replay_case import PROGRAM, ReplayTest, registry_text


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
