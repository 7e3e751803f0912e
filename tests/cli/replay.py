#!/usr/bin/python3
"""Replays the terminal sessions in Markdown files and compares what they show.

usage: replay.py [--update] BIN-DIRECTORY FILE...

A session is a fenced block of kind `console`. A line `$ COMMAND` is run by bash, `> ` lines go on
with the command before them; the other lines are what it prints on both streams. A line `...`
stands for any lines; `[exit status N]` follows a command that does not end with 0. The blocks of a
file run one after another in a new directory, where `data` is the project's data and `korvex` the
program in BIN-DIRECTORY.

--update puts what the commands print now into the files; a session with `...` that still holds is
left as it is.

A fenced block after a line `<!-- FILE -->` must repeat that file of the project.
"""
import difflib
import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
BLOCK = re.compile(r"^```console\n(.*?)^```$", re.MULTILINE | re.DOTALL)
QUOTE = re.compile(r"^<!-- (\S+) -->\n```\w*\n(.*?)^```$", re.MULTILINE | re.DOTALL)
SECONDS_AT_MOST = 300


def steps_of(block):
    """[(command as shown, command, lines expected)] of a session."""
    steps = []
    for line in block.splitlines():
        if line.startswith("$ "):
            steps.append([[line], line[2:], []])
        elif not steps:
            sys.exit(f"a session begins with a command, not with: {line}")
        elif line.startswith("> ") and not steps[-1][2]:
            steps[-1][0].append(line)
            steps[-1][1] += "\n" + line[2:]
        else:
            steps[-1][2].append(line)
    return steps


def matches(expected, shown):
    """Whether the lines shown are the expected ones, `...` standing for any."""
    pattern = "".join("(?:.*\n)*" if line == "..." else re.escape(line) + "\n" for line in expected)
    return re.fullmatch(pattern, "".join(line + "\n" for line in shown)) is not None


def run(command, directory, environment):
    result = subprocess.run(
        ["bash", "-c", command],
        cwd=directory,
        env=environment,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=subprocess.STDOUT,
        timeout=SECONDS_AT_MOST,
        check=False,
    )
    shown = result.stdout.decode(errors="replace").splitlines()
    if result.returncode != 0:
        shown.append(f"[exit status {result.returncode}]")
    return shown


class Replay:
    """The sessions of one file, in a directory of their own."""

    def __init__(self, path, programs, directory):
        self.path = path
        self.directory = directory
        self.environment = dict(os.environ, LC_ALL="C.UTF-8", TMPDIR=directory)
        self.environment["PATH"] = f"{pathlib.Path(programs).resolve()}:{os.environ['PATH']}"
        self.commands = 0
        self.differences = []
        (pathlib.Path(directory) / "data").symlink_to(ROOT / "data")

    def block_as_it_is(self, found):
        lines = []
        for prompt, command, expected in steps_of(found.group(1)):
            shown = run(command, self.directory, self.environment)
            self.commands += 1
            lines += prompt
            if matches(expected, shown):
                lines += expected
            else:
                lines += shown
                self.differences.append((prompt, expected, shown))
        return "```console\n" + "".join(line + "\n" for line in lines) + "```"

    def text_as_it_is(self):
        return BLOCK.sub(self.block_as_it_is, self.path.read_text())


def misquoted(path):
    """The files of the project that a document no longer repeats."""
    quotes = QUOTE.findall(path.read_text())
    return [name for name, text in quotes if (ROOT / name).read_text() != text]


def replay(path, programs, update):
    with tempfile.TemporaryDirectory() as directory:
        session = Replay(path, programs, directory)
        text = session.text_as_it_is()
    if update:
        path.write_text(text)
        return True
    for prompt, expected, shown in session.differences:
        print(f"{path}: {prompt[0]}")
        print(*difflib.unified_diff(expected, shown, "expected", "shown", lineterm=""), sep="\n")
    wrong_quotes = misquoted(path)
    for name in wrong_quotes:
        print(f"{path}: the block after <!-- {name} --> is not that file any more")
    print(f"{path}: {session.commands} commands, {len(session.differences)} different")
    return session.commands > 0 and not session.differences and not wrong_quotes


def main(arguments):
    update = arguments[:1] == ["--update"]
    programs, *files = arguments[update:]
    results = [replay(pathlib.Path(name), programs, update) for name in files]
    return 0 if results and all(results) else 1


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1:]))
