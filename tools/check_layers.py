#!/usr/bin/python3
"""Reads the includes of the project and fails on an arrow that points up.

usage: check_layers.py [ROOT]

A room may include itself and the rooms that its entry in BELOW names; nothing reaches into a room
by a path through "..". Exit status 1 when an include breaks this, or when a room has no entry.
"""
import pathlib
import re
import sys

INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
SOURCES = ("*.h", "*.hpp", "*.cpp")

# The public headers, which may include one another from right to left only.
PUBLIC = ["korvex/", "korvex.h", "preprocess.h"]

GROUND = ["simd", "geometry", "read"]  # what libkorvex and libpreprocess each hold a copy of
KERNELS = ["records", "crossings", "simplify", "alexander", "recognition"]
ENGINE = [
    "engine/run",  # threads, progress and cancellation, which know nothing of knots
    "engine/diagram",
    "engine/projection",
    "engine/invariants",
    "engine/catalogue",
    "engine/identify",
    "engine/sphere",  # arcs of great circles, and the faces they cut the sphere into
    "engine/closures",
    "engine/fingerprint",
    "engine/report",
]


def below():
    """{room: rooms that it may include}, public headers left out."""
    allowed = {"records": set()}
    for stack in (
        KERNELS + ["determination", "fingerprint", "api"],
        ["records"] + ENGINE,
        GROUND + ["preprocess"],
    ):
        for position, room in enumerate(stack):
            allowed.setdefault(room, set()).update(stack[:position])
    for room in ENGINE:
        allowed[room].update(KERNELS + ["simd", "geometry"])
    for room in KERNELS:
        allowed[room].add("simd")
    # A front talks to the libraries through their public headers.
    allowed["cli"] = set()
    allowed["python"] = set()
    return allowed


BELOW = below()


def room_of(path):
    """The room of a source file, from its path below the root: two levels deep in the engine."""
    parts = path.parts
    if parts[0] == "src":
        return "/".join(parts[1:3] if parts[1] == "engine" else parts[1:2])
    return parts[0]


def is_public(name):
    return name.startswith(tuple(PUBLIC))


def rank(name):
    return next(i for i, public in enumerate(PUBLIC) if name.startswith(public))


def complaint(source, included):
    """Why `source` (a path below the root) may not include `included`, or None."""
    if ".." in pathlib.PurePath(included).parts:
        return "reaches out of its room"
    room = room_of(source)
    if room == "include":
        name = source.relative_to("include").as_posix()
        if not is_public(included):
            return "a public header includes a private one"
        return "points up" if rank(included) < rank(name) else None
    if room not in BELOW:
        return f"the room '{room}' has no place in the order"
    if is_public(included):
        wrong = room in GROUND + ["preprocess"] and included == "korvex.h"
        return "points up" if wrong else None
    if room in ("cli", "python") and ("/" not in included or included.startswith("classic/")):
        return None
    other = room_of(pathlib.PurePath("src") / included)
    return None if other == room or other in BELOW[room] else f"points up to '{other}'"


def main(root):
    files = [
        path
        for directory in ("include", "src", "cli", "python")
        for pattern in SOURCES
        for path in sorted((root / directory).rglob(pattern))
    ]
    includes = [
        (path.relative_to(root), included)
        for path in files
        for included in INCLUDE.findall(path.read_text())
    ]
    complaints = [(s, i, why) for s, i in includes if (why := complaint(s, i))]
    for source, included, why in complaints:
        print(f'{source}: #include "{included}": {why}')
    print(f"{len(includes)} includes in {len(files)} files")
    return 1 if complaints or not includes else 0


if __name__ == "__main__":
    here = pathlib.Path(__file__).resolve().parent.parent
    sys.exit(main(pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here))
