#!/usr/bin/python3
"""Compares the arrows between the rooms with the table in CONTRIBUTING.md.

usage: check_layers.py [--objects DIRECTORY]

The table names every room of src/ and the rooms that it stands on, all of them above it. An arrow
is an include or, with the object files below DIRECTORY, a symbol that one room uses and another
defines: includes of the public headers hide who calls whom. Fails on an arrow that the table does
not have; with the objects also on one that only the table has. The rooms of the exported interface
and those of the engine may have no arrow between them. Nothing reaches into a room by a path
through "..". Exit status 1 when something is wrong.
"""
import argparse
import collections
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
MAP = "CONTRIBUTING.md"
ROW = re.compile(r"^\| `src/([\w/]*\w)` \|([^|]*)\|", re.MULTILINE)
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)
SOURCES = ("*.h", "*.hpp", "*.cpp")
FRONTS = {"cli": "classic/", "python": ""}  # with the one directory below them, if any

# The public headers, which may include one another from left to right only.
PUBLIC = ["korvex/", "korvex.h", "preprocess.h", "korvex/export.hpp"]
EXPORTED = {"preprocess", "records", "crossings", "simplify", "alexander"}
EXPORTED |= {"recognition", "determination", "fingerprint", "api"}


def table():
    """{room: rooms that it stands on}, from the map, in its order."""
    rows = ROW.findall((ROOT / MAP).read_text())
    return {room: re.findall(r"`([\w/]+)`", others) for room, others in rows}


def house(room):
    return "engine" if room.startswith("engine/") else "exported" if room in EXPORTED else None


def errors_of(rooms):
    """What is wrong with the table itself."""
    above = set()
    for room, others in rooms.items():
        for other in others:
            if other not in above:
                yield f"{MAP}: '{room}' stands on '{other}', which is not above it"
            if house(other) not in (None, house(room)):
                yield f"{MAP}: '{room}' and '{other}' are of two houses"
        above.add(room)


def room_of(path):
    """The room of a file, from its path below src/: two levels deep in the engine."""
    return "/".join(path.parts[: 2 if path.parts[0] == "engine" else 1])


def rank(name):
    return next(i for i in reversed(range(len(PUBLIC))) if name.startswith(PUBLIC[i]))


def is_public(name):
    return name.startswith(tuple(PUBLIC))


def complaint(source, included):
    """Why `source` (a path below the root) may not include `included` at all, or None."""
    if ".." in pathlib.PurePath(included).parts:
        return "reaches out of its room"
    top = source.parts[0]
    if top == "include":
        if not is_public(included):
            return "a public header includes a private one"
        name = source.relative_to("include").as_posix()
        return "points up" if rank(included) < rank(name) else None
    if is_public(included):
        exported = included in ("korvex.h", "preprocess.h")
        room = room_of(source.relative_to("src")) if top == "src" else None
        if exported and room is not None and house(room) != "exported":
            return "the exported interface is another house"
        return "points up" if room == "preprocess" and included == "korvex.h" else None
    if top in FRONTS and "/" in included and not included.startswith(FRONTS[top] or "/"):
        return "a front uses the public headers"
    return None


def includes():
    for top in ("include", "src", *FRONTS):
        for pattern in SOURCES:
            for path in sorted((ROOT / top).rglob(pattern)):
                for included in INCLUDE.findall(path.read_text()):
                    yield path.relative_to(ROOT), included


def included_arrows():
    """{(room, room it includes): where}"""
    arrows = {}
    for source, included in includes():
        if source.parts[0] == "src" and not is_public(included):
            arrow = room_of(source.relative_to("src")), room_of(pathlib.PurePath(included))
            arrows.setdefault(arrow, f"{source} includes {included}")
    return arrows


def room_of_object(path):
    """The room of an object file of one source, or of all of a room that are compiled together."""
    together = re.fullmatch(r"unity_(\w+(?:-\w+)?)_cxx\.cxx\.o", path.name)
    return together[1].replace("-", "/") if together else room_of(path)


def symbols(directory):
    """Of every object file of a room: (room, symbol, its kind as nm tells it)."""
    objects = sorted(directory.glob("*_objects.dir/**/*.o"))
    if not objects:
        sys.exit(f"{directory}: no object files; build first")
    command = ["nm", "-A", "-P", *map(str, objects)]
    result = subprocess.run(command, capture_output=True, text=True, check=True)
    for line in result.stdout.splitlines():
        path, name, kind = re.match(r"(.+\.o): (\S+) (\S)", line).groups()
        below = pathlib.Path(path).relative_to(directory).parts[1:]
        yield room_of_object(pathlib.PurePath(*below)), name, kind


def used_arrows(directory):
    """{(room, room whose symbol it uses): the symbol}

    What the compiler puts into every room that uses it (inline functions, templates) has no home;
    but an explicit instantiation of a template of this project's is as weak and has one.
    """
    homes = collections.defaultdict(set)
    used = set()
    for room, name, kind in symbols(directory):
        if kind == "U":
            used.add((room, name))
        elif kind in "TDBR" or (kind in "VW" and name.startswith(("_ZN6korvex", "_ZNK6korvex"))):
            homes[name].add(room)
    return {
        (room, home): f"uses {name}"
        for room, name in sorted(used)
        for home in homes[name]
        if room not in homes[name]
    }


def main(arguments):
    rooms = table()
    wrong = list(errors_of(rooms))
    for source, included in includes():
        if why := complaint(source, included):
            wrong.append(f'{source}: #include "{included}": {why}')
    arrows = included_arrows()
    if arguments.objects:
        arrows |= used_arrows(arguments.objects)
    for (room, other), where in sorted(arrows.items()):
        if room != other and other not in rooms.get(room, ()):
            wrong.append(f"{MAP}: '{room}' is not said to stand on '{other}': {where}")
    built = {room_of(path.relative_to(ROOT / "src")) for path in (ROOT / "src").rglob("*.cpp")}
    for room in sorted(built - set(rooms)):
        wrong.append(f"{MAP}: the room '{room}' has no place in the table of arrows")
    if arguments.objects:
        for room, others in rooms.items():
            for other in others:
                if (room, other) not in arrows:
                    wrong.append(f"{MAP}: '{room}' does not stand on '{other}': take it out")
    print(*wrong, sep="\n", end="\n" if wrong else "")
    print(f"{len(arrows)} arrows between {len(rooms)} rooms")
    return 1 if wrong or not arrows else 0


if __name__ == "__main__":
    parser = argparse.ArgumentParser(description=__doc__.split("\n", 1)[0])
    parser.add_argument("--objects", type=pathlib.Path, metavar="DIRECTORY")
    sys.exit(main(parser.parse_args()))
