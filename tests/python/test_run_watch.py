"""What ./run decides before anything runs: which program, which display, which pictures stay."""

import contextlib
import io
import os
import sys
import tempfile
import unittest
from unittest import mock

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))
sys.path.insert(0, os.path.join(ROOT, "tools"))

import display_picture
import run_desktop
import run_watch
import wine_prefix


class FormTest(unittest.TestCase):
    def form(self, *arguments, reason="", is_root=True):
        """(what is said on standard output, what on standard error) of --tell-form."""
        output, errors = io.StringIO(), io.StringIO()
        with (mock.patch.object(run_watch.lan_namespace, "unavailable_reason", return_value=reason),
              mock.patch.object(os, "geteuid", return_value=0 if is_root else 1000),
              contextlib.redirect_stdout(output), contextlib.redirect_stderr(errors)):
            self.assertEqual(run_watch.main(["--tell-form", *arguments]), 0)
        return output.getvalue().strip(), errors.getvalue()

    def test_is_the_desktop_program_where_it_can_watch(self):
        self.assertEqual(self.form(), ("desktop", ""))
        self.assertEqual(self.form("--interface", "eth0"), ("desktop", ""))

    def test_is_the_program_without_windows_when_asked_for(self):
        self.assertEqual(self.form("--headless"), ("headless", ""))

    def test_is_the_program_without_windows_where_no_live_lan_can_be_made_and_says_why_in_one_sentence(self):
        form, said = self.form(reason="making network namespaces needs root", is_root=False)
        self.assertEqual(form, "headless")
        self.assertEqual(said.count("\n"), 1)
        self.assertIn("making network namespaces needs root", said)

    def test_is_the_program_without_windows_for_an_adapter_that_wine_may_not_open(self):
        form, said = self.form("--interface", "eth0", is_root=False)
        self.assertEqual(form, "headless")
        self.assertIn("needs root", said)

    def test_refuses_a_time_that_is_over_before_it_begins(self):
        with self.assertRaises(SystemExit), contextlib.redirect_stderr(io.StringIO()):
            run_watch.parse_arguments(["--seconds", "0"])


class DesktopSettingsTest(unittest.TestCase):
    def test_the_host_view_has_its_place_and_all_columns(self):
        settings = run_watch.desktop_settings((8, -8, 1016, 620), is_clicked=True)
        self.assertEqual(settings["SavedViewWindowDimension"].hex(), "08000000" "f8ffffff" "f8030000" "6c020000")
        self.assertEqual((settings["VisibleColumns"], settings["SaveViewWindow"]), (11111, 1))

    def test_a_popup_that_waits_for_a_click_comes_only_where_somebody_can_give_one(self):
        for is_clicked in (True, False):
            self.assertEqual(run_watch.desktop_settings((0, 0, 1, 1), is_clicked)["WatchVisualization"], is_clicked)

    def test_listed_hosts_are_those_of_the_demo_lan_with_their_cards(self):
        record = run_watch.listed_hosts((15,))["Host0"]
        self.assertEqual(len(record), 830)
        self.assertTrue(record[260:].startswith(b"ac:ed:5c:"))
        self.assertTrue(record[520:].startswith(b"10.77.0.15\0"))


class DisplayTest(unittest.TestCase):
    def users_display(self, **environment):
        kept = {name: value for name, value in os.environ.items() if name != "DISPLAY"}
        with mock.patch.dict(os.environ, {**kept, **environment}, clear=True):
            return run_desktop.users_display(None)

    def test_is_the_users_where_it_can_be_reached(self):
        with wine_prefix.VirtualDisplay("64x48x24") as display:
            self.assertEqual(self.users_display(DISPLAY=display.name), display.name)

    def test_is_none_where_none_is_named_or_nobody_answers(self):
        self.assertIsNone(self.users_display())
        with wine_prefix.VirtualDisplay("64x48x24") as display:
            ended = display.name
        self.assertIsNone(self.users_display(DISPLAY=ended))


class ScreenshotsTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        self.enterContext(mock.patch.object(display_picture, "read_frame",
                                            return_value=display_picture.Picture(1, 1, b"\0\0\0")))
        self.clock = self.enterContext(mock.patch.object(run_desktop.time, "monotonic", return_value=100.0))
        self.second = 0
        self.enterContext(mock.patch.object(run_desktop.time, "strftime", side_effect=self.name))

    def name(self, _):
        self.second += 1
        return f"vardelwatch-20260102-1503{self.second:02}.png"

    def take(self, screenshots, seconds):
        """What is said when that much time has passed since the last call."""
        self.clock.return_value += seconds
        with contextlib.redirect_stdout(io.StringIO()) as said:
            screenshots.take_when_due()
        return said.getvalue()

    def test_come_every_few_seconds_and_are_named(self):
        screenshots = run_desktop.Screenshots("frame", self.folder)
        self.assertEqual(self.take(screenshots, run_desktop.SCREENSHOT_SECONDS - 0.1), "")
        path = os.path.join(self.folder, "vardelwatch-20260102-150301.png")
        self.assertEqual(self.take(screenshots, 0.1), f"screenshot: {os.path.relpath(path)}\n")
        self.assertTrue(os.path.exists(path))
        self.assertEqual(self.take(screenshots, 0.1), "")

    def test_the_oldest_go_and_other_files_stay(self):
        with open(os.path.join(self.folder, "mine.png"), "wb"):
            pass
        screenshots = run_desktop.Screenshots("frame", self.folder)
        for _ in range(run_desktop.SCREENSHOTS_KEPT + 2):
            self.take(screenshots, run_desktop.SCREENSHOT_SECONDS)
        kept = sorted(os.listdir(self.folder))
        self.assertEqual(len(kept), run_desktop.SCREENSHOTS_KEPT + 1)
        self.assertEqual(kept[:2], ["mine.png", "vardelwatch-20260102-150303.png"])

    def test_nobody_takes_one_of_a_display_that_a_person_looks_at(self):
        self.assertEqual(self.take(run_desktop.Screenshots(None, self.folder), 1000), "")
        self.assertEqual(os.listdir(self.folder), [])


if __name__ == "__main__":
    unittest.main()
