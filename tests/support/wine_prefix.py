"""Wine prefixes of a test's own, and a display where a program needs one.

`with WinePrefix() as wine:` copies a template prefix (made once, which takes about fifteen seconds) and
removes the copy afterwards, its wineserver ended first, also on SIGTERM. With `namespace` everything of the
prefix runs in that network namespace, the wineserver included: it is the wineserver that opens the sockets,
so it must not be running elsewhere.
"""

import contextlib
import fcntl
import glob
import os
import re
import secrets
import shutil
import signal
import subprocess
import tempfile
import time

import orderly_exit

PROJECT_ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
WINE_FONTS = "/usr/share/wine/fonts"
COMMAND_SECONDS = 120
END_SECONDS = 20
DESKTOP_CLOSE_SECONDS = 2
# Folders of the template whose files no program changes and that are most of its size: copies link to them.
SHARED_FOLDERS = (
    "drive_c/windows/system32",
    "drive_c/windows/syswow64",
    "drive_c/windows/winsxs",
    "drive_c/windows/resources",
    "drive_c/windows/globalization",
    "drive_c/windows/Fonts",
)
# No questions about .NET and HTML engines, and no chatter.
ENVIRONMENT = {"WINEDEBUG": "-all", "WINEDLLOVERRIDES": "mscoree,mshtml=", "WINEARCH": "win64"}


def unavailable_reason():
    """Why no Windows program can be run here; empty where one can."""
    return (
        ""
        if shutil.which("wine") and shutil.which("wineserver")
        else "the commands wine and wineserver are missing"
    )


def base_folder():
    """Where template and copies live: the build folder, or where VARDELWATCH_WINE_FOLDER says."""
    return os.environ.get("VARDELWATCH_WINE_FOLDER") or os.path.join(PROJECT_ROOT, "build", "wine")


def environment(prefix, display=None):
    """The environment of a program in a prefix: the caller's, without its display and without its prefix."""
    result = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "WAYLAND_DISPLAY")}
    result.update(ENVIRONMENT, WINEPREFIX=prefix, HOME=prefix)
    if display is not None:
        result["DISPLAY"] = display
        # By default it is looked for in the home folder, which is the prefix from here on.
        result.setdefault("XAUTHORITY", os.path.expanduser("~/.Xauthority"))
    return result


def _make_template(path):
    """Makes the template aside and renames it, so that it is there whole or not at all."""
    with tempfile.TemporaryDirectory(prefix="making-", dir=os.path.dirname(path)) as folder:
        prefix = os.path.join(folder, "prefix")
        os.mkdir(prefix)
        settings = {
            "env": environment(prefix),
            "stdin": subprocess.DEVNULL,
            "stdout": subprocess.DEVNULL,
            "stderr": subprocess.DEVNULL,
            "timeout": COMMAND_SECONDS,
        }
        try:
            subprocess.run(("wineboot", "-i"), check=True, **settings)
            subprocess.run(("wineserver", "-w"), check=True, **settings)
        except BaseException:
            subprocess.run(("wineserver", "-k"), check=False, **settings)
            raise
        os.rename(prefix, path)


def template():
    """The template's path; makes it on the first call on a machine, whichever process calls first."""
    version = subprocess.run(
        ("wine", "--version"), capture_output=True, text=True, check=True
    ).stdout.split()[0]
    folder = base_folder()
    os.makedirs(folder, exist_ok=True)
    path = os.path.join(folder, f"template-{version}")
    with open(os.path.join(folder, "template.lock"), "w", encoding="ascii") as lock:
        fcntl.flock(lock, fcntl.LOCK_EX)
        if not os.path.isdir(path):
            _make_template(path)
    return path


def end_server(prefix):
    """Ends a prefix's wineserver, and with it each program that still runs in the prefix."""
    for option in ("-k", "-w", "-k9"):
        try:
            # Without a server there is nothing to end, which -k tells by a failure.
            done = subprocess.run(
                ("wineserver", option),
                env=environment(prefix),
                timeout=END_SECONDS,
                check=False,
                stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL,
            )
        except subprocess.TimeoutExpired:
            continue
        if option == "-w" and done.returncode == 0:
            return


def remove_leftovers():
    """Removes prefixes of this module whose maker doesn't run any more (it was killed outright)."""
    for name in os.listdir(base_folder()):
        found = re.fullmatch(r"prefix-(\d+)-[0-9a-f]+", name)
        if found and not orderly_exit.process_exists(int(found.group(1))):
            prefix = os.path.join(base_folder(), name)
            end_server(prefix)
            shutil.rmtree(prefix, ignore_errors=True)


def _link_or_copy(source, target):
    try:
        os.link(source, target)
    except OSError:
        shutil.copy2(source, target)  # Another file system, or one without links.


def _copy_template(source, target):
    shared = tuple(os.path.join(source, folder) + os.sep for folder in SHARED_FOLDERS)

    def copy_one(source_file, target_file):
        if source_file.startswith(shared):
            _link_or_copy(source_file, target_file)
        else:
            shutil.copy2(source_file, target_file)

    shutil.copytree(source, target, symlinks=True, copy_function=copy_one)


class WinePrefix:
    """A prefix of its own for the length of a with block. Not to be shared between namespaces."""

    def __init__(self, namespace=None, display=None):
        self._namespace = namespace
        self._display = display
        self._children = []
        self._held = contextlib.ExitStack()
        self.path = os.path.join(base_folder(), f"prefix-{os.getpid()}-{secrets.token_hex(4)}")

    def __enter__(self):
        self._held.enter_context(orderly_exit.sigterm_exits())
        try:
            source = template()
            remove_leftovers()
            _copy_template(source, self.path)
        except BaseException:
            self._end()
            raise
        return self

    def __exit__(self, *_):
        self._end()

    def _end(self):
        with self._held:
            try:
                self._end_children()
                if os.path.isdir(self.path):
                    end_server(self.path)
            finally:
                shutil.rmtree(self.path, ignore_errors=True)

    @property
    def drive_c(self):
        return os.path.join(self.path, "drive_c")

    @property
    def local_application_data(self):
        """Where the folder id 28 leads, as a path of this system."""
        users = os.path.join(self.drive_c, "users")
        user = next(name for name in sorted(os.listdir(users)) if name != "Public")
        return os.path.join(users, user, "AppData", "Local")

    @staticmethod
    def windows_path(path):
        """The name by which a Windows program knows a file of this system."""
        return "Z:" + os.path.abspath(path).replace("/", "\\")

    def _words(self, command):
        return self._namespace.words(list(command)) if self._namespace else list(command)

    def run(self, command, timeout=COMMAND_SECONDS, check=True, **more):
        """Runs a Windows program (a path of either system, arguments); gives the CompletedProcess."""
        more = {"capture_output": True, "text": True, "stdin": subprocess.DEVNULL, **more}
        return subprocess.run(
            self._words(["wine", *command]),
            env=environment(self.path, self._display),
            timeout=timeout,
            check=check,
            **more,
        )

    def start(self, command, **more):
        """Starts a Windows program and gives the Popen; it is ended with the prefix."""
        more = {"stdin": subprocess.DEVNULL, **more}
        child = subprocess.Popen(
            self._words(["wine", *command]), env=environment(self.path, self._display), **more
        )
        self._children.append(child)
        return child

    def _end_children(self):
        for child in self._children:
            if child.poll() is None:
                child.send_signal(signal.SIGTERM)
            with contextlib.suppress(subprocess.TimeoutExpired):
                child.wait(END_SECONDS)
            for stream in (child.stdin, child.stdout, child.stderr):
                if stream is not None:
                    stream.close()
        self._children.clear()

    def use_wine_fonts(self):
        """Texts come in Tahoma, as on Windows, and title bars have their signs: those are Wine's own fonts, which
        Debian's Wine doesn't find by itself. To be called before any program runs in the prefix."""
        for path in glob.glob(os.path.join(WINE_FONTS, "*.[tf]*")):
            target = os.path.join(self.drive_c, "windows", "Fonts", os.path.basename(path))
            if not os.path.exists(target):
                os.symlink(path, target)

    def use_virtual_desktop(self, size="1280x1024", name="Default"):
        """Windows live in one window of the display: without a window manager each that comes or goes would cost
        two seconds of waiting for one. The desktop of the name "shell" has a taskbar with the tray. To be called
        before any program runs in the prefix, since the first one brings the desktop up; therefore the registry's
        file is written, which no server has open yet."""
        with open(os.path.join(self.path, "user.reg"), "a", encoding="ascii") as registry:
            registry.write(
                f'\n[Software\\\\Wine\\\\Explorer]\n"Desktop"="{name}"\n'
                f'\n[Software\\\\Wine\\\\Explorer\\\\Desktops]\n"{name}"="{size}"\n'
            )

    def keep_desktop(self):
        """Starts a program that stays until the prefix ends and uses its desktop. Wine closes a desktop that has had no
        user for a second, with all windows on it; on a busy machine that second passes between Wine's own start and
        the first window of a test, which then dies of an X error. To be called after `use_virtual_desktop`."""
        keeper = self.start(["cmd", "/c", "echo up& pause"], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                            stderr=subprocess.DEVNULL)
        keeper.stdout.readline()
        time.sleep(DESKTOP_CLOSE_SECONDS)  # one that was about to be closed has gone by then

    def export_registry(self, key, path):
        """Writes `key` and all below it as a registry text file, as the registry editor exports it."""
        self.run(["reg", "export", key, self.windows_path(path), "/y"])

    def import_registry(self, path):
        self.run(["reg", "import", self.windows_path(path)])


class VirtualDisplay:
    """An X server without a screen for a with block; `name` goes to `WinePrefix(display=...)`."""

    def __init__(self, size="1280x1024x24"):
        self._size = size
        self._server = None
        self._frames = None
        self.name = ""

    @property
    def frame_file(self):
        """Where the server keeps its pixels, see display_picture."""
        return os.path.join(self._frames.name, "Xvfb_screen0")

    def __enter__(self):
        self._frames = tempfile.TemporaryDirectory(prefix="vardelwatch-display-")
        read_end, write_end = os.pipe()
        try:
            self._server = subprocess.Popen(
                ("Xvfb", "-displayfd", str(write_end), "-screen", "0", self._size, "-nolisten", "tcp", "-nocursor",
                 "-fbdir", self._frames.name),
                pass_fds=(write_end,),
                stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL,
                stderr=subprocess.DEVNULL,
                preexec_fn=orderly_exit.end_with_parent,
            )
        finally:
            os.close(write_end)
            with os.fdopen(read_end, encoding="ascii") as number:
                # The server picks a free number and tells it; an empty answer means that it has ended.
                text = number.readline().strip() if self._server else ""
        if not text:
            self.__exit__()
            raise RuntimeError("Xvfb did not start")
        self.name = f":{text}"
        return self

    def __exit__(self, *_):
        if self._server is not None:
            self._server.terminate()
            try:
                self._server.wait(END_SECONDS)
            except subprocess.TimeoutExpired:
                self._server.kill()
                self._server.wait()
        if self._frames is not None:
            self._frames.cleanup()
