"""The desktop program under Wine: on the user's display where there is one, else on one that nobody sees.

`./run` and `tools/take_screenshots` share this. The program's windows and its tray icon live in one window of the
display, a Wine desktop with a taskbar, which looks the same whatever the system around it has.
"""

import collections
import contextlib
import glob
import os
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import display_picture
import watch_settings
import wine_prefix

WINDOWS_BUILD = os.path.join(ROOT, "build", "windows-x64")
PROGRAM = os.path.join(WINDOWS_BUILD, "app", "vardelwatch.exe")
POST_COMMAND = os.path.join(WINDOWS_BUILD, "tools", "post_command", "post_command.exe")
WINE_PACKET = os.path.join(WINDOWS_BUILD, "tools", "wine_packet", "packet.dll")
SCREENSHOT_FOLDER = os.path.join(ROOT, "build", "screenshots")
SCREENSHOT_SECONDS = 5
SCREENSHOTS_KEPT = 12
DESKTOP_SIZE = "1024x768"
# Wine gives the desktop of this name a taskbar.
DESKTOP_NAME = "shell"
POST_SECONDS = 25
LOOK_SECONDS = 0.2
OPEN_DISPLAY = "import ctypes; raise SystemExit(not ctypes.CDLL('libX11.so.6').XOpenDisplay(None))"

# `name` as Wine takes it; `frame_file` is None for a display that a person looks at.
Display = collections.namedtuple("Display", "name frame_file")


def users_display(namespace):
    """The name of the user's display if programs in the namespace can reach it; otherwise None."""
    if not os.environ.get("DISPLAY"):
        return None
    words = [sys.executable, "-c", OPEN_DISPLAY]
    with contextlib.suppress(subprocess.TimeoutExpired, OSError):
        done = subprocess.run(namespace.words(words) if namespace else words, stdin=subprocess.DEVNULL,
                              stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, timeout=POST_SECONDS, check=False)
        if done.returncode == 0:
            return os.environ["DISPLAY"]
    return None


def virtual_display(stack, size=DESKTOP_SIZE):
    display = stack.enter_context(wine_prefix.VirtualDisplay(f"{size}x24"))
    return Display(display.name, display.frame_file)


def choose_display(stack, namespace):
    name = users_display(namespace)
    if name:
        print(f"The desktop program shows itself on your display {name}.", flush=True)
        return Display(name, None)
    print(f"No display can be reached, so the desktop program shows itself on a virtual one: a picture of it is saved "
          f"every {SCREENSHOT_SECONDS} seconds.", flush=True)
    return virtual_display(stack)


class Screenshots:
    """Saves a picture of a virtual display every few seconds and keeps the last few."""

    def __init__(self, frame_file, folder):
        self._frame_file = frame_file
        self._folder = folder
        self._next = time.monotonic() + SCREENSHOT_SECONDS

    def take_when_due(self):
        if self._frame_file is None or time.monotonic() < self._next:
            return
        self._next = time.monotonic() + SCREENSHOT_SECONDS
        path = os.path.join(self._folder, time.strftime("vardelwatch-%Y%m%d-%H%M%S.png"))
        display_picture.read_frame(self._frame_file).save(path)
        print(f"screenshot: {os.path.relpath(path)}", flush=True)
        for old in sorted(glob.glob(os.path.join(self._folder, "vardelwatch-*.png")))[:-SCREENSHOTS_KEPT]:
            with contextlib.suppress(FileNotFoundError):
                os.remove(old)


class DesktopRun:
    """The program in a Wine prefix of its own on a display. It ends with the stack at the latest.

    `output` takes the lines that it tells: as for a subprocess, by default this process's own.
    """

    def __init__(self, stack, folder, namespace, display, settings, lists, size=DESKTOP_SIZE, output=None):
        self._wine = stack.enter_context(wine_prefix.WinePrefix(namespace, display.name))
        self._wine.use_wine_fonts()
        self._wine.use_virtual_desktop(size, DESKTOP_NAME)
        watch_settings.prepare_prefix(self._wine, folder, WINE_PACKET, settings, lists)
        # The terminal's Ctrl-C is for the runner alone.
        self._child = self._wine.start([PROGRAM], start_new_session=True, stdout=output)

    def start(self, command, **more):
        """Starts another Windows program beside it and gives the Popen; it ends with the stack at the latest."""
        return self._wine.start(command, start_new_session=True, **more)

    def exit_code(self):
        """None while it runs."""
        return self._child.poll()

    def give_command(self, command, is_too_late):
        """Gives one of the tray menu's commands, again until it is taken: the main window may not be there yet."""
        while self._child.poll() is None and not is_too_late():
            # No pipes: Wine's own helpers, which a program may start, would hold them open.
            post = self._wine.start([POST_COMMAND, command], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                                    start_new_session=True)
            with contextlib.suppress(subprocess.TimeoutExpired):
                if post.wait(POST_SECONDS) == 0:
                    return True
            time.sleep(LOOK_SECONDS)
        return False

    def leave(self, seconds):
        """Asks the program to exit. False: it still runs after that time."""
        deadline = time.monotonic() + seconds
        self.give_command(watch_settings.EXIT_COMMAND, lambda: time.monotonic() >= deadline)
        while self._child.poll() is None and time.monotonic() < deadline:
            time.sleep(LOOK_SECONDS)
        return self._child.poll() is not None
