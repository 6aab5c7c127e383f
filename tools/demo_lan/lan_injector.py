"""Sends the demo LAN's frames live through a raw socket on an interface, each at its time."""

import errno
import socket
import time

# What a send or bind fails with while the interface is down or gone; it may come back.
AWAY_ERRORS = (errno.ENXIO, errno.ENODEV, errno.ENETDOWN)
RETRY_SECONDS = 0.1


class Injector:
    """Owns the raw socket. `stopped` is a threading.Event that ends the sending early.

    An interface that goes away costs the frames of that time and nothing more: the socket is opened anew
    until the interface is back, and the LAN goes on from where its clock stands by then.
    """

    def __init__(self, interface, stopped):
        self._interface = interface
        self._stopped = stopped
        self._socket = None
        self.sent = 0
        self._open()

    def _open(self):
        self._socket = socket.socket(socket.AF_PACKET, socket.SOCK_RAW, 0)
        try:
            self._socket.bind((self._interface, 0))
        except OSError:
            self.close()
            raise

    def close(self):
        if self._socket is not None:
            self._socket.close()
            self._socket = None

    def send(self, data):
        """Sends one frame now; without an interface it is lost."""
        try:
            if self._socket is None:
                self._open()
            self._socket.send(data)
            self.sent += 1
        except OSError as error:
            if error.errno not in AWAY_ERRORS:
                raise
            self.close()
            self._stopped.wait(RETRY_SECONDS)

    def run(self, frames):
        """Sends `frames` until they end or `stopped` is set, leaving out those of a time without socket."""
        start = time.monotonic()
        for frame in frames:
            late = time.monotonic() - start - frame.seconds
            if late > RETRY_SECONDS and self._socket is None:
                continue
            if late < 0 and self._stopped.wait(-late) or self._stopped.is_set():
                return
            self.send(frame.data)
