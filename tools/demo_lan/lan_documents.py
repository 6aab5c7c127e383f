"""The device documents of the demo LAN and the small HTTP server that hands them out."""

import functools
import http.server
import json
import threading
import urllib.parse

import lan_description

# A document that tells its name too late does so behind this many bytes.
LATE_BYTES = 4096
# Where the discard service would be: nothing listens there, and a connection is refused at once.
DEAD_PORT = 9


def _element(name, text):
    return f"    <{name}>{text}</{name}>\r\n" if text else ""


def _document(host):
    device = host.ssdp
    service = "      <service><serviceType>urn:schemas-upnp-org:service:Basic:1</serviceType></service>\r\n"
    count = LATE_BYTES // len(service) + 1 if device.is_late else 1
    services = "    <serviceList>\r\n" + service * count + "    </serviceList>\r\n"
    return (
        "<?xml version=\"1.0\"?>\r\n<root xmlns=\"urn:schemas-upnp-org:device-1-0\">\r\n"
        "  <specVersion><major>1</major><minor>0</minor></specVersion>\r\n  <device>\r\n"
        "    <deviceType>urn:schemas-upnp-org:device:Basic:1</deviceType>\r\n"
        + services
        + _element("friendlyName", device.name_element or device.friendly_name)
        + _element("manufacturer", "Valley Works")
        + _element("modelName", host.about)
        + f"    <UDN>uuid:{unique_name(host)}</UDN>\r\n"
        + _element("presentationURL", device.presentation_url)
        + "  </device>\r\n</root>\r\n"
    ).encode("ascii")


def unique_name(host):
    last_octet = int(host.ip.rsplit(".", 1)[1])
    return f"4d696e64-0000-4000-8000-0000000000{last_octet:02x}"


def documents():
    """{path: document} of every device that has one and serves it."""
    return {
        f"/{host.ssdp.document}.xml": _document(host)
        for host in lan_description.HOSTS
        if host.ssdp and host.ssdp.document and not host.ssdp.is_dead
    }


def location(host, http_base):
    """The URL that the device puts in its messages; a dead device names a port at which nobody answers."""
    base = http_base.rstrip("/")
    if host.ssdp.is_dead:
        base = f"http://{urllib.parse.urlsplit(base).hostname}:{DEAD_PORT}"
    return f"{base}/{host.ssdp.document}.xml"


class _DocumentHandler(http.server.BaseHTTPRequestHandler):
    """Answers a GET in a single write, so that a client that reads once gets all that it asks for."""

    def __init__(self, *arguments, log, served, **more):
        self._log = log
        self._served = served
        super().__init__(*arguments, **more)

    def do_GET(self):
        body = self._served.get(self.path)
        status = "200 OK" if body is not None else "404 Not Found"
        body = b"" if body is None else body
        head = (
            f"HTTP/1.1 {status}\r\nContent-Type: text/xml\r\nContent-Length: {len(body)}\r\n"
            "Connection: close\r\n\r\n"
        )
        self.wfile.write(head.encode("ascii") + body)
        self.close_connection = True
        self._log({"path": self.path, "agent": self.headers.get("User-Agent", ""), "status": int(status[:3])})

    def log_message(self, *_):
        """Requests go to the log file alone."""


class DocumentServer:
    """Serves the documents on a thread of its own from construction until `close`.

    `address` is "IP" or "IP:PORT"; without a port a free one is taken. `log_path` gets one JSON line a
    request.
    """

    def __init__(self, address, log_path=None):
        host, _, port = address.partition(":")
        self._log_lock = threading.Lock()
        self._log_file = open(log_path, "a", encoding="utf-8") if log_path else None
        handler = functools.partial(_DocumentHandler, log=self._log, served=documents())
        self._server = http.server.ThreadingHTTPServer((host, int(port or 0)), handler)
        self._server.daemon_threads = True
        self._thread = threading.Thread(target=self._server.serve_forever, daemon=True)
        self._thread.start()
        self.base = f"http://{host}:{self._server.server_address[1]}"

    def _log(self, entry):
        if self._log_file:
            with self._log_lock:
                print(json.dumps(entry), file=self._log_file, flush=True)

    def close(self):
        self._server.shutdown()
        self._server.server_close()
        self._thread.join()
        if self._log_file:
            self._log_file.close()


def serve_until_stopped(address, log_path, stopped):
    server = DocumentServer(address, log_path)
    print(f"documents at {server.base}", flush=True)
    try:
        stopped.wait()
    finally:
        server.close()
    return 0
