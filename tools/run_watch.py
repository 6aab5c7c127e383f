#!/usr/bin/python3
"""Watches a network with the built program, with settings of its own: the second half of ./run.

Without --interface it watches the demo LAN: live between two network namespaces where the machine lets us make them,
from a savefile replayed with its own timing elsewhere. Everything it makes (settings, namespaces, a Wine prefix, the
savefile) is removed again, however it ends.
"""

import argparse
import contextlib
import itertools
import os
import signal
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import lan_namespace
import settings_samples
import watch_settings
import wine_prefix

DEMO_LAN = os.path.join(ROOT, "tools", "demo_lan", "demo_lan.py")
LINUX_PROGRAM = os.path.join(ROOT, "build", "linux-release", "app", "vardelwatch")
WINDOWS_BUILD = os.path.join(ROOT, "build", "windows-x64")
WINDOWS_PROGRAM = os.path.join(WINDOWS_BUILD, "app", "vardelwatch.exe")
POST_COMMAND = os.path.join(WINDOWS_BUILD, "tools", "post_command", "post_command.exe")
WINE_PACKET = os.path.join(WINDOWS_BUILD, "tools", "wine_packet", "packet.dll")
DEMO_SAVEFILE_SECONDS = 120
# The program gives its threads 15 s; past that it ends all the same.
END_SECONDS = 25
LOOK_SECONDS = 0.2
DEMO_SETTINGS = {"AutoCapture": 1, "UsingEventLog": 1, "EventLogSave": 1, "Syslog": 1, "SyslogMaxEntries": 1000,
                 "SyslogNotification": 1, "SyslogNotificationLevel": 4, "SyslogNotificationFacility": -1,
                 "UpdateCheck": 0, "MaxEventLogFileSize": 0, "UseToolTips": 1, "Visualization": 1,
                 "MACSpoofingVisualization": 1, "MACSpoofingVisualizationStyle": 1, "WatchVisualization": 1,
                 "WatchConfirm": 0, "WatchInterval": 5, "ReportInterval": 1}
# The demo LAN's one host that really answers: it is there and away by turns, and watched.
WATCHED_IP = "10.77.0.60"
WATCHED_TURN_SECONDS = 15
REPORT_TEMPLATE = "dashboard.html.vdlt"
REPORT_FOLDER = os.path.join(ROOT, "build", "reports")


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(prog="./run", description="Watches the demo LAN, or a real adapter.")
    parser.add_argument("--seconds", type=float, help="end after that time (default: at Ctrl-C)")
    parser.add_argument("--interface", help="watch this adapter instead of the demo LAN")
    parser.add_argument("--windows", action="store_true", help="run the Windows program under Wine")
    options = parser.parse_args(arguments)
    if options.seconds is not None and options.seconds <= 0:
        parser.error("--seconds must be above 0")
    return options


class Leave:
    """SIGINT and SIGTERM ask to leave; the clean-up then runs as at any other end."""

    def __init__(self, seconds):
        self._seconds = seconds
        self._deadline = None
        self._asked = False
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            signal.signal(number, self._ask)

    def _ask(self, *_):
        self._asked = True

    def begin(self):
        """The time counts from here: what was prepared before isn't part of it."""
        if self._seconds is not None:
            self._deadline = time.monotonic() + self._seconds

    def is_due(self):
        return self._asked or (self._deadline is not None and time.monotonic() >= self._deadline)


class ComingAndGoing:
    """A machine beside the demo LAN that answers for a while, is silent for a while, and so on."""

    def __init__(self, namespace):
        self._namespace = namespace
        self.turns = 0
        self._ended = threading.Event()
        self._thread = threading.Thread(target=self._take_turns, daemon=True)

    def _take_turns(self):
        turns = itertools.cycle(("add", "delete"))
        while not self._ended.is_set():
            with contextlib.suppress(RuntimeError, OSError, subprocess.SubprocessError):
                self._namespace.ip_command("address", next(turns), f"{WATCHED_IP}/32", "dev",
                                           self._namespace.interface)
                self.turns += 1
            self._ended.wait(WATCHED_TURN_SECONDS)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._ended.set()
        self._thread.join()


def settings_of_run(interface, is_demo, program, path_form):
    """(settings, lists); `path_form` gives a path as the program's system spells it."""
    os.makedirs(REPORT_FOLDER, exist_ok=True)
    template = os.path.join(os.path.dirname(program), "templates", REPORT_TEMPLATE)
    settings = {**DEMO_SETTINGS, "Interface": interface, "ReportTemplate": path_form(template),
                "ReportPath": path_form(REPORT_FOLDER + "/")}
    if not is_demo:
        return settings, {}
    # A watched host that isn't known yet begins as offline.
    return settings, {"WatchedHosts": {"Host0": settings_samples.watched_host(WATCHED_IP, 0)}}


def as_it_stands(path):
    return path


def in_wine(path):
    return "Z:" + path.replace("/", "\\")


def start_demo_lan(stack, folder):
    """Gives (namespace or None, the interface's name). Live where that can be had, else from a savefile."""
    reason = lan_namespace.unavailable_reason()
    if not reason:
        try:
            lan = stack.enter_context(lan_namespace.LanNamespace())
            # Its own session: Ctrl-C is for the watching program, the wire is quiet only after it.
            lan.injector.start([sys.executable, "-B", DEMO_LAN, "inject", "--interface", lan.injector.interface,
                                "--http-address", lan.injector.ip], stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, start_new_session=True)
            stack.enter_context(ComingAndGoing(lan.injector))
            print(f"Demo LAN, live on {lan.watcher.interface} in a namespace of its own. Ctrl-C ends it.", flush=True)
            return lan.watcher, lan.watcher.interface
        except (RuntimeError, OSError, subprocess.SubprocessError) as error:
            reason = str(error)
    path = os.path.join(folder, "demo_lan.pcap")
    subprocess.run([sys.executable, "-B", DEMO_LAN, "write", "--out", path, "--seconds", str(DEMO_SAVEFILE_SECONDS),
                    "--start", "now"], check=True, stdout=subprocess.DEVNULL)
    print(f"Demo LAN, from a savefile ({reason}). Ctrl-C ends it.", flush=True)
    return None, f"file://{path}"


def wait_until_left(child, leave):
    """True when the program ended by itself before it was asked to."""
    leave.begin()
    while not leave.is_due():
        if child.poll() is not None:
            return True
        time.sleep(LOOK_SECONDS)
    return child.poll() is not None


def watch_on_linux(options, stack, folder, leave):
    namespace, interface = (None, options.interface) if options.interface else start_demo_lan(stack, folder)
    settings, lists = settings_of_run(interface, not options.interface, LINUX_PROGRAM, as_it_stands)
    environment = watch_settings.write_linux_folders(folder, settings, lists)
    print(f"Each minute a report is written to {REPORT_FOLDER}.", flush=True)
    words = [LINUX_PROGRAM]
    # The terminal's Ctrl-C would reach the program twice; it gets its signal from here alone.
    child = subprocess.Popen(namespace.words(words) if namespace else words, env={**os.environ, **environment},
                             stdin=subprocess.DEVNULL, start_new_session=True)
    try:
        if not wait_until_left(child, leave):
            child.send_signal(signal.SIGTERM)
        return child.wait(END_SECONDS)
    finally:
        if child.poll() is None:
            child.kill()
            child.wait()


def ask_to_exit(wine, child):
    """Gives the Exit command, again until it is taken: the window may not be there yet. False: it still runs."""
    deadline = time.monotonic() + END_SECONDS
    is_taken = False
    while child.poll() is None and time.monotonic() < deadline:
        if not is_taken:
            # No pipes: Wine's own helpers, which a program may start, would hold them open.
            post = wine.start([POST_COMMAND, watch_settings.EXIT_COMMAND], stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
            with contextlib.suppress(subprocess.TimeoutExpired):
                is_taken = post.wait(END_SECONDS) == 0
        time.sleep(LOOK_SECONDS)
    return child.poll() is not None


def watch_on_windows(options, stack, folder, leave):
    if options.interface:
        namespace, interface = None, watch_settings.wine_device(options.interface)
    else:
        namespace, interface = start_demo_lan(stack, folder)
        if namespace is None:
            print("The Windows program needs a live interface, which this machine doesn't let us make.",
                  file=sys.stderr)
            return 1
        interface = watch_settings.wine_device_of_index(lan_namespace.INTERFACE_INDEX)
    print("Preparing Wine ...", flush=True)
    wine = stack.enter_context(wine_prefix.WinePrefix(namespace))
    settings, lists = settings_of_run(interface, not options.interface, WINDOWS_PROGRAM, in_wine)
    watch_settings.prepare_prefix(wine, folder, WINE_PACKET, settings, lists)
    child = wine.start([WINDOWS_PROGRAM], start_new_session=True)
    if not wait_until_left(child, leave) and not ask_to_exit(wine, child):
        print("The Windows program did not end; it is ended with its Wine prefix.", file=sys.stderr)
        return 1
    # The Windows program's own exit code is 1 on all paths.
    return 0 if child.returncode == 1 else 1


def main(arguments=None):
    options = parse_arguments(arguments)
    leave = Leave(options.seconds)
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="vardelwatch-run-"))
        watch = watch_on_windows if options.windows else watch_on_linux
        return watch(options, stack, folder, leave)


if __name__ == "__main__":
    sys.exit(main())
