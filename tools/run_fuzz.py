#!/usr/bin/python3
"""Runs the fuzz targets on their stored corpora; any finding fails, and is kept in build/findings.

    tools/run_fuzz.py                      every target, 5 seconds each
    tools/run_fuzz.py --target ip_handler --target arp_handler --seconds 600
    tools/run_fuzz.py --coverage           only how much of the readers' lines the corpora reach, and what they miss
    tools/run_fuzz.py --grow --target ip_handler --seconds 60
                                           fuzz, then put what is new, minimised, into the stored corpus

A finding in one target doesn't keep the others from running. `./test` uses the same functions.
"""

import argparse
import collections
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
CORPORA = os.path.join(ROOT, "tests", "fuzz", "corpus")
FINDINGS = os.path.join(ROOT, "build", "findings")
PRESET = "linux-fuzz"
BUILD = os.path.join(ROOT, "build", PRESET)
LEAST_PERCENT = 95
LONGEST_INPUT = 4096
# What a run may take beyond its time: reading the corpus, the last input, telling.
MORE_SECONDS = 300

# The sources whose lines a target must reach to LEAST_PERCENT: those of the two handlers and of the settings file.
SOURCES = {
    "arp_handler": ["capture/VardelARPImpl.cpp", "capture/HostNaming.cpp", "capture/AddressText.cpp"],
    "ip_handler": ["capture/VardelIPImpl.cpp", "capture/NetBiosBrowse.cpp", "capture/SyslogReception.cpp",
                   "capture/SsdpReception.cpp", "capture/DeviceAnnouncement.cpp", "capture/FrameView.h"],
    "plugin_block": [],
    "registry_text": ["platform/RegistryText.cpp", "platform/RegistryTree.cpp", "platform/TextCursor.h",
                      "platform/Utf16.cpp"],
    "report_template": [],
    "ssdp_document": [],
    "vendor_file": [],
    "version_file": [],
}

Run = collections.namedtuple("Run", "clean told output")  # `told`: one sentence
Coverage = collections.namedtuple("Coverage", "source reached lines missed")  # `missed`: line numbers


def program(name):
    return os.path.join(BUILD, "tests", "fuzz", "fuzz_" + name)


def corpus_of(name):
    return os.path.join(CORPORA, name)


def build():
    subprocess.run(["cmake", "--preset", PRESET], cwd=ROOT, check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["cmake", "--build", BUILD, "--target", "fuzz_targets"], check=True)


def targets():
    """The names of the targets that were built."""
    folder = os.path.join(BUILD, "tests", "fuzz")
    built = {name.removeprefix("fuzz_") for name in os.listdir(folder)
             if name.startswith("fuzz_") and os.path.isfile(program(name.removeprefix("fuzz_")))}
    if built != set(SOURCES):
        raise RuntimeError(f"the targets {', '.join(sorted(built ^ set(SOURCES)))} are not both built and listed here")
    return sorted(built)


def own_environment(folder):
    """What a target leaves behind (profile, trace file, temporary folders) goes where it is removed."""
    return {**os.environ, "LLVM_PROFILE_FILE": os.path.join(folder, "profile"), "TMPDIR": folder,
            "UBSAN_OPTIONS": "print_stacktrace=1"}


def fuzz(name, seconds, found):
    """Runs a target from its corpus; new inputs go to the folder `found`."""
    os.makedirs(FINDINGS, exist_ok=True)
    before = set(os.listdir(FINDINGS))
    with tempfile.TemporaryDirectory(prefix="vardelwatch-fuzz-") as folder:
        words = [program(name), f"-max_total_time={seconds}", "-timeout=10", "-rss_limit_mb=2048",
                 f"-max_len={LONGEST_INPUT}", "-print_final_stats=1", f"-artifact_prefix={FINDINGS}/{name}-",
                 found, corpus_of(name)]
        with open(os.path.join(folder, "output"), "w+", encoding="utf-8", errors="replace") as out:
            try:
                code = subprocess.run(words, stdin=subprocess.DEVNULL, stdout=out, stderr=subprocess.STDOUT,
                                      timeout=seconds + MORE_SECONDS, cwd=folder, check=False,
                                      env=own_environment(folder)).returncode
            except subprocess.TimeoutExpired:
                code = None
            out.seek(0)
            text = out.read()
    return judge(name, code, text, sorted(set(os.listdir(FINDINGS)) - before))


def judge(name, code, text, kept):
    executions = re.findall(r"stat::number_of_executed_units: (\d+)", text) or re.findall(r"^#(\d+)", text, re.M)
    reached = re.findall(r"cov: (\d+) ft: (\d+)", text)
    runs = f"{executions[-1] if executions else 'no'} executions"
    if code == 0:
        edges = f", {reached[-1][0]} edges" if reached else ""
        return Run(True, f"{runs}{edges}, {len(os.listdir(corpus_of(name)))} stored inputs, no finding", text)
    if kept:
        path = os.path.join(FINDINGS, kept[0])
        return Run(False, f"a finding after {runs}; its input is kept as {os.path.relpath(path, ROOT)}, repeat it with: "
                   f"{os.path.relpath(program(name), ROOT)} {os.path.relpath(path, ROOT)}", text)
    ending = "did not end in time" if code is None else f"ended with {code}"
    return Run(False, f"{ending} after {runs} and kept no input", text)


def cover(name):
    """What the stored corpus reaches of the target's sources, by source."""
    if not SOURCES[name]:
        return []
    with tempfile.TemporaryDirectory(prefix="vardelwatch-fuzz-") as folder:
        environment = own_environment(folder)
        if subprocess.run([program(name), "-runs=0", corpus_of(name)], check=False, cwd=folder, env=environment,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0:
            raise RuntimeError(f"the stored inputs of {name} hold a finding")
        merged = os.path.join(folder, "merged")
        subprocess.run(["llvm-profdata", "merge", "-o", merged, environment["LLVM_PROFILE_FILE"]], check=True)
        report = subprocess.run(["llvm-cov", "export", "-format=lcov", program(name), f"-instr-profile={merged}"],
                                check=True, capture_output=True, text=True).stdout
    found = []
    for record in report.split("end_of_record"):
        source = re.search(r"^SF:(.*)$", record, re.MULTILINE)
        path = os.path.relpath(os.path.join(BUILD, source[1]), ROOT) if source else ""
        if path in SOURCES[name]:
            counts = [tuple(map(int, pair)) for pair in re.findall(r"^DA:(\d+),(\d+)", record, re.MULTILINE)]
            missed = [line for line, count in counts if count == 0]
            found.append(Coverage(path, len(counts) - len(missed), len(counts), missed))
    absent = set(SOURCES[name]) - {coverage.source for coverage in found}
    if absent:
        raise RuntimeError(f"fuzz_{name} holds nothing of {', '.join(sorted(absent))}")
    return found


def reaches_enough(coverage):
    return 100 * coverage.reached >= LEAST_PERCENT * coverage.lines


def told(coverage):
    missed = f", not lines {', '.join(map(str, coverage.missed))}" if coverage.missed else ""
    return f"{coverage.source}: {coverage.reached} of {coverage.lines} lines{missed}"


def grow(name, seconds):
    """Fuzzes from the corpus and the first inputs, and leaves the smallest corpus that reaches as much.

    Inputs that were stored under a name of their own, written by hand, stay.
    """
    with tempfile.TemporaryDirectory(prefix="vardelwatch-fuzz-") as folder:
        seeds, found, smallest = (os.path.join(folder, part) for part in ("seeds", "found", "smallest"))
        for part in (seeds, found, smallest):
            os.makedirs(part)
        subprocess.run([os.path.join(BUILD, "tests", "fuzz", "handler_seeds"), seeds], check=True, cwd=folder,
                       env=own_environment(folder))
        if os.path.isdir(os.path.join(seeds, name)):
            shutil.copytree(os.path.join(seeds, name), found, dirs_exist_ok=True)
        run = fuzz(name, seconds, found)
        if run.clean:
            for named in os.listdir(corpus_of(name)):
                if not re.fullmatch(r"[0-9a-f]{40}", named):
                    shutil.copy(os.path.join(corpus_of(name), named), smallest)
            # By what is reached, not by how often: a tenth of the files.
            subprocess.run([program(name), "-set_cover_merge=1", "-use_counters=0", f"-max_len={LONGEST_INPUT}",
                            smallest, corpus_of(name), found],
                           check=True, stderr=subprocess.DEVNULL, cwd=folder, env=own_environment(folder))
            shutil.rmtree(corpus_of(name))
            shutil.copytree(smallest, corpus_of(name))
    return run


def tell(name, passed, sentence):
    print(f"{'ok' if passed else 'FAILED':6} {name}: {sentence}", flush=True)


def work_on(name, words):
    """True when all is well with the target."""
    clean = True
    if not words.coverage:
        with tempfile.TemporaryDirectory(prefix="vardelwatch-fuzz-") as found:
            run = grow(name, words.seconds) if words.grow else fuzz(name, words.seconds, found)
        tell(name, run.clean, run.told)
        if not run.clean:
            print("\n".join("    " + line for line in run.output.splitlines()[-40:]), flush=True)
            clean = False
    for coverage in cover(name) if clean else []:
        tell(name, reaches_enough(coverage), told(coverage))
        clean &= reaches_enough(coverage)
    return clean


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--seconds", type=int, default=5, help="for each target")
    parser.add_argument("--target", action="append", choices=sorted(SOURCES), help="only this one; may be repeated")
    parser.add_argument("--coverage", action="store_true", help="don't fuzz")
    parser.add_argument("--grow", action="store_true", help="store what is found")
    words = parser.parse_args()
    if words.seconds < 1:
        parser.error("--seconds must be at least 1")
    build()
    results = [work_on(name, words) for name in words.target or targets()]
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())
