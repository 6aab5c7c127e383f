"""What the sources include: which of them this system builds, and which headers take long to build after a change."""

import re

LEAST_SOURCES = 8
WINDOWS_HEADER = "platform/WindowsApi.h"


def _includers(sources):
    """Each file with those that include it, through others too, and itself."""
    direct = {name: set() for name in sources}
    for name, text in sources.items():
        for included in re.findall(r'^#include "([^"]+)"', text, re.MULTILINE):
            direct.get(included, set()).add(name)

    def reached(name, seen):
        for other in direct[name] - seen:
            seen.add(other)
            reached(other, seen)
        return seen

    return {name: reached(name, {name}) for name in sources}


def built_here(sources):
    """The files of `sources` that go into a program for this system, `sources` being all of the project."""
    includers = _includers(sources)
    elsewhere = {name for name in sources if re.search(r"_win\.\w+$", name)} | includers.get(WINDOWS_HEADER, set())
    return {name for name in sources if any(user.endswith(".cpp") and user not in elsewhere for user in includers[name])}


def wide_headers(sources):
    """The files that at least LEAST_SOURCES sources of their own folder include, through others too, with how many."""

    def folder(name):
        return name.split("/")[0]

    counts = {name: sum(user.endswith(".cpp") and folder(user) == folder(name) for user in users if user != name)
              for name, users in _includers(sources).items()}
    return {name: count for name, count in counts.items() if count >= LEAST_SOURCES}
