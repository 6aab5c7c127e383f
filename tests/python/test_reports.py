"""The shipped report templates: what they hold of a table, and the seal of the page."""

import csv
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import report_files
from report_files import DISTRUSTED, TRUSTED, UNKNOWN, Access, Host, Watched

SEAL = os.path.join(ROOT, "tools", "seal_page")
HOSTS = [Host("10.0.0.1", "router", "Linux", "Acme, Inc.", "00:11:22:33:44:01", TRUSTED),
         Host("10.0.0.66", "stranger", "", "", "00:11:22:33:44:66", DISTRUSTED),
         Host("10.0.0.7", "", "Windows 10", "Bcme", "00:11:22:33:44:07", UNKNOWN)]
WATCHED = [Watched("10.0.0.1", "router", True), Watched("10.0.0.9", "printer", False)]
ACCESSES = [Access("10.0.0.7", "music", "ann"), Access("10.0.0.8", "IPC$", "")]


class ReportsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="vardelwatch-reports-")
        self.addCleanup(folder.cleanup)
        self.folder = folder.name

    def report(self, template, *table):
        return report_files.read(report_files.write(self.folder, template, *table)).decode("latin-1")

    def rows(self, *table):
        return list(csv.reader(self.report("hosts.csv.vdlt", *table).splitlines()))

    def test_every_template_uses_all_its_blocks_up(self):
        for template in os.listdir(report_files.TEMPLATES):
            if not template.endswith(".vdlt"):
                continue
            for table in ((), (HOSTS, WATCHED, ACCESSES)):
                self.assertNotIn("VDL_", self.report(template, *table), template)

    def test_hosts_are_rows_with_their_trust(self):
        self.assertEqual(self.rows(HOSTS), [
            ["Trust", "IP", "MAC", "Vendor", "OS", "Name"],
            ["trusted", "10.0.0.1", "00:11:22:33:44:01", " Acme, Inc.", " Linux", " router"],
            ["distrusted", "10.0.0.66", "00:11:22:33:44:66", "  ", "  ", " stranger"],
            ["unknown", "10.0.0.7", "00:11:22:33:44:07", " Bcme", " Windows 10", "  "]])

    def test_an_empty_table_is_its_heading(self):
        self.assertEqual(self.rows(), [["Trust", "IP", "MAC", "Vendor", "OS", "Name"]])

    def test_no_name_is_a_formula(self):
        names = ["=1+1", "+1", "-1", "@SUM(A1)", "=cmd|'/c calc'!A1"]
        rows = self.rows([Host(f"10.0.0.{i}", name, name, name) for i, name in enumerate(names)])
        for row, name in zip(rows[1:], names):
            self.assertEqual(row[3:], [" " + name] * 3)

    def test_the_status_tells_counts_and_lists(self):
        status = self.report("status.txt.vdlt", HOSTS, WATCHED, ACCESSES)
        for text in ("Hosts            3\n", "  trusted        1\n", "  distrusted     1\n", "  unknown        1\n",
                     "Watched hosts    2\n", "Offline  10.0.0.9  printer\n", "Online  10.0.0.1  router\n",
                     "00:11:22:33:44:66  10.0.0.66  stranger /   /  \n", "10.0.0.7  music  ann\n",
                     "10.0.0.8  IPC$   \n"):
            self.assertIn(text, status)

    def test_the_page_is_sealed(self):
        page = os.path.join(report_files.TEMPLATES, "dashboard.html.vdlt")
        self.assertEqual(subprocess.run([SEAL, "--check", page], check=False).returncode, 0)

    def test_the_seal_of_a_changed_page_does_not_fit(self):
        page = report_files.read(os.path.join(report_files.TEMPLATES, "dashboard.html.vdlt"))
        changed = os.path.join(self.folder, "changed")
        for old, new in ((b'"use strict";', b'"use  strict";'), (b"<style>", b"<style> ")):
            with open(changed, "wb") as target:
                target.write(page.replace(old, new, 1))
            self.assertEqual(subprocess.run([SEAL, "--check", changed], check=False).returncode, 1)
            subprocess.run([SEAL, changed], check=True)
            self.assertEqual(subprocess.run([SEAL, "--check", changed], check=False).returncode, 0)

    def test_nothing_of_the_page_stands_behind_its_texts(self):
        page = report_files.read(os.path.join(report_files.TEMPLATES, "dashboard.html.vdlt")).decode("ascii")
        markup, texts = page.split("<plaintext>")
        for tag in ("NAME", "OS", "VENDOR"):
            self.assertNotIn(f"%VDL_HOST_{tag}%", markup)
            self.assertIn(f"%VDL_HOST_{tag}%", texts)
        self.assertNotIn("%VDL_SHARE", markup)


if __name__ == "__main__":
    unittest.main()
