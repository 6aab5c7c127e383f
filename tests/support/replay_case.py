"""How the tests of vardel-replay run it, and the parts of its document that they expect."""

import json
import os
import subprocess
import tempfile
import unittest

from capture_files import START, savefile

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
PROGRAM = os.environ.get("VARDEL_REPLAY") or os.path.join(ROOT, "build", "linux-release", "tools", "vardel_replay",
                                                          "vardel-replay")
NO_NAME = "Hostname not available"
NO_VENDOR = "Unknown vendor"
SETTINGS_KEY = r"HKEY_CURRENT_USER\Software\Ostrand Software\Vardelwatch"


def host(ip, mac="02:00:00:00:00:01", **different):
    """A host's object as one ARP frame of the second START leaves it."""
    fields = {
        "ip": ip, "mac": mac, "vendor": NO_VENDOR, "lastSeenText": "22:13:20", "hostName": NO_NAME,
        "lastSeen": START, "greyedOut": 0, "vendorUnknown": 1, "trustState": 0, "rowDirty": 0, "wmiOsKnown": 0,
        "wmiStatus": 999, "os": "", "shareScanBusy": 0, "shareScanRefused": 0, "isLocal": 0, "nameUnresolved": 1,
        "osFromBrowse": 0, "offline": 0, "osClass": 0, "displayName": "", "friendlyName": "", "presentationUrl": "",
        "upnpDone": 0, "deviceProbed": 0,
    }
    assert not different.keys() - fields.keys()
    return {**fields, **different}


def local_host(ip, mac="", **different):
    return host(ip, mac, **{"vendor": "", "lastSeenText": "", "hostName": "", "lastSeen": 0, "trustState": 1,
                            "isLocal": 1, "nameUnresolved": 0, **different})


def new_host_event(ip, name=NO_NAME):
    return {"kind": 5, "host": name, "info": ip, "text": "", "syslogInfo": -1}


def document(**different):
    """A whole document of a run that saw nothing, but for what is told."""
    sections = {"frames": {"read": 0, "arp": 0, "ip": 0}, "hosts": [], "newEntries": [], "macSpoofs": [],
                "wmiWork": [], "netResWork": [], "events": [], "syslogs": {}, "syslogNotifications": []}
    assert not different.keys() - sections.keys()
    return {**sections, **different}


def registry_text(values, lists=None):
    """A registry text with `values` of the settings key and, by key name, lists of (value name, bytes)."""
    lines = ["REGEDIT4", "", f"[{SETTINGS_KEY}\\Settings]"]
    for name, value in values.items():
        lines.append(f'"{name}"="{value}"' if isinstance(value, str) else f'"{name}"=dword:{value:08x}')
    for key, entries in (lists or {}).items():
        lines += ["", f"[{SETTINGS_KEY}\\{key}]"]
        lines += [f'"{name}"=hex:' + ",".join(f"{byte:02x}" for byte in data) for name, data in entries]
    return "\r\n".join(lines) + "\r\n"


def listed_host(ip, name="", mac=""):
    return (name.encode().ljust(260, b"\0") + mac.encode().ljust(260, b"\0") + ip.encode().ljust(260, b"\0") +
            bytes(50))


class ReplayTest(unittest.TestCase):
    maxDiff = None

    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-replay-"))
        self.files = 0

    def file(self, content, name=None):
        self.files += 1
        path = os.path.join(self.folder, name or f"file{self.files}")
        with open(path, "wb") as out:
            out.write(content if isinstance(content, bytes) else content.encode("latin-1"))
        return path

    def capture(self, *frames, **form):
        return self.file(savefile(frames, **form))

    def run_program(self, *words, zone="UTC", **more):
        return subprocess.run([PROGRAM, *words], capture_output=True, timeout=60, check=False,
                              env={**os.environ, "TZ": zone}, **more)

    def parse(self, output):
        output.decode("ascii")  # Nothing else may stand in the document.
        result = json.loads(output)
        seconds = result.pop("handlerSeconds")
        self.assertIsInstance(seconds, float)
        self.assertGreaterEqual(seconds, 0)
        return result

    def replay(self, *words, **more):
        done = self.run_program(*words, **more)
        self.assertEqual((done.returncode, done.stderr), (0, b""))
        return self.parse(done.stdout)

    def fails(self, code, *words):
        """The complaint of a run that prints no document."""
        done = self.run_program(*words)
        self.assertEqual((done.returncode, done.stdout), (code, b""), done.stderr)
        complaint = done.stderr.decode()
        self.assertTrue(complaint.startswith("vardel-replay: "), complaint)
        return complaint
