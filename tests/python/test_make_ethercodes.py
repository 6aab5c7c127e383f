"""The vendor list: complete, well-formed, readable in every 8-bit code page."""

import importlib.machinery
import importlib.util
import os
import re
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
TOOL = os.path.join(ROOT, "tools", "make_ethercodes")
REGISTRY = "/usr/share/ieee-data/oui.txt"
sys.path.insert(0, os.path.join(ROOT, "tools", "demo_lan"))

import lan_description


def load_tool():
    loader = importlib.machinery.SourceFileLoader("make_ethercodes", TOOL)
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader(loader.name, loader))
    is_writing_bytecode, sys.dont_write_bytecode = sys.dont_write_bytecode, True
    try:
        loader.exec_module(module)
    finally:
        sys.dont_write_bytecode = is_writing_bytecode
    return module


def run_tool(*words):
    return subprocess.run([TOOL, *words], capture_output=True, text=True, timeout=60, check=False)


class MakeEthercodesTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = folder.name
        self.out = os.path.join(self.folder, "ethercodes.dat")

    def made(self, *words):
        done = run_tool("--out", self.out, *words)
        self.assertEqual(done.returncode, 0, done.stderr)
        with open(self.out, "rb") as source:
            return source.read(), done.stdout

    def made_from(self, text, name="oui.csv"):
        source = os.path.join(self.folder, name)
        with open(source, "w", encoding="utf-8", newline="") as out:
            out.write(text)
        return self.made("--source", source)[0]

    def test_holds_every_prefix_of_the_registry_and_prints_how_many(self):
        with open(REGISTRY, encoding="utf-8") as source:
            rows = re.findall(r"^([0-9A-F]{6}) +\(base 16\)", source.read(), re.MULTILINE)
        content, said = self.made()
        prefixes = [line.split(b"\t")[0].decode("ascii") for line in content.splitlines()]
        self.assertGreater(len(rows), 30000)
        self.assertEqual(prefixes, sorted({":".join((row[0:2], row[2:4], row[4:6])).lower() for row in rows}))
        self.assertIn(f"{len(prefixes)} prefixes from {len(rows)} rows", said)

    def test_both_forms_of_the_registry_give_the_same_prefixes(self):
        from_csv, _ = self.made("--source", "/usr/share/ieee-data/oui.csv")
        from_text, _ = self.made("--source", REGISTRY)
        first_columns = [re.findall(rb"^[^\t]+", content, re.MULTILINE) for content in (from_csv, from_text)]
        self.assertEqual(*first_columns)

    def test_every_line_is_well_formed_and_the_last_is_closed(self):
        content, _ = self.made()
        self.assertTrue(content.endswith(b"\n"))
        line = re.compile(
            rb"[0-9a-f]{2}:[0-9a-f]{2}:[0-9a-f]{2}\t[\x21-\x7e](?:[\x20-\x7e]{0,252}[\x21-\x7e])?"
        )
        self.assertEqual([each for each in content[:-1].split(b"\n") if not line.fullmatch(each)], [])

    def test_holds_the_vendors_of_the_demo_lan_but_no_random_card(self):
        content, _ = self.made()
        known = {line.split(b"\t")[0].decode("ascii") for line in content.splitlines()}
        self.assertEqual(
            {host.ip for host in lan_description.HOSTS if host.has_vendor != (host.prefix in known)}, set()
        )

    def test_writes_names_in_ascii(self):
        vendor_text = load_tool().vendor_text
        for name, text in (
            ("Krüger & Kjær Meßtechnik", "Kruger & Kjaer Messtechnik"),
            ("RØDE", "RODE"),
            ("A.Ş. İletişim ığ", "A.S. Iletisim ig"),
            ("One\u00a0 Two\t\u200bThree ", "One Two Three"),
            ("杭州（HangZhou Delan Co.,Ltd）", "HangZhou Delan Co.,Ltd"),
            ("Int’l – X®", "Int'l - X(R)"),
            ("Завод Łódź", "Zavod Lodz"),
            ("杭州", "Vendor named in another script"),
            ("x" * 400, "x" * 254),
        ):
            self.assertEqual(vendor_text(name), text)

    def test_the_first_row_of_a_prefix_wins_and_other_registries_are_left_out(self):
        content = self.made_from(
            "Registry,Assignment,Organization Name,Organization Address\r\n"
            "MA-L,08AB01,\"Two, Names\tInc\",\"a\r\nb\"\r\nMA-L,08AB01,Later,x\r\n"
            "MA-M,00550DA,Medium,x\r\nMA-L,00000C,Old,x\r\n"
        )
        self.assertEqual(content, b"00:00:0c\tOld\n08:ab:01\tTwo, Names Inc\n")

    def test_a_missing_or_empty_registry_fails_with_a_message_and_leaves_the_list(self):
        self.made()
        before = os.stat(self.out).st_mtime_ns
        empty = os.path.join(self.folder, "empty.txt")
        with open(empty, "w", encoding="utf-8"):
            pass
        for source in (os.path.join(self.folder, "missing"), empty):
            done = run_tool("--out", self.out, "--source", source)
            self.assertEqual(done.returncode, 1)
            self.assertIn("make_ethercodes", done.stderr)
        self.assertEqual(os.stat(self.out).st_mtime_ns, before)
        self.assertEqual(sorted(os.listdir(self.folder)), ["empty.txt", "ethercodes.dat"])


if __name__ == "__main__":
    unittest.main()
