"""The namespaces of the live tests: they are what they promise, and nothing of them is left behind."""

import os
import signal
import subprocess
import sys
import time
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SUPPORT = os.path.join(ROOT, "tests", "support")
sys.path.insert(0, SUPPORT)

import lan_namespace

HOLD = f"""
import sys, time
sys.path.insert(0, {SUPPORT!r})
import lan_namespace
with lan_namespace.LanNamespace() as lan:
    sleeper = lan.watcher.start(["sleep", "600"])
    print(lan.watcher.name, lan.injector.name, sleeper.pid, flush=True)
    time.sleep(600)
"""
LOOK_UP = """
import ctypes, socket, sys
text = ctypes.create_string_buffer(1025)
address = bytes((2, 0, 0, 0)) + socket.inet_aton(sys.argv[1]) + bytes(8)
status = ctypes.CDLL(None).getnameinfo(address, len(address), text, len(text), None, 0, int(sys.argv[2]))
print(status, text.value.decode())
"""
NI_NOFQDN = 4
NI_NAMEREQD = 8
EAI_NONAME = -2
EAI_AGAIN = -3


def namespaces():
    return subprocess.run(["ip", "netns", "list"], capture_output=True, text=True, check=True).stdout.split()


def runs(pid):
    """True while the process runs; one that has ended and waits to be collected does not."""
    try:
        with open(f"/proc/{pid}/stat", encoding="ascii") as status:
            return status.read().rsplit(")", 1)[1].split()[0] != "Z"
    except FileNotFoundError:
        return False


@unittest.skipIf(lan_namespace.unavailable_reason(), lan_namespace.unavailable_reason())
class LanNamespaceTest(unittest.TestCase):
    def assert_gone(self, *names):
        left = namespaces()
        for name in names:
            self.assertNotIn(name, left)
            self.assertFalse(os.path.exists(f"/etc/netns/{name}"))

    def start_holder(self):
        """Another process that holds a LAN: (the process, its namespaces, the id of a process inside)."""
        holder = subprocess.Popen(["/usr/bin/python3", "-c", HOLD], stdout=subprocess.PIPE, text=True)
        self.addCleanup(lan_namespace.remove_leftovers)
        self.addCleanup(holder.stdout.close)
        self.addCleanup(holder.wait)
        self.addCleanup(holder.terminate)
        watcher, injector, sleeper = holder.stdout.readline().split()
        return holder, (watcher, injector), int(sleeper)

    def test_joins_two_machines(self):
        with lan_namespace.LanNamespace() as lan:
            server = lan.injector.start(
                [
                    "/usr/bin/python3",
                    "-c",
                    "import socket; s = socket.create_server("
                    "('10.77.0.3', 7000)); print('up', flush=True);"
                    "s.accept()[0].sendall(b'hello')",
                ],
                stdout=subprocess.PIPE,
            )
            server.stdout.readline()
            said = lan.watcher.run(
                [
                    "/usr/bin/python3",
                    "-c",
                    "import socket; print(socket.create_connection(" "('10.77.0.3', 7000), 5).recv(9))",
                ]
            ).stdout
            self.assertEqual(said, "b'hello'\n")
            self.assertEqual(server.wait(10), 0)

    def test_is_gone_after_the_block(self):
        with lan_namespace.LanNamespace() as lan:
            names = (lan.watcher.name, lan.injector.name)
            sleeper = lan.watcher.start(["sleep", "600"])
            self.assertLessEqual(set(names), set(namespaces()))
        self.assert_gone(*names)
        self.assertFalse(runs(sleeper.pid))

    def test_is_gone_after_an_exception(self):
        with self.assertRaisesRegex(ValueError, "a test fails"):
            with lan_namespace.LanNamespace() as lan:
                names = (lan.watcher.name, lan.injector.name)
                sleeper = lan.injector.start(["sleep", "600"])
                raise ValueError("a test fails")
        self.assert_gone(*names)
        self.assertFalse(runs(sleeper.pid))

    def test_is_gone_when_it_can_not_be_made_whole(self):
        lan = lan_namespace.LanNamespace()
        lan.injector.name = lan.watcher.name
        with self.assertRaises(RuntimeError):
            lan.__enter__()
        self.assert_gone(lan.watcher.name)

    def test_is_gone_after_sigterm(self):
        holder, names, sleeper = self.start_holder()
        holder.send_signal(signal.SIGTERM)
        self.assertEqual(holder.wait(20), 128 + signal.SIGTERM)
        self.assert_gone(*names)
        self.assertFalse(runs(sleeper))

    def test_what_a_killed_process_left_is_removed_by_the_next(self):
        holder, names, sleeper = self.start_holder()
        _, other_names, _ = self.start_holder()
        holder.kill()
        holder.wait(20)
        self.assertLessEqual(set(names), set(namespaces()))
        with lan_namespace.LanNamespace():
            self.assert_gone(*names)
            self.assertLessEqual(set(other_names), set(namespaces()))
        self.assertFalse(runs(sleeper))

    def test_ends_a_daemon_that_nobody_holds(self):
        with lan_namespace.LanNamespace() as lan:
            pid = int(lan.watcher.run(["sh", "-c", "setsid sleep 600 >/dev/null 2>&1 & echo $!"]).stdout)
            self.assertTrue(runs(pid))
        self.assertFalse(runs(pid))

    def test_brings_the_interface_back_as_it_was(self):
        with lan_namespace.LanNamespace() as lan:
            before = lan.watcher.ip_command("-oneline", "address", "show", "dev", "lan0")
            mac = lan.watcher.ip_command("-oneline", "link", "show", "dev", "lan0")
            self.assertIn("10.77.0.2/24", before)
            self.assertIn(lan.watcher.mac, mac)
            lan.take_away()
            with self.assertRaises(RuntimeError):
                lan.watcher.ip_command("link", "show", "dev", "lan0")
            lan.bring_back()
            self.assertEqual(lan.watcher.ip_command("-oneline", "address", "show", "dev", "lan0"), before)
            again = lan.watcher.ip_command("-oneline", "link", "show", "dev", "lan0")
            self.assertEqual(again.split(":")[0], mac.split(":")[0])
            self.assertIn(lan.watcher.mac, again)

    def test_switches_interface_and_carrier(self):
        def state(lan):
            """ "UP", "OFF" for the interface itself, "NO-CARRIER" for the wire."""
            flags = (
                lan.watcher.ip_command("-brief", "link", "show", "dev", "lan0")
                .split()[3]
                .strip("<>")
                .split(",")
            )
            return "OFF" if "UP" not in flags else ("NO-CARRIER" if "NO-CARRIER" in flags else "UP")

        with lan_namespace.LanNamespace() as lan:
            states = [state(lan)]
            for switch in (lan.set_interface, lan.set_carrier):
                for is_up in (False, True):
                    switch(is_up)
                    # The carrier's state follows the other side's within a moment.
                    wanted = "UP" if is_up else ("OFF" if switch == lan.set_interface else "NO-CARRIER")
                    deadline = time.monotonic() + 5
                    while state(lan) != wanted and time.monotonic() < deadline:
                        time.sleep(0.02)
                    states.append(state(lan))
            self.assertEqual(states, ["UP", "OFF", "UP", "NO-CARRIER", "UP"])
            self.assertIn("10.77.0.2/24", lan.watcher.ip_command("address", "show", "dev", "lan0"))

    def test_resolver_answers_from_the_hosts_file_and_else_as_chosen(self):
        for resolver, status, text in (("silent", EAI_AGAIN, ""), ("numeric", 0, "10.77.0.11")):
            with lan_namespace.LanNamespace(hosts={"10.77.0.10": "oldpdc.valley"}, resolver=resolver) as lan:

                def look_up(ip, flags):
                    said = lan.watcher.run(["/usr/bin/python3", "-c", LOOK_UP, ip, str(flags)]).stdout
                    return said.rstrip("\n").split(" ")

                self.assertEqual(look_up("10.77.0.10", NI_NAMEREQD), ["0", "oldpdc.valley"])
                self.assertEqual(look_up("10.77.0.11", NI_NOFQDN), [str(status), text])
                self.assertEqual(
                    look_up("10.77.0.11", NI_NAMEREQD)[0], str(EAI_AGAIN if status else EAI_NONAME)
                )


if __name__ == "__main__":
    unittest.main()
