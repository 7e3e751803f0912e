#!/usr/bin/python3
"""Compares what a shared library exports with what the headers declare for it, both ways.

usage: check_exports.py MACRO LIBRARY HEADER... [-- COMPILER-OPTION...]

Declared are the functions, methods and variables that the headers mark with MACRO and neither
delete nor give a body, with their parameter types; exported is what `nm -D --defined-only` lists. A
function without any mark is out of every host's reach and reported. Any library may also export the type
information and the virtual table of a class with a mark. Exit status 1 when the two differ, 2 when
a header does not parse or nothing is declared.

The headers are parsed together. Each has to stand alone as well: one that is the first include of
some source does, or that source would not compile, and the others are parsed by themselves.
"""
import functools
import pathlib
import re
import subprocess
import sys

from clang import cindex
from clang.cindex import AvailabilityKind, CursorKind

CLASSES = {CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL}
SCOPES = CLASSES | {CursorKind.NAMESPACE, CursorKind.LINKAGE_SPEC, CursorKind.UNEXPOSED_DECL}
ENTITIES = {
    CursorKind.FUNCTION_DECL,
    CursorKind.CXX_METHOD,
    CursorKind.CONSTRUCTOR,
    CursorKind.DESTRUCTOR,
    CursorKind.CONVERSION_FUNCTION,
    CursorKind.VAR_DECL,
}


class Declarations:
    """Mangled names of what must be exported, and demangled ones of what may be."""

    def __init__(self, macro):
        self.macro = macro
        self.required = set()
        self.allowed = set()
        self.unreachable = set()

    def marked(self, cursor):
        """Whether the declaration's visibility is spelt as the macro."""
        return any(
            child.kind == CursorKind.VISIBILITY_ATTR and self.spelt_at(child.location)
            for child in cursor.get_children()
        )

    @staticmethod
    def marked_at_all(cursor):
        return any(child.kind == CursorKind.VISIBILITY_ATTR for child in cursor.get_children())

    def spelt_at(self, location):
        return bytes_of(location.file.name)[location.offset :].startswith(self.macro.encode())

    def collect(self, scope, headers, inherited=False):
        for cursor in scope.get_children():
            file = cursor.location.file
            if file is None or absolute(file.name) not in headers:
                continue
            mine = inherited or self.marked(cursor)
            is_function = cursor.kind == CursorKind.FUNCTION_DECL
            if is_function and not cursor.is_definition() and not self.marked_at_all(cursor):
                self.unreachable.add(cursor.mangled_name)
            if cursor.kind in SCOPES:
                if cursor.kind in CLASSES and self.marked_at_all(cursor):
                    self.allow_class(cursor)
                self.collect(cursor, headers, mine and cursor.kind in CLASSES)
            elif cursor.kind in ENTITIES and mine:
                deleted = cursor.availability == AvailabilityKind.NOT_AVAILABLE
                bodied = cursor.is_definition() or cursor.is_default_method() or deleted
                if not bodied:
                    self.required.add(cursor.mangled_name)

    def allow_class(self, cursor):
        for what in ("typeinfo for ", "typeinfo name for ", "vtable for "):
            self.allowed.add(what + cursor.type.spelling)


@functools.cache
def bytes_of(file):
    return pathlib.Path(file).read_bytes()


@functools.cache
def absolute(file):
    return str(pathlib.Path(file).resolve())


def parse(headers, options):
    """The declarations of headers, included one after another."""
    unit = cindex.Index.create().parse(
        "headers.hpp",
        args=["-x", "c++-header", "-std=c++20", *options],
        unsaved_files=[("headers.hpp", "".join(f'#include "{h}"\n' for h in headers))],
    )
    errors = [d for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if errors:
        print(*errors, sep="\n", file=sys.stderr)
        sys.exit(2)
    return unit.cursor


def first_includes(root):
    """What the sources below the root include first, by the names that they use."""
    include = re.compile(r'^\s*#\s*include\s*["<]([^">]+)[">]', re.MULTILINE)
    sources = (path for room in ("src", "cli", "tests") for path in (root / room).rglob("*.cpp"))
    found = (include.search(path.read_text()) for path in sources)
    return {match[1] for match in found if match}


def demangled(names):
    text = "\n".join(sorted(names))
    result = subprocess.run(["c++filt"], input=text, capture_output=True, text=True, check=True)
    return set(result.stdout.splitlines()) - {""}


def exported(library):
    """Mangled names, without their version and without the marker symbols of versions."""
    command = ["nm", "-D", "--defined-only", "--format=posix", library]
    result = subprocess.run(command, capture_output=True, text=True, check=True)
    entries = (line.split() for line in result.stdout.splitlines())
    return {name.split("@")[0] for name, kind, *_ in entries if kind != "A"}


def main(arguments):
    if "--" in arguments:
        at = arguments.index("--")
        arguments, options = arguments[:at], arguments[at + 1 :]
    else:
        options = []
    macro, library, *headers = arguments
    headers = [absolute(header) for header in headers]
    declarations = Declarations(macro)
    declarations.collect(parse(headers, options), set(headers))
    shown_to_stand_alone = first_includes(pathlib.Path(__file__).resolve().parent.parent)
    for header in headers:
        if header.rpartition("/include/")[2] not in shown_to_stand_alone:
            parse([header], options)
    required = demangled(declarations.required)
    if not required:
        print(f"{headers}: nothing is marked {macro}", file=sys.stderr)
        return 2
    found = demangled(exported(library))
    missing = required - found
    surplus = found - required - declarations.allowed
    unreachable = demangled(declarations.unreachable)
    for name in sorted(unreachable):
        print(f"declared without a mark: {name}")
    for name in sorted(missing):
        print(f"declared but not exported by {library}: {name}")
    for name in sorted(surplus):
        print(f"exported by {library} but not declared: {name}")
    print(f"{len(required)} declared, {len(found)} exported")
    return 1 if missing or surplus or unreachable else 0


if __name__ == "__main__":
    if len(sys.argv) < 4:
        sys.exit(__doc__)
    sys.exit(main(sys.argv[1:]))
