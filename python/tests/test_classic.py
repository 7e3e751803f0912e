"""The exported interface in Python."""
from __future__ import annotations

import pathlib
from typing import Callable

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
