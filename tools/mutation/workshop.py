"""A scratch copy of the project in which one source at a time is changed, rebuilt and tested."""

import enum
import filecmp
import hashlib
import math
import os
import resource
import shutil
import signal
import subprocess

from test_program import TestProgram

MEMORY_BYTES = 8 << 30
FOLDERS = ("capture", "foundation", "frame", "settings", "toolkit", "views", "watchers")


class Outcome(enum.Enum):
    CAUGHT = "caught"
    SURVIVED = "survived"
    NOT_COMPILED = "not compiled"
    NO_EFFECT = "no effect"  # the very same program came out
    UNDECIDED = "undecided"  # the tests of its own folder pass; the others have not been asked


class WorkshopError(Exception):
    """The unchanged project can't be built or its tests fail."""


class Snapshot:
    """A folder as it stands, kept beside it; puts back what has changed since, times included."""

    def __init__(self, folder):
        self.folder = folder
        self.kept = folder + ".kept"

    def take(self):
        shutil.rmtree(self.kept, ignore_errors=True)
        shutil.copytree(self.folder, self.kept + ".new", symlinks=True, dirs_exist_ok=True,
                        ignore=shutil.ignore_patterns("*.gch"))
        os.rename(self.kept + ".new", self.kept)

    @staticmethod
    def _files(folder):
        # Precompiled headers are large and of the system's alone: no change of the project reaches them.
        return {os.path.relpath(os.path.join(place, name), folder)
                for place, _, names in os.walk(folder) for name in names if not name.endswith(".gch")}

    @staticmethod
    def _mark(path):
        status = os.lstat(path)
        return status.st_mtime_ns, status.st_size

    def put_back(self):
        if not os.path.isdir(self.kept):
            return
        kept = self._files(self.kept)
        for name in self._files(self.folder) - kept:
            os.remove(os.path.join(self.folder, name))
        for name in kept:
            source, target = os.path.join(self.kept, name), os.path.join(self.folder, name)
            if not os.path.lexists(target) or self._mark(source) != self._mark(target):
                shutil.copy2(source, target, follow_symlinks=False)


def linker_option():
    for name in ("mold", "lld"):
        if shutil.which(name):
            return [f"-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld={name}"]
    return []


def used_cpu():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


class Workshop:
    """Works in `folder`, which may have been a workshop's before; `files` are copied from `root`."""

    def __init__(self, root, files, folder, has_sanitizers=False):
        folder = os.path.abspath(folder)  # what is run here works in a folder of its own
        self.source = os.path.join(folder, "source")
        self.build_folder = os.path.join(folder, "build")
        self.temporary = os.path.join(folder, "tmp")
        self.has_sanitizers = has_sanitizers
        for place in (self.source, self.build_folder, self.temporary):
            os.makedirs(place, exist_ok=True)
        self.snapshots = [Snapshot(self.source), Snapshot(self.build_folder)]
        self._put_back()  # an earlier run may have been cut off
        self._copy(root, files)
        # The tests have no optimiser in every build. A little of it for the engine costs less than the long tests
        # gain, and shows changes that mean nothing.
        self.options = ["-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O1 -g0 -w", "-DVARDEL_FOLDER_TESTS=ON",
                        "-DVARDEL_SANITIZE=" + ("address,undefined" if has_sanitizers else ""), *linker_option()]
        self.environment = dict(os.environ, TMPDIR=self.temporary, GTEST_FAIL_FAST="1")
        # Each change is compiled once and never again: a compiler cache has nothing to give and would keep the
        # project from precompiling its headers.
        for name in ("CMAKE_C_COMPILER_LAUNCHER", "CMAKE_CXX_COMPILER_LAUNCHER"):
            self.environment.pop(name, None)
        self.programs = {}
        self.whole_hash = None

    def _copy(self, root, files):
        """What differs gets the present time, for a build that may have seen a change in its place."""
        for name in files:
            target = os.path.join(self.source, name)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            if not os.path.exists(target) or not filecmp.cmp(os.path.join(root, name), target, shallow=False):
                shutil.copyfile(os.path.join(root, name), target)
                shutil.copymode(os.path.join(root, name), target)
        wanted = {os.path.normpath(name) for name in files}
        for place, _, names in os.walk(self.source):
            for name in names:
                path = os.path.join(place, name)
                if os.path.relpath(path, self.source) not in wanted:
                    os.remove(path)

    # The unchanged project

    def prepare(self, limit=7200):
        """Builds the unchanged tests folder by folder and runs them."""
        self._must(["cmake", "-S", self.source, "-B", self.build_folder, "-G", "Ninja", *self.options], limit)
        self._build_programs([f"unit_tests_{folder}" for folder in FOLDERS], limit)

    def prepare_whole(self, limit=7200):
        """The same for the program of all tests, which only what its own folder's tests let pass needs."""
        self._build_programs(["unit_tests_all"], limit)
        self.whole_hash = self._hash("unit_tests_all")

    def _build_programs(self, names, limit):
        self._must(self._build_words(*names), limit)
        for name in names:
            self.programs[name] = TestProgram(self._path(name), self._run)
            failure = self.programs[name].measure(limit, used_cpu)
            if failure is not None:
                raise WorkshopError(f"{name} fails:\n{failure[-4000:]}")
        for snapshot in self.snapshots:
            snapshot.take()

    def _path(self, program):
        return os.path.join(self.build_folder, "tests", "unit", program)

    def _build_words(self, *targets):
        return ["cmake", "--build", self.build_folder, "-j", "2", "--target", *targets]

    def _hash(self, name):
        with open(self._path(name), "rb") as program:
            return hashlib.file_digest(program, "sha256").hexdigest()

    def _must(self, words, limit):
        code, output = self._run(words, limit)
        if code != 0:
            raise WorkshopError(f"{' '.join(words)} gave {code}:\n{output[-4000:]}")

    # A changed one

    def judge(self, mutation):
        """By the tests that mirror the change's own folder, the long ones left out."""
        name = "unit_tests_" + mutation.file.split("/")[0]
        with _Change(self, mutation):
            if not self._builds(name):
                return Outcome.NOT_COMPILED
            program = self.programs[name]
            return Outcome.CAUGHT if program.fail(program.tests(is_long=False)) else Outcome.UNDECIDED

    def settle(self, mutation):
        """What `judge` left undecided, by all the other tests, the long ones last."""
        asked = set(self.programs["unit_tests_" + mutation.file.split("/")[0]].tests(is_long=False))
        program = self.programs["unit_tests_all"]
        with _Change(self, mutation):
            if not self._builds("unit_tests_all"):
                return Outcome.NOT_COMPILED
            if self._hash("unit_tests_all") == self.whole_hash:
                return Outcome.NO_EFFECT
            for is_long in (False, True):
                if program.fail([test for test in program.tests(is_long) if test not in asked]):
                    return Outcome.CAUGHT
            return Outcome.SURVIVED

    def _builds(self, name, limit=7200):
        return self._run(self._build_words(name), limit)[0] == 0

    def _put_back(self):
        for snapshot in self.snapshots:
            snapshot.put_back()

    def _run(self, words, wall, cpu=None):
        """(exit code, output); the code is None where `wall` seconds ended the run with all it started."""
        process = subprocess.Popen(words, cwd=self.temporary, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
                                   preexec_fn=lambda: self._limit(cpu))
        try:
            output, _ = process.communicate(timeout=wall)
            return process.returncode, output.decode("utf-8", "replace")
        except BaseException as error:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            if isinstance(error, subprocess.TimeoutExpired):
                return None, ""
            raise

    def _limit(self, cpu):
        # A sanitizer reserves address space far beyond what it uses.
        if not self.has_sanitizers:
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
        if cpu is not None:
            resource.setrlimit(resource.RLIMIT_CPU, (math.ceil(cpu), math.ceil(cpu) + 5))


class _Change:
    """The source is changed as long as this stands."""

    def __init__(self, workshop, mutation):
        self.workshop = workshop
        self.mutation = mutation

    def __enter__(self):
        path = os.path.join(self.workshop.source, self.mutation.file)
        with open(path, encoding="utf-8", newline="") as source:
            text = source.read()
        with open(path, "w", encoding="utf-8", newline="") as out:
            out.write(self.mutation.apply(text))

    def __exit__(self, *_):
        self.workshop._put_back()
