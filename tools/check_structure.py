"""The rules of how the code is cut, as checks of the source text.

`problems()` gives, by rule, the places that break it; a rule with an empty list holds.
"""

import os
import re
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CODE = (".cpp", ".h", ".c", ".rc", ".py", ".sh", ".cmake", ".txt", "")

# Folders by floor; a file may include from its own folder and from lower floors.
FLOORS = {"resources": 0, "platform": 1, "foundation": 2, "settings": 3, "toolkit": 3, "plugins": 4, "capture": 5, "watchers": 6,
          "updates": 6, "views": 6, "settings_ui": 6, "frame": 7, "app": 8}
# Where the system's own header and macro may stand.
SYSTEM_PLACES = re.compile(r"^(platform/\w+_win\.(cpp|h)|platform/WindowsApi\.h|frame/\w+_win\.cpp|"
                           r"frame/(AboutBox|ShellTrayIcon|TrayMenus|VardelGui|VardelNotifyWnd)\.h|"
                           r"toolkit/.*|views/(\w+_win\.cpp|VardelView\w+\.h)|languages/\w+_win\.cpp|app/.*|"
                           r"tools/(wine_packet|post_command|show_templates)/.*|"
                           r"tests/(unit/.*_win|support/\w+_win|wmi/\w+|desktop/\w+)\.(cpp|h)|bench/.*)$")
SYSTEM_WORDS = re.compile(r"\b_WIN32\b|<windows\.h>|platform/WindowsApi\.h")
INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.MULTILINE)
LEFT_UNDONE = re.compile(r"\b(TO" r"DO|FIX" r"ME)\b|\bGTEST" r"_SKIP\b|\bDIS" r"ABLED_\w")


def tracked_files():
    """What the repository holds, added and not yet committed files included."""
    words = ["git", "-C", ROOT, "ls-files", "--cached", "--others", "--exclude-standard"]
    listed = subprocess.run(words, capture_output=True, text=True, check=True).stdout.split("\n")
    return [name for name in listed if name and os.path.isfile(os.path.join(ROOT, name))]


def read(name):
    with open(os.path.join(ROOT, name), encoding="utf-8", errors="replace") as source:
        return source.read()


def sources(names, *endings):
    return [name for name in names if name.endswith(endings)]


def system_outside_its_places(names):
    return [name for name in sources(names, ".cpp", ".h")
            if not SYSTEM_PLACES.match(name) and SYSTEM_WORDS.search(read(name))]


def upward_includes(names):
    found = []
    for name in sources(names, ".cpp", ".h"):
        folder = name.split("/", 1)[0]
        if folder not in FLOORS:
            continue
        for included in INCLUDE.findall(read(name)):
            other = included.split("/", 1)[0]
            if other != folder and (other not in FLOORS or FLOORS[other] >= FLOORS[folder]):
                found.append(f"{name}: {included}")
    return found


def includes_of_nothing(names):
    known = set(names)
    generated = re.compile(r"\.inc$|^generated/")
    return [f"{name}: {included}" for name in sources(names, ".cpp", ".h") if name.split("/", 1)[0] in FLOORS
            for included in INCLUDE.findall(read(name)) if included not in known and not generated.search(included)]


def include_circles(names):
    """Headers of the source folders that include each other in a circle."""
    graph = {name: [i for i in INCLUDE.findall(read(name)) if i.endswith(".h")]
             for name in sources(names, ".h") if name.split("/", 1)[0] in FLOORS}
    done, found = set(), []

    def visit(name, path):
        if name in path:
            found.append(" -> ".join([*path[path.index(name):], name]))
        elif name in graph and name not in done:
            for other in graph[name]:
                visit(other, [*path, name])
            done.add(name)

    for header in graph:
        visit(header, [])
    return found


def sources_left_out_of_the_build(names):
    """A source file that no CMakeLists.txt on its path names is a file that nothing builds."""
    found = []
    for name in sources(names, ".cpp"):
        folder, base = os.path.split(name)
        words = {base, re.sub(r"_(win|posix)\.cpp$", "", base), re.sub(r"\.cpp$", "", base),
                 re.sub(r"_(win|posix)\.cpp$", "_${VARDEL_OS}.cpp", base)}
        while True:
            lists = os.path.join(folder, "CMakeLists.txt")
            if lists in names or lists.lstrip("/") in names:
                text = read(lists)
                if any(re.search(rf"(^|[\s/(])({re.escape(word)})([\s);]|$)", text) for word in words):
                    break
            if not folder:
                found.append(name)
                break
            folder = os.path.dirname(folder)
    return found


def left_undone(names):
    return [name for name in names if name.endswith(CODE) and LEFT_UNDONE.search(read(name))]


def scripts_that_do_not_parse(names):
    scripts = [name for name in names if "." not in os.path.basename(name) and read(name).startswith("#!/usr/bin/env bash")]
    return [name for name in scripts
            if subprocess.run(["bash", "-n", os.path.join(ROOT, name)], capture_output=True, check=False).returncode]


RULES = {
    "the system's header stays in its places": system_outside_its_places,
    "includes point down": upward_includes,
    "includes name files that are there": includes_of_nothing,
    "headers form no circle": include_circles,
    "each source file is built": sources_left_out_of_the_build,
    "nothing is left undone or switched off": left_undone,
    "the scripts parse": scripts_that_do_not_parse,
}


def problems():
    names = tracked_files()
    return {rule: check(names) for rule, check in RULES.items()}
