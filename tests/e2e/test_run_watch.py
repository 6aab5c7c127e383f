"""./run behind its build: both programs on the demo LAN, and that nothing of a run is left behind."""

import glob
import os
import re
import signal
import subprocess
import tempfile
import unittest

import watch_run

import lan_namespace
import wine_prefix

RUNNER = os.path.join(watch_run.ROOT, "tools", "run_watch.py")
NO_LAN = lan_namespace.unavailable_reason()
NO_WINE = NO_LAN or wine_prefix.unavailable_reason()
HOSTS_LINE = re.compile(r"^\d+ hosts, \d+ events$", re.MULTILINE)


def processes_with(text):
    """Ids of processes whose command line contains it."""
    found = []
    for path in glob.glob("/proc/[0-9]*/cmdline"):
        try:
            with open(path, "rb") as source:
                if text.encode() in source.read():
                    found.append(path.split("/")[2])
        except OSError:
            continue  # It has just ended.
    return found


class RunWatchCase(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardelwatch-e2e-"))
        self.output_path = os.path.join(self.folder, "output")

    def output(self):
        with open(self.output_path, encoding="latin-1") as source:
            return source.read().replace("\r\n", "\n")

    def start(self, *arguments):
        """No display is named; all that it makes for a while lies below the test's own folder."""
        environment = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        with open(self.output_path, "wb") as output:
            runner = subprocess.Popen(["/usr/bin/python3", "-B", RUNNER, *arguments], stdin=subprocess.DEVNULL,
                                      stdout=output, stderr=subprocess.STDOUT,
                                      env={**environment, "TMPDIR": self.folder})
        self.addCleanup(runner.wait)
        self.addCleanup(runner.terminate)
        return runner

    def wait_for(self, runner, pattern):
        def has_come():
            self.assertIsNone(runner.poll(), self.output())
            return re.search(pattern, self.output())

        return watch_run.wait_until(has_come, watch_run.START_SECONDS, pattern)

    def assert_nothing_is_left_of(self, runner):
        self.assertEqual(glob.glob(os.path.join(wine_prefix.base_folder(), f"prefix-{runner.pid}-*")), [])
        namespaces = subprocess.run(["ip", "netns", "list"], capture_output=True, text=True, check=True).stdout
        self.assertNotIn(f"{lan_namespace.NAME_PREFIX}-{runner.pid}-", namespaces)
        self.assertEqual(processes_with(self.folder), [])
        self.assertEqual(glob.glob(os.path.join(self.folder, "vardelwatch-*")), [])


@unittest.skipIf(NO_LAN, NO_LAN)
class HeadlessTest(RunWatchCase):
    def test_watches_for_the_time_that_it_was_given(self):
        watch_run.require(watch_run.LINUX_PROGRAM)
        runner = self.start("--headless", "--seconds", "6")
        self.assertEqual(runner.wait(watch_run.START_SECONDS), 0, self.output())
        self.assertIn("Capturing started", self.output())
        self.assertRegex(self.output(), HOSTS_LINE)
        self.assert_nothing_is_left_of(runner)


@unittest.skipIf(NO_WINE, NO_WINE)
class DesktopTest(RunWatchCase):
    def start(self, *arguments):
        watch_run.require(watch_run.WINDOWS_PROGRAM, watch_run.POST_COMMAND, watch_run.WINE_PACKET)
        self.pictures = os.path.join(self.folder, "pictures")
        return super().start("--form", "desktop", "--screenshots", self.pictures, *arguments)

    def test_tells_events_and_saves_pictures_until_it_is_interrupted(self):
        runner = self.start()
        self.wait_for(runner, "New host found")
        saved = self.wait_for(runner, r"screenshot: (\S+\.png)").group(1)
        self.assertTrue(os.path.samefile(os.path.dirname(saved), self.pictures))
        with open(saved, "rb") as picture:
            self.assertEqual(picture.read(8), b"\x89PNG\r\n\x1a\n")
        runner.send_signal(signal.SIGINT)
        self.assertEqual(runner.wait(watch_run.END_SECONDS), 0, self.output())
        self.assertRegex(self.output(), HOSTS_LINE)
        self.assert_nothing_is_left_of(runner)

    def test_ends_after_the_time_that_it_was_given(self):
        runner = self.start("--seconds", "8")
        self.assertEqual(runner.wait(watch_run.START_SECONDS), 0, self.output())
        self.assertRegex(self.output(), HOSTS_LINE)
        self.assert_nothing_is_left_of(runner)


if __name__ == "__main__":
    unittest.main()
