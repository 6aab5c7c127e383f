"""Settings move between the systems: what the Windows program wrote and the registry editor exported is a valid
Linux configuration, and the other way round.

VARDELWATCH_SETTINGS_TOOL and VARDELWATCH_SETTINGS_TOOL_EXE name the two builds of settings_tool.
"""

import json
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import settings_samples as samples
import wine_prefix

NO_WINE = wine_prefix.unavailable_reason()
LINUX_TOOL = os.environ.get(
    "VARDELWATCH_SETTINGS_TOOL", os.path.join(ROOT, "build", "linux-release", "tests", "support", "settings_tool")
)
WINDOWS_TOOL = os.environ.get(
    "VARDELWATCH_SETTINGS_TOOL_EXE",
    os.path.join(ROOT, "build", "windows-x64", "tests", "support", "settings_tool.exe"),
)
FULL = (samples.NUMBERS, samples.TEXTS, samples.RECTANGLE, samples.RECORDS)


class LinuxSide:
    """The Linux program's settings, in a configuration folder of its own."""

    def __init__(self, folder):
        self.folder = os.path.join(folder, "config")
        self.file = os.path.join(self.folder, "vardelwatch", "settings.reg")

    def _run(self, command, text=None):
        environment = {**os.environ, "XDG_CONFIG_HOME": self.folder}
        return subprocess.run([LINUX_TOOL, command], input=text, env=environment, capture_output=True, text=True,
                              timeout=60, check=True)

    def write(self, text):
        self._run("write", text)

    def read(self):
        done = self._run("read")
        assert done.stderr == "", done.stderr  # no complaint about the file
        return json.loads(done.stdout)


class WindowsSide:
    """The Windows program's settings, in the registry of a prefix."""

    def __init__(self, wine):
        self.wine = wine

    def write(self, text):
        self.wine.run([WINDOWS_TOOL, "write"], input=text, stdin=None)

    def read(self):
        return json.loads(self.wine.run([WINDOWS_TOOL, "read"]).stdout)


@unittest.skipIf(NO_WINE, NO_WINE)
class SettingsExchangeTest(unittest.TestCase):
    maxDiff = None

    @classmethod
    def setUpClass(cls):
        cls.wine = cls.enterClassContext(wine_prefix.WinePrefix())

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.wine.run(["reg", "delete", samples.PRODUCT_KEY, "/f"], check=False)  # fails where there is none
        self.linux = LinuxSide(folder.name)
        self.windows = WindowsSide(self.wine)

    def export(self):
        os.makedirs(os.path.dirname(self.linux.file), exist_ok=True)
        self.wine.export_registry(samples.PRODUCT_KEY, self.linux.file)

    def test_each_side_reads_what_it_wrote(self):
        for side in (self.linux, self.windows):
            side.write(samples.description(*FULL))
            self.assertEqual(side.read(), samples.expected(*FULL))

    def test_each_side_enters_and_removes_its_autostart(self):
        entry = os.path.join(self.linux.folder, "autostart", "Vardelwatch.desktop")
        run = ["reg", "query", "HKCU\\Software\\Microsoft\\Windows\\CurrentVersion\\Run", "/v", "Vardelwatch"]
        for side in (self.linux, self.windows):
            side.write("AutoStart 1\n")
        with open(entry, encoding="utf-8") as entered:
            self.assertIn(f'Exec="{os.path.realpath(LINUX_TOOL)}"\n', entered.read())
        self.assertIn(f'"{self.wine.windows_path(WINDOWS_TOOL)}"'.lower(), self.wine.run(run).stdout.lower())
        for side in (self.linux, self.windows):
            side.write("AutoStart 0\n")
        self.assertFalse(os.path.exists(entry))
        self.assertNotEqual(self.wine.run(run, check=False).returncode, 0)

    def test_an_export_of_windows_is_a_linux_configuration(self):
        self.windows.write(samples.description(*FULL))
        self.export()
        with open(self.linux.file, "rb") as exported:
            self.assertTrue(exported.read().startswith(b"\xff\xfeW\0i\0n\0"), "UTF-16, as exports are today")
        self.assertEqual(self.linux.read(), samples.expected(*FULL))

    def test_an_export_can_be_written_on(self):
        self.windows.write(samples.description(*FULL))
        self.export()
        changed = {**samples.NUMBERS, "ViewGrayTime": 77}
        self.linux.write(samples.description(changed, *FULL[1:]))
        with open(self.linux.file, "rb") as written:
            self.assertTrue(written.read().startswith(b"REGEDIT4\r\n"))
        self.assertEqual(self.linux.read(), samples.expected(changed, *FULL[1:]))

    def test_a_linux_configuration_can_be_imported_into_windows(self):
        self.linux.write(samples.description(*FULL))
        self.wine.import_registry(self.linux.file)
        self.assertEqual(self.windows.read(), samples.expected(*FULL))

    def test_there_and_back_again(self):
        self.linux.write(samples.description(*FULL))
        self.wine.import_registry(self.linux.file)
        self.export()
        self.assertEqual(self.linux.read(), samples.expected(*FULL))

    def test_first_start_and_empty_lists_are_the_same_on_both(self):
        self.assertEqual(self.windows.read(), self.linux.read())
        for side in (self.linux, self.windows):
            side.write(samples.description(*FULL))
            side.write("")  # all defaults, no records
        read = self.windows.read()
        self.assertEqual(read, self.linux.read())
        for name in samples.RECORDS:
            self.assertEqual(read[name], [])

    def test_texts_of_the_code_page_become_utf8(self):
        # Under Wine the code page is 1252 whatever the locale; the byte 0xF1 there is U+00F1.
        self.wine.run([WINDOWS_TOOL, "write"], input=b"Language Espa\xf1ol\n", stdin=None, text=False)
        self.assertEqual(self.windows.read()["Language"], "Espa\xf1ol")
        self.export()
        utf8 = "Espa\xf1ol".encode("utf-8").decode("latin-1")  # as the tool prints its bytes
        self.assertEqual(self.linux.read()["Language"], utf8)

    def test_eight_bit_texts_of_linux_pass_byte_for_byte(self):
        self.linux.write("Language Espa\xf1ol \u2713\n")
        self.wine.import_registry(self.linux.file)
        self.assertEqual(self.windows.read()["Language"], self.linux.read()["Language"])


if __name__ == "__main__":
    unittest.main()
