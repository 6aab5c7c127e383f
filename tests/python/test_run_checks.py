"""The counting behind ./test: what passed, what failed, and that nothing which didn't run counts as passed."""

import json
import os
import sys
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))

import check_structure
import run_checks

PASSED = {"name": "a", "status": "RUN", "result": "COMPLETED"}
FAILED = {"name": "b", "status": "RUN", "result": "COMPLETED", "failures": [{"failure": "x"}]}
PASSED_BY = {"name": "c", "status": "RUN", "result": "SKIPPED"}


class GoogleTestCountTest(unittest.TestCase):
    def count(self, cases, code):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "report.json")
            with open(path, "w", encoding="utf-8") as out:
                json.dump({"testsuites": [{"testsuite": cases}]}, out)
            return run_checks.count_gtest(path, code)

    def test_counts_each_case(self):
        self.assertEqual(self.count([PASSED, PASSED], 0), (2, 0))
        self.assertEqual(self.count([PASSED, FAILED], 1), (1, 1))

    def test_a_case_that_was_passed_by_has_failed(self):
        self.assertEqual(self.count([PASSED, PASSED_BY], 0), (1, 1))

    def test_a_program_that_ends_badly_has_failed(self):
        self.assertEqual(self.count([PASSED, PASSED], 23), (1, 1))

    def test_a_program_that_runs_nothing_has_failed(self):
        self.assertEqual(self.count([], 0), (0, 1))

    def test_a_program_that_crashes_leaves_no_report(self):
        self.assertEqual(run_checks.count_gtest("/nowhere/report.json", -11), (0, 1))


class UnittestCountTest(unittest.TestCase):
    def test_counts_by_the_closing_lines(self):
        self.assertEqual(run_checks.count_unittest("Ran 7 tests in 1.2s\n\nOK\n", 0), (7, 0))
        self.assertEqual(run_checks.count_unittest("Ran 7 tests in 1.2s\n\nFAILED (failures=1, errors=2)\n", 1), (4, 3))

    def test_what_was_skipped_has_not_passed(self):
        self.assertEqual(run_checks.count_unittest("Ran 7 tests in 1.2s\n\nOK (skipped=3)\n", 0), (4, 0))

    def test_a_program_without_closing_lines_has_failed(self):
        self.assertEqual(run_checks.count_unittest("Traceback ...\n", 1), (0, 1))

    def test_a_program_that_ends_badly_has_failed(self):
        self.assertEqual(run_checks.count_unittest("Ran 2 tests in 1.2s\n\nOK\n", 1), (1, 1))


class RunTest(unittest.TestCase):
    def test_a_program_that_does_not_end_is_ended_and_tells_so(self):
        code, text = run_checks.run(["sleep", "60"], "test_run_checks.sleep", 0.2)
        self.assertIsNone(code)
        self.assertIn("still ran", text)

    def test_a_missing_program_is_a_failure(self):
        code, _ = run_checks.run(["/nowhere/program"], "test_run_checks.missing", 5)
        self.assertEqual(code, -1)


class ProgramSizeTest(unittest.TestCase):
    def test_is_right_below_the_limit_alone(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "program.exe")
            with open(path, "wb") as out:
                out.write(bytes(1000))
            self.assertEqual(run_checks.size_problem(path, 1001), "")
            self.assertIn("1,000 bytes", run_checks.size_problem(path, 1000))

    def test_a_missing_program_is_a_failure(self):
        self.assertIn("missing", run_checks.size_problem("/nowhere/program.exe"))


class StructureRulesTest(unittest.TestCase):
    def places(self, check, **files):
        """What `check` finds in a tree of these files."""
        with tempfile.TemporaryDirectory() as folder:
            names = []
            for name, text in files.items():
                path = name.replace("__", "/").replace("_cpp", ".cpp").replace("_h", ".h").replace("_txt", ".txt")
                os.makedirs(os.path.join(folder, os.path.dirname(path)), exist_ok=True)
                with open(os.path.join(folder, path), "w", encoding="utf-8") as out:
                    out.write(text)
                names.append(path)
            before, check_structure.ROOT = check_structure.ROOT, folder
            try:
                return check(names)
            finally:
                check_structure.ROOT = before

    def test_finds_the_systems_header_outside_its_places(self):
        self.assertEqual(self.places(check_structure.system_outside_its_places,
                                     capture__Loop_cpp="#include <windows.h>\n",
                                     platform__Clock_win_cpp='#include "platform/WindowsApi.h"\n'), ["capture/Loop.cpp"])

    def test_finds_an_include_that_points_up(self):
        self.assertEqual(self.places(check_structure.upward_includes,
                                     capture__Loop_cpp='#include "frame/Timer.h"\n#include "platform/Types.h"\n'),
                         ["capture/Loop.cpp: frame/Timer.h"])

    def test_finds_a_circle_of_headers(self):
        self.assertEqual(self.places(check_structure.include_circles,
                                     capture__A_h='#include "capture/B.h"\n', capture__B_h='#include "capture/A.h"\n'),
                         ["capture/A.h -> capture/B.h -> capture/A.h"])

    def test_finds_a_source_that_nothing_builds(self):
        self.assertEqual(self.places(check_structure.sources_left_out_of_the_build,
                                     capture__CMakeLists_txt="vardel_folder(capture\n    A.cpp)\n",
                                     capture__A_cpp="", capture__B_cpp=""), ["capture/B.cpp"])


if __name__ == "__main__":
    unittest.main()
