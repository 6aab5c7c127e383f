"""Runs a command on a system that refuses to list its adapters: no routing socket can be had.

    refuse_adapter_list.py COMMAND [ARGUMENT...]
"""

import ctypes
import errno
import os
import platform
import socket
import struct
import sys

PR_SET_NO_NEW_PRIVS = 38
PR_SET_SECCOMP = 22
SECCOMP_MODE_FILTER = 2
# linux/seccomp.h, linux/audit.h and the system call numbers of socket.
RETURN_ERROR = 0x00050000
ALLOW = 0x7FFF0000
SOCKET_CALLS = {"x86_64": (0xC000003E, 41), "aarch64": (0xC00000B7, 198)}
# Offsets in struct seccomp_data.
NUMBER_AT, ARCHITECTURE_AT, FIRST_ARGUMENT_AT = 0, 4, 16
LOAD, EQUAL, RETURN = 0x20, 0x15, 0x06


class Program(ctypes.Structure):
    _fields_ = [("length", ctypes.c_ushort), ("filter", ctypes.c_char_p)]


def refuse_routing_sockets():
    architecture, socket_call = SOCKET_CALLS[platform.machine()]
    steps = [
        (LOAD, 0, 0, ARCHITECTURE_AT),
        (EQUAL, 0, 5, architecture),
        (LOAD, 0, 0, NUMBER_AT),
        (EQUAL, 0, 3, socket_call),
        (LOAD, 0, 0, FIRST_ARGUMENT_AT),
        (EQUAL, 0, 1, socket.AF_NETLINK),
        (RETURN, 0, 0, RETURN_ERROR | errno.EACCES),
        (RETURN, 0, 0, ALLOW),
    ]
    code = b"".join(struct.pack("=HBBI", *step) for step in steps)
    program = Program(len(steps), code)
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) or libc.prctl(
        PR_SET_SECCOMP, SECCOMP_MODE_FILTER, ctypes.byref(program)
    ):
        raise OSError(ctypes.get_errno(), "prctl")


if __name__ == "__main__":
    refuse_routing_sockets()
    os.execv(sys.argv[1], sys.argv[1:])
