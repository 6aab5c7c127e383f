"""Tells which headers take long to build after a change."""

import re

LEAST_SOURCES = 8


def wide_headers(sources):
    """The files that at least LEAST_SOURCES sources of their own folder include, through others too, with how many."""
    includers = {name: set() for name in sources}
    for name, text in sources.items():
        for included in re.findall(r'^#include "([^"]+)"', text, re.MULTILINE):
            includers.get(included, set()).add(name)

    def reached(name, seen):
        for other in includers[name] - seen:
            seen.add(other)
            reached(other, seen)
        return seen

    def folder(name):
        return name.split("/")[0]

    counts = {name: sum(other.endswith(".cpp") and folder(other) == folder(name) for other in reached(name, set()))
              for name in sources}
    return {name: count for name, count in counts.items() if count >= LEAST_SOURCES}
