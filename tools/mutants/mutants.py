#!/usr/bin/env python3
"""Mutation testing: inserts one small fault at a time into a copy of the sources and runs the tests on it.

Tests a random sample of such mutants. The share that the tests detect says more about their quality than line coverage.
The copy and its build are in build/mutants/; the working tree is only read.
"""

import argparse
import collections
import hashlib
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

import faults

TREE = pathlib.Path(__file__).resolve().parents[2]
WORK = TREE / "build" / "mutants"
COPY = WORK / "tree"
BUILD = WORK / "build"
ROOMS = ("harmonet/", "drivers/", "tools/")

# Slower tests are left out: the faults that only they detect are not worth the time.
SLOWEST_TEST_SECONDS = 5.0
# Headers that more object files include are left out, because rebuilding takes minutes.
WIDEST_HEADER = 12
# Limits for mutants that allocate or write without end. Infinite loops are ended by processor time, which does not depend on
# other load on the machine; only a mutant that waits forever is ended by elapsed time.
MEMORY_LIMIT = 6 << 30
FILE_SIZE_LIMIT = 4 << 30
WAIT_LIMIT_SECONDS = 180


def room_of(path):
    """Returns the room of a file, such as harmonet/files/mpeg or drivers/openal."""
    parts = path.split("/")[:-1]
    if parts[0] == "tools":
        return "tools"
    return "/".join(part for part in parts if part not in ("posix", "windows"))


# --- The copy and its build -----------------------------------------------------------------------------------

def copy_sources(revision):
    """Updates the copy. Unchanged files keep their time stamps, so that they are not rebuilt."""
    with tempfile.TemporaryDirectory() as folder:
        if revision:
            archive = subprocess.run(["git", "archive", revision], cwd=TREE, check=True, stdout=subprocess.PIPE).stdout
            subprocess.run(["tar", "-x", "-C", folder], input=archive, check=True)
            source = pathlib.Path(folder)
            wanted = {str(path.relative_to(source)) for path in source.rglob("*") if path.is_file()}
        else:
            source = TREE
            listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"], cwd=TREE,
                                    check=True, stdout=subprocess.PIPE).stdout.decode().split("\0")
            wanted = {name for name in listed if name and (TREE / name).is_file()}
        for present in [path for path in COPY.rglob("*") if path.is_file()]:
            if str(present.relative_to(COPY)) not in wanted:
                present.unlink()
        for name in sorted(wanted):
            target = COPY / name
            if not target.exists() or target.read_bytes() != (source / name).read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(source / name, target)
                shutil.copymode(source / name, target)


def configure():
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
    # Assertions are enabled, as in ./dev test. Warnings are disabled, because a mutant may have an unused variable.
    subprocess.run(["cmake", "-S", COPY, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS=-w",
                    "-DCMAKE_CXX_FLAGS_DEBUG=-O1", "-DHARMONET_BUILD_BENCH=OFF", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON",
                    "-DCMAKE_EXPORT_COMPILE_COMMANDS=ON", *launcher], check=True, stdout=subprocess.DEVNULL)


def build(jobs):
    return subprocess.run(["ninja", "-C", BUILD, f"-j{jobs}"], stdout=subprocess.DEVNULL).returncode == 0


def outputs():
    """Returns a hash of each program and library of the tests, by path."""
    found = {}
    for folder in ("bin", "test-drivers"):
        for path in (BUILD / folder).iterdir():
            if path.is_file() and not path.is_symlink():
                found[str(path)] = hashlib.sha1(path.read_bytes()).hexdigest()
    return found


# --- The tests ------------------------------------------------------------------------------------------------

class Program:
    """A test program, or a CTest test that does not use GoogleTest."""

    def __init__(self, name, command, executables):
        self.name = name
        self.command = command
        self.executables = executables
        self.seconds = 0.0
        self.left_out = []

    def run(self, report=None, only=None):
        """Runs the program. Returns the exit code, or None on timeout, and the output."""
        environment = dict(os.environ, GTEST_FAIL_FAST="1", GTEST_BRIEF="1")
        seconds = 20 + 10 * self.seconds if self.seconds else 600
        if only or self.left_out:
            environment["GTEST_FILTER"] = only or "-" + ":".join(self.left_out)
        if report:
            environment.update(GTEST_OUTPUT=f"json:{report}", GTEST_FAIL_FAST="0")
        process = subprocess.Popen(self.command, cwd=BUILD, env=environment, stdin=subprocess.DEVNULL,
                                   stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True,
                                   preexec_fn=lambda: limit_resources(round(seconds)))
        try:
            text = process.communicate(timeout=max(seconds, WAIT_LIMIT_SECONDS))[0]
            code = None if process.returncode == -signal.SIGXCPU else process.returncode
            return code, text.decode(errors="replace")
        except subprocess.TimeoutExpired:
            os.killpg(process.pid, signal.SIGKILL)
            process.communicate()
            return None, ""

    def uses(self, changed):
        """Returns whether a change of these outputs can affect the program: its own executables, or a shared library."""
        return any(path in self.executables or ".so" in path for path in changed)


def limit_resources(seconds):
    resource.setrlimit(resource.RLIMIT_CPU, (seconds, seconds + 5))
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_SIZE_LIMIT, FILE_SIZE_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def find_programs():
    listed = subprocess.run(["ctest", "--test-dir", BUILD, "--show-only=json-v1"], check=True, capture_output=True).stdout
    programs = {}
    for test in json.loads(listed)["tests"]:
        labels = next((entry["value"] for entry in test.get("properties", []) if entry["name"] == "LABELS"), [])
        executables = [part for part in test.get("command", []) if part.startswith(str(BUILD / "bin"))]
        if any("live" in label for label in labels) or not executables:
            continue
        if any(part.startswith("--gtest_filter") for part in test["command"]):
            name, command = pathlib.Path(executables[0]).name, executables[:1]
        else:
            name = test["name"]
            command = ["ctest", "--test-dir", str(BUILD), "--output-on-failure", "-R", f"^{re.escape(name)}$"]
        programs.setdefault(name, Program(name, command, executables))
    return list(programs.values())


def processor_seconds(program, only=None):
    """Runs without a mutant. Returns the exit code and the processor time, which does not depend on other load on the
    machine."""
    before = resource.getrusage(resource.RUSAGE_CHILDREN)
    code = program.run(only=only)[0]
    after = resource.getrusage(resource.RUSAGE_CHILDREN)
    return code, after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime


def tests_by_time(program):
    """Returns the elapsed seconds of each test of a GoogleTest program; infinity for a test that fails."""
    report = WORK / "report.json"
    report.unlink(missing_ok=True)
    program.run(report)
    times = {}
    for suite in json.loads(report.read_text())["testsuites"] if report.exists() else []:
        for test in suite["testsuite"]:
            seconds = float("inf") if "failures" in test else float(test["time"].rstrip("s"))
            times[f"{suite['name']}.{test['name']}"] = seconds
    return times


def prepare(programs):
    """Excludes tests that are slow or fail without a mutant. Returns the remaining programs."""
    ready = []
    for program in programs:
        for test, seconds in tests_by_time(program).items():
            if seconds > SLOWEST_TEST_SECONDS:
                code, seconds = processor_seconds(program, test)
                if code != 0 or seconds > SLOWEST_TEST_SECONDS:
                    program.left_out.append(test)
                    print(f"left out: {test}")
        code, program.seconds = processor_seconds(program)
        if code != 0 or "ctest" in program.command and program.seconds > 2 * SLOWEST_TEST_SECONDS:
            print(f"left out: {program.name}" + (", which fails without a mutant" if code != 0 else ""))
        else:
            ready.append(program)
    return ready


class Judge:
    """Runs the programs on one mutant after another, beginning with those that detected the most in the mutant's room."""

    def __init__(self, programs):
        self.programs = programs
        self.finds = collections.Counter()

    def judge(self, room, changed):
        """Returns 'killed', 'timed out' or 'survived', and the test that detected the mutant."""
        affected = [program for program in self.programs if program.uses(changed)]
        affected.sort(key=lambda program: (-self.finds[room, program.name], program.seconds))
        for program in affected:
            code, text = program.run()
            if code != 0:
                self.finds[room, program.name] += 1
                failed = re.search(r"\[  FAILED  \] ([\w./]+)", text)
                return ("timed out" if code is None else "killed"), failed.group(1) if failed else program.name
        return "survived", ""


# --- The mutants ----------------------------------------------------------------------------------------------

Mutant = collections.namedtuple("Mutant", "path nth before after")
"""Replaces the nth line with the text `before`, without its indentation, by `after`. A line is identified by its text, so
that the same mutant is found again after lines have moved."""


def included_by():
    """Returns how many object files include each header."""
    listed = subprocess.run(["ninja", "-C", BUILD, "-t", "deps"], check=True, capture_output=True, text=True).stdout
    paths = (line.strip() for line in listed.splitlines() if line.startswith("    "))
    return collections.Counter(os.path.relpath(os.path.join(BUILD, path), COPY) for path in paths)


def candidates():
    """Yields the files that are built on this machine and are quick to build."""
    compiled = {os.path.relpath(unit["file"], COPY) for unit in json.loads((BUILD / "compile_commands.json").read_text())}
    counts = included_by()
    for path in sorted(str(path.relative_to(COPY)) for path in COPY.rglob("*")):
        if path.startswith(ROOMS) and (
                path in compiled or path.endswith((".h", ".inl")) and 0 < counts[path] <= WIDEST_HEADER):
            yield path


def sample(count, seed):
    """Returns mutants in random order. All lines that can be mutated are equally likely."""
    lines = []
    for path in candidates():
        seen = collections.Counter()
        for line, changes in faults.of_text((COPY / path).read_text()):
            seen[line] += 1
            lines.append((path, seen[line], line, changes))
    dice = random.Random(seed)
    dice.shuffle(lines)
    return [Mutant(path, nth, before, dice.choice(changes)) for path, nth, before, changes in lines[:count]]


def plant(mutant):
    """Returns the text of the file with the mutant, or None if the line no longer exists."""
    path = COPY / mutant.path
    lines = path.read_text().split("\n") if path.exists() else []
    found = [number for number, line in enumerate(lines) if line.strip() == mutant.before]
    if len(found) < mutant.nth:
        return None, 0
    number = found[mutant.nth - 1]
    lines[number] = lines[number].replace(mutant.before, mutant.after)
    return "\n".join(lines), number + 1


def read_list(path):
    rows = [line.rstrip("\n").split("\t") for line in open(path) if not line.startswith("#")]
    return [Mutant(path, int(nth), before, after) for path, nth, before, after, *_ in rows]


# --- The run --------------------------------------------------------------------------------------------------

def run(mutants, enough, jobs, result):
    """Tests the mutants one by one until enough have counted. Yields them with their outcomes."""
    plain = outputs()
    judge = Judge(prepare(find_programs()))
    counted = 0
    for mutant in mutants:
        if counted >= enough:
            return
        begin = time.monotonic()
        text, number = plant(mutant)
        if text is None:
            outcome, by = "gone", ""
        else:
            outcome, by = try_one(mutant, text, plain, judge, jobs)
        counted += outcome in ("killed", "timed out", "survived")
        result.write("\t".join([*map(str, mutant), outcome, by]) + "\n")
        result.flush()
        print(f"{counted:4} {outcome:14} {time.monotonic() - begin:5.1f} s  {mutant.path}:{number}: {mutant.before}  =>  "
              f"{mutant.after}  {by}", flush=True)
        yield mutant, number, outcome


def try_one(mutant, text, plain, judge, jobs):
    path = COPY / mutant.path
    original = path.read_text()
    path.write_text(text)
    try:
        if not build(jobs):
            return "did not build", ""
        changed = [name for name, content in outputs().items() if plain.get(name) != content]
        if not changed:
            return "no difference", ""
        return judge.judge(room_of(mutant.path), changed)
    finally:
        path.write_text(original)


def summary(judged):
    rooms = collections.defaultdict(collections.Counter)
    for mutant, _, outcome in judged:
        for name in (room_of(mutant.path), "all"):
            rooms[name][outcome] += 1
    print("\n| room | mutants | found | survived | share found |\n|---|---|---|---|---|")
    for name in sorted(rooms, key=lambda name: (name == "all", name)):
        found = rooms[name]["killed"] + rooms[name]["timed out"]
        total = found + rooms[name]["survived"]
        print(f"| {name} | {total} | {found} | {total - found} | {100 * found / total if total else 0:.0f} % |")
    every = rooms["all"]
    print(f"\nOf those found, {every['timed out']} caused a timeout. Not counted: {every['did not build']} did "
          f"not compile, {every['no difference']} compiled to the same code, {every['gone']} are gone.")


def main():
    arguments = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    arguments.add_argument("count", nargs="?", type=int, default=150, help="mutants that count (default: 150)")
    arguments.add_argument("seed", nargs="?", type=int, default=1, help="seed of the sample (default: 1)")
    arguments.add_argument("--list", metavar="FILE", help="test the mutants in the result of an earlier run")
    arguments.add_argument("--revision", metavar="REV", help="use the sources and tests of this commit")
    arguments.add_argument("--result", metavar="FILE", default=WORK / "result.tsv", help="default: build/mutants/result.tsv")
    arguments.add_argument("--jobs", type=int, default=os.cpu_count(), help="number of parallel compile jobs")
    options = arguments.parse_args()

    os.nice(10)
    earlier = read_list(options.list) if options.list else None
    WORK.mkdir(parents=True, exist_ok=True)
    copy_sources(options.revision)
    configure()
    if not build(options.jobs):
        sys.exit("mutants: the tree does not build")
    # Some mutants do not count, so the sample is larger than requested.
    mutants = earlier or sample(2 * options.count, options.seed)
    with open(options.result, "w") as result:
        result.write("# path, occurrence of the line in it, line, line with the fault, outcome, found by\n")
        judged = list(run(mutants, len(mutants) if earlier else options.count, options.jobs, result))
    print("\nSurvivors:")
    for mutant, number, outcome in judged:
        if outcome == "survived":
            print(f"{mutant.path}:{number}: {mutant.before}\n    {mutant.after}")
    summary(judged)


if __name__ == "__main__":
    main()
