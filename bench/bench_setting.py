"""What stands beside every figure: the machine, the build and the commit."""

import os
import re
import subprocess

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))


def first_match(pattern, path):
    with open(path, encoding="utf-8") as source:
        found = re.search(pattern, source.read(), re.MULTILINE)
    return found.group(1).strip() if found else "unknown"


def commit():
    return subprocess.run(["git", "-C", ROOT, "describe", "--always", "--dirty"], capture_output=True, text=True,
                          check=False).stdout.strip()


def wine_version():
    return subprocess.run(["wine", "--version"], capture_output=True, text=True, check=True).stdout.split("\n", 1)[0]


def compiler_version(build_folder):
    compiler = first_match(r"^CMAKE_CXX_COMPILER:\w+=(.*)$", os.path.join(build_folder, "CMakeCache.txt"))
    return subprocess.run([compiler, "--version"], capture_output=True, text=True, check=True).stdout.splitlines()[0]


def print_setting(build):
    """`build`: the preset and what belongs to it."""
    memory = int(first_match(r"^MemTotal:\s+(\d+)", "/proc/meminfo")) / (1 << 20)
    print(f"machine: {first_match(r'^model name.*: (.*)$', '/proc/cpuinfo')}, {os.cpu_count()} processors, "
          f"{memory:.0f} GB, Linux {os.uname().release}, load {os.getloadavg()[0]:.1f}")
    print(f"build:   {build}, {commit()}", flush=True)
