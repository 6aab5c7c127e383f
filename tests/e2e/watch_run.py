"""A run of a whole program in a namespace: start, wait for what it tells, end, and read what it left.

`LinuxRun` and `WindowsRun` have the same operations. Each run has its settings, log and output in a folder of
its own. A run belongs to its namespace (the Windows one to its prefix), which ends it should a test fail.
"""

import contextlib
import dataclasses
import os
import re
import signal
import subprocess
import sys
import time

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SUPPORT = os.path.join(ROOT, "tests", "support")
DEMO_LAN = os.path.join(ROOT, "tools", "demo_lan", "demo_lan.py")
sys.path[:0] = [SUPPORT, os.path.dirname(DEMO_LAN)]

import watch_settings

LINUX_PROGRAM = os.path.join(ROOT, "build", "linux-release", "app", "vardelwatch")
WINDOWS_BUILD = os.path.join(ROOT, "build", "windows-x64")
WINDOWS_PROGRAM = os.path.join(WINDOWS_BUILD, "app", "vardelwatch.exe")
POST_COMMAND = os.path.join(WINDOWS_BUILD, "tools", "post_command", "post_command.exe")
WINE_PACKET = os.path.join(WINDOWS_BUILD, "tools", "wine_packet", "packet.dll")
LOG_NAME = "vdl-events.log"
COLUMN_SEPARATOR = " | "
LOOK_SECONDS = 0.1
# A start under Wine on a busy machine takes most of a minute; none of these is a measurement.
START_SECONDS = 120
END_SECONDS = 60

STARTED = "Vardelwatch started successfully"
EXITED = "Vardelwatch exited"
CAPTURING = "Capturing started"
NEW_HOST = "New host found"
SYSLOG = "Syslog notification"
DEVICE_NAME = "SSDP - device name found"
STORAGE_FOUND = "LinkStation found"


@dataclasses.dataclass(frozen=True)
class EventLine:
    """One line of the event log, in the order of its columns; bytes of 0x80 and up as Latin-1."""

    time: str
    event: str
    info: str
    host: str
    text: str


def printable(text):
    """How the programs print a text: what is no printable ASCII character in hexadecimal."""
    return "".join(c if " " <= c <= "~" else f"\\x{ord(c):02x}" for c in text)


def event_lines(lines):
    """[EventLine]; a line without exactly five columns is an error."""
    return [EventLine(*line.split(COLUMN_SEPARATOR)) for line in lines]


def wait_until(condition, seconds, what):
    """Gives the condition's first true value."""
    deadline = time.monotonic() + seconds
    while not (value := condition()):
        if time.monotonic() > deadline:
            raise AssertionError(f"within {seconds} s there was no {what}")
        time.sleep(LOOK_SECONDS)
    return value


def read_host_table(text):
    """{ip: {heading: cell}} of the table at the end of an output; columns stand under their headings."""
    heading, *rows = text.rsplit("\n\nIP ", 1)[1].split("\n\n", 1)[0].split("\n")
    heading = "IP " + heading
    starts = [found.start() for found in re.finditer(r"(?:^|(?<=  ))\S", heading)]

    def cells(line):
        return [line[start:end].strip() for start, end in zip(starts, [*starts[1:], None])]

    return {cells(row)[0]: dict(zip(cells(heading), cells(row))) for row in rows}


class _Run:
    """What both programs have in common. `_child` is the Popen, `log_path` the event log."""

    LINE_END = b"\n"

    def __init__(self, namespace, folder, program_name):
        self.namespace = namespace
        self.folder = folder
        self.log_path = None
        self._program_name = program_name
        self._child = None
        self._output_prefix = ""
        os.makedirs(folder, exist_ok=True)

    def _path(self, stream):
        return os.path.join(self.folder, self._output_prefix + stream)

    def _text(self, stream):
        with open(self._path(stream), "rb") as source:
            return source.read().decode("latin-1").replace("\r\n", "\n")

    @property
    def output(self):
        return self._text("stdout")

    @property
    def errors(self):
        return self._text("stderr")

    @property
    def exit_code(self):
        """None while the program runs."""
        return self._child.poll()

    def printed_events(self):
        """The event lines of the output so far, as text."""
        whole = self.output.rsplit("\n\nIP ", 1)[0].split("\n")
        return [line for line in whole if COLUMN_SEPARATOR in line]

    def wait_for(self, text, seconds=START_SECONDS):
        """Waits until the program has printed `text`; an end of the program before is an error."""

        def has_come():
            ended = self.exit_code is not None
            if text in self.output:
                return True
            if ended:
                raise AssertionError(f"ended ({self.exit_code}) before {text!r}: {self.output}{self.errors}")
            return False

        wait_until(has_come, seconds, repr(text))

    def wait_for_end(self, seconds=END_SECONDS):
        return self._child.wait(seconds)

    def log_lines(self):
        """The event log's lines as text; the last one must have its end."""
        with open(self.log_path, "rb") as source:
            *lines, rest = source.read().split(self.LINE_END)
        if rest:
            raise AssertionError(f"the log ends within a line: {rest}")
        return [line.decode("latin-1") for line in lines]

    def log_events(self):
        return event_lines(self.log_lines())

    def hosts(self):
        return read_host_table(self.output)

    def processes(self):
        """Command lines of what still runs of the program in the namespace."""
        pids = self.namespace.ip_command("netns", "pids", self.namespace.name).split()
        found = []
        for pid in pids:
            with contextlib.suppress(FileNotFoundError, ProcessLookupError):
                with open(f"/proc/{pid}/cmdline", "rb") as source:
                    words = source.read().split(b"\0")
                if words[0].decode("latin-1").replace("\\", "/").endswith("/" + self._program_name):
                    found.append(b" ".join(words).decode("latin-1"))
        return found


class LinuxRun(_Run):
    """Runs with the XDG folders below `folder`; runs of one folder are runs of one user."""

    def __init__(self, namespace, folder, settings, lists=None):
        super().__init__(namespace, folder, "vardelwatch")
        self.environment = watch_settings.write_linux_folders(folder, settings, lists)
        self.settings_path = os.path.join(self.environment["XDG_CONFIG_HOME"], "vardelwatch", "settings.reg")
        self.log_path = os.path.join(self.environment["XDG_DATA_HOME"], LOG_NAME)

    def start(self, through=(), output_prefix="", environment=None):
        """`through` is a command that runs the program given behind it; `environment` adds to the program's."""
        self._output_prefix = output_prefix
        with open(self._path("stdout"), "wb") as output, open(self._path("stderr"), "wb") as errors:
            self._child = self.namespace.start(
                [*through, LINUX_PROGRAM],
                # The output as both programs give it, whatever the locale of who runs the tests.
                env={**os.environ, "LC_ALL": "C", **self.environment, "HOME": self.folder, **(environment or {})},
                stdin=subprocess.DEVNULL,
                stdout=output,
                stderr=errors,
            )
        return self

    def end(self, number=signal.SIGTERM):
        # `ip netns exec` replaces itself by the program, so the signal reaches it.
        self._child.send_signal(number)
        return self.wait_for_end()


class WindowsRun(_Run):
    """Runs in the prefix `wine`, which must run in `namespace`."""

    LINE_END = b"\r\n"

    def __init__(self, namespace, folder, wine, settings, lists=None):
        super().__init__(namespace, folder, "vardelwatch.exe")
        self._wine = wine
        watch_settings.prepare_prefix(wine, folder, WINE_PACKET, settings, lists)
        watch_settings.do_without_display(wine)
        self.log_path = os.path.join(wine.local_application_data, LOG_NAME)

    def start(self):
        with open(self._path("stdout"), "wb") as output, open(self._path("stderr"), "wb") as errors:
            self._child = self._wine.start([WINDOWS_PROGRAM], stdout=output, stderr=errors)
        return self

    def end(self):
        self._wine.run([POST_COMMAND, watch_settings.EXIT_COMMAND])
        return self.wait_for_end()


def start_demo_lan(lan, folder, *words):
    """Speaks the demo LAN on the injector's side until the LAN ends."""
    with open(os.path.join(folder, "speaker"), "wb") as log:
        return lan.injector.start(
            [
                "/usr/bin/python3",
                "-B",
                DEMO_LAN,
                "inject",
                "--interface",
                lan.injector.interface,
                "--http-address",
                lan.injector.ip,
                *words,
            ],
            stdin=subprocess.DEVNULL,
            stdout=log,
            stderr=subprocess.STDOUT,
        )


def require(*programs):
    """A program that is not there is a failure, never a reason to leave a test out."""
    missing = [os.path.relpath(path, ROOT) for path in programs if not os.path.exists(path)]
    if missing:
        raise AssertionError(f"not built: {', '.join(missing)}")
