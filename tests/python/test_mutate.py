"""tools/mutate: what it changes, what it leaves alone, and how it judges."""

import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools", "mutation"))

from source_mutations import mutations_of
from workshop import Outcome, Workshop, WorkshopError


def changed(text, kind=None):
    """All texts that one change makes of `text`."""
    return [mutation.apply(text) for mutation in mutations_of("f.cpp", text) if kind in (None, mutation.kind)]


class ConstantTest(unittest.TestCase):
    def test_numbers_get_their_neighbours_in_their_own_notation(self):
        for number, others in (("7", {"8", "6"}), ("0", {"1"}), ("10u", {"11u", "9u"}), ("0xff", {"0x100", "0xfe"}),
                               ("0x0F", {"0x10", "0x0e"}), ("0b10", {"0b11"}), ("017", {"16", "14"}),
                               ("1'048'576", {"1048577", "1048575"}), ("30000ull", {"30001ull", "29999ull"}),
                               ("0.5", {"1.5"}), ("2e3f", {"2001.0f"})):
            with self.subTest(number):
                self.assertEqual(set(changed(f"int a = {number};")), {f"int a = {other};" for other in others})

    def test_other_constants_get_another_value(self):
        for constant, other in (("true", "false"), ("false", "true"), ('"text"', '"~text"'), ('""', '"~"'),
                                (r'"a\"b"', r'"~a\"b"'), ("'a'", "'b'"), (r"'\0'", r"'\1'"), (r"'\n'", "'n'"),
                                (r"'\\'", "'/'"), ("'~'", "'}'"), ("'&'", "'%'")):
            with self.subTest(constant):
                self.assertEqual(changed(f"auto a = {constant};"), [f"auto a = {other};"])

    def test_a_pure_virtual_function_stays_one(self):
        self.assertEqual(changed("virtual void Run() = 0;\nvirtual int Size() const = 0;"), [])

    def test_names_with_digits_are_no_constants(self):
        self.assertEqual(changed("u8 kDwlb9 = Big16(x1);"), [])


class ComparisonTest(unittest.TestCase):
    def test_each_comparison_becomes_its_neighbour(self):
        for sign, other in (("<", "<="), ("<=", "<"), (">", ">="), (">=", ">"), ("==", "!="), ("!=", "=="),
                            ("&&", "||"), ("||", "&&")):
            with self.subTest(sign):
                self.assertEqual(changed(f"if (a {sign} b) f();"), [f"if (a {other} b) f();"])

    def test_a_comparison_may_end_a_line(self):
        self.assertEqual(changed("return a &&\n    b;"), ["return a ||\n    b;"])

    def test_templates_references_shifts_and_operators_are_none(self):
        for text in ("std::vector<std::pair<A, B>> v;", "template <class T>\nvoid F(T&& t);", "A a(b << c);",
                     "bool operator==(const A& other) const;", "bool operator <(B b);", "p->q();", "auto r = a <=> b;"):
            with self.subTest(text):
                self.assertEqual(changed(text), [])


class RowTest(unittest.TestCase):
    def rows(self, text):
        return [[line.rstrip() for line in one.split("\n")] for one in changed(text, "row")]

    def test_each_row_of_a_table_can_go_and_lines_stay_where_they_are(self):
        table = "constexpr Row kRows[] = {\n    {a, b},\n    {c, d},\n};"
        self.assertEqual(self.rows(table), [["constexpr Row kRows[] = {", "", "    {c, d},", "};"],
                                            ["constexpr Row kRows[] = {", "    {a, b},", "", "};"]])

    def test_a_last_row_takes_the_comma_before_it_along(self):
        self.assertEqual(self.rows("constexpr E kOrder[2] = {E::A, E::B};"),
                         [["constexpr E kOrder[2] = {      E::B};"], ["constexpr E kOrder[2] = {E::A      };"]])

    def test_rows_may_stand_in_inner_braces_or_be_calls(self):
        self.assertEqual(self.rows("constexpr std::array k = {{{a, b}, {c, d}}};"),
                         [["constexpr std::array k = {{        {c, d}}};"], ["constexpr std::array k = {{{a, b}        }};"]])
        self.assertEqual(len(self.rows("constexpr std::array k = {\n    Text(a, b),\n    F<c>(d),\n};")), 2)

    def test_what_is_no_table_or_has_one_row_stays_whole(self):
        for text in ("Point p = {a, b};", "f({a, b});", "constexpr Row kRow[] = {\n    {a, b},\n};",
                     "class A { int b, c; };"):
            with self.subTest(text):
                self.assertEqual(self.rows(text), [])

    def test_numbers_of_a_table_change_as_constants(self):
        self.assertEqual(self.rows("constexpr int k[] = {x, 7};"), [["constexpr int k[] = {   7};"]])
        self.assertEqual(changed("constexpr int k[] = {x, 7};", "constant"),
                         ["constexpr int k[] = {x, 6};", "constexpr int k[] = {x, 8};"])


class SilentPlacesTest(unittest.TestCase):
    def test_comments_directives_assertions_and_traces_stay_as_they_are(self):
        for text in ("// a < 7 && true\n", "/* 7\n == 8 */", '#include "a7.h"\n', "#define SIZE \\\n    7\n#if 1 == 2\n",
                     "static_assert(sizeof(A) == 52 && f(7));", 'TcTrace::Trace("A", f(7), "begin", 1 == 2);',
                     'Trace(component, "Connecting...");', "alignas(64) char c;", 'extern "C" void f();'):
            with self.subTest(text):
                self.assertEqual(changed(text), [])

    def test_what_stands_beside_them_is_changed(self):
        self.assertEqual(changed("// 7\nint a = 0; // 8\n"), ["// 7\nint a = 1; // 8\n"])
        self.assertEqual(changed('Trace("x"); f("y");'), ['Trace("x"); f("~y");'])
        self.assertEqual(changed('const char* u = "http://a"; // "b"'), ['const char* u = "~http://a"; // "b"'])
        self.assertEqual(changed('auto r = R"(a " 7)"; f(0);'), ['auto r = R"(a " 7)"; f(1);'])

    def test_no_change_moves_a_line(self):
        for folder in ("capture", "foundation", "settings"):
            for name in sorted(os.listdir(os.path.join(ROOT, folder))):
                if not name.endswith((".cpp", ".h")):
                    continue
                with open(os.path.join(ROOT, folder, name), encoding="utf-8", newline="") as source:
                    text = source.read()
                for mutation in mutations_of(name, text):
                    other = mutation.apply(text)
                    self.assertNotEqual(other, text)
                    self.assertEqual(other.count("\n"), text.count("\n"))


# A project as small as can be, with the one target that a workshop builds.
PROJECT = {
    "CMakeLists.txt": "cmake_minimum_required(VERSION 3.25)\nproject(Vardelwatch LANGUAGES CXX)\n"
                      "add_subdirectory(tests/unit)\n",
    "tests/unit/CMakeLists.txt": "add_executable(unit_tests test.cpp ../../engine.cpp)\n"
                                 "target_include_directories(unit_tests PRIVATE ../..)\n",
    "tests/unit/test.cpp": "int Half(int);\nint main() { return Half(8) == 4 && Half(9) == 4 ? 0 : 1; }\n",
    "engine.cpp": "static const int kUnused = 7;\nconstexpr int kHalf = 2;\n"
                  "int Half(int n) {\n    while (n < 0) ++n;\n    return n / kHalf;\n}\n",
}


class WorkshopTest(unittest.TestCase):
    def make(self, files):
        folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-mutate-test-"))
        root = os.path.join(folder, "root")
        for name, text in files.items():
            path = os.path.join(root, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as out:
                out.write(text)
        return Workshop(root, list(files), os.path.join(folder, "scratch"))

    def outcomes(self, workshop, text):
        """The outcomes by what the changed line says."""
        found = {}
        for mutation in mutations_of("engine.cpp", text):
            line = mutation.apply(text).split("\n")[mutation.line(text) - 1].strip()
            found[line] = workshop.judge(mutation)
        return found

    def test_changes_are_caught_survive_have_no_effect_or_do_not_compile(self):
        text = PROJECT["engine.cpp"]
        workshop = self.make(PROJECT)
        workshop.prepare()
        self.assertEqual(self.outcomes(workshop, text), {
            "static const int kUnused = 8;": Outcome.NO_EFFECT,
            "static const int kUnused = 6;": Outcome.NO_EFFECT,
            "constexpr int kHalf = 3;": Outcome.CAUGHT,
            "constexpr int kHalf = 1;": Outcome.CAUGHT,
            "while (n <= 0) ++n;": Outcome.SURVIVED,
            "while (n < 1) ++n;": Outcome.SURVIVED,
        })
        with open(os.path.join(workshop.source, "engine.cpp"), encoding="utf-8") as source:
            self.assertEqual(source.read(), text, "the source is whole again")

    def test_a_change_that_hangs_is_caught_by_the_time_limit(self):
        text = "int Half(int n) {\n    while (n < 0) n += 1;\n    return n / 2;\n}\n"
        test = "int Half(int);\nint main() { return Half(-3); }\n"
        workshop = self.make({**PROJECT, "engine.cpp": text, "tests/unit/test.cpp": test})
        workshop.prepare()
        workshop.time_limit = 3
        self.assertEqual(self.outcomes(workshop, text)["while (n < 0) n += 0;"], Outcome.CAUGHT)

    def test_a_change_that_does_not_compile_does_not_count(self):
        text = PROJECT["engine.cpp"] + "constexpr int Checked(int n) { return n == 7 ? n : throw n; }\n" + \
            "constexpr int kChecked = Checked(7);\nint use = kChecked;\n"
        workshop = self.make({**PROJECT, "engine.cpp": text})
        workshop.prepare()
        self.assertEqual(self.outcomes(workshop, text)["constexpr int kChecked = Checked(8);"], Outcome.NOT_COMPILED)

    def test_a_project_whose_tests_fail_is_refused(self):
        workshop = self.make({**PROJECT, "engine.cpp": PROJECT["engine.cpp"].replace("kHalf = 2", "kHalf = 3")})
        with self.assertRaises(WorkshopError):
            workshop.prepare()


class CommandTest(unittest.TestCase):
    def list_changes(self, *words):
        return subprocess.run([os.path.join(ROOT, "tools", "mutate"), "--list", *words], capture_output=True, text=True,
                              timeout=60, check=True).stdout

    def test_the_seed_draws_the_sample(self):
        first = self.list_changes("--sample", "20", "--seed", "5")
        self.assertEqual(first, self.list_changes("--sample", "20", "--seed", "5"))
        self.assertNotEqual(first, self.list_changes("--sample", "20", "--seed", "6"))

    def test_only_engine_files_of_this_system_are_changed(self):
        for line in self.list_changes("--sample", "1000000").split("\n")[1:]:
            if line and not line.startswith(" "):
                self.assertRegex(line, r"^(capture|foundation|settings|watchers)/\w+\.(cpp|h):\d+ \((constant|comparison|row)\)$")
                self.assertNotIn("_win.", line)


if __name__ == "__main__":
    unittest.main()
