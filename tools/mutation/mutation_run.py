#!/usr/bin/env python3
"""Mutation run over the library: changes one thing at a time, and sees whether a unit test fails.

Usage: mutation_run.py [--count 500] [--seed 1] [--workers 1] [--sweeps] [--again] [--only TEXT] [--keep]

Works on a copy of the last commit in build/mutation; --keep works on the copy that is there and goes on where a run of the same
seed was cut. --again tries only the mutants that docs/mutation.md explains, --only those of files whose path holds TEXT, and
--sweeps runs the fault sweeps too, which take long. A mutant that does not compile, or whose optimized code is the original's
byte for byte, is replaced by another. Exits with 1 when fewer than 90 % are killed or a survivor is not explained.
"""
import argparse
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
from concurrent.futures import ThreadPoolExecutor
from queue import SimpleQueue

from mutator import mutants

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "mutation"
TREE, BUILD = WORK / "tree", WORK / "build"
FOLDERS = ["common", "auth", "setupdoc", "apply", "vars", "fwupgrade"]
KILLED_AT_LEAST = 90.0
FAILURE = re.compile(r"(?:\[  FAILED  \] |ERROR: |runtime error: )(.*)")
ENVIRONMENT = {**os.environ, "ASAN_OPTIONS": "detect_stack_use_after_return=1:max_allocation_size_mb=512"}


def sandbox():
    """What a test program runs in where the system allows it: a /tmp of its own, the first to go when
    memory ends, and processes that end with it."""
    if str(ROOT).startswith("/tmp/"):
        return []
    words = ["unshare", "--mount", "--pid", "--fork", "--kill-child", "--mount-proc", "sh", "-c",
             'echo 1000 >/proc/self/oom_score_adj; mount -t tmpfs -o size=512m tmpfs /tmp && exec "$@"', "sh"]
    return words if subprocess.run([*words, "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0 else []


def build():
    """Copies the last commit and builds the unmutated library and its tests."""
    shutil.rmtree(TREE, ignore_errors=True)
    TREE.mkdir(parents=True)
    archive = subprocess.run(["git", "archive", "HEAD"], cwd=ROOT, check=True, stdout=subprocess.PIPE).stdout
    subprocess.run(["tar", "-xm"], cwd=TREE, input=archive, check=True)
    with open(WORK / "build.log", "w", encoding="utf-8") as log:
        for command in (["cmake", "-S", TREE / "tools/mutation", "-B", BUILD, "-G", "Ninja"],
                        ["cmake", "--build", BUILD, "-j", str(os.cpu_count())]):
            if subprocess.run(command, stdout=log, stderr=log, check=False).returncode != 0:
                sys.exit(f"mutation: the build failed, see {log.name}")


class Library:
    """The unmutated library: how each object is compiled, what it depends on, and the tests with their time limits."""

    def __init__(self, sweeps):
        entries = json.loads((BUILD / "compile_commands.json").read_text(encoding="utf-8"))
        self.commands = {os.path.realpath(entry["file"]): shlex.split(entry["command"]) for entry in entries
                         if "/library_objects.dir/" in entry["command"]}
        self.objects = {file: str(BUILD / words[words.index("-o") + 1]) for file, words in self.commands.items()}
        self.dependants = self.read_dependants()
        self.map = TREE / "tests/unit/faults/calls.map"
        self.faulted = {file: self.rename(path, path + ".faulted") for file, path in self.objects.items()}
        self.optimized = {}
        self.sandbox = sandbox()
        self.limits = {}
        link(self.faulted.values(), WORK / "faulted")
        for name in [*FOLDERS, "faults"] if sweeps else FOLDERS:
            start = seconds_of_children()
            directory = WORK / "faulted" if name == "faults" else BUILD
            if self.failure(name, directory, 600):
                sys.exit(f"mutation: {name}_tests fails without any mutant: see {directory}/tests.log")
            self.limits[name] = 10 + int(10 * (seconds_of_children() - start))

    def read_dependants(self):
        found, current = {}, ""
        text = subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], check=True, capture_output=True, text=True).stdout
        sources = {output: file for file, output in self.objects.items()}
        for line in text.splitlines():
            if not line.startswith(" "):
                current = sources.get(str(BUILD / line.split(":")[0]))
            elif current:
                found.setdefault(os.path.realpath(BUILD / line.strip()), []).append(current)
        return found

    def rename(self, source, target):
        subprocess.run(["objcopy", f"--redefine-syms={self.map}", source, target], check=True)
        return target

    def failure(self, name, directory, limit):
        """Why the tests of a folder fail with the library in a directory, or nothing. The limit is one of processor time, so
        that a busy machine kills nothing; a test that sleeps on and on is given half an hour."""
        command = ["prlimit", f"--cpu={limit}", *self.sandbox, BUILD / f"{name}_tests", "--gtest_fail_fast", "--gtest_brief=1"]
        environment = {**ENVIRONMENT, "LD_LIBRARY_PATH": str(directory)}
        with open(directory / "tests.log", "wb") as log, subprocess.Popen(
                command, cwd=directory, env=environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                start_new_session=True) as process:
            try:
                if process.wait(1800) == 0:
                    return None
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                return f"{name}: time"
        found = FAILURE.search((directory / "tests.log").read_text(encoding="utf-8", errors="replace"))
        return f"{name}: {found.group(1) if found else 'time'}"  # every other end is in the log


def seconds_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def link(objects, directory):
    directory.mkdir(parents=True, exist_ok=True)
    wrap = [] if "faulted" in directory.name else ["-Wl,--wrap=calloc"]
    subprocess.run(["c++", "-shared", "-fsanitize=address,undefined", "-Wl,-Bsymbolic-functions", "-Wl,-soname,libmutant.so",
                    *wrap, *objects, "-o", directory / "libmutant.so"], check=True)


def compile_object(command, source, include, output, optimize=False):
    """One object of a source; the folder `include` goes before all others. Whether it compiles."""
    words = command[:command.index("-o")]
    if optimize:
        words = ["-O2" if word == "-O0" else word for word in words if "sanitize" not in word]
    words[1:1] = [f"-I{include}"]
    return subprocess.run([*words, "-o", output, "-c", source], stderr=subprocess.DEVNULL, check=False).returncode == 0


def judge(library, directory, site):
    """What becomes of one mutant: (outcome, by what)."""
    overlay = directory / "overlay"
    shutil.rmtree(directory, ignore_errors=True)
    changed = overlay / site.file
    changed.parent.mkdir(parents=True)
    changed.write_text(site.mutant.apply(site.source), encoding="utf-8")
    original = os.path.realpath(TREE / site.file)
    made = {}
    for unit in library.dependants.get(original, []):
        source, made[unit] = changed if unit == original else unit, str(directory / f"{pathlib.Path(unit).stem}.o")
        if not compile_object(library.commands[unit], source, overlay, made[unit]):
            return "does not compile", ""
    link({**library.objects, **made}.values(), directory / "plain")
    home = site.file.split("/")[0]
    for name in sorted(FOLDERS, key=lambda folder: folder != home):
        if reason := library.failure(name, directory / "plain", library.limits[name]):
            return "killed", reason
        if name == home and all(same_code(library, unit, changed if unit == original else unit, overlay) for unit in made):
            return "same code", ""
    if "faults" not in library.limits:
        return "survived", ""
    link({**library.faulted, **{unit: library.rename(path, path + ".faulted") for unit, path in made.items()}}.values(),
         directory / "faulted")
    if reason := library.failure("faults", directory / "faulted", library.limits["faults"]):
        return "killed", reason
    return "survived", ""


def same_code(library, unit, source, overlay):
    if unit not in library.optimized:
        plain = overlay.parent / "original.o"
        compile_object(library.commands[unit], unit, TREE, plain, optimize=True)
        library.optimized[unit] = plain.read_bytes()
    output = overlay.parent / "optimized.o"
    compile_object(library.commands[unit], source, overlay, output, optimize=True)
    return output.read_bytes() == library.optimized[unit]


class Site:
    """A mutant in its file."""

    def __init__(self, file, source, mutant):
        self.file, self.source, self.mutant = file, source, mutant
        start = source.rfind("\n", 0, mutant.start) + 1
        end = source.find("\n", max(mutant.end, mutant.start + 1) - 1)
        before, after = source[start:end], source[start:mutant.start] + mutant.after + source[mutant.end:end]
        self.line = source.count("\n", 0, mutant.start) + 1
        cell = lambda text: " ".join(text.split()).replace("|", "\\|")
        self.row = f"| {file} | `{cell(before)}` | `{cell(after)}` |"


def all_sites(only):
    sites = []
    for path in sorted(path for folder in FOLDERS for path in (TREE / folder).iterdir() if path.suffix in (".cpp", ".h")):
        file = str(path.relative_to(TREE))
        source = path.read_text(encoding="utf-8")
        sites += [Site(file, source, mutant) for mutant in mutants(source, path.suffix == ".h") if only in file]
    return sites


def outcomes_so_far(sites):
    """What a run that was cut has found out: its results are those of the first sites."""
    path = WORK / "results.txt"
    lines = path.read_text(encoding="utf-8").splitlines() if path.exists() else []
    known = [(site, *line.split("\t")[:2]) for site, line in zip(sites, lines) if line.endswith(f"\t{site.row}")]
    return known if len(known) == len(lines) else []


def sample(library, sites, count, workers, results):
    """Judges the first `count` sites that count; the others are replaced by those behind them."""
    places = SimpleQueue()
    for number in range(workers):
        places.put(WORK / f"worker{number}")

    def judge_in_a_place(site):
        place = places.get()
        try:
            return site, *judge(library, place, site)
        finally:
            places.put(place)

    def counted():
        return sum(outcome in ("killed", "survived") for _, outcome, _ in results)

    with ThreadPoolExecutor(workers) as pool, open(WORK / "results.txt", "w", encoding="utf-8") as log:
        def keep(result):
            site, outcome, reason = result
            print(f"{outcome}\t{reason}\t{site.line}\t{site.row}", file=log, flush=True)

        for result in results:
            keep(result)
        while counted() < count and len(results) < len(sites):
            batch = sites[len(results):len(results) + min(count - counted(), 50)]
            for result in pool.map(judge_in_a_place, batch):
                results.append(result)
                keep(result)
            print(f"mutation: {counted()} of {count}", flush=True)
    return results


def report(results, explained):
    of = lambda wanted: [site for site, outcome, _ in results if outcome == wanted]
    killed, survived = of("killed"), of("survived")
    late = sum(reason.endswith("time") for _, _, reason in results)
    share = 100 * len(killed) / max(1, len(killed) + len(survived))
    unexplained = [site for site in survived if site.row not in explained]
    print(f"killed {len(killed)} of {len(killed) + len(survived)} ({share:.1f} %), {late} of them by time; "
          f"survived {len(survived)}, {len(unexplained)} unexplained; "
          f"replaced: {len(of('does not compile'))} that do not compile, {len(of('same code'))} of the same code")
    for site in sorted(unexplained, key=lambda site: (site.file, site.line)):
        print(f"{site.line:4} {site.row}")
    return share >= KILLED_AT_LEAST and not unexplained


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--count", type=int, default=500)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--workers", type=int, default=1)
    parser.add_argument("--sweeps", action="store_true")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--keep", action="store_true")
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    page = ROOT / "docs" / "mutation.md"
    explained = page.read_text(encoding="utf-8") if page.exists() else ""
    if not options.keep:
        build()
    library = Library(options.sweeps)
    sites = all_sites(options.only)
    random.Random(options.seed).shuffle(sites)
    if options.again:
        sites = [site for site in sites if site.row in explained]
    known = outcomes_so_far(sites) if options.keep else []
    good = report(sample(library, sites, options.count, options.workers, known), explained)
    sys.exit(0 if good or options.again else 1)


if __name__ == "__main__":
    main()
