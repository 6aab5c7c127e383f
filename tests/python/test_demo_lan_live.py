"""The demo LAN spoken live between two network namespaces: its frames, its pace, its documents."""

import json
import os
import signal
import subprocess
import sys
import tempfile
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SUPPORT = os.path.join(ROOT, "tests", "support")
DEMO_LAN = os.path.join(ROOT, "tools", "demo_lan", "demo_lan.py")
sys.path[:0] = [SUPPORT, os.path.dirname(DEMO_LAN)]

import lan_description
import lan_documents
import lan_expectations
import lan_namespace
import watcher_model

FETCH = (
    "import sys, urllib.request as u;"
    "request = u.Request(sys.argv[1], headers={'User-Agent': 'Reader'});"
    "sys.stdout.buffer.write(u.urlopen(request, timeout=5).read())"
)
LEAST_FRAMES_PER_SECOND = 5


@unittest.skipIf(lan_namespace.unavailable_reason(), lan_namespace.unavailable_reason())
class LiveDemoLanTest(unittest.TestCase):
    def start_lan(self):
        lan = self.enterContext(lan_namespace.LanNamespace())
        self.log = os.path.join(self.enterContext(tempfile.TemporaryDirectory()), "requests")
        return lan

    def start_speaker(self, lan, *words):
        speaker = lan.injector.start(
            [
                "/usr/bin/python3",
                DEMO_LAN,
                "inject",
                "--interface",
                lan.injector.interface,
                "--http-address",
                lan.injector.ip,
                "--http-log",
                self.log,
                *words,
            ],
            stdout=subprocess.PIPE,
            text=True,
        )
        said = speaker.stdout.readline()
        self.assertIn("speaking on lan0, documents at http://10.77.0.3:", said)
        return speaker, said.split()[-1]

    def start_capture(self, lan, seconds):
        capture = lan.watcher.start(
            [
                "/usr/bin/python3",
                os.path.join(SUPPORT, "capture_frames.py"),
                lan.watcher.interface,
                str(seconds),
            ],
            stdout=subprocess.PIPE,
            text=True,
        )
        self.assertEqual(capture.stdout.readline(), "ready\n")
        return capture

    def frames_of(self, capture):
        lines = capture.communicate(timeout=60)[0].split("\n")[:-1]
        return [(float(seconds), bytes.fromhex(data)) for seconds, data in (line.split() for line in lines)]

    def test_a_watcher_finds_what_is_promised(self):
        lan = self.start_lan()
        capture = self.start_capture(lan, 12)
        _, base = self.start_speaker(lan, "--seed", "3", "--seconds", "10")
        frames = self.frames_of(capture)
        model = watcher_model.WatcherModel(
            {base + path: text for path, text in lan_documents.documents().items()}
        )
        for _, data in frames:
            model.see(data)
        expected = lan_expectations.expectations(lan_description.Lan(3), seconds=10)
        self.assertEqual(set(model.hosts), {host["ip"] for host in expected["hosts"]})
        for host in expected["hosts"]:
            found = model.hosts[host["ip"]]
            self.assertEqual(
                [found[field] for field in ("mac", "os", "osClass", "friendlyName")],
                [host[field] for field in ("mac", "os", "osClass", "friendlyName")],
                host["ip"],
            )
        self.assertEqual(dict(model.syslogs), expected["syslogs"])
        self.assertEqual({ip for ip, _ in model.spoofs}, {"10.77.0.15"})

    def test_keeps_its_pace_and_ends_on_sigterm(self):
        lan = self.start_lan()
        speaker, _ = self.start_speaker(lan)
        frames = self.frames_of(self.start_capture(lan, 5))
        times = [seconds for seconds, _ in frames]
        for start in range(0, 4):
            self.assertGreaterEqual(sum(start <= each < start + 1 for each in times), LEAST_FRAMES_PER_SECOND)
        # `ip netns exec` replaces itself by the command, so the signal reaches the speaker.
        speaker.send_signal(signal.SIGTERM)
        self.assertIn("frames sent", speaker.communicate(timeout=10)[0])
        self.assertEqual(speaker.returncode, 0)

    def test_goes_on_when_the_interface_comes_back(self):
        lan = self.start_lan()
        speaker, _ = self.start_speaker(lan)
        lan.take_away()
        time.sleep(1)
        self.assertIsNone(speaker.poll())
        lan.bring_back()
        self.assertGreater(len(self.frames_of(self.start_capture(lan, 2))), LEAST_FRAMES_PER_SECOND)

    def test_serves_the_documents_and_notes_each_request(self):
        lan = self.start_lan()
        _, base = self.start_speaker(lan)
        fetched = lan.watcher.run(
            ["/usr/bin/python3", "-c", FETCH, base + "/television.xml"], text=False
        ).stdout
        self.assertEqual(fetched, lan_documents.documents()["/television.xml"])
        missing = lan.watcher.run(["/usr/bin/python3", "-c", FETCH, base + "/missing.xml"], check=False)
        self.assertIn("404", missing.stderr)
        with open(self.log, encoding="utf-8") as log:
            self.assertEqual(
                [json.loads(line) for line in log],
                [
                    {"path": "/television.xml", "agent": "Reader", "status": 200},
                    {"path": "/missing.xml", "agent": "Reader", "status": 404},
                ],
            )


if __name__ == "__main__":
    unittest.main()
