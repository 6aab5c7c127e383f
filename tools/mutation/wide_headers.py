"""Tells which headers a change of which takes long to build."""

import re

LEAST_SOURCES = 10


def wide_headers(sources):
    """The files that at least LEAST_SOURCES sources include, through others too."""
    includers = {name: set() for name in sources}
    for name, text in sources.items():
        for included in re.findall(r'^#include "([^"]+)"', text, re.MULTILINE):
            includers.get(included, set()).add(name)

    def reached(name, seen):
        for other in includers[name] - seen:
            seen.add(other)
            reached(other, seen)
        return seen

    return {name for name in sources if sum(other.endswith(".cpp") for other in reached(name, set())) >= LEAST_SOURCES}
