"""A scratch copy of the project in which one source at a time is changed, rebuilt and tested."""

import enum
import hashlib
import os
import resource
import shutil
import signal
import subprocess
import time

MEMORY_BYTES = 8 << 30


class Outcome(enum.Enum):
    CAUGHT = "caught"
    SURVIVED = "survived"
    NOT_COMPILED = "not compiled"
    NO_EFFECT = "no effect"  # the very same program came out


class WorkshopError(Exception):
    """The unchanged project can't be built or its tests fail."""


class Snapshot:
    """A folder as it stands, kept beside it; puts back what has changed since, times included."""

    def __init__(self, folder, kept):
        self.folder = folder
        self.kept = kept
        shutil.copytree(folder, kept, symlinks=True)

    @staticmethod
    def _files(folder):
        return {os.path.relpath(os.path.join(place, name), folder)
                for place, _, names in os.walk(folder) for name in names}

    @staticmethod
    def _mark(path):
        status = os.lstat(path)
        return status.st_mtime_ns, status.st_size

    def put_back(self):
        kept = self._files(self.kept)
        for name in self._files(self.folder) - kept:
            os.remove(os.path.join(self.folder, name))
        for name in kept:
            source, target = os.path.join(self.kept, name), os.path.join(self.folder, name)
            if not os.path.lexists(target) or self._mark(source) != self._mark(target):
                shutil.copy2(source, target, follow_symlinks=False)


class Workshop:
    """`folder` is made and belongs to the workshop; `files` are copied from `root`."""

    def __init__(self, root, files, folder, has_sanitizers=False):
        self.source = os.path.join(folder, "source")
        self.build_folder = os.path.join(folder, "build")
        self.temporary = os.path.join(folder, "tmp")
        os.makedirs(self.temporary)
        for name in files:
            target = os.path.join(self.source, name)
            os.makedirs(os.path.dirname(target), exist_ok=True)
            shutil.copy2(os.path.join(root, name), target)
        self.options = ["-DCMAKE_BUILD_TYPE=None", "-DCMAKE_CXX_FLAGS=-O1 -g0 -w"]
        if has_sanitizers:
            self.options.append("-DVARDEL_SANITIZE=address,undefined")
        self.environment = dict(os.environ, TMPDIR=self.temporary, GTEST_FAIL_FAST="1")
        # Each change is compiled once and never again: a compiler cache has nothing to give and would keep the
        # project from precompiling its headers.
        for name in ("CMAKE_C_COMPILER_LAUNCHER", "CMAKE_CXX_COMPILER_LAUNCHER"):
            self.environment.pop(name, None)
        self.time_limit = None

    # The unchanged project

    def prepare(self, build_limit=3600, run_limit=1800):
        """Builds the unchanged project and runs its tests; their time sets the limit for the changed ones."""
        self._must(["cmake", "-S", self.source, "-B", self.build_folder, "-G", "Ninja", *self.options], build_limit)
        self._must(self._build_words(), build_limit)
        self.program_hash = self._hash()
        begin = time.monotonic()
        self._must([self.program], run_limit)
        self.time_limit = 20 + 4 * (time.monotonic() - begin)
        self.snapshots = [Snapshot(folder, folder + ".kept") for folder in (self.source, self.build_folder)]

    @property
    def program(self):
        return os.path.join(self.build_folder, "tests", "unit", "unit_tests")

    def _build_words(self):
        return ["cmake", "--build", self.build_folder, "-j", "1", "--target", "unit_tests"]

    def _hash(self):
        with open(self.program, "rb") as program:
            return hashlib.file_digest(program, "sha256").hexdigest()

    def _must(self, words, limit):
        code, output = self._run(words, limit)
        if code != 0:
            raise WorkshopError(f"{' '.join(words)} gave {code}:\n{output[-4000:]}")

    # A changed one

    def judge(self, mutation, build_limit=1800):
        path = os.path.join(self.source, mutation.file)
        with open(path, encoding="utf-8", newline="") as source:
            before = source.read()
        try:
            with open(path, "w", encoding="utf-8", newline="") as out:
                out.write(mutation.apply(before))
            code, _ = self._run(self._build_words(), build_limit)
            if code != 0:
                return Outcome.NOT_COMPILED
            if self._hash() == self.program_hash:
                return Outcome.NO_EFFECT
            code, _ = self._run([self.program], self.time_limit)
            return Outcome.SURVIVED if code == 0 else Outcome.CAUGHT
        finally:
            for snapshot in self.snapshots:
                snapshot.put_back()

    def _run(self, words, limit):
        """(exit code, output); the code is None where the limit, in seconds, ended the run with all it started."""
        process = subprocess.Popen(words, cwd=self.temporary, env=self.environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
                                   preexec_fn=self._limit_memory)
        try:
            output, _ = process.communicate(timeout=limit)
            return process.returncode, output.decode("utf-8", "replace")
        except BaseException as error:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            if isinstance(error, subprocess.TimeoutExpired):
                return None, ""
            raise

    def _limit_memory(self):
        # A sanitizer reserves address space far beyond what it uses.
        if not any("VARDEL_SANITIZE" in option for option in self.options):
            resource.setrlimit(resource.RLIMIT_AS, (MEMORY_BYTES, MEMORY_BYTES))
        resource.setrlimit(resource.RLIMIT_CORE, (0, 0))
