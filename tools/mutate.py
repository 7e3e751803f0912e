#!/usr/bin/python3
"""Which changes of one operator or constant in src/ and cli/ does no test notice?

usage: mutate.py [PATTERN] [--count N] [--seed S] [--jobs N] [--trust] [--no-sanitizers]
       mutate.py --check

Draws N changes among those of the sources whose path matches the regular expression PATTERN, makes
them one at a time in a copy under build/mutants/, and runs the suite: the room's own tests first, what
noticed other changes of the room before what did not, quick ones before slow ones, up to the first that
fails. A change that does not compile is drawn anew. What the suite does not notice is given to the suite
under the sanitizers. Prints what nothing noticed; tools/equivalent_mutants.txt names the changes that
no run can tell, with the reason. The exit status is 1 where something else is left. Before all that the
suite has to pass; --trust takes that for granted. --check compares the list with the sources.
"""
import argparse
import collections
import concurrent.futures
import hashlib
import json
import os
import pathlib
import random
import re
import signal
import subprocess
import sys
import threading
import time

import mutations

TOP = pathlib.Path(__file__).resolve().parent.parent
LIST = TOP / "tools" / "equivalent_mutants.txt"
HOME = TOP / "build" / "mutants"
TREE = HOME / "tree"
SKIPPED = 77


def listed_files():
    found = subprocess.run(["git", "ls-files", "-coz", "--exclude-standard"], cwd=TOP, check=True,
                           capture_output=True, text=True).stdout
    return [name for name in found.split("\0") if name and (TOP / name).is_file()]


def copy_sources():
    """Makes the copy equal to the checkout, writing only what differs; returns what it holds in short."""
    files = listed_files()
    digest = hashlib.sha256()
    for name in files:
        source, target = TOP / name, TREE / name
        content = source.read_bytes()
        digest.update(name.encode() + b"\0" + hashlib.sha256(content).digest())
        if not target.exists() or target.read_bytes() != content:
            target.parent.mkdir(parents=True, exist_ok=True)
            target.write_bytes(content)
        target.chmod(source.stat().st_mode)
    for room in "src", "cli", "tests", "include":
        for path in (TREE / room).rglob("*"):
            if path.is_file() and str(path.relative_to(TREE)) not in files and "__pycache__" not in str(path):
                path.unlink()
    return digest.hexdigest()


def room_of(path):
    """The label of the tests of a source's own room."""
    parts = path.split("/")
    return "command_line" if parts[0] == "cli" else parts[1]


def finish(process, seconds):
    """Output and exit status of a process that leads a group; None where its time ran out."""
    try:
        output, _ = process.communicate(timeout=seconds)
        return output, process.returncode
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        return process.communicate()[0], None


class Build:
    """A build of the copy and its tests."""

    def __init__(self, preset, jobs):
        self.preset, self.jobs = preset, jobs
        self.environment = {**os.environ, "CCACHE_BASEDIR": str(TREE), "CCACHE_NOHASHDIR": "1",
                            "CCACHE_DEPEND": "1"}
        self.seconds = {}
        options = [f"-DCMAKE_PROJECT_INCLUDE={TREE}/tools/mutants.cmake"] if preset == "release" else []
        subprocess.run(["cmake", "--preset", preset, "-DKORVEX_BUILD_PYTHON=OFF", *options], cwd=TREE,
                       check=True, env=self.environment, stdout=subprocess.DEVNULL)

    def build(self, *targets):
        command = ["cmake", "--build", "--preset", self.preset, "-j", str(self.jobs)]
        for target in targets:
            command += ["--target", target]
        process = subprocess.Popen(command, cwd=TREE, env=self.environment, stdout=subprocess.PIPE,
                                   stderr=subprocess.STDOUT, text=True, start_new_session=True)
        return finish(process, 3600)

    def tests(self):
        """Those of the suite that are about what the program does, by name."""
        told = subprocess.run(["ctest", "--preset", self.preset, "--show-only=json-v1"], cwd=TREE,
                              check=True, capture_output=True, text=True).stdout
        found = {}
        for test in json.loads(told)["tests"]:
            properties = {one["name"]: one["value"] for one in test.get("properties", [])}
            labels = properties.get("LABELS", [])
            about_files = re.match(r"install\.|exports\.|symbols$", test["name"])
            if "command" in test and not about_files and not {"large", "sources"} & set(labels):
                found[test["name"]] = (test["command"], labels, properties)
        return found

    def passes(self, test):
        command, _, properties = test
        environment = dict(one.split("=", 1) for one in properties.get("ENVIRONMENT", []))
        process = subprocess.Popen(
            command, cwd=properties.get("WORKING_DIRECTORY", str(TREE)), start_new_session=True,
            env={**self.environment, **environment}, stdin=subprocess.DEVNULL,
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        with self.lock:
            if self.failed:
                os.killpg(process.pid, signal.SIGKILL)
            self.running.add(process)
        usual = self.seconds.get(str(command))
        begun = time.monotonic()
        _, status = finish(process, 600 if usual is None else 30 + 10 * usual)
        with self.lock:
            self.running.discard(process)
        if usual is None and status == 0:
            self.seconds[str(command)] = time.monotonic() - begun
        return status in (0, properties.get("SKIP_RETURN_CODE", SKIPPED))

    def first_failure(self, tests, order):
        """Runs tests up to the first that fails, whose name it returns; None where all pass."""
        self.lock, self.running, self.failed = threading.Lock(), set(), None

        def run(name):
            if self.failed or self.passes(tests[name]):
                return
            with self.lock:
                if self.failed:
                    return
                self.failed = name
                for process in self.running:
                    os.killpg(process.pid, signal.SIGKILL)

        with concurrent.futures.ThreadPoolExecutor(self.jobs) as pool:
            list(pool.map(run, sorted(tests, key=order)))
        return self.failed


class Trial:
    """The copy with one change at a time, and what the suite says of it."""

    def __init__(self, jobs, trust):
        self.jobs, self.trust = jobs, trust
        HOME.mkdir(parents=True, exist_ok=True)
        self.content = copy_sources()
        self.noticed = collections.Counter()
        self.builds = {}

    def build_of(self, preset):
        """The preset's build, whose suite has passed without any change."""
        if preset in self.builds:
            return self.builds[preset]
        build = Build(preset, self.jobs)
        known = HOME / f"{preset}.json"
        old = json.loads(known.read_text()) if known.exists() else {"content": "", "seconds": {}}
        build.seconds = old["seconds"]
        if old["content"] != self.content and not self.trust:
            output, status = build.build()
            if status != 0:
                sys.exit(f"mutate: the unchanged sources do not build ({preset}):\n{output[-4000:]}")
            failed = build.first_failure(build.tests(), lambda name: name)
            if failed:
                sys.exit(f"mutate: {failed} fails ({preset}) without any change")
            known.write_text(json.dumps({"content": self.content, "seconds": build.seconds}))
        self.builds[preset] = build
        return build

    def changed(self, mutation, work):
        path = TREE / mutation.path
        whole = path.read_text()
        path.write_text(mutation.applied(whole))
        try:
            return work()
        finally:
            path.write_text(whole)

    def verdict(self, preset, mutation):
        """The name of what noticed the change; None where nothing did."""
        build = self.build_of(preset)
        room = room_of(mutation.path)

        def order(name):
            command, labels, _ = tests[name]
            return (room not in labels, -self.noticed[room, name], build.seconds.get(str(command), 0))

        def run():
            nonlocal tests
            own = "korvex_cli" if room == "command_line" else f"{room}_test"
            has_own = any((TREE / "tests" / room).glob("**/*_test.cpp")) or room == "command_line"
            for target in [own, "all"] if has_own else ["all"]:
                output, status = build.build(target)
                if status != 0:
                    return "the compiler" if re.search(r"error:|\berror\b.*:", output) else "the build"
                tests = build.tests()
                if target != "all":
                    tests = {name: test for name, test in tests.items() if room in test[1]}
                failed = build.first_failure(tests, order)
                if failed:
                    self.noticed[room, failed] += 1
                    return failed
            return None

        tests = {}
        return self.changed(mutation, run)


def all_mutations(pattern):
    found = []
    sources = [path for room in ("src", "cli") for path in (TOP / room).rglob("*.[ch]pp")]
    for path in sorted(sources):
        name = str(path.relative_to(TOP))
        if name not in mutations.TABLES and re.search(pattern, name):
            found += mutations.mutations_of(name, path.read_text())
    return found


def check_list(equivalents):
    possible = {mutation.key for mutation in all_mutations("")}
    stale = [key for key in equivalents if key not in possible]
    for path, before, after in stale:
        print(f"{LIST.name}: not a change of {path} any more:\n  - {before}\n  + {after}")
    return 1 if stale else 0


def survivors(trial, drawn, count):
    """Goes through the changes up to `count` that compile; those that the suite does not notice."""
    left, tried = [], 0
    for mutation in drawn:
        if tried == count:
            break
        by = trial.verdict("release", mutation)
        if by == "the compiler":
            continue
        tried += 1
        print(f"{tried}: {'noticed by ' + by if by else 'NOT NOTICED'}: {mutation}", flush=True)
        if by is None:
            left.append(mutation)
    return left, tried


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n", maxsplit=1)[0])
    parser.add_argument("pattern", nargs="?", default="", metavar="PATTERN")
    parser.add_argument("--count", type=int, default=20)
    parser.add_argument("--seed", type=int, default=random.SystemRandom().randrange(1 << 32))
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    parser.add_argument("--trust", action="store_true")
    parser.add_argument("--no-sanitizers", action="store_true")
    parser.add_argument("--check", action="store_true")
    options = parser.parse_args()
    equivalents = mutations.read_equivalents(LIST.read_text())
    if options.check:
        return check_list(equivalents)
    drawn = all_mutations(options.pattern)
    random.Random(options.seed).shuffle(drawn)
    drawn = [mutation for mutation in drawn if mutation.key not in equivalents]
    print(f"mutate: seed {options.seed}, {len(drawn)} changes to draw from", flush=True)
    trial = Trial(options.jobs, options.trust)
    left, tried = survivors(trial, drawn, options.count)
    unnoticed = []
    for mutation in left:
        by = None if options.no_sanitizers else trial.verdict("asan", mutation)
        print(f"under the sanitizers: {'noticed by ' + by if by else 'NOT NOTICED'}: {mutation}", flush=True)
        if by is None:
            unnoticed.append(mutation)
    print(f"mutate: {tried} changes, {len(unnoticed)} that nothing noticed (seed {options.seed})")
    for mutation in unnoticed:
        print(mutation)
    return 1 if unnoticed else 0


if __name__ == "__main__":
    sys.exit(main())
