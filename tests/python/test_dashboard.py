"""The dashboard in a browser: nothing that a host, a share or a user is called runs, loads or leads anywhere; and what
a reader does with the page."""

import collections
import http.server
import os
import sys
import tempfile
import threading
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import chromium
import report_files
from report_files import DISTRUSTED, TRUSTED, UNKNOWN, Access, Host, Watched

TITLE = "Vardelwatch - the network at a glance"
OWN_ELEMENTS = {"html", "head", "meta", "title", "style", "script", "body", "header", "svg", "rect", "g", "circle", "path",
                "text", "div", "h1", "h2", "p", "time", "b", "main", "strong", "pre", "section", "span", "small", "ul",
                "li", "i", "em", "button", "input", "table", "thead", "tbody", "tr", "th", "td", "bdi", "noscript",
                "footer"}
LEADING_ATTRIBUTES = ("src", "href", "action", "formaction", "srcdoc", "data", "poster", "ping", "background", "xlink:href")
# Hostile scripts call this; the debugger puts it into each frame, which no policy of a page keeps out.
REPORT = "window.report = (name) => (top.reports = top.reports || []).push(name);"
SETTLE_SECONDS = 1.5


class Listener:
    """A web server on loopback that writes down what it is asked for."""

    def __init__(self):
        asked = self.asked = []

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                asked.append(self.path)
                self.send_response(404)
                self.send_header("Content-Length", "0")
                self.end_headers()

            do_POST = do_HEAD = do_GET

            def log_message(self, *_):
                pass

        self._server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), Handler)
        self._thread = threading.Thread(target=self._server.serve_forever)
        self._thread.start()
        self.address = f"http://127.0.0.1:{self._server.server_address[1]}"

    def close(self):
        self._server.shutdown()
        self._thread.join()
        self._server.server_close()


class BrowserTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.browser = chromium.Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vardelwatch-dashboard-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def page(self, **look):
        page = chromium.Page(self.browser, **look)
        self.addCleanup(page.close)
        return page

    def show(self, *table, template="dashboard.html.vdlt", page=None):
        page = page or self.page()
        page.open("file://" + report_files.write(self.folder, template, *table))
        return page


class HostileNamesTest(BrowserTest):
    def setUp(self):
        super().setUp()
        self.listener = Listener()
        self.addCleanup(self.listener.close)
        self.names = report_files.hostile_names(self.listener.address)
        trusts = (UNKNOWN, TRUSTED, DISTRUSTED)
        hosts = [Host(f"10.0.1.{i}", name, trust=trusts[i % 3]) for i, name in enumerate(self.names)]
        hosts += [Host(f"10.0.2.{i}", "os", os=name) for i, name in enumerate(self.names)]
        hosts += [Host(f"10.0.3.{i}", "vendor", vendor=name) for i, name in enumerate(self.names)]
        accesses = [Access(name, b"s" + name, b"u" + name) for name in self.names]
        accesses += [Access("10.0.0.5", name, name) for name in self.names]
        watched = [Watched(f"10.0.4.{i}", name) for i, name in enumerate(self.names)]
        self.table = (hosts, watched, accesses)

    def hostile_page(self):
        page = self.page()
        page.call("Page.addScriptToEvaluateOnNewDocument", source=REPORT)
        return page

    def expect_untouched(self, page, script_ran=True):
        self.browser.listen(SETTLE_SECONDS)
        address = page.value("document.URL")
        self.assertTrue(address.endswith("/dashboard.html"), address)
        self.assertEqual(page.value("document.title"), TITLE)
        self.assertEqual(page.value("window.reports || []"), [])
        self.assertEqual(self.listener.asked, [])
        asked = [event["request"]["url"] for event in page.told("Network.requestWillBeSent")]
        self.assertEqual(set(asked), {address})
        self.assertEqual(len(asked), 1)
        self.assertEqual([event["frame"]["url"] for event in page.told("Page.frameNavigated")], [address])
        self.assertEqual(page.told("Page.frameAttached"), [])
        self.assertEqual(page.value("window.frames.length"), 0)
        # Not even an attempt that the policy would have had to stop.
        self.assertEqual([event["entry"]["text"] for event in page.told("Log.entryAdded")], [])
        self.assertEqual(page.told("Runtime.exceptionThrown"), [])
        self.assertEqual(page.told("Page.javascriptDialogOpening"), [])

        elements = page.value("Array.from(document.querySelectorAll('*'), (e) => [e.localName, e.getAttributeNames()])")
        own = OWN_ELEMENTS if script_ran else OWN_ELEMENTS | {"plaintext"}
        self.assertLessEqual({name for name, _ in elements}, own)
        counts = collections.Counter(name for name, _ in elements)
        self.assertEqual((counts["script"], counts["style"], counts["meta"], counts["input"]), (1, 1, 6, 1))
        attributes = {attribute for _, names in elements for attribute in names}
        self.assertFalse([name for name in attributes if name.startswith("on") or name in LEADING_ATTRIBUTES])

    def test_there_are_fifty(self):
        self.assertEqual(len(self.names), 50)
        self.assertEqual(len(set(self.names)), 50)

    def test_no_name_becomes_part_of_the_page(self):
        page = self.hostile_page()
        self.show(*self.table, page=page)
        self.expect_untouched(page)

    def test_no_name_becomes_part_of_the_page_when_all_rows_are_shown_and_used(self):
        page = self.hostile_page()
        self.show(*self.table, page=page)
        page.value("document.getElementById('host-more').click()")
        self.assertEqual(page.value("document.querySelectorAll('#host-rows tr').length"), 150)
        page.value("for (const button of document.querySelectorAll('button')) button.click()")
        page.value("for (const cell of document.querySelectorAll('td, bdi')) { cell.click();"
                   " cell.dispatchEvent(new MouseEvent('mouseover', { bubbles: true })); }")
        self.expect_untouched(page)

    def test_no_name_becomes_part_of_the_page_without_scripts(self):
        page = self.hostile_page()
        page.call("Emulation.setScriptExecutionDisabled", value=True)
        self.show(*self.table, page=page)
        self.expect_untouched(page, script_ran=False)
        self.assertTrue(page.value("document.querySelector('plaintext').getClientRects().length > 0"))
        self.assertIn("10.0.1.49", page.value("document.querySelector('plaintext').textContent"))

    def test_a_name_is_shown_as_it_is_written(self):
        page = self.hostile_page()
        self.show(*self.table, page=page)
        page.value("document.getElementById('host-more').click()")
        shown = set(page.value("Array.from(document.querySelectorAll('#host-rows td'), (cell) => cell.textContent)"))
        plain = [name.decode() for name in self.names if name.isascii() and name.decode().isprintable()]
        self.assertGreater(len(plain), 45)
        self.assertLessEqual(set(plain), shown)

    def test_each_name_alone_leaves_the_page_alone(self):
        page = self.hostile_page()
        for name in self.names:
            self.show([Host("10.0.0.66", name, name, name)], [Watched("10.0.0.66", name)], [Access(name, name, name)],
                      page=page)
            self.assertEqual(page.value("document.title"), TITLE, name)
            self.assertEqual(page.value("window.reports || []"), [], name)
            self.assertEqual(len(page.told("Network.requestWillBeSent")), 1, name)
            self.assertEqual(page.told("Log.entryAdded"), [], name)
        self.assertEqual(self.listener.asked, [])

    def test_a_page_without_care_falls_for_the_names(self):
        """What the other tests look for is really there to be seen."""
        careless = os.path.join(self.folder, "careless.html.vdlt")
        with open(careless, "w", encoding="ascii") as target:
            target.write("<!DOCTYPE html><title>Careless</title><VDL_HOSTS - begin><p>%VDL_HOST_NAME%</p>\n"
                         "<VDL_HOSTS - end>")
        page = self.hostile_page()
        # Each by itself: some would hide those that follow.
        reported = set()
        for name in self.names:
            self.show([Host("10.0.0.66", name)], template=careless, page=page)
            self.browser.listen(0.1)
            reported.update(page.value("window.reports || []"))
        self.assertGreater(len(reported), 12, reported)
        self.assertGreater(len(set(self.listener.asked)), 12, self.listener.asked)


class ForgedLinesTest(BrowserTest):
    """A name with line breaks and tabs can look like lines of the report."""

    def rows(self, page, table="host-rows"):
        return page.value(f"Array.from(document.querySelectorAll('#{table} tr'), (row) =>"
                          " Array.from(row.cells, (cell) => cell.textContent))")

    def test_a_host_cannot_make_itself_trusted(self):
        mac = "66:66:66:66:66:66"
        name = f"x\nhost\ttrusted\t10.0.0.66\t{mac}\tgood\tgood\tgood\n"
        page = self.show([Host("10.0.0.66", name, mac=mac), Host("10.0.0.5", "desk", trust=TRUSTED)])
        self.assertEqual(self.rows(page), [["Trusted", "10.0.0.5", "desk", "\u2013", "\u2013", "00:11:22:33:44:55"],
                                           ["Not readable", "10.0.0.66", "\u2013", "\u2013", "\u2013", mac]])
        self.assertFalse(page.value("document.getElementById('warning').hidden"))
        self.assertIn("10.0.0.66", page.value("document.getElementById('stray-lines').textContent"))

    def test_a_host_cannot_make_up_another(self):
        name = "x\naddress\t10.0.0.99\t99:99:99:99:99:99\nhost\ttrusted\t10.0.0.99\t99:99:99:99:99:99\ta\tb\tc"
        page = self.show([Host("10.0.0.66", name)])
        self.assertEqual([row[1] for row in self.rows(page)], ["10.0.0.66"])
        self.assertFalse(page.value("document.getElementById('warning').hidden"))

    def test_a_name_cannot_make_up_a_watched_host(self):
        for table in (([Host("10.0.0.66", "x\nwatched\tOnline\t10.0.0.2\tforged\n")], [Watched("10.0.0.1", "router")]),
                      ((), [Watched("10.0.0.1", "router")], [Access("a", "b", "c\nwatched\tOnline\t10.0.0.2\tforged")])):
            page = self.show(*table)
            self.assertEqual(self.rows(page, "watched-rows"), [["Online", "10.0.0.1", "router"]])
            self.assertFalse(page.value("document.getElementById('warning').hidden"))

    def test_a_made_up_access_is_warned_of(self):
        user = "a\th\ts\ta\nshare\tx\ty\tz\tx\ty\tz\nshare"
        page = self.show((), (), [Access("h", "s", user)])
        self.assertFalse(page.value("document.getElementById('warning').hidden"))

    def test_an_ordinary_report_has_no_warning(self):
        page = self.show([Host("10.0.0.5", "desk")], [Watched("10.0.0.1")], [Access("10.0.0.5", "music", "ann")])
        self.assertTrue(page.value("document.getElementById('warning').hidden"))
        self.assertEqual(self.rows(page, "share-rows"), [["10.0.0.5", "music", "ann"]])


class ReaderTest(BrowserTest):
    def texts(self, page, selector):
        return page.value(f"Array.from(document.querySelectorAll({selector!r}), (e) => e.textContent)")

    def shown(self, page):
        return self.texts(page, "#host-rows td:nth-child(2)")

    def click(self, page, selector):
        page.value(f"document.querySelector({selector!r}).click()")

    def many(self, count):
        trusts = (TRUSTED, TRUSTED, UNKNOWN, DISTRUSTED)
        return [Host(f"10.0.{i // 250}.{i % 250 + 1}", f"host-{i}", "Linux" if i % 2 else "", f"Vendor {i % 20}",
                     trust=trusts[i % 4]) for i in range(count)]

    def fits(self, page):
        """No part of the page reaches out of the window."""
        return page.value("document.documentElement.scrollWidth <= window.innerWidth")

    def test_an_empty_network(self):
        page = self.show()
        self.assertEqual(self.texts(page, ".tile strong"), ["0"] * 5)
        self.assertEqual(self.texts(page, ".empty:not([hidden])"),
                         ["No host has been seen yet."] * 2 +
                         ["No host is watched.", "Nobody has been seen on a share of this machine."])
        self.assertTrue(self.fits(page))

    def test_three_hosts(self):
        page = self.show([Host("10.0.0.10", "b", "Linux", "Acme", trust=TRUSTED), Host("10.0.0.9", "a"),
                          Host("9.0.0.1", "c", trust=DISTRUSTED)],
                         [Watched("10.0.0.9", "a", False), Watched("10.0.0.10", "b", True)])
        self.assertEqual(self.texts(page, ".tile strong"), ["3", "1", "1", "1", "2"])
        self.assertEqual(self.shown(page), ["9.0.0.1", "10.0.0.9", "10.0.0.10"])
        self.assertEqual(self.texts(page, "#trust-legend li"), ["Trusted133 %", "Unknown133 %", "Distrusted133 %"])
        self.assertEqual(self.texts(page, ".bar"), ["Acme1", "Vendor not known2"])
        self.assertEqual(self.texts(page, "#watched-rows .badge"), ["Offline", "Online"])
        self.assertNotEqual(page.value("document.getElementById('written').textContent"), "")

    def test_five_thousand_hosts(self):
        page = self.show(self.many(5000))
        self.assertEqual(self.texts(page, ".tile strong"), ["5,000", "2,500", "1,250", "1,250", "0"])
        self.assertEqual(len(self.shown(page)), 100)
        self.assertEqual(self.texts(page, "#host-more"), ["Show 500 more"])
        self.click(page, "#host-more")
        self.assertEqual(len(self.shown(page)), 600)
        self.assertEqual(self.texts(page, ".bar")[7], "13 other vendors3,250")
        self.assertTrue(self.fits(page))

    def test_columns_sort_both_ways(self):
        page = self.show([Host("10.0.0.1", "b10", vendor="x"), Host("10.0.0.2", "b9", trust=DISTRUSTED),
                          Host("10.0.0.3", "", vendor="a", trust=TRUSTED)])
        self.assertEqual(page.value("document.querySelector('#host-heads th:nth-child(2)').ariaSort"), "ascending")
        orders = {"Trust": "213", "Address": "123", "Name": "213", "Vendor": "312"}
        titles = self.texts(page, "#host-heads th")
        for title, order in orders.items():
            head = f"#host-heads th:nth-child({titles.index(title) + 1})"
            for sort, expected in (("ascending", order), ("descending", order[::-1])):
                self.click(page, head + " button")
                self.assertEqual(page.value(f"document.querySelector('{head}').ariaSort"), sort)
                self.assertEqual("".join(ip[-1] for ip in self.shown(page)), expected, f"{title} {sort}")

    def test_search_trust_and_vendor_narrow_the_table(self):
        page = self.show(self.many(40))
        page.value("const box = document.getElementById('host-search'); box.value = 'HOST-3 linux';"
                   " box.dispatchEvent(new Event('input'))")
        self.assertEqual(self.texts(page, "#host-rows td:nth-child(3)"),
                         ["host-3", "host-31", "host-33", "host-35", "host-37", "host-39"])
        self.assertEqual(self.texts(page, "#host-foot"), ["6 of 40 hosts"])
        self.click(page, "#host-chips button:nth-child(4)")
        self.assertEqual(self.texts(page, "#host-rows td:nth-child(3)"), ["host-3", "host-31", "host-35", "host-39"])
        self.click(page, ".bar:nth-child(1)")
        self.assertEqual(self.texts(page, "#host-empty:not([hidden])"), ["No host fits."])
        self.click(page, ".bar:nth-child(1)")
        self.assertEqual(len(self.shown(page)), 4)

    def test_it_is_light_or_dark_as_the_reader_likes(self):
        colors = [self.show(page=self.page(dark=dark)).value("getComputedStyle(document.body).backgroundColor")
                  for dark in (False, True)]
        self.assertEqual(colors, ["rgb(243, 245, 250)", "rgb(11, 16, 29)"])

    def test_it_fits_a_small_window(self):
        page = self.show(self.many(30), page=self.page(width=400))
        self.assertTrue(self.fits(page))

    def test_texts_of_both_kinds_are_readable(self):
        page = self.show([Host("10.0.0.1", "M\u00fcller \u20ac".encode("cp1252")), Host("10.0.0.2", "M\u00fcller \u65e5"),
                          Host("10.0.0.3", "a\u202eb".encode())])
        self.assertEqual(self.texts(page, "#host-rows td:nth-child(3)"),
                         ["M\u00fcller \u20ac", "M\u00fcller \u65e5", "a\ufffdb"])

    def test_a_host_of_no_known_trust_is_shown(self):
        page = self.show([Host("10.0.0.1", "odd", trust=9)])
        self.assertEqual(self.texts(page, "#host-rows .badge"), ["Other"])
        self.assertTrue(page.value("document.getElementById('warning').hidden"))


if __name__ == "__main__":
    unittest.main()
