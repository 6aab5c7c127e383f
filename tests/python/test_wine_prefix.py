"""Wine prefixes of the tests, and packet.dll in one: each stands alone and leaves nothing behind."""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import lan_namespace
import wine_prefix

NO_WINE = wine_prefix.unavailable_reason()
NO_LAN = lan_namespace.unavailable_reason()
NO_COMPILER = "" if shutil.which("x86_64-w64-mingw32-g++-posix") else "the MinGW-w64 compiler is missing"
# Wine makes an adapter's identifier of its interface index.
DEVICE = f"\\Device\\NPF_{{{lan_namespace.INTERFACE_INDEX:08X}-0000-0000-0000-4E6574446576}}"
KEY = "HKCU\\Software\\Wine Prefix Test"

HOLD = f"""
import subprocess, sys, time
sys.path.insert(0, {os.path.join(ROOT, "tests", "support")!r})
import wine_prefix
with wine_prefix.WinePrefix() as wine:
    waiting = wine.start(["cmd", "/c", "echo waiting&pause"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
    waiting.stdout.readline()
    print(wine.path, flush=True)
    time.sleep(600)
"""


def wineserver_runs(prefix):
    """Whether a wineserver serves this prefix: `wineserver -k0` only asks."""
    return (
        subprocess.run(
            ["wineserver", "-k0"],
            env=wine_prefix.environment(prefix),
            check=False,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
        ).returncode
        == 0
    )


@unittest.skipIf(NO_WINE, NO_WINE)
class WinePrefixTest(unittest.TestCase):
    def test_a_kept_desktop_has_a_user_until_the_prefix_ends(self):
        with wine_prefix.VirtualDisplay() as display, wine_prefix.WinePrefix(display=display.name) as wine:
            wine.use_virtual_desktop()
            wine.keep_desktop()
            # What a first test finds: the desktop is up, and nothing has to be waited for.
            self.assertEqual(wine.run(["cmd", "/c", "echo here"]).stdout.strip(), "here")
            self.assertTrue(wineserver_runs(wine.path))
            prefix = wine.path
        self.assertFalse(wineserver_runs(prefix))

    def test_registry_goes_out_and_comes_into_another_prefix(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "settings.reg")
            with wine_prefix.WinePrefix() as first:
                first.run(["reg", "add", KEY, "/v", "Interface", "/d", DEVICE, "/f"])
                first.export_registry(KEY, path)
            with open(path, encoding="utf-16") as exported:
                self.assertIn('"Interface"="' + DEVICE.replace("\\", "\\\\") + '"', exported.read())
            with wine_prefix.WinePrefix() as second:
                absent = second.run(["reg", "query", KEY], check=False)
                self.assertNotEqual(absent.returncode, 0)
                second.import_registry(path)
                self.assertIn(DEVICE, second.run(["reg", "query", KEY]).stdout)

    def test_is_gone_after_a_failure_with_its_server_and_programs(self):
        with self.assertRaisesRegex(ValueError, "a test fails"):
            with wine_prefix.WinePrefix() as wine:
                waiting = wine.start(
                    ["cmd", "/c", "echo waiting&pause"], stdin=subprocess.PIPE, stdout=subprocess.PIPE
                )
                waiting.stdout.readline()
                self.assertTrue(wineserver_runs(wine.path))
                raise ValueError("a test fails")
        self.assertIsNotNone(waiting.poll())
        self.assertFalse(os.path.exists(wine.path))

    def test_is_gone_after_sigterm_and_what_a_killed_process_left_is_removed_by_the_next(self):
        for number in (signal.SIGTERM, signal.SIGKILL):
            holder = subprocess.Popen(
                ["/usr/bin/python3", "-B", "-c", HOLD], stdout=subprocess.PIPE, text=True
            )
            self.addCleanup(holder.wait)
            self.addCleanup(holder.terminate)
            path = holder.stdout.readline().strip()
            self.assertTrue(wineserver_runs(path))
            holder.send_signal(number)
            self.assertEqual(holder.wait(60), 128 + number if number == signal.SIGTERM else -number)
            holder.stdout.close()
            if number == signal.SIGKILL:
                self.assertTrue(os.path.isdir(path))
                with wine_prefix.WinePrefix():
                    self.assertFalse(wineserver_runs(path))
            self.assertFalse(os.path.exists(path))

    def test_changes_of_a_copy_do_not_reach_the_template(self):
        with wine_prefix.WinePrefix() as wine:
            self.assertTrue(os.path.isdir(wine.local_application_data))
            for relative in ("windows/system32/packet.dll", "windows/win.ini"):
                with open(os.path.join(wine.drive_c, relative), "w", encoding="ascii") as out:
                    out.write("changed")
        template = os.path.join(wine_prefix.template(), "drive_c")
        self.assertFalse(os.path.exists(os.path.join(template, "windows/system32/packet.dll")))
        with open(os.path.join(template, "windows/win.ini"), encoding="latin-1") as kept:
            self.assertNotIn("changed", kept.read())

    def test_has_wines_own_fonts_where_they_are_wanted(self):
        with wine_prefix.WinePrefix() as wine:
            fonts = os.path.join(wine.drive_c, "windows", "Fonts")
            for _ in range(2):  # those that are there already stay
                wine.use_wine_fonts()
            for name in ("tahoma.ttf", "tahomabd.ttf", "marlett.ttf"):
                with open(os.path.join(fonts, name), "rb") as font:
                    self.assertEqual(font.read(4), b"\0\1\0\0", name)
        self.assertFalse(os.path.exists(os.path.join(wine_prefix.template(), "drive_c/windows/Fonts/tahoma.ttf")))

    def test_looks_for_the_displays_key_where_the_user_has_it(self):
        self.assertEqual(wine_prefix.environment("/prefix", ":7")["XAUTHORITY"],
                         os.environ.get("XAUTHORITY", os.path.expanduser("~/.Xauthority")))

    def test_has_no_display_unless_one_is_given(self):
        self.assertNotIn("DISPLAY", wine_prefix.environment("/prefix"))
        with wine_prefix.VirtualDisplay() as first, wine_prefix.VirtualDisplay() as second:
            self.assertNotEqual(first.name, second.name)
            self.assertEqual(wine_prefix.environment("/prefix", first.name)["DISPLAY"], first.name)


@unittest.skipIf(NO_WINE or NO_LAN or NO_COMPILER, NO_WINE or NO_LAN or NO_COMPILER)
class WinePacketTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        cls.built = folder.name
        for words in (
            [
                "cmake",
                "-S",
                os.path.join(ROOT, "tools", "wine_packet"),
                "-B",
                cls.built,
                "-G",
                "Ninja",
                "--toolchain",
                os.path.join(ROOT, "cmake", "mingw-x86_64.cmake"),
            ],
            ["cmake", "--build", cls.built],
        ):
            subprocess.run(words, check=True, stdout=subprocess.DEVNULL, timeout=300)

    def test_tells_the_mac_address_of_a_device_of_the_namespace(self):
        with lan_namespace.LanNamespace() as lan, wine_prefix.WinePrefix(lan.watcher) as wine:
            shutil.copy(
                os.path.join(self.built, "packet.dll"), os.path.join(wine.drive_c, "windows", "system32")
            )
            said = wine.run(
                [
                    os.path.join(self.built, "wine_packet_probe.exe"),
                    DEVICE,
                    DEVICE.lower(),
                    DEVICE.replace("0014", "0099"),
                    "no device name",
                    "",
                ]
            ).stdout
            self.assertEqual(
                said.split("\n"), ["1.0 (Wine)", lan.watcher.mac, lan.watcher.mac, "none", "none", "none", ""]
            )


if __name__ == "__main__":
    unittest.main()
