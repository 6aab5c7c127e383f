"""The Linux program in the situations of its daily life, each in network namespaces of its own."""

import os
import signal
import subprocess
import tempfile
import time
import unittest

import lan_checks
import watch_run

import lan_description
import lan_namespace

SEED = 7
SAVEFILE_SECONDS = 10
SPEAKER = os.path.join(watch_run.ROOT, "tests", "e2e", "speak_arp.py")
REFUSE_ADAPTER_LIST = os.path.join(watch_run.ROOT, "tests", "e2e", "refuse_adapter_list.py")
SETTINGS = {
    "AutoCapture": 1,
    "EventLogSave": 1,
    "UsingEventLog": 1,
    "MaxEventLogFileSize": 0,
    "UpdateCheck": 0,
    "Interface": lan_namespace.INTERFACE,
}
NO_ADAPTER = (
    "Vardelwatch - Error: Unable to find an network adapter. Make sure\n"
    "WinPcap is installed and started !\n"
)
ONE_INSTANCE = "Vardel - MainRun - only one instance can be started... EXIT !\n"
# How long a second start may take to see that it is the second.
AT_ONCE_SECONDS = 20
NEIGHBOUR_IPS = ("10.77.0.98", "10.77.0.99")

REASON = lan_namespace.unavailable_reason()


class LinuxProgramCase(unittest.TestCase):
    def setUp(self):
        watch_run.require(watch_run.LINUX_PROGRAM)
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardelwatch-e2e-"))

    def make_lan(self, **more):
        return self.enterContext(lan_namespace.LanNamespace(**more))

    def make_run(self, lan, settings=None, name="run"):
        return watch_run.LinuxRun(
            lan.watcher, os.path.join(self.folder, name), {**SETTINGS, **(settings or {})}
        )

    def assert_ended_well(self, run, number=signal.SIGTERM):
        self.assertEqual(run.end(number), 0, run.output + run.errors)
        self.assertEqual(run.processes(), [])


@unittest.skipIf(REASON, REASON)
class InterfaceTest(LinuxProgramCase):
    def speak(self, lan, *ips):
        lan.injector.start(
            ["/usr/bin/python3", "-B", SPEAKER, lan.injector.interface, lan.injector.mac, *ips],
            stdin=subprocess.DEVNULL,
        )

    def test_goes_on_when_the_interface_was_taken_away_and_is_back(self):
        lan = self.make_lan()
        run = self.make_run(lan).start()
        run.wait_for(watch_run.CAPTURING)
        self.speak(lan, "10.77.0.61")
        run.wait_for("10.77.0.61")
        lan.take_away()
        # Long enough for some attempts that fail.
        time.sleep(2.5)
        self.assertIsNone(run.exit_code)
        lan.bring_back()
        self.speak(lan, "10.77.0.62")
        run.wait_for("10.77.0.62")
        self.assert_ended_well(run, signal.SIGINT)
        # Nobody is told that the interface was away.
        self.assertEqual(
            [event.event for event in run.log_events()],
            [
                watch_run.STARTED,
                watch_run.CAPTURING,
                watch_run.NEW_HOST,
                watch_run.NEW_HOST,
                watch_run.EXITED,
            ],
        )
        self.assertEqual(run.hosts()["10.77.0.62"]["MAC"], lan.injector.mac)

    def test_speaks_the_language_of_its_settings(self):
        lan = self.make_lan()
        for name, language, started, ended in (
            ("german", "Deutsch", "Vardelwatch wurde gestartet", "Vardelwatch wurde beendet"),
            ("french", "Fran\xe7ais", "Vardelwatch a d\xe9marr\xe9", "Vardelwatch s'est arr\xeat\xe9"),
        ):
            run = self.make_run(lan, {"Language": language}, name).start(environment={"LC_ALL": "C.UTF-8"})
            utf8 = started.encode("utf-8").decode("latin-1")  # as the output's bytes are read
            run.wait_for(utf8)
            self.assert_ended_well(run)
            events = [event.event for event in run.log_events()]
            self.assertEqual((events[0], events[-1]), (started, ended))

    def test_without_an_adapter_tells_so_and_fails(self):
        lan = self.make_lan()
        run = self.make_run(lan).start(through=["/usr/bin/python3", "-B", REFUSE_ADAPTER_LIST])
        self.assertEqual(run.wait_for_end(), 1)
        self.assertEqual(run.errors, NO_ADAPTER)
        self.assertEqual(run.output, "")
        self.assertFalse(os.path.exists(run.log_path))

    def test_without_the_right_to_capture_goes_on_trying_and_ends_well(self):
        lan = self.make_lan()
        run = self.make_run(lan).start(through=["setpriv", "--bounding-set=-net_raw"])
        run.wait_for(watch_run.CAPTURING)
        self.speak(lan, "10.77.0.61")
        # Long enough for some attempts.
        time.sleep(2.5)
        self.assert_ended_well(run)
        self.assertEqual(set(run.hosts()), {lan.watcher.ip, "127.0.0.1"})
        self.assertEqual(
            [event.event for event in run.log_events()],
            [watch_run.STARTED, watch_run.CAPTURING, watch_run.EXITED],
        )

    def test_a_second_instance_tells_only_the_debug_output_and_ends_at_once(self):
        lan = self.make_lan()
        first = self.make_run(lan).start()
        first.wait_for(watch_run.CAPTURING)
        second = self.make_run(lan).start(output_prefix="second-")
        self.assertEqual(second.wait_for_end(AT_ONCE_SECONDS), 1)
        self.assertEqual((second.output, second.errors), ("", ONE_INSTANCE))
        self.assertIsNone(first.exit_code)
        self.assert_ended_well(first)
        self.assertEqual(
            [event.event for event in first.log_events()],
            [watch_run.STARTED, watch_run.CAPTURING, watch_run.EXITED],
        )


@unittest.skipIf(REASON, REASON)
class SavefileTest(LinuxProgramCase):
    """Replays the demo LAN. The resolver knows two names and gives the others in digits, its last resort."""

    NAMES = {
        lan_description.WATCHER_IP: "watchpost",
        "10.77.0.10": "files.valley.example",
        "10.77.0.36": "watchpost",
    }

    def test_replay_gives_the_hosts_of_the_lan_under_the_names_of_the_real_resolver(self):
        path = os.path.join(self.folder, "lan.pcap")
        subprocess.run(
            [
                "/usr/bin/python3",
                "-B",
                watch_run.DEMO_LAN,
                "write",
                "--out",
                path,
                "--seconds",
                str(SAVEFILE_SECONDS),
                "--seed",
                str(SEED),
            ],
            check=True,
            stdout=subprocess.DEVNULL,
        )
        lan = self.make_lan(hosts=self.NAMES, resolver="numeric")
        run = self.make_run(lan, {"Interface": f"file://{path}"}).start()
        run.wait_for(watch_run.CAPTURING)
        time.sleep(SAVEFILE_SECONDS)
        everyone = {host.ip for host in lan_description.HOSTS}
        watch_run.wait_until(
            lambda: sum(watch_run.NEW_HOST in line for line in run.printed_events()) >= len(everyone),
            watch_run.END_SECONDS,
            "event for each host",
        )
        self.assert_ended_well(run)
        # This machine's own name is refused of another address, by the steps that would give it.
        names = {"10.77.0.10": "files.valley.example", "10.77.0.36": lan_checks.NO_NAME}
        expected = lan_checks.expected_hosts(SEED, names, is_numeric=True, has_documents=False)
        lan_checks.check_hosts(self, run.hosts(), expected, {lan_description.WATCHER_IP, "127.0.0.1"})
        lan_checks.check_new_host_events(self, run.log_events(), names, is_numeric=True)
        lan_checks.check_log(self, run, f"file://{path}")


@unittest.skipIf(REASON, REASON)
class SettingsTest(LinuxProgramCase):
    def test_a_damaged_settings_file_is_told_used_as_far_as_it_goes_and_kept(self):
        lan = self.make_lan()
        run = self.make_run(lan)
        with open(run.settings_path, "ab") as settings:
            settings.write(b'"Syslog"=dword:zz\r\n')
        with open(run.settings_path, "rb") as settings:
            before = settings.read()
        run.start().wait_for(watch_run.CAPTURING)
        self.assert_ended_well(run)
        line = before.count(b"\n")
        self.assertEqual(
            run.errors,
            f"vardelwatch: settings file {run.settings_path} is damaged at line {line}; "
            "using what can be read\n",
        )
        with open(run.settings_path, "rb") as settings:
            self.assertEqual(settings.read(), before)

    def test_a_settings_file_that_cannot_be_read_is_told_and_left_alone(self):
        lan = self.make_lan()
        run = self.make_run(lan)
        os.remove(run.settings_path)
        # Even root can't read a folder as a file.
        os.mkdir(run.settings_path)
        run.start().wait_for(watch_run.STARTED)
        self.assert_ended_well(run)
        self.assertIn(f"settings can't be read from {run.settings_path}: Is a directory\n", run.errors)
        self.assertTrue(os.path.isdir(run.settings_path))


@unittest.skipIf(REASON, REASON)
class ArpCacheTest(LinuxProgramCase):
    def neighbours_after_a_run(self, flush):
        lan = self.make_lan()
        for ip in NEIGHBOUR_IPS:
            lan.watcher.ip_command(
                "neighbour",
                "add",
                ip,
                "lladdr",
                "02:00:5e:00:00:63",
                "dev",
                lan.watcher.interface,
                "nud",
                "reachable",
            )
        run = self.make_run(lan, {"DeleteARPCache": int(flush)}).start()
        run.wait_for(watch_run.CAPTURING)
        self.assert_ended_well(run)
        return {line.split()[0] for line in lan.watcher.ip_command("-4", "neighbour", "show").splitlines()}

    def test_is_emptied_at_start_where_the_settings_say_so(self):
        self.assertEqual(self.neighbours_after_a_run(flush=True) & set(NEIGHBOUR_IPS), set())

    def test_is_left_alone_otherwise(self):
        self.assertEqual(self.neighbours_after_a_run(flush=False) & set(NEIGHBOUR_IPS), set(NEIGHBOUR_IPS))


if __name__ == "__main__":
    unittest.main()
