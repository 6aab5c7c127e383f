"""The desktop program's host view, driven for a minute while frames come fast and the program does all its work.

The driver opens, sorts, selects, filters, trusts, deletes and closes from outside, as a user's hand would; the demo LAN's
frames come at 2,000 a second, with new hosts and alerts among them, so that ticks, popups and queues hold the records
that are deleted.
"""

import contextlib
import json
import os
import subprocess
import sys
import tempfile
import unittest

import watch_run

sys.path.append(os.path.join(watch_run.ROOT, "tools"))
sys.path.append(os.path.join(watch_run.ROOT, "bench"))

import lan_namespace
import run_desktop
import run_watch
import soak_traffic
import watch_settings
import wine_prefix

VIEW_DRIVER = os.path.join(watch_run.WINDOWS_BUILD, "tests", "desktop", "view_driver.exe")
NO_WINE = lan_namespace.unavailable_reason() or wine_prefix.unavailable_reason()
SECONDS = 60
FRAMES_PER_SECOND = 2000
LONGEST_SECONDS = 200
# Windows of alerts come and go meanwhile.
OBJECTS_TO_SPARE = 60


@unittest.skipIf(NO_WINE, NO_WINE)
class ViewUnderLoad(unittest.TestCase):
    def setUp(self):
        self.stack = self.enterContext(contextlib.ExitStack())
        folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardelwatch-e2e-"))
        self.lan = self.stack.enter_context(lan_namespace.LanNamespace())
        settings, lists = run_watch.settings_of_run(
            watch_settings.wine_device_of_index(lan_namespace.INTERFACE_INDEX), True, run_desktop.PROGRAM,
            run_watch.in_wine)
        settings.update(VisibleColumns=11110, SaveColumnWidth=1, SaveViewWindow=1, GreyedOutOldEntries=1)
        display = run_desktop.virtual_display(self.stack)
        self.run_ = run_desktop.DesktopRun(self.stack, folder, self.lan.watcher, display, settings, lists,
                                           output=subprocess.DEVNULL)
        self.sender = self.lan.injector.start(
            [sys.executable, "-B", soak_traffic.__file__, self.lan.injector.interface, str(FRAMES_PER_SECOND),
             str(SECONDS + LONGEST_SECONDS), self.lan.injector.ip],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True, start_new_session=True)
        self.addCleanup(self.stack.close)

    def test_nothing_breaks_and_nothing_is_left_behind(self):
        self.assertEqual(self.sender.stdout.readline(), "ready\n")
        self.assertTrue(self.run_.give_command(watch_settings.VIEW_COMMAND, lambda: False), "the program came up")
        self.sender.stdin.write("go\n")
        self.sender.stdin.flush()
        driver = self.run_.start([VIEW_DRIVER, str(SECONDS), "7"], stdout=subprocess.PIPE, text=True)
        told = driver.communicate(timeout=LONGEST_SECONDS)[0]
        self.assertIsNone(self.run_.exit_code(), f"the program still runs; {told}")
        self.assertEqual(driver.returncode, 0, f"it answered all the time; {told}")
        counts = json.loads(told)
        print(f"\n{told.strip()}", file=sys.stderr)
        for deed in ("rounds", "sorts", "selects", "filters", "trusts", "deletes", "menus"):
            self.assertGreater(counts[deed], 5, deed)
        for kind in ("gdi", "user"):
            before, after = counts[kind]
            self.assertGreater(before, 0, kind)
            self.assertLess(after, before + OBJECTS_TO_SPARE, kind)
        self.assertTrue(self.run_.leave(watch_run.END_SECONDS), "it ends when it is asked")
        # The Windows program's own exit code is 1 on all paths; one that breaks has another.
        self.assertEqual(self.run_.exit_code(), 1)


if __name__ == "__main__":
    unittest.main()
