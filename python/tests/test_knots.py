"""Diagrams, invariants, names, the catalogue."""
from __future__ import annotations

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex

TREFOIL = "O1+U2+O3+U1+O2+U3+"


def test_the_invariants_of_the_catalogue_are_those_of_its_diagrams() -> None:
    for knot in korvex.catalogue():
        if knot.crossings > 7:
            continue
        diagram = knot.diagram
        assert korvex.alexander(diagram, threads=1) == knot.alexander
        assert korvex.jones(diagram) == knot.jones and korvex.homfly(diagram) == knot.homfly
        assert korvex.signature(diagram) == knot.signature
        assert korvex.identify(diagram).name == knot.name
        assert abs(sum(c * (-1) ** i for i, c in enumerate(knot.alexander))) == knot.determinant


def test_one_knot_in_every_form_has_one_name(trefoil: NDArray[np.float64]) -> None:
    diagram = korvex.Diagram.of_gauss_code(TREFOIL)
    forms = [
        korvex.identify(diagram),
        korvex.identify(gauss=TREFOIL),
        korvex.identify(pd=diagram.pd),
        korvex.identify(pd=np.array(diagram.pd)),  # type: ignore[arg-type]
        korvex.identify(positions=trefoil),
        korvex.identify(korvex.Diagram.of_polygon(trefoil, (0.1, 0.2, 1))),
    ]
    assert {form.name for form in forms} == {"+3_1"} and all(form.proven for form in forms)
    assert korvex.identify(diagram.mirror()).name == "-3_1"


def test_sums_are_told_by_their_summands() -> None:
    trefoil = korvex.Diagram.of_gauss_code(TREFOIL)
    found = korvex.identify(trefoil.connected_sum(trefoil.mirror()))
    assert found.name == "+3_1#-3_1" and found.candidates == ("+3_1#-3_1",)


def test_only_one_form_is_taken() -> None:
    with pytest.raises(korvex.InvalidArgument, match="one of"):
        korvex.identify(pd="", gauss="")
    with pytest.raises(korvex.InvalidArgument, match="one of"):
        korvex.jones()
    with pytest.raises(korvex.InvalidArgument, match="Diagram"):
        korvex.signature(TREFOIL)  # type: ignore[arg-type]


@pytest.mark.parametrize("code", ["O1+U1-", "O1+", "rubbish"])
def test_codes_that_cannot_be_drawn_are_refused(code: str) -> None:
    with pytest.raises(korvex.BadInput):
        korvex.identify(gauss=code)
    with pytest.raises(korvex.BadInput):
        korvex.identify(pd=[[1, 2, 3, 4]])


def test_names_are_values() -> None:
    name = korvex.KnotName("-5_2#+3_1")
    assert name == korvex.KnotName("+3_1#-5_2") and hash(name) == hash(korvex.KnotName("+3_1#-5_2"))
    assert korvex.KnotName() == korvex.KnotName("0_1") and korvex.KnotName().is_unknot
    assert korvex.KnotName.sum([korvex.KnotName("3_1")] * 2).crossings == 6
    choice = korvex.KnotName.one_of([korvex.KnotName("10_132"), korvex.KnotName("5_1")])
    assert choice.is_choice and [str(some) for some in choice.choices] == ["5_1", "10_132"]
    assert korvex.KnotName("3_1#3_1").covers(korvex.KnotName("+3_1#-3_1"))
    assert korvex.KnotName("+3_1").hand == 1 and korvex.KnotName("-3_1").hand == -1
    assert str(korvex.KnotName.unknown(255)) == "?key:ff"
    with pytest.raises(korvex.InvalidArgument):
        korvex.KnotName("trefoil")
    with pytest.raises(korvex.InvalidArgument):
        korvex.knot_type("11_1")


def test_types_have_colours_of_their_own() -> None:
    small = [knot for knot in korvex.catalogue() if knot.crossings <= 8]
    colours = {knot.colour for knot in small}
    assert len(colours) == len(small) and all(len(colour) == 7 for colour in colours)


def test_directions_are_unit_vectors() -> None:
    ends = korvex.sampled_ends("two-points", "lattice", 50, 3, 0)
    assert ends.shape == (50, 2, 3) and np.allclose(np.linalg.norm(ends, axis=2), 1)
    low, high = korvex.wilson_interval(50, 100)
    assert low < 0.5 < high and korvex.wilson_interval(0, 0) == (0, 1)


def test_the_cache_can_be_limited_and_forgotten(trefoil: NDArray[np.float64]) -> None:
    cache = korvex.identity_cache
    before = cache.most_bytes
    korvex.knot(trefoil)
    cache.forget()
    assert cache.diagrams == 0
    cache.most_bytes = 0
    assert korvex.knot(trefoil, closure="ring").type == "+3_1" and cache.diagrams == 0
    cache.most_bytes = before
