#!/usr/bin/python3
"""Builds the plugin of the page on how to write one, by the page's own command, out of the tree.

build_page_plugin.py PAGE HEADER OUTPUT COMPILER: takes the page's source, the interface header alone, and the command
whose result bears OUTPUT's name. COMPILER is the command's own, or the one that the page names in its stead.
"""

import os
import re
import shutil
import subprocess
import sys


def block(page, kind, text):
    """The page's block of that kind that contains `text`."""
    found = [body for body in re.findall(rf"```{kind}\n(.*?)```\n", page, re.DOTALL) if text in body]
    if len(found) != 1:
        raise SystemExit(f"the page has {len(found)} blocks with {text}")
    return found[0]


def main(arguments):
    page_path, header, output, compiler = arguments
    folder, name = os.path.split(os.path.abspath(output))
    with open(page_path, encoding="utf-8") as source:
        page = source.read()
    words = block(page, "sh", name).split()
    if words[0] != compiler and f"`{compiler}`" not in page:
        raise SystemExit(f"the page doesn't name {compiler}")
    os.makedirs(folder, exist_ok=True)
    shutil.copy(header, folder)
    with open(os.path.join(folder, "first.cpp"), "w", encoding="utf-8") as source:
        source.write(block(page, "cpp", "GetPluginInfo"))
    return subprocess.run([compiler, *words[1:]], cwd=folder, check=False).returncode


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
