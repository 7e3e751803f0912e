#!/usr/bin/python3
"""Checks that no single statement stands in braces.

usage: check_braces.py [--fix] CLANG_FORMAT SOURCE...

A body of one statement has braces only where the statement itself, or another body of the same chain
of if and else, needs them. clang-format 14 can take such braces away but then breaks lines in other
places than it does without, so its two answers are compared without white space. With --fix the
sources are changed.
"""
import argparse
import concurrent.futures
import itertools
import os
import pathlib
import subprocess
import sys

STYLE = "{BasedOnStyle: InheritParentConfig, RemoveBracesLLVM: true}"


def formatted(command, text, source):
    result = subprocess.run([*command, f"--assume-filename={source}"], input=text,
                            capture_output=True, text=True, check=True)
    return result.stdout


def without_braces(clang_format, source):
    return formatted([clang_format, f"--style={STYLE}"], source.read_text(), source)


def visible(text):
    """The characters that are no white space, each with its line."""
    return [(c, number) for number, line in enumerate(text.splitlines(), 1)
            for c in line if not c.isspace()]


def first_difference(clang_format, source):
    """The first line that has braces too many, or None."""
    pairs = itertools.zip_longest(visible(source.read_text()),
                                  visible(without_braces(clang_format, source)), fillvalue=("", 0))
    return next((given[1] for given, wanted in pairs if given[0] != wanted[0]), None)


def fix(clang_format, source):
    text = without_braces(clang_format, source)
    source.write_text(formatted([clang_format], formatted([clang_format], text, source), source))


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--fix", action="store_true")
    parser.add_argument("clang_format")
    parser.add_argument("sources", nargs="+", type=pathlib.Path)
    arguments = parser.parse_args()
    with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        lines = list(pool.map(lambda source: first_difference(arguments.clang_format, source),
                              arguments.sources))
    found = [(source, line) for source, line in zip(arguments.sources, lines) if line is not None]
    for source, line in found:
        if arguments.fix:
            fix(arguments.clang_format, source)
        else:
            print(f"{source}:{line}: braces around a single statement")
    sys.exit(1 if found and not arguments.fix else 0)


if __name__ == "__main__":
    main()
