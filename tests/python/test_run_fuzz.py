"""What the runner of the fuzz targets makes of a run, and of what a corpus reaches."""

import os
import sys
import unittest
from unittest import mock

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
sys.path.insert(0, os.path.join(ROOT, "tools"))

import run_fuzz

CLEAN = """#81\tINITED cov: 2180 ft: 6100 corp: 80/32Kb exec/s: 0 rss: 40Mb
#9000\tDONE   cov: 2201 ft: 6204 corp: 95/40Kb lim: 4096 exec/s: 900 rss: 99Mb
Done 9000 runs in 10 second(s)
stat::number_of_executed_units: 9000
"""
CRASH = "==1==ERROR: AddressSanitizer: heap-buffer-overflow\nstat::number_of_executed_units: 17\n"


class RunTest(unittest.TestCase):
    def judge(self, *words):
        with mock.patch.object(run_fuzz, "corpus_of", lambda name: os.path.dirname(__file__)):
            return run_fuzz.judge("ip_handler", *words)

    def test_a_clean_run_tells_executions_and_edges(self):
        run = self.judge(0, CLEAN, [])
        self.assertTrue(run.clean)
        self.assertIn("9000 executions, 2201 edges", run.told)

    def test_a_finding_fails_and_tells_where_its_input_is(self):
        run = self.judge(1, CRASH, ["ip_handler-crash-0a"])
        self.assertFalse(run.clean)
        self.assertIn("after 17 executions", run.told)
        self.assertIn("kept as build/findings/ip_handler-crash-0a", run.told)
        self.assertIn("fuzz_ip_handler build/findings/ip_handler-crash-0a", run.told)

    def test_a_run_that_does_not_end_fails(self):
        run = self.judge(None, "#300\tpulse cov: 1 ft: 1\n", [])
        self.assertFalse(run.clean)
        self.assertIn("did not end in time after 300 executions", run.told)

    def test_a_target_that_can_not_start_fails(self):
        self.assertFalse(self.judge(127, "", []).clean)


class CoverageTest(unittest.TestCase):
    def test_ninety_five_percent_are_enough(self):
        self.assertTrue(run_fuzz.reaches_enough(run_fuzz.Coverage("a.cpp", 95, 100, [])))
        self.assertFalse(run_fuzz.reaches_enough(run_fuzz.Coverage("a.cpp", 94, 100, [])))

    def test_what_is_missed_is_told_by_line(self):
        self.assertEqual(run_fuzz.told(run_fuzz.Coverage("a.cpp", 98, 100, [7, 9])),
                         "a.cpp: 98 of 100 lines, not lines 7, 9")


if __name__ == "__main__":
    unittest.main()
