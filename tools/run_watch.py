#!/usr/bin/python3
"""Watches a network with a built program, with settings of its own: the second half of ./run.

Without --interface it watches the demo LAN: live between two network namespaces where the machine lets us make them,
from a savefile replayed with its own timing elsewhere, which only the program without windows can read. Everything it
makes (settings, namespaces, a Wine prefix, a display, the savefile) is removed again, however it ends.
"""

import argparse
import contextlib
import itertools
import os
import signal
import struct
import subprocess
import sys
import tempfile
import threading
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path[:0] = [os.path.join(ROOT, "tests", "support"), os.path.join(ROOT, "tools", "demo_lan")]

import lan_description
import lan_namespace
import run_desktop
import settings_samples
import watch_settings

DEMO_LAN = os.path.join(ROOT, "tools", "demo_lan", "demo_lan.py")
LINUX_PROGRAM = os.path.join(ROOT, "build", "linux-release", "app", "vardelwatch")
HEADLESS, DESKTOP = "headless", "desktop"
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
# What the demo LAN's name server knows; hosts that announce themselves tell their names, of the others none is known.
DEMO_NAMES = {"10.77.0.1": "gateway.valley.example", "10.77.0.2": "watchpost.valley.example",
              "10.77.0.35": "switch.valley.example", "10.77.0.36": "phone-1.valley.example",
              "10.77.0.37": "laser.valley.example", "10.77.0.40": "tv.valley.example",
              "10.77.0.41": "speaker.valley.example", "10.77.0.42": "media.valley.example",
              "10.77.0.43": "camera-door.valley.example", "10.77.0.44": "inkjet.valley.example",
              "10.77.0.46": "lights.valley.example", "10.77.0.60": "visitor.valley.example"}
TRUSTED = (1, 10, 13, 14, 17, 21, 23, 24, 25, 35)
DISTRUSTED = (15, 20, 38)
# All columns of the host view, all groups, and popups rather than balloons, which Wine shows late.
DESKTOP_SETTINGS = {"Visualization": 0, "VisibleColumns": 11111, "UseWMI": 1, "ViewHideSecure": 0,
                    "ViewFilterOptions": 7, "SaveViewWindow": 1}
VIEW_PLACE = (8, 8, 1016, 620)
REPORT_TEMPLATE = "dashboard.html.vdlt"
REPORT_FOLDER = os.path.join(ROOT, "build", "reports")


def parse_arguments(arguments):
    parser = argparse.ArgumentParser(prog="./run", description="Watches the demo LAN, or a real adapter.")
    parser.add_argument("--seconds", type=float, help="end after that time (default: at Ctrl-C)")
    parser.add_argument("--interface", help="watch this adapter instead of the demo LAN")
    parser.add_argument("--headless", dest="form", action="store_const", const=HEADLESS,
                        help="run the Linux program, which has no windows, instead of the desktop program under Wine")
    parser.add_argument("--screenshots", metavar="FOLDER", default=run_desktop.SCREENSHOT_FOLDER,
                        help="where pictures of a virtual display go (default: build/screenshots)")
    # Between ./run and this: which of the two programs is to be built, then which one was.
    parser.add_argument("--tell-form", action="store_true", help=argparse.SUPPRESS)
    parser.add_argument("--form", choices=(HEADLESS, DESKTOP), help=argparse.SUPPRESS)
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
        if self._seconds is not None and self._deadline is None:
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


def listed_hosts(last_octets):
    """The key of a list of hosts of the demo LAN."""
    cards = lan_description.Lan()
    hosts = [f"10.77.0.{octet}" for octet in last_octets]
    return {f"Host{number}": settings_samples.listed_host(ip, "", cards.mac(ip)) for number, ip in enumerate(hosts)}


def settings_of_run(interface, is_demo, program, path_form):
    """(settings, lists); `path_form` gives a path as the program's system spells it."""
    os.makedirs(REPORT_FOLDER, exist_ok=True)
    template = os.path.join(os.path.dirname(program), "templates", REPORT_TEMPLATE)
    settings = {**DEMO_SETTINGS, "Interface": interface, "ReportTemplate": path_form(template),
                "ReportPath": path_form(REPORT_FOLDER + "/")}
    if not is_demo:
        return settings, {}
    # A watched host that isn't known yet begins as offline.
    return settings, {"WatchedHosts": {"Host0": settings_samples.watched_host(WATCHED_IP, 0)},
                      "TrustedHosts": listed_hosts(TRUSTED), "DistrustedHosts": listed_hosts(DISTRUSTED)}


def desktop_settings(view_place, is_clicked):
    """Where nobody clicks, the watched host has no popup: it would stay, and in the middle of the host view."""
    return {**DESKTOP_SETTINGS, "SavedViewWindowDimension": struct.pack("<4i", *view_place),
            "WatchVisualization": int(is_clicked)}


def as_it_stands(path):
    return path


def in_wine(path):
    return "Z:" + path.replace("/", "\\")


def start_demo_lan(stack, folder):
    """Gives (namespace or None, the interface's name). Live where that can be had, else from a savefile."""
    reason = lan_namespace.unavailable_reason()
    if not reason:
        try:
            lan = stack.enter_context(lan_namespace.LanNamespace(hosts=DEMO_NAMES))
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


def wait_until_left(has_ended, leave, meanwhile=lambda: None):
    """True when the program ended by itself before it was asked to."""
    leave.begin()
    while not leave.is_due():
        if has_ended():
            return True
        meanwhile()
        time.sleep(LOOK_SECONDS)
    return has_ended()


def watch_headless(options, stack, folder, leave):
    namespace, interface = (None, options.interface) if options.interface else start_demo_lan(stack, folder)
    settings, lists = settings_of_run(interface, not options.interface, LINUX_PROGRAM, as_it_stands)
    environment = watch_settings.write_linux_folders(folder, settings, lists)
    print(f"Each minute a report is written to {REPORT_FOLDER}.", flush=True)
    words = [LINUX_PROGRAM]
    # The terminal's Ctrl-C would reach the program twice; it gets its signal from here alone.
    child = subprocess.Popen(namespace.words(words) if namespace else words, env={**os.environ, **environment},
                             stdin=subprocess.DEVNULL, start_new_session=True)
    try:
        if not wait_until_left(lambda: child.poll() is not None, leave):
            child.send_signal(signal.SIGTERM)
        return child.wait(END_SECONDS)
    finally:
        if child.poll() is None:
            child.kill()
            child.wait()


def no_desktop_reason(options):
    """Why the desktop program can't watch here; empty where it can."""
    if options.interface:
        return "" if os.geteuid() == 0 else "capturing under Wine needs root"
    return lan_namespace.unavailable_reason()


def form_of_run(options):
    if options.form:
        return options.form
    reason = no_desktop_reason(options)
    if reason:
        print(f"The desktop program can't watch here ({reason}), so the program without windows does.",
              file=sys.stderr)
    return HEADLESS if reason else DESKTOP


def watch_on_desktop(options, stack, folder, leave):
    if options.interface:
        namespace, interface = None, watch_settings.wine_device(options.interface)
    else:
        namespace, _ = start_demo_lan(stack, folder)
        if namespace is None:
            print("The desktop program needs a live interface, which this machine doesn't let us make.",
                  file=sys.stderr)
            return 1
        interface = watch_settings.wine_device_of_index(lan_namespace.INTERFACE_INDEX)
    display = run_desktop.choose_display(stack, namespace)
    print("Preparing Wine ...", flush=True)
    settings, lists = settings_of_run(interface, not options.interface, run_desktop.PROGRAM, in_wine)
    settings.update(desktop_settings(VIEW_PLACE, is_clicked=display.frame_file is None))
    run = run_desktop.DesktopRun(stack, folder, namespace, display, settings, lists)
    screenshots = run_desktop.Screenshots(display.frame_file, options.screenshots)
    leave.begin()
    run.give_command(watch_settings.VIEW_COMMAND, leave.is_due)
    ended = wait_until_left(lambda: run.exit_code() is not None, leave, screenshots.take_when_due)
    if not ended and not run.leave(END_SECONDS):
        print("The desktop program did not end; it is ended with its Wine prefix.", file=sys.stderr)
        return 1
    # The Windows program's own exit code is 1 on all paths.
    return 0 if run.exit_code() == 1 else 1


WATCHES = {HEADLESS: watch_headless, DESKTOP: watch_on_desktop}


def main(arguments=None):
    options = parse_arguments(arguments)
    form = form_of_run(options)
    if options.tell_form:
        print(form)
        return 0
    leave = Leave(options.seconds)
    with contextlib.ExitStack() as stack:
        folder = stack.enter_context(tempfile.TemporaryDirectory(prefix="vardelwatch-run-"))
        return WATCHES[form](options, stack, folder, leave)


if __name__ == "__main__":
    sys.exit(main())
