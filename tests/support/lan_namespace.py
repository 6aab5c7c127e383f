"""A LAN of two machines for a test: two network namespaces joined by a veth pair.

`with LanNamespace() as lan:` gives `lan.watcher` and `lan.injector`, each a `Namespace` with the interface
"lan0". Leaving the block, by its end, an exception, SystemExit or SIGTERM, ends what was started inside and
removes the namespaces with all that belongs to them. Names carry the process id and a random part, so tests
can run side by side; what a killed process left behind is removed by the next one. Needs root.
"""

import contextlib
import ipaddress
import os
import re
import secrets
import shutil
import signal
import subprocess
import time

import orderly_exit

INTERFACE = "lan0"
# The index is the same each time the interface is made, so that names that derive from it stay the same.
INTERFACE_INDEX = 20
NAME_PREFIX = "vdlw"
NETNS_CONFIGURATION = "/etc/netns"
COMMAND_SECONDS = 30
END_SECONDS = 5

# What the resolver inside a namespace says of an address that is not in its hosts file:
#   "numeric"  nothing but the hosts file is asked, and names that aren't required come out in digits;
#   "silent"   a name server is asked that nobody runs, so every such look-up fails, at once.
RESOLVERS = {
    "numeric": {"nsswitch.conf": "hosts: files\n", "resolv.conf": ""},
    "silent": {
        "nsswitch.conf": "hosts: files dns\n",
        "resolv.conf": "nameserver 127.0.0.1\noptions timeout:1 attempts:1\n",
    },
}


def _command(*words, check=True):
    done = subprocess.run(words, capture_output=True, text=True, timeout=COMMAND_SECONDS, check=False)
    if check and done.returncode != 0:
        raise RuntimeError(f"{' '.join(words)}: {done.stderr.strip()}")
    return done.stdout


def unavailable_reason():
    """Why namespaces can't be made here; empty where they can."""
    if os.geteuid() != 0:
        return "making network namespaces needs root"
    if shutil.which("ip") is None:
        return "the command ip (package iproute2) is missing"
    name = f"{NAME_PREFIX}-{os.getpid()}-{secrets.token_hex(3)}-probe"
    made = subprocess.run(("ip", "netns", "add", name), capture_output=True, text=True, check=False)
    if made.returncode != 0:
        return f"no network namespace can be made: {made.stderr.strip()}"
    _command("ip", "netns", "delete", name)
    return ""


def remove_leftovers():
    """Removes namespaces of this module whose maker doesn't run any more (it was killed outright)."""
    for line in _command("ip", "netns", "list").splitlines():
        found = re.match(rf"({NAME_PREFIX}-(\d+)-[0-9a-f]+-\w+)\b", line)
        if found and not orderly_exit.process_exists(int(found.group(2))):
            _remove_namespace(found.group(1))


def _end_processes(name):
    """Ends every process that lives in a namespace of ours, by its id."""
    for number in (signal.SIGTERM, signal.SIGKILL):
        deadline = time.monotonic() + END_SECONDS
        pids = _command("ip", "netns", "pids", name, check=False).split()
        for pid in pids:
            try:
                os.kill(int(pid), number)
            except ProcessLookupError:
                pass
        while pids and time.monotonic() < deadline:
            time.sleep(0.05)
            pids = _command("ip", "netns", "pids", name, check=False).split()
        if not pids:
            return


def _remove_namespace(name):
    _end_processes(name)
    _command("ip", "netns", "delete", name, check=False)
    shutil.rmtree(os.path.join(NETNS_CONFIGURATION, name), ignore_errors=True)
    try:
        os.rmdir(NETNS_CONFIGURATION)
    except OSError:
        pass  # Another test's files are there.


class Namespace:
    """One machine of the LAN: a network namespace with the interface "lan0" and, perhaps, resolver files."""

    def __init__(self, name, address, mac):
        self.name = name
        self.interface = INTERFACE
        self.address = ipaddress.ip_interface(address)
        self.ip = str(self.address.ip)
        self.mac = mac
        self._children = []

    def words(self, command):
        """The command line that runs `command` (a list) inside."""
        return ["ip", "netns", "exec", self.name, *command]

    def run(self, command, timeout=COMMAND_SECONDS, check=True, **more):
        """Runs to the end inside and gives the CompletedProcess with its output as text."""
        more = {"capture_output": True, "text": True, **more}
        return subprocess.run(self.words(command), timeout=timeout, check=check, **more)

    def start(self, command, **more):
        """Starts inside and gives the Popen; it is ended with the LAN if it still runs then."""
        child = subprocess.Popen(self.words(command), **more)
        self._children.append(child)
        return child

    def ip_command(self, *words):
        return _command("ip", "-n", self.name, *words)

    def make(self):
        _command("ip", "netns", "add", self.name)
        self.ip_command("link", "set", "lo", "up")

    def write_resolver_files(self, hosts, resolver):
        folder = os.path.join(NETNS_CONFIGURATION, self.name)
        for _ in range(10):
            try:
                os.makedirs(folder, exist_ok=True)
                break
            except FileNotFoundError:
                continue  # A test that ended has just removed the empty parent.
        lines = ["127.0.0.1 localhost"] + [f"{ip} {name}" for ip, name in (hosts or {}).items()]
        for file_name, content in {"hosts": "\n".join(lines) + "\n", **RESOLVERS[resolver]}.items():
            with open(os.path.join(folder, file_name), "w", encoding="ascii") as out:
                out.write(content)

    def configure_interface(self, is_ipv6):
        if not is_ipv6:
            self.run(["sh", "-c", f"echo 1 > /proc/sys/net/ipv6/conf/{INTERFACE}/disable_ipv6"])
        self.ip_command("address", "add", str(self.address), "broadcast", "+", "dev", INTERFACE)
        self.ip_command("link", "set", INTERFACE, "up")

    def end(self):
        """Ends the processes inside and removes the namespace."""
        for child in self._children:
            if child.poll() is None:
                child.terminate()
        for child in self._children:
            try:
                child.wait(END_SECONDS)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
            for stream in (child.stdin, child.stdout, child.stderr):
                if stream is not None:
                    stream.close()
        self._children.clear()
        _remove_namespace(self.name)


class LanNamespace:
    """The two machines and the wire between them.

    `hosts` ({ip: name}) is the hosts file of both, `resolver` one of RESOLVERS or None to leave the machine's
    own resolver files in force. Without `is_ipv6` the interfaces have no IPv6 address and send none of its
    frames.
    """

    def __init__(
        self, watcher="10.77.0.2/24", injector="10.77.0.3/24", hosts=None, resolver="silent", is_ipv6=False
    ):
        unique = f"{NAME_PREFIX}-{os.getpid()}-{secrets.token_hex(3)}"
        serial = secrets.token_hex(4)
        macs = [
            "02:" + role + "".join(f":{serial[i:i + 2]}" for i in range(0, 8, 2)) for role in ("77", "78")
        ]
        self.watcher = Namespace(f"{unique}-watch", watcher, macs[0])
        self.injector = Namespace(f"{unique}-inject", injector, macs[1])
        self._hosts = hosts
        self._resolver = resolver
        self._is_ipv6 = is_ipv6
        self._held = contextlib.ExitStack()

    def __enter__(self):
        self._held.enter_context(orderly_exit.sigterm_exits())
        try:
            remove_leftovers()
            for machine in (self.watcher, self.injector):
                machine.make()
                if self._resolver is not None:
                    machine.write_resolver_files(self._hosts, self._resolver)
            self.bring_back()
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_):
        self._end()

    def _end(self):
        with self._held:
            try:
                self.watcher.end()
            finally:
                self.injector.end()

    def take_away(self):
        """Removes the interface on both sides, as if the adapter were pulled."""
        self.watcher.ip_command("link", "delete", INTERFACE)

    def bring_back(self):
        """Makes the interface, with the same name, index, MAC and address each time."""
        index = ("index", str(INTERFACE_INDEX))
        _command(
            "ip",
            "link",
            "add",
            "name",
            INTERFACE,
            *index,
            "address",
            self.watcher.mac,
            "netns",
            self.watcher.name,
            "type",
            "veth",
            "peer",
            "name",
            INTERFACE,
            *index,
            "address",
            self.injector.mac,
            "netns",
            self.injector.name,
        )
        for machine in (self.watcher, self.injector):
            machine.configure_interface(self._is_ipv6)

    def set_carrier(self, is_up):
        """Takes the wire off the watcher's interface, or puts it back; the interface itself stays."""
        self.injector.ip_command("link", "set", INTERFACE, "up" if is_up else "down")

    def set_interface(self, is_up):
        """Switches the watcher's interface off, or on again; it keeps its address."""
        self.watcher.ip_command("link", "set", INTERFACE, "up" if is_up else "down")
