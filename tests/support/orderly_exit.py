"""Makes SIGTERM end a Python program by SystemExit, so that what is held is given back."""

import contextlib
import ctypes
import os
import signal
import threading

PR_SET_PDEATHSIG = 1


def _exit_by_signal(number, _):
    # A second signal must not break into the clean-up that the first one has started.
    signal.signal(number, signal.SIG_IGN)
    raise SystemExit(128 + number)


@contextlib.contextmanager
def sigterm_exits():
    """SIGTERM ends a program on the spot by default. A handler that is already set stays in force."""
    is_main = threading.current_thread() is threading.main_thread()
    if not is_main or signal.getsignal(signal.SIGTERM) is not signal.SIG_DFL:
        yield
        return
    signal.signal(signal.SIGTERM, _exit_by_signal)
    try:
        yield
    finally:
        signal.signal(signal.SIGTERM, signal.SIG_DFL)


def process_exists(pid):
    return os.path.exists(f"/proc/{pid}")


def end_with_parent():
    """Called in a child before its program starts: it gets SIGTERM when its parent ends, however."""
    ctypes.CDLL(None).prctl(PR_SET_PDEATHSIG, signal.SIGTERM)
