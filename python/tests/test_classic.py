"""The exported interface in Python."""
from __future__ import annotations

import pathlib
from typing import Any, Callable, List

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex
from korvex import classic


def test_atoms_are_records(protein: korvex.Chain) -> None:
    chain, error = classic.ChainRead("data/proteins/2efv_CA.pdb")
    assert not error and chain.dtype == classic.ChainAtom and chain.dtype.itemsize == 32
    assert np.array_equal(chain, classic.atoms_of(protein))
    assert classic.ChainRead("nothing") [1] is True


def test_one_seed_gives_one_answer(protein: korvex.Chain) -> None:
    atoms = classic.atoms_of(protein)
    answers = []
    for _ in range(2):
        classic.srand(5)
        answers.append(classic.FindMajorKnot(atoms, closureType=2, trials=15))
    assert answers[0] == answers[1] and sum(answers[0]) == 15 and len(answers[0]) == 42


def test_knots_of_rings(trefoil: NDArray[np.float64]) -> None:
    ring = classic.atoms_of(trefoil)
    assert classic.knotsArray[classic.FindTheKnot(ring)][0] == "3_1"
    assert classic.FindTheKnot_poly(ring)[1] == [1, -1, 1]
    assert classic.FindTheKnot_poly_string(ring, 16, False) == "1 -1 1"
    assert len(classic.ChainReduce(ring, closed=True)) < len(ring)
    assert classic.ProjectChain(ring, 0, True).shape == (60, 6)
    assert classic.CalculatesPoly([1, -1, 1], -3) == 13 and classic.WhichKnot_OrdNr([1, -3, 1]) == 2


def test_a_name_can_be_found_step_by_step(trefoil: NDArray[np.float64]) -> None:
    ring = classic.atoms_of(trefoil)
    edges = classic.ProjectChain(ring, 0, True)
    crossings, problem = classic.FindAllCrossings(edges, chainIsClosed=True)
    assert problem == 0 and crossings.dtype == classic.Crossing and len(crossings) >= 3
    over, under = edges[crossings["overEdge"][0]], edges[crossings["underEdge"][0]]
    at_over, at_under, status = classic.TwoEdgesCrossed(over, under)
    assert status == 1 and classic.FirstEdgeOver(over, under, at_over, at_under)
    assert classic.TypeOfCrossing(over, under) == crossings["type"][0]
    matrix = classic.CreateFoxMatrix(crossings)
    assert len(matrix) == len(crossings) - 1 and all(len(row) == len(crossings) for row in matrix)
    poly = classic.NormalizePoly(classic.det_poly(matrix))
    assert poly == [1, -1, 1] == classic.FindTheKnotInParticularDirection_poly(ring, 0, 16)[1]
    assert classic.EqualPolies(poly, [1, -1, 1, 0]) and classic.NonZeroPoly(poly) and classic.WhichKnot(poly) == "3_1"
    assert classic.CalculatePoly(poly, -3) == 13 and classic.GivePolyByValM3(13) == poly
    square = np.array(classic.CreateFoxMatrix_double(crossings, -1))[:, :-1]
    assert classic.Normalize_det_double(np.linalg.det(square), 2) == 3


def test_names_of_counters_and_tallies() -> None:
    counts = [30] + [70] + [0] * 40
    assert classic.GiveTheNameOfKnot_allProj(counts) == classic.GiveTheNameOfKnot(counts) == "3_1(70%) 01(30%) "
    assert classic.GiveTheNameOfKnot_toMatrix(counts) == classic.GiveTheNameOfKnot_Matrix(counts)
    tally = {"1 -1 1": 7.0, "1": 3.0}
    assert classic.GiveThePolies_toDict(tally) == "{'1 -1 1': 0.7, '1': 0.3}"
    assert classic.GiveTheStrenghtOfKnot_poly(tally) == 70 and classic.removeTrailingZeros(1.5) == "1.5"
    assert classic.WhichKnotDouble_OrdNr(0.5) == 40 and classic.CompareEq(1.0, 1.5, 1.0)


def test_rings_of_single_precision(trefoil: NDArray[np.float64]) -> None:
    reduced = classic.ChainReduce(trefoil.astype(np.float32))
    assert reduced.dtype == np.float32 and reduced.shape[1] == 3 and 6 <= len(reduced) < len(trefoil)
    assert korvex.knot(reduced, closure="ring").type == "+3_1"
    triangle = [[0, 0, 0], [1, 0, 0], [0, 1, 0]]
    assert classic.intersection(triangle, [[0.2, 0.2, -1], [0.2, 0.2, 1]]) == 1
    assert classic.intersection(triangle, [[2, 2, -1], [2, 2, 1]]) == 0


def test_what_would_be_read_beyond_arguments_is_refused() -> None:
    crossing = np.zeros(1, dtype=classic.Crossing)
    crossing["overArc"] = 1
    refused: List[Callable[[], Any]] = [
        lambda: classic.CreateFoxMatrix(crossing),
        lambda: classic.det_poly([[[1], [1]], [[1]]]),
        lambda: classic.Normalize_det_double(3.0, 1),
        lambda: classic.TwoEdgesCrossed(np.zeros(5), np.zeros(6)),
        lambda: classic.FindAllCrossings(np.zeros((3, 5)), True),
        lambda: classic.intersection(np.zeros((2, 3)), np.zeros((2, 3))),
        lambda: classic.ChainReduce(np.zeros((4, 2))),
    ]
    for call in refused:
        with pytest.raises(ValueError):
            call()


def test_closures_add_atoms_without_numbers(protein: korvex.Chain) -> None:
    atoms = classic.atoms_of(protein)
    for close in (classic.CloseChain_OUT, classic.CloseChain_2points, classic.CloseChain_1point):
        closed, result = close(atoms)
        assert result == 0 and np.array_equal(closed[: len(atoms)], atoms)
        assert len(closed) > len(atoms) and not closed["id"][len(atoms) :].any()


def test_fingerprints_are_those_of_the_command_line(
    command_line: Callable[..., bytes], tmp_path: pathlib.Path
) -> None:
    written = tmp_path / "classic.txt"
    options = ("--step", "40", "--closure", "out", "--seed", "1")
    command_line("fingerprint", "--classic", "data/proteins/2efv_CA.pdb", "-o", str(written), *options)
    by_python = tmp_path / "python.txt"
    classic.srand(1)
    classic.FindKnotFingerprint(
        classic.ChainRead("data/proteins/2efv_CA.pdb")[0], str(by_python), 40, 30, 1, 1, 1, 0, False, 1 << 30
    )  # fmt: skip
    assert "3_1" in by_python.read_text()
    assert by_python.read_text() == written.read_text()


@pytest.mark.parametrize("chain", [np.zeros((2, 3)), "3_1"])
def test_what_is_no_chain_is_refused(chain: object) -> None:
    with pytest.raises((TypeError, ValueError)):
        classic.FindTheKnot(chain)
