"""The engine's public names against the package: bound, or left out for a reason."""
from __future__ import annotations

from typing import Any, Dict, Iterator, Set

import pytest
from bound_names import FIELDS, HEADERS, NAMES
from classic_names import LEFT_OUT
from conftest import ROOT

import korvex
from korvex import classic

cindex = pytest.importorskip("clang.cindex")


def parsed(text: str) -> Any:
    options = ["-std=c++20", f"-I{ROOT / 'include'}"]
    unit = cindex.Index.create().parse("all.cpp", args=options, unsaved_files=[("all.cpp", text)])
    assert not [found for found in unit.diagnostics if found.severity >= cindex.Diagnostic.Error]
    return unit.cursor


def declared() -> Dict[str, str]:
    """Every public name of the engine's headers, without operators, and the header that it stands in."""
    headers = sorted((ROOT / "include" / "korvex").glob("*.hpp"))
    return dict(names_in(parsed("".join(f'#include "korvex/{header.name}"\n' for header in headers)), ""))


def exported() -> Set[str]:
    """Functions and records of the exported interface."""
    kinds = (cindex.CursorKind.FUNCTION_DECL, cindex.CursorKind.STRUCT_DECL)
    return {
        cursor.spelling
        for cursor in parsed('#include "korvex.h"\n').get_children()
        if cursor.kind in kinds and cursor.location.file.name.endswith(("/korvex.h", "/preprocess.h"))
    }


def names_in(scope: Any, prefix: str) -> Iterator[Any]:
    kinds = cindex.CursorKind
    for cursor in scope.get_children():
        header = cursor.location.file.name if cursor.location.file else ""
        name = prefix + cursor.spelling
        if cursor.kind == kinds.NAMESPACE:
            if cursor.spelling == "korvex":
                yield from names_in(cursor, prefix)
        elif "/include/korvex/" not in header or "operator" in name or cursor.spelling == "hash":
            continue
        elif prefix and cursor.access_specifier != cindex.AccessSpecifier.PUBLIC:
            continue
        elif cursor.kind in (kinds.CLASS_DECL, kinds.STRUCT_DECL):
            if cursor.is_definition():
                yield name, header.rpartition("/")[2]
                yield from names_in(cursor, f"{name}.")
        elif cursor.kind in (kinds.FUNCTION_DECL, kinds.CXX_METHOD, kinds.ENUM_DECL) or (
            not prefix and cursor.kind in (kinds.VAR_DECL, kinds.TYPE_ALIAS_DECL)
        ):
            yield name, header.rpartition("/")[2]


def reason_or_place(name: str, header: str) -> str:
    """What the table says of a name; a method of a type that is left out goes with it."""
    if header in HEADERS:
        return HEADERS[header]
    for part in (name, name.partition(".")[0]):
        found = NAMES.get(part, "")
        if found and (part == name or found.startswith("-") or part.endswith("Report") or name in FIELDS):
            return found
    if name.endswith("_formats") or name == "KnotName.Prime":
        return "- for the engine's own parts"
    return ""


def test_every_public_name_is_bound_or_left_out_for_a_reason() -> None:
    names = declared()
    assert len(names) > 150
    missing = [name for name, header in names.items() if not reason_or_place(name, header)]
    assert not missing


def test_the_table_has_no_names_that_there_are_not() -> None:
    assert not set(NAMES) - set(declared())


@pytest.mark.parametrize("place", sorted({some for some in NAMES.values() if not some.startswith("-")}))
def test_what_is_bound_is_there_and_documented(place: str) -> None:
    found: Any = korvex
    for name in place.split("."):
        found = getattr(found, name)
    assert found is not None
    if "." not in place and place != "identity_cache":
        assert place in korvex.__all__


def test_fields_of_types_are_there(protein: korvex.Chain) -> None:
    found = korvex.fingerprint(protein, step=20, directions=3)
    assert all(hasattr(found, field) for field in FIELDS.values())


def test_the_exported_interface_is_bound_or_left_out_for_a_reason() -> None:
    names = exported()
    assert len(names) > 80 and "knotsArray" in dir(classic)
    bound = {name for name in names if hasattr(classic, name)}
    assert bound | set(LEFT_OUT) == names and not bound & set(LEFT_OUT)
    assert all(LEFT_OUT.values())
