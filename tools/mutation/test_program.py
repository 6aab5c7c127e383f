"""A program of unit tests: what each test costs when nothing is changed, and whether some fail after a change."""

import re
import signal

QUICK_SECONDS = 0.1
LONG_SECONDS = 1.5

PASSED = re.compile(r"^\[ +OK \] (\S+) \((\d+) ms\)", re.MULTILINE)
BEGUN = re.compile(r"^\[ RUN +\] (\S+)", re.MULTILINE)


class TestProgram:
    """`run` starts a command within limits in seconds: run(words, wall, cpu) gives an exit code and the output."""

    def __init__(self, path, run):
        self.path = path
        self.run = run
        self.seconds = {}  # of the processor, by test, in the program's order

    def measure(self, wall, used_cpu):
        """Runs all tests of the unchanged program; `used_cpu` tells the children's time until now.

        Returns what a failed run printed, or None.
        """
        for _ in range(2):  # a busy machine may spoil a run
            before = used_cpu()
            code, output = self.run([self.path], wall, wall)
            cpu = used_cpu() - before
            passed = [(name, int(ms) / 1000) for name, ms in PASSED.findall(output)]
            if code == 0 and passed:
                share = min(1.0, cpu / max(0.001, sum(seconds for _, seconds in passed)))
                self.seconds = {name: seconds * share for name, seconds in passed}
                return None
        return output or "no test ran"

    def tests(self, is_long):
        return [name for name, seconds in self.seconds.items() if (seconds >= LONG_SECONDS) == is_long]

    def fail(self, names):
        """Whether one of these tests fails, the quick ones tried first."""
        quick = [name for name in names if self.seconds[name] < QUICK_SECONDS]
        others = [name for name in names if self.seconds[name] >= QUICK_SECONDS]
        return any(self._fail_at_once(some) for some in (quick, others) if some)

    def _fail_at_once(self, names):
        failed, output = self._try(names)
        if failed is None:
            return False
        if failed == "hangs":
            return True
        # A test that fails on a busy machine by chance proves nothing: it must fail again.
        begun = BEGUN.findall(output)
        if begun and begun[-1] in self.seconds and self._try([begun[-1]])[0]:
            return True
        return self._try(names)[0] is not None

    def _try(self, names):
        """(None, "fails" or "hangs"; the output)"""
        cpu = sum(self.seconds[name] for name in names)
        code, output = self.run([self.path, "--gtest_filter=" + ":".join(names)], 60 + 60 * cpu, 5 + 10 * cpu)
        if code is None or code == -signal.SIGXCPU:
            return "hangs", output
        # A program that leaves early with a good code has not passed.
        return (None if code == 0 and len(PASSED.findall(output)) == len(names) else "fails"), output
