"""Reports of shipped templates, written by the built report tool from tables that a test describes."""

import os
import subprocess
from collections import namedtuple

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TEMPLATES = os.path.join(ROOT, "templates")
HOSTILE_NAMES = os.path.join(ROOT, "tests", "data", "reports", "hostile_names.txt")

UNKNOWN, TRUSTED, DISTRUSTED = 0, 1, 2

Host = namedtuple("Host", "ip name os vendor mac trust", defaults=("", "", "", "00:11:22:33:44:55", UNKNOWN))
Watched = namedtuple("Watched", "ip name online", defaults=("", True))
Access = namedtuple("Access", "host share user", defaults=("", ""))


def hostile_names(listener):
    """The 50 names as bytes; `listener` is the address that those with a request ask for."""
    with open(HOSTILE_NAMES, encoding="ascii") as source:
        lines = source.read().splitlines()
    return [line.replace("LISTENER", listener).encode("ascii").decode("unicode_escape").encode("latin-1")
            for line in lines]


def to_bytes(text):
    return text if isinstance(text, bytes) else text.encode()


def line(kind, *fields):
    return "\t".join([kind, *(to_bytes(field).hex() for field in fields)]) + "\n"


def write(folder, template, hosts=(), watched=(), accesses=()):
    """Gives the report's path. `template` is the name of a shipped one, or the path of another."""
    table = [line("host", bytes([host.trust]), host.ip, host.mac, host.name, host.os, host.vendor) for host in hosts]
    table += [line("watched", "1" if host.online else "0", host.ip, host.name) for host in watched]
    table += [line("share", access.host, access.share, access.user) for access in accesses]
    path = os.path.join(TEMPLATES, template)
    subprocess.run([os.environ["VARDEL_REPORT_TOOL"], path, folder + "/"], input="".join(table), text=True, check=True,
                   timeout=120)
    return os.path.join(folder, os.path.basename(path).removesuffix(".vdlt"))


def read(path):
    with open(path, "rb") as source:
        return source.read()
