#!/usr/bin/python3
"""Runs clang-tidy over the sources that ship, and remembers the clean ones.

usage: tidy.py BUILD-DIRECTORY [PATTERN]

Of src/ and cli/, the files of BUILD-DIRECTORY's compile_commands.json whose path matches PATTERN
(a regular expression). A file found clean is not looked at again until its preprocessed text, the
checks or clang-tidy change. Findings go to standard output; exit status 1 when there are any.
"""
import concurrent.futures
import hashlib
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIDY = "clang-tidy-14"
CACHE = pathlib.Path(os.environ.get("XDG_CACHE_HOME", pathlib.Path.home() / ".cache"), "korvex-tidy")


def checks():
    """What decides the findings besides the sources."""
    version = subprocess.run([TIDY, "--version"], capture_output=True, check=True).stdout
    return version + (ROOT / ".clang-tidy").read_bytes()


def key_of(entry, common):
    """A name for everything that clang-tidy would see of a source."""
    command = shlex.split(entry["command"])
    at = command.index("-o")
    command[at : at + 2] = ["-E", "-C", "-P"]
    text = subprocess.run(command, cwd=entry["directory"], capture_output=True, check=True).stdout
    return hashlib.sha256(common + text).hexdigest()


def findings_in(entry, build, common):
    """What clang-tidy says about a source; empty when it is clean."""
    clean = CACHE / key_of(entry, common)
    if clean.exists():
        return ""
    command = [TIDY, "-quiet", "-p", build, entry["file"]]
    result = subprocess.run(command, capture_output=True, text=True, check=False)
    if result.returncode == 0:
        clean.touch()
        return ""
    return result.stdout or result.stderr


def main(build, pattern):
    entries = [
        entry
        for entry in json.loads((pathlib.Path(build) / "compile_commands.json").read_text())
        if pathlib.Path(entry["file"]).relative_to(ROOT).parts[0] in ("src", "cli")
        and re.search(pattern, entry["file"])
    ]
    CACHE.mkdir(parents=True, exist_ok=True)
    common = checks()
    found = 0
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        runs = [pool.submit(findings_in, entry, build, common) for entry in entries]
        for run in concurrent.futures.as_completed(runs):
            if run.result():
                found += 1
                print(run.result(), flush=True)
    print(f"clang-tidy: {len(entries)} files, {found} with findings")
    return 1 if found or not entries else 0


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1], sys.argv[2] if len(sys.argv) == 3 else ""))
