"""vardel-replay: names that are looked up and devices that are asked, without a network of their own."""

import contextlib
import json
import os
import socket
import subprocess
import sys
import threading
import time
import unittest
import unittest.mock

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.join(ROOT, "tools", "demo_lan")]

from capture_files import arp, udp
import lan_description
import lan_documents
import lan_expectations
import lan_schedule
from lan_frames import device_announcement
from replay_case import PROGRAM, ReplayTest, host, local_host, new_host_event
from watcher_model import WatcherModel


class ResolverTest(ReplayTest):
    HOSTS = "127.0.0.1 localhost\n10.0.0.5 printer.example printer\n10.0.0.1 watcher.example\n"

    def in_namespace(self, *words):
        """Runs the program with a hosts file of its own and without any network."""
        hosts, switch = self.file(self.HOSTS), self.file("hosts: files\n")
        script = f"mount --bind {hosts} /etc/hosts && mount --bind {switch} /etc/nsswitch.conf && exec \"$@\""
        return subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "sh", "-c", script, "sh", PROGRAM,
                               *words], capture_output=True, timeout=60, check=False,
                              env={**os.environ, "TZ": "UTC"})

    def setUp(self):
        super().setUp()
        probe = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "true"], capture_output=True,
                               check=False)
        if probe.returncode != 0:
            self.skipTest("this user may make no namespaces: " + probe.stderr.decode().strip())

    def test_names_are_looked_up_on_request_alone(self):
        path = self.capture(arp("10.0.0.5"))
        self.assertEqual(self.parse(self.in_namespace(path).stdout)["hosts"], [host("10.0.0.5")])
        told = self.parse(self.in_namespace("--resolve", path).stdout)
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="printer.example", nameUnresolved=0)])
        self.assertEqual(told["events"], [new_host_event("10.0.0.5", "printer.example")])

    def test_a_local_record_is_named_by_its_address(self):
        told = self.parse(self.in_namespace("--resolve", "--local", "10.0.0.1", self.capture()).stdout)
        self.assertEqual(told["hosts"], [local_host("10.0.0.1", hostName="watcher.example")])


class LoopbackServer:
    """Listens at a port of the loopback address and hands each connection, its request read, to `answer`."""

    def __init__(self, answer):
        self.requests = []
        self._answer = answer
        self._ends = threading.Event()
        self._socket = socket.create_server(("127.0.0.1", 0))
        self._socket.settimeout(0.05)
        self.base = f"http://127.0.0.1:{self._socket.getsockname()[1]}"
        self._thread = threading.Thread(target=self._serve)
        self._thread.start()

    def _serve(self):
        while not self._ends.is_set():
            try:
                client = self._socket.accept()[0]
            except TimeoutError:
                continue
            with client, contextlib.suppress(OSError):
                client.settimeout(0.2)
                self.requests.append(client.recv(65536).decode("latin-1"))
                self._answer(client, self._ends)

    def close(self):
        self._ends.set()
        self._thread.join()
        self._socket.close()


def silence(_, ends):
    ends.wait()


def one_byte_a_second(client, ends):
    client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: 4000\r\n\r\n")
    while not ends.wait(1):
        client.sendall(b"x")


def documents_of(content):
    def answer(client, _):
        client.sendall(b"HTTP/1.1 200 OK\r\nContent-Length: %d\r\n\r\n" % len(content) + content)

    return answer


class DeviceTest(ReplayTest):
    """Device messages and storage announcements. The servers are this machine's own."""

    DOCUMENT = (b"<root><friendlyName> NAS: Living Room </friendlyName>"
                b"<presentationURL>http://10.0.0.5/</presentationURL></root>")
    # What the fetch may take in all, and what starting and ending the program may add on a busy machine.
    HELD_SECONDS = 5
    RUN_SECONDS = HELD_SECONDS + 5

    def serve(self, answer):
        server = LoopbackServer(answer)
        self.addCleanup(server.close)
        return server

    def message(self, url, count=1):
        text = f"NOTIFY * HTTP/1.1\r\nLocation: {url}\r\nNTS: ssdp:alive\r\n\r\n".encode("latin-1")
        return self.capture(arp("10.0.0.5"), *[udp("10.0.0.5", 1900, 1900, text)] * count)

    def run_program(self, *words, **more):
        with unittest.mock.patch.dict(os.environ, no_proxy="127.0.0.1"):
            return super().run_program(*words, **more)

    def test_without_fetching_each_fetch_counts_as_failed(self):
        server = self.serve(documents_of(self.DOCUMENT))
        told = self.replay(self.message(server.base + "/nas.xml"))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])
        self.assertEqual(told["events"], [new_host_event("10.0.0.5")])
        self.assertEqual(server.requests, [])

    def test_fetching_names_a_device_once(self):
        server = self.serve(documents_of(self.DOCUMENT))
        told = self.replay("--fetch", self.message(server.base + "/nas.xml", 3))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1, friendlyName="NAS",
                                              presentationUrl="http://10.0.0.5/")])
        self.assertEqual(told["events"], [
            new_host_event("10.0.0.5"),
            {"kind": 11, "host": "NAS", "info": "10.0.0.5", "text": "", "syslogInfo": -1}])
        self.assertEqual(len(server.requests), 1)
        self.assertTrue(server.requests[0].startswith("GET /nas.xml HTTP/1.1\r\n"), server.requests[0])
        self.assertIn("\r\nUser-Agent: Vardelwatch-UPNP-Resolve\r\n", server.requests[0])

    def test_names_behind_the_first_4096_bytes_are_not_read(self):
        server = self.serve(documents_of(b" " * 4096 + self.DOCUMENT))
        told = self.replay("--fetch", self.message(server.base))
        self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_a_file_is_no_address(self):
        path = self.file(self.DOCUMENT)
        for url in (f"file://{path}", path):
            with self.subTest(url):
                told = self.replay("--fetch", self.message(url))
                self.assertEqual(told["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_no_server_holds_the_handlers_longer_than_five_seconds(self):
        for answer in (silence, one_byte_a_second):
            with self.subTest(answer.__name__):
                server = self.serve(answer)
                start = time.monotonic()
                done = self.run_program("--fetch", self.message(server.base, 2))
                self.assertLess(time.monotonic() - start, self.RUN_SECONDS)
                self.assertEqual((done.returncode, done.stderr), (0, b""))
                self.assertLess(json.loads(done.stdout)["handlerSeconds"], self.HELD_SECONDS)
                self.assertEqual(self.parse(done.stdout)["hosts"], [host("10.0.0.5", upnpDone=1)])
                self.assertEqual(len(server.requests), 1)

    def test_a_name_that_nobody_resolves_holds_the_handlers_no_longer(self):
        probe = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "true"], capture_output=True,
                               check=False)
        if probe.returncode != 0:
            self.skipTest("this user may make no namespaces: " + probe.stderr.decode().strip())
        switch, server = self.file("hosts: dns\n"), self.file("nameserver 127.0.0.1\n")
        silent = self.file("import socket, subprocess, sys\n"
                           "names = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)\n"
                           "names.bind(('127.0.0.1', 53))\n"
                           "code = subprocess.run(sys.argv[1:]).returncode\n"
                           "names.settimeout(0)\n"
                           "print(b'device' in names.recv(512), file=sys.stderr)\n"
                           "sys.exit(code)\n")
        script = (f"mount --bind {switch} /etc/nsswitch.conf && mount --bind {server} /etc/resolv.conf && "
                  "ip link set lo up && exec \"$@\"")
        done = subprocess.run(["unshare", "--map-root-user", "--mount", "--net", "sh", "-c", script, "sh",
                               "/usr/bin/python3", silent, PROGRAM, "--fetch", self.message("http://device.example/")],
                              capture_output=True, timeout=60, check=False, env={**os.environ, "TZ": "UTC"})
        self.assertEqual((done.returncode, done.stderr), (0, b"True\n"))
        self.assertLess(json.loads(done.stdout)["handlerSeconds"], self.HELD_SECONDS)
        self.assertEqual(self.parse(done.stdout)["hosts"], [host("10.0.0.5", upnpDone=1)])

    def test_a_storage_announcement_tells_name_model_and_firmware(self):
        path = self.capture(arp("10.0.0.5"), *(
            udp("10.0.0.5", 22936, 22936, device_announcement("LS-Attic", "LS-WVL", 1, minor)) for minor in (64, 65)))
        told = self.replay(path)
        self.assertEqual(told["hosts"], [host("10.0.0.5", hostName="LS-Attic", nameUnresolved=0, osFromBrowse=1,
                                              deviceProbed=1, os="LS-WVL FW: 1.65")])
        self.assertEqual(told["events"], [
            new_host_event("10.0.0.5"),
            {"kind": 12, "host": "LS-Attic", "info": "10.0.0.5", "text": "LS-WVL FW: 1.64", "syslogInfo": -1}])

    def test_an_announcement_of_another_length_is_none(self):
        path = self.capture(arp("10.0.0.5"), *(
            udp("10.0.0.5", 22936, 22936, device_announcement("LS", "LS", 1, 1, length)) for length in (319, 321)))
        self.assertEqual(self.replay(path)["hosts"], [host("10.0.0.5")])

    def test_the_demo_lan_is_known_by_all_its_device_messages(self):
        documents = lan_documents.DocumentServer("127.0.0.1")
        self.addCleanup(documents.close)
        description = lan_description.Lan(3)
        # Two rounds, so that every host is known before it tells of itself.
        seconds = 2 * lan_schedule.ROUND_SECONDS
        frames = [frame.data for frame in lan_schedule.frames(description, seconds, documents.base)]
        told = self.replay("--fetch", self.capture(*frames))

        model = WatcherModel({documents.base + path: body for path, body in lan_documents.documents().items()})
        for frame in frames:
            if lan_expectations.frame_class(frame) != "filtered":
                model.see(frame)
        fields = list(next(iter(model.hosts.values())))
        self.assertEqual({entry["ip"]: {name: entry[name] for name in fields} for entry in told["hosts"]}, model.hosts)
        events = [{name: event[name] for name in ("kind", "host", "info", "text")} for event in told["events"]]
        self.assertEqual([event for event in events if event["kind"] != 10], model.events)

        expected = lan_expectations.expectations(description)
        for wanted in expected["hosts"]:
            entry = next(entry for entry in told["hosts"] if entry["ip"] == wanted["ip"])
            for name in ("friendlyName", "presentationUrl", "upnpDone", "deviceProbed", "osFromBrowse", "os"):
                self.assertEqual(entry[name], wanted[name], (wanted["ip"], name))
        devices = [event for event in expected["events"] if event["kind"] in (11, 12)]
        for event in devices:
            self.assertIn(event, events)
        self.assertEqual(len([event for event in events if event["kind"] in (11, 12)]), len(devices))


if __name__ == "__main__":
    unittest.main()
