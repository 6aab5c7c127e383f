#!/usr/bin/python3
"""Builds every form of the project, runs every check and counts them.

Steps are named by their build; with arguments only those run. Each case of a test program counts, so does each
build, each rule of the structure and each fuzz target. The last line is "N passed, M failed".
"""

import concurrent.futures
import contextlib
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import threading
import time

import check_languages
import check_structure
import run_fuzz

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "support"))

import wine_prefix

LOGS = os.path.join(ROOT, "build", "logs")
FUZZ_SECONDS = 5
# Of vardelwatch.exe, without the language modules.
PROGRAM_BYTES = 3_000_000
TEST_SECONDS = 900
BUILD_SECONDS = 3000
TAIL_LINES = 60


class Tally:
    """Counts from several threads and prints a line for each program that ran."""

    def __init__(self):
        self._guard = threading.Lock()
        self._begin = time.monotonic()
        self.passed = 0
        self.failed = 0

    def add(self, name, passed, failed, detail=""):
        with self._guard:
            self.passed += passed
            self.failed += failed
            seconds = time.monotonic() - self._begin
            verdict = "FAILED" if failed else "ok"
            print(f"[{seconds:5.0f} s] {verdict:6} {name}: {passed} passed, {failed} failed", flush=True)
            if failed and detail:
                print("\n".join("    " + line for line in detail.splitlines()[-TAIL_LINES:]), flush=True)

    def say(self, text):
        with self._guard:
            print(f"[{time.monotonic() - self._begin:5.0f} s] {text}", flush=True)


def run(words, log, timeout, **more):
    """Runs to the end with its output in `log`. Gives the exit code (None: it did not end in time) and the output."""
    os.makedirs(LOGS, exist_ok=True)
    path = os.path.join(LOGS, re.sub(r"[^\w.-]", "_", log) + ".log")
    with open(path, "wb") as out:
        try:
            code = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                  timeout=timeout, check=False, **more).returncode
        except subprocess.TimeoutExpired:
            code = None
        except OSError as error:
            out.write(f"{error}\n".encode())
            code = -1
    with open(path, encoding="utf-8", errors="replace") as out:
        text = out.read()
    return code, text if code is not None else text + f"\nstill ran after {timeout} s"


def count_gtest(report, code):
    """(passed, failed) of a GoogleTest report; a case that did not run to its end counts as failed."""
    try:
        with open(report, encoding="utf-8") as source:
            told = json.load(source)
    except (OSError, ValueError):
        return 0, 1
    cases = [case for suite in told["testsuites"] for case in suite["testsuite"]]
    failed = sum(1 for case in cases if case.get("failures") or case.get("result") != "COMPLETED")
    if code != 0 and failed == 0:
        failed = 1  # The program itself ended badly: a leak, say.
    return len(cases) - min(failed, len(cases)), failed if cases else 1


def count_unittest(text, code):
    """(passed, failed) of a run of Python's unittest, by its closing lines."""
    ran = re.search(r"^Ran (\d+) tests? in", text, re.MULTILINE)
    if not ran:
        return 0, 1
    bad = sum(int(number) for number in re.findall(r"(?:failures|errors)=(\d+)", text.rsplit("\nRan ", 1)[-1]))
    skipped = sum(int(number) for number in re.findall(r"skipped=(\d+)", text.rsplit("\nRan ", 1)[-1]))
    if code != 0 and bad == 0:
        bad = 1
    return max(int(ran.group(1)) - bad - skipped, 0), bad


def size_problem(path, limit=PROGRAM_BYTES):
    """What is wrong with a program file's size; empty where nothing is."""
    if not os.path.exists(path):
        return f"{path} is missing"
    size = os.path.getsize(path)
    return "" if size < limit else f"{path} has {size:,} bytes"


class Checks:
    def __init__(self):
        self.tally = Tally()

    # Building

    def build(self, preset, targets=()):
        """Configures and builds; counts as one check."""
        self.tally.say(f"building {preset} ...")
        code, text = run(["cmake", "--preset", preset], f"{preset}.configure", BUILD_SECONDS, cwd=ROOT)
        if code == 0:
            words = ["cmake", "--build", f"build/{preset}"]
            code, text = run(words + (["--target", *targets] if targets else []), f"{preset}.build", BUILD_SECONDS,
                             cwd=ROOT)
        self.tally.add(f"{preset} build", int(code == 0), int(code != 0), text)
        return code == 0

    # The tests that the build lists

    @staticmethod
    def listed(preset):
        told = subprocess.run(["ctest", "--test-dir", f"build/{preset}", "--show-only=json-v1"], cwd=ROOT,
                              capture_output=True, text=True, check=True).stdout
        tests = []
        for test in json.loads(told)["tests"]:
            properties = {entry["name"]: entry["value"] for entry in test.get("properties", [])}
            tests.append((test["name"], test.get("command", ["missing-" + test["name"]]), properties))
        return tests

    def run_listed(self, preset, is_wanted, workers=2):
        wanted = [test for test in self.listed(preset) if is_wanted(test[0], test[2].get("LABELS", []))]
        if not wanted:
            self.tally.add(f"{preset} tests", 0, 1, "no test is listed")
            return
        with concurrent.futures.ThreadPoolExecutor(workers) as pool:
            for done in [pool.submit(self.run_one, preset, *test) for test in wanted]:
                done.result()

    def run_one(self, preset, name, command, properties):
        environment = {**os.environ, **dict(entry.split("=", 1) for entry in properties.get("ENVIRONMENT", []))}
        with tempfile.TemporaryDirectory(prefix="vardelwatch-checks-") as folder:
            report = os.path.join(folder, "report.json")
            environment.update(GTEST_OUTPUT=f"json:{report}", TMPDIR=folder, UBSAN_OPTIONS="print_stacktrace=1",
                               TSAN_OPTIONS="halt_on_error=0:exitcode=66")
            code, text = run(command, f"{preset}.{name}", TEST_SECONDS, env=environment,
                             cwd=properties.get("WORKING_DIRECTORY") or folder)
            self.count(f"{preset} {name}", command, report, code, text)

    def count(self, name, command, report, code, text):
        if "unittest" in command:
            passed, failed = count_unittest(text, code)
            for line in re.findall(r"^.* \.\.\. skipped .*$", text, re.MULTILINE):
                self.tally.say(f"not run: {line}")
        elif os.path.exists(report) or "[==========]" in text:
            passed, failed = count_gtest(report, code)
        else:
            passed, failed = int(code == 0), int(code != 0)
        self.tally.add(name, passed, failed, text)

    # Windows programs

    def run_under_wine(self, preset):
        for name, command, _ in self.listed(preset):
            if not command[0].endswith(".exe"):
                continue
            with (wine_prefix.VirtualDisplay() as display, wine_prefix.WinePrefix(display=display.name) as wine,
                  tempfile.TemporaryDirectory() as folder):
                wine.use_virtual_desktop()
                wine.keep_desktop()
                report = os.path.join(folder, "report.json")
                environment = {**wine_prefix.environment(wine.path, display.name),
                               "GTEST_OUTPUT": "json:" + wine.windows_path(report)}
                code, text = run(["wine", *command], f"{preset}.{name}", TEST_SECONDS, env=environment, cwd=folder)
                self.count(f"{preset} {name}", command, report, code, text)

    def program_size(self, preset):
        told = size_problem(os.path.join(ROOT, "build", preset, "app", "vardelwatch.exe"))
        self.tally.add(f"{preset} vardelwatch.exe has less than {PROGRAM_BYTES:,} bytes", int(not told), int(bool(told)),
                       told)

    # Fuzzing

    def fuzz(self):
        """Each target for some seconds, from its stored corpus; then what that corpus reaches."""
        for name in run_fuzz.targets():
            with tempfile.TemporaryDirectory(prefix="vardelwatch-fuzz-") as found:
                run_told = run_fuzz.fuzz(name, FUZZ_SECONDS, found)
            self.tally.say(f"fuzz {name}: {run_told.told}")
            self.tally.add(f"fuzz {name}", int(run_told.clean), int(not run_told.clean),
                           f"{run_told.output}\n{run_told.told}")
            for coverage in run_fuzz.cover(name) if run_told.clean else []:
                enough = run_fuzz.reaches_enough(coverage)
                self.tally.add(f"fuzz {name} reaches {run_fuzz.LEAST_PERCENT} % of {coverage.source}", int(enough),
                               int(not enough), run_fuzz.told(coverage))

    # The steps

    def structure(self):
        for rule, places in check_structure.problems().items():
            self.tally.add(f"structure: {rule}", int(not places), int(bool(places)), "\n".join(places))
        for rule, places in check_languages.problems().items():
            self.tally.add(f"languages: {rule}", int(not places), int(bool(places)), "\n".join(places))

    def linux_release(self):
        # Without sanitizers the literal twins run their millions of rounds.
        if self.build("linux-release", ["all", "twin_tests"]):
            self.run_listed("linux-release", lambda name, labels: name == "twin_tests" or "python" in labels
                            or "e2e" in labels)

    def linux_asan(self):
        if self.build("linux-asan"):
            self.run_listed("linux-asan", lambda name, labels: not {"python", "e2e", "stress"} & set(labels)
                            and "stress" not in name and name != "twin_tests")

    def linux_tsan(self):
        if self.build("linux-tsan", ["stress"]):
            self.run_listed("linux-tsan", lambda name, labels: "stress" in labels or "stress" in name)

    def linux_fuzz(self):
        if self.build("linux-fuzz", ["fuzz_targets"]):
            self.fuzz()

    def windows_x64(self):
        if self.build("windows-x64"):
            self.program_size("windows-x64")
            self.run_under_wine("windows-x64")

    def windows_x86(self):
        # There is no 32-bit Wine to run it under; that it compiles and links is what is checked.
        if self.build("windows-x86", ["vardelwatch"]):
            self.program_size("windows-x86")

    # The end-to-end tests of linux-release use the Windows program too, so that is built before.
    STEPS = {"structure": structure, "linux-asan": linux_asan, "windows-x64": windows_x64,
             "windows-x86": windows_x86, "linux-tsan": linux_tsan, "linux-fuzz": linux_fuzz,
             "linux-release": linux_release}


def main(arguments):
    unknown = [name for name in arguments if name not in Checks.STEPS]
    if unknown:
        print(f"no such step: {' '.join(unknown)}; there are: {' '.join(Checks.STEPS)}", file=sys.stderr)
        return 2
    shutil.rmtree(LOGS, ignore_errors=True)
    checks = Checks()
    for name, step in Checks.STEPS.items():
        if arguments and name not in arguments:
            continue
        try:
            step(checks)
        except Exception as error:  # A step that breaks must not hide the count of the others.
            checks.tally.add(f"step {name}", 0, 1, f"{type(error).__name__}: {error}")
    tally = checks.tally
    print(f"{tally.passed} passed, {tally.failed} failed", flush=True)
    return 1 if tally.failed or not tally.passed else 0


if __name__ == "__main__":
    with contextlib.suppress(KeyboardInterrupt):
        sys.exit(main(sys.argv[1:]))
    sys.exit(130)
