"""tools/mutate: what it changes, what it leaves alone, and how it judges."""

import contextlib
import os
import subprocess
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools", "mutation"))

from includes import LEAST_SOURCES, WINDOWS_HEADER, built_here, wide_headers
from record import Record, find_again, last_entries
from source_mutations import Mutation, mutations_of
from test_program import TestProgram
from workshop import FOLDERS, Outcome, Workshop, WorkshopError


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


# A project as small as can be, with the programs that a workshop builds: tests of its own folder, and all tests.
PROJECT = {
    "CMakeLists.txt": "cmake_minimum_required(VERSION 3.25)\nproject(Vardelwatch LANGUAGES CXX)\n"
                      "add_subdirectory(tests/unit)\n",
    "tests/unit/CMakeLists.txt":
        f"foreach(folder {' '.join(FOLDERS)} all)\n"
        "    add_executable(unit_tests_${folder} test.cpp ../../foundation/engine.cpp)\n"
        "endforeach()\n"
        "target_compile_definitions(unit_tests_all PRIVATE ALL)\n",
    "tests/unit/test.cpp": """
        #include <cstdio>
        #include <cstring>
        #include <string>
        int Half(int);
        int Sign(int);
        struct Test { const char* name; bool (*passes)(); };
        const Test kTests[] = {
            {"Half.OfEven", [] { return Half(8) == 4; }},
            {"Half.OfOdd", [] { return Half(9) == 4; }},
        #ifdef ALL
            {"Sign.OfNegative", [] { return Sign(-5) == -1; }},
        #endif
        };
        int main(int count, char** words) {
            const std::string wanted = count > 1 ? std::strchr(words[1], '=') + 1 : "";
            for (const Test& test : kTests) {
                if (!wanted.empty() && (":" + wanted + ":").find(":" + std::string(test.name) + ":") == std::string::npos)
                    continue;
                std::printf("[ RUN      ] %s\\n", test.name);
                std::fflush(stdout);
                if (!test.passes()) return 1;
                std::printf("[       OK ] %s (0 ms)\\n", test.name);
            }
        }
        """,
    "foundation/engine.cpp": "static const int kUnused = 7;\nconstexpr int kHalf = 2;\n"
                             "int Half(int n) {\n    while (n < 0) ++n;\n    return n / kHalf;\n}\n"
                             "int Sign(int n) { return n < 0 ? -1 : n > 0; }\n",
}


class WorkshopTest(unittest.TestCase):
    def write(self, folder, files):
        for name, text in files.items():
            path = os.path.join(folder, name)
            os.makedirs(os.path.dirname(path), exist_ok=True)
            with open(path, "w", encoding="utf-8") as out:
                out.write(text)

    def make(self, files):
        self.folder = self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-mutate-test-"))
        self.write(os.path.join(self.folder, "root"), files)
        return self.open(files)

    def open(self, files):
        return Workshop(os.path.join(self.folder, "root"), list(files), os.path.join(self.folder, "scratch"))

    def outcomes(self, workshop, text, judge=Workshop.judge):
        """The outcomes by what the changed line says."""
        found = {}
        for mutation in mutations_of("foundation/engine.cpp", text):
            line = mutation.apply(text).split("\n")[mutation.line(text) - 1].strip()
            found[line] = judge(workshop, mutation)
        return found

    def test_the_tests_of_the_own_folder_decide_first_and_all_the_others_settle(self):
        text = PROJECT["foundation/engine.cpp"]
        workshop = self.make(PROJECT)
        workshop.prepare()
        judged = self.outcomes(workshop, text)
        self.assertEqual({line for line, outcome in judged.items() if outcome is Outcome.CAUGHT},
                         {"constexpr int kHalf = 3;", "constexpr int kHalf = 1;"})
        self.assertEqual({outcome for outcome in judged.values()}, {Outcome.CAUGHT, Outcome.UNDECIDED})
        workshop.prepare_whole()
        settled = self.outcomes(workshop, text, Workshop.settle)
        self.assertEqual({line: outcome for line, outcome in settled.items() if "kHalf" not in line}, {
            "static const int kUnused = 8;": Outcome.NO_EFFECT,
            "static const int kUnused = 6;": Outcome.NO_EFFECT,
            "while (n <= 0) ++n;": Outcome.SURVIVED,
            "while (n < 1) ++n;": Outcome.SURVIVED,
            "int Sign(int n) { return n <= 0 ? -1 : n > 0; }": Outcome.SURVIVED,
            "int Sign(int n) { return n < 1 ? -1 : n > 0; }": Outcome.SURVIVED,
            "int Sign(int n) { return n < 0 ? -2 : n > 0; }": Outcome.CAUGHT,
            "int Sign(int n) { return n < 0 ? -0 : n > 0; }": Outcome.CAUGHT,
            "int Sign(int n) { return n < 0 ? -1 : n >= 0; }": Outcome.SURVIVED,
            "int Sign(int n) { return n < 0 ? -1 : n > 1; }": Outcome.SURVIVED,
        })
        with open(os.path.join(workshop.source, "foundation", "engine.cpp"), encoding="utf-8") as source:
            self.assertEqual(source.read(), text, "the source is whole again")

    def test_a_change_that_hangs_is_caught_by_the_time_limit(self):
        text = "int Half(int n) {\n    while (n > 9) n -= 1;\n    return n / 2;\n}\nint Sign(int) { return -1; }\n"
        test = PROJECT["tests/unit/test.cpp"].replace("Half(9) == 4", "Half(12) == 4")
        workshop = self.make({**PROJECT, "foundation/engine.cpp": text, "tests/unit/test.cpp": test})
        workshop.prepare()
        self.assertEqual(workshop.judge(next(mutation for mutation in mutations_of("foundation/engine.cpp", text)
                                             if "n -= 0;" in mutation.apply(text))), Outcome.CAUGHT)

    def test_a_change_that_does_not_compile_does_not_count(self):
        text = PROJECT["foundation/engine.cpp"] + \
            "constexpr int Checked(int n) { return n == 7 ? n : throw n; }\n" + \
            "constexpr int kChecked = Checked(7);\nint use = kChecked;\n"
        workshop = self.make({**PROJECT, "foundation/engine.cpp": text})
        workshop.prepare()
        self.assertEqual(self.outcomes(workshop, text)["constexpr int kChecked = Checked(8);"], Outcome.NOT_COMPILED)

    def test_a_project_whose_tests_fail_is_refused(self):
        text = PROJECT["foundation/engine.cpp"].replace("kHalf = 2", "kHalf = 3")
        workshop = self.make({**PROJECT, "foundation/engine.cpp": text})
        with self.assertRaises(WorkshopError):
            workshop.prepare()

    def test_a_folder_that_a_cut_off_run_left_changed_is_put_right(self):
        text = PROJECT["foundation/engine.cpp"]
        workshop = self.make(PROJECT)
        workshop.prepare()
        self.write(workshop.source, {"foundation/engine.cpp": text.replace("kHalf = 2", "kHalf = 3")})
        self.assertTrue(workshop._builds("unit_tests_foundation"))
        self.open(PROJECT).prepare()  # its tests pass

    def test_its_folder_may_be_named_from_where_the_run_was_started(self):
        self.make(PROJECT)
        root = os.path.join(self.folder, "root")
        self.enterContext(contextlib.chdir(self.folder))
        Workshop(root, list(PROJECT), "scratch").prepare()

    def test_a_kept_folder_takes_up_what_the_project_says_now(self):
        self.make(PROJECT).prepare()
        files = {**PROJECT, "foundation/engine.cpp": PROJECT["foundation/engine.cpp"].replace("kHalf = 2", "kHalf = 3")}
        self.write(os.path.join(self.folder, "root"), files)
        with self.assertRaises(WorkshopError):
            self.open(files).prepare()


class TestProgramTest(unittest.TestCase):
    """Programs of tests told by what each of their runs answers."""

    OK_ONE = "[ RUN      ] A.One\n[       OK ] A.One (10 ms)\n"
    OK = OK_ONE + "[ RUN      ] A.Two\n[       OK ] A.Two (2000 ms)\n"

    def program(self, *answers):
        self.asked = []
        waiting = iter([(0, self.OK), *answers])

        def run(words, *_):
            self.asked.append(words[1:])
            return next(waiting)

        times = iter((0.0, 2.01))
        program = TestProgram("p", run)
        self.assertIsNone(program.measure(60, lambda: next(times)))
        return program

    def test_long_tests_are_told_from_the_others(self):
        program = self.program()
        self.assertEqual(program.tests(is_long=False), ["A.One"])
        self.assertEqual(program.tests(is_long=True), ["A.Two"])

    def test_quick_tests_run_first_and_a_failure_ends_it(self):
        failed = (1, "[ RUN      ] A.One\n")
        self.assertTrue(self.program(failed, failed).fail(["A.Two", "A.One"]))
        self.assertEqual(self.asked[1:], [["--gtest_filter=A.One"]] * 2)

    def test_a_test_that_fails_once_and_never_again_proves_nothing(self):
        program = self.program((1, "[ RUN      ] A.One\n"), (0, self.OK_ONE), (0, self.OK_ONE))
        self.assertFalse(program.fail(["A.One"]))

    def test_tests_that_fail_only_together_count(self):
        program = self.program((1, "[ RUN      ] A.One\n"), (0, self.OK_ONE), (1, "[ RUN      ] A.One\n"))
        self.assertTrue(program.fail(["A.One"]))

    def test_a_program_that_leaves_early_has_not_passed(self):
        self.assertTrue(self.program((0, ""), (0, ""), (0, "")).fail(["A.One"]))

    def test_a_run_past_its_limit_is_a_failure(self):
        self.assertTrue(self.program((None, "")).fail(["A.One"]))


class RecordTest(unittest.TestCase):
    MUTATIONS = [Mutation("f.cpp", at, at + 1, "9", "constant") for at in range(4)]
    SOURCES = {"f.cpp": "0123"}

    def setUp(self):
        self.path = os.path.join(self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-mutate-test-")), "record")
        outcomes = (Outcome.CAUGHT, Outcome.SURVIVED, Outcome.NOT_COMPILED)
        with Record(self.path) as record:
            for mutation, outcome in zip(self.MUTATIONS, outcomes):
                record.add(mutation, "0123", outcome, [])

    def known(self, sample=300, again=False, sources=SOURCES):
        with Record(self.path) as record:
            found = record.outcomes(self.MUTATIONS, sources, sample, again)
        return {mutation.start: outcome for mutation, outcome in found.items()}

    def test_a_run_takes_over_what_an_earlier_one_found(self):
        self.assertEqual(self.known(), {0: Outcome.CAUGHT, 1: Outcome.SURVIVED, 2: Outcome.NOT_COMPILED})

    def test_the_sample_ends_with_as_many_as_count(self):
        self.assertEqual(self.known(sample=1), {0: Outcome.CAUGHT})

    def test_survivors_may_be_judged_again(self):
        self.assertEqual(self.known(again=True), {0: Outcome.CAUGHT, 2: Outcome.NOT_COMPILED})

    def test_a_file_that_has_changed_is_judged_anew(self):
        self.assertEqual(self.known(sources={"f.cpp": "0124"}), {})

    def test_a_torn_line_is_dropped_and_harms_no_later_one(self):
        with open(self.path, "r+", encoding="utf-8") as record:
            record.truncate(len(record.read()) - 10)
        self.assertEqual(self.known(), {0: Outcome.CAUGHT, 1: Outcome.SURVIVED})
        with Record(self.path) as record:
            record.add(self.MUTATIONS[3], "0123", Outcome.CAUGHT, [])
        self.assertEqual(self.known(), {0: Outcome.CAUGHT, 1: Outcome.SURVIVED, 3: Outcome.CAUGHT})


class FindAgainTest(unittest.TestCase):
    """A change of a record in sources that have changed since."""

    ENTRY = {"change": ["f.cpp", 10, 11, "9", "0"], "line": 3, "kind": "constant", "diff": ["-int a = 8;", "+int a = 9;"]}

    def found(self, text, entry=None):
        """The line in which the change is found, or None."""
        def diff_of(mutation, source):
            line = mutation.line(source) - 1
            return ["-" + source.split("\n")[line], "+" + mutation.apply(source).split("\n")[line]]

        mutation = find_again(entry or self.ENTRY, mutations_of("f.cpp", text), {"f.cpp": text}, diff_of)
        return mutation and mutation.line(text)

    def test_a_change_is_found_where_its_line_has_moved(self):
        self.assertEqual(self.found("\n\n\n\n\n\nint a = 8;\n"), 7)
        self.assertEqual(self.found("if (b) {\n    int a = 8;\n}\n"), 2)

    def test_of_several_the_nearest_is_taken(self):
        self.assertEqual(self.found("int a = 8;\nint b;\n\nint a = 8;\nint a = 8;\n"), 4)

    def test_a_line_that_reads_otherwise_now_has_it_no_more(self):
        self.assertIsNone(self.found("int a = 7;\n"))
        self.assertIsNone(self.found("long a = 8;\n"))
        self.assertIsNone(self.found("int a = 8;\n", {**self.ENTRY, "kind": "row"}))

    def test_of_a_record_the_last_word_on_each_change_counts(self):
        path = os.path.join(self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-mutate-test-")), "record")
        with Record(path) as record:
            for at, outcome in ((0, Outcome.UNDECIDED), (1, Outcome.CAUGHT), (0, Outcome.SURVIVED)):
                record.add(Mutation("f.cpp", at, at + 1, "9", "constant"), "0123", outcome, [])
        with open(path, "a", encoding="utf-8") as torn:
            torn.write('{"change": ["f.cpp", 2')
        self.assertEqual([(entry["change"][1], entry["outcome"]) for entry in last_entries(path)],
                         [(0, "survived"), (1, "caught")])


class IncludesTest(unittest.TestCase):
    def test_what_reaches_the_windows_header_or_only_such_sources_is_not_built_here(self):
        sources = {WINDOWS_HEADER: "#include <windows.h>\n", "a/window.h": f'#include "{WINDOWS_HEADER}"\n',
                   "a/Window.cpp": '#include "a/window.h"\n#include "a/rules.h"\n#include "a/WindowRules.h"\n',
                   "a/rules.h": "", "a/WindowRules.h": "", "a/Rules.cpp": '#include "a/rules.h"\n',
                   "a/Service_win.cpp": '#include "a/service.h"\n', "a/service.h": ""}
        self.assertEqual(built_here(sources), {"a/rules.h", "a/Rules.cpp"})

    def test_a_header_is_wide_by_what_includes_it_through_others_too(self):
        sources = {f"a/{number}.cpp": '#include "a/outer.h"\n' for number in range(LEAST_SOURCES)}
        sources["a/outer.h"] = '#include "a/inner.h"\n#include <vector>\n#include "elsewhere.h"\n'
        sources["a/inner.h"] = '#include "a/outer.h"\n'  # a circle does no harm
        sources["a/few.h"] = ""
        sources["a/0.cpp"] += '#include "a/few.h"\n'
        sources["b/other.cpp"] = '#include "a/outer.h"\n'  # another folder's tests come later
        self.assertEqual(wide_headers(sources), {"a/outer.h": LEAST_SOURCES, "a/inner.h": LEAST_SOURCES})


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
                self.assertRegex(line, rf"^({'|'.join(FOLDERS)})/\w+\.(cpp|h):\d+ \((constant|comparison|row)\)$")
                self.assertNotIn("_win.", line)
                self.assertNotIn("TcDialog", line)

    def test_a_record_is_replayed_in_its_own_order_and_what_was_caught_is_left_out(self):
        with open(os.path.join(ROOT, "settings", "SettingsTable.h"), encoding="utf-8", newline="") as source:
            text = source.read()
        rule = text.index("NumberByRule(")
        changes = [change for change in mutations_of("settings/SettingsTable.h", text) if change.start > rule][:3]
        path = os.path.join(self.enterContext(tempfile.TemporaryDirectory(prefix="vardel-mutate-test-")), "record")
        with Record(path) as record:
            for change, outcome in zip(changes, (Outcome.UNDECIDED, Outcome.CAUGHT, Outcome.SURVIVED)):
                line = change.line(text) - 1
                record.add(change, text, outcome, ["-" + text.split("\n")[line],
                                                   "+" + change.apply(text).split("\n")[line]])
        listed = [line for line in self.list_changes("--replay", path).split("\n")[1:] if line.startswith("settings/")]
        self.assertEqual(listed, [f"settings/SettingsTable.h:{change.line(text)} ({change.kind})"
                                  for change in (changes[0], changes[2])])

    def test_generated_tables_are_left_out(self):
        self.assertNotIn("BlowfishTables", self.list_changes("--sample", "1000000"))


if __name__ == "__main__":
    unittest.main()
