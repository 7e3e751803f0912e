#!/usr/bin/python3
"""Holds the table of fuzz targets in fuzz/README.md against the headers and the targets.

usage: check_fuzz_table.py

- Every fuzz/NAME_fuzz.cpp has one row, and every row a target.
- Every function that a row names stands in a public header, and its target calls it.
- Every function that a public header exports stands in the table, or below it among those that
  have no target. Methods go with their class.

Exit status 1 when one of these fails.
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
NAME = re.compile(r"`([A-Za-z_][A-Za-z_0-9:]*)")
ROW = re.compile(r"^\| (.+?) \| `([a-z_]+)` \| .+ \|$", re.MULTILINE)
EXPORTED = re.compile(r"^(?:KORVEX|PREPROCESS)_API\s[^;(]*?\b(\w+)\(", re.MULTILINE)


def names_in(text):
    """The functions in backticks, without the classes that they belong to."""
    return {name.rpartition("::")[2] for name in NAME.findall(text)}


def main():
    readme = (ROOT / "fuzz" / "README.md").read_text()
    table, _, rest = readme.partition("\nWithout a target")
    headers = [ROOT / "include" / name for name in ("korvex.h", "preprocess.h")]
    headers += sorted((ROOT / "include" / "korvex").glob("*.hpp"))
    declared = "\n".join(header.read_text() for header in headers)
    exported = set(EXPORTED.findall(declared))
    targets = {path.name[: -len("_fuzz.cpp")]: path for path in (ROOT / "fuzz").glob("*_fuzz.cpp")}
    rows = ROW.findall(table)
    errors = []
    if not rows or not exported:
        errors.append("nothing to compare")
    for target in sorted({target for _, target in rows} ^ set(targets)):
        errors.append(f"{target}: a row without a target, or a target without a row")
    for target in sorted({t for _, t in rows if [u for _, u in rows].count(t) > 1}):
        errors.append(f"{target}: more than one row")
    for functions, target in rows:
        source = targets[target].read_text() if target in targets else ""
        for name in sorted(names_in(functions)):
            if not re.search(rf"\b{name}\b", declared):
                errors.append(f"{target}: `{name}` stands in no public header")
            elif not re.search(rf"\b{name}\b", source):
                errors.append(f"{target}: `{name}` is not called by {target}_fuzz.cpp")
    named = names_in(table) | names_in(rest)
    errors += [f"`{name}` is not told of" for name in sorted(exported - named)]
    gone = names_in(rest) - set(re.findall(r"\w+", declared))
    errors += [f"`{name}` stands in no public header" for name in sorted(gone)]
    print(*errors, sep="\n", end="\n" if errors else "")
    print(f"{len(exported)} exported functions, {len(rows)} targets")
    return 1 if errors else 0


if __name__ == "__main__":
    sys.exit(main())
