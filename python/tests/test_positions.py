"""Positions of every form, and what is refused."""
from __future__ import annotations

from typing import Any

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex
from korvex._positions import positions_of


@pytest.mark.parametrize("dtype", [np.float16, np.float32, np.float64, np.longdouble, ">f8", np.int32, np.uint8])
def test_takes_every_type_of_real_numbers(trefoil: NDArray[np.float64], dtype: Any) -> None:
    ring = np.round(30 * trefoil + 100).astype(dtype)
    assert korvex.knot(ring, closure="ring").type == "+3_1"


def layouts(ring: NDArray[np.float64]) -> "dict[str, Any]":
    wide = np.zeros((2 * len(ring), 6))
    wide[::2, ::2] = ring
    backwards = ring[::-1].copy()
    frozen = ring.copy()
    frozen.flags.writeable = False
    unaligned = np.frombuffer(b"x" + ring.tobytes(), dtype=np.uint8)[1:].view(np.float64).reshape(ring.shape)
    return {
        "C": ring,
        "Fortran": np.asfortranarray(ring),
        "strided": wide[::2, ::2],
        "negative strides": backwards[::-1],
        "read-only": frozen,
        "unaligned": unaligned,
        "transposed": np.ascontiguousarray(ring.T).T,
        "a list": ring.tolist(),
        "a chain": korvex.Chain(ring),
    }


@pytest.mark.parametrize("layout", list(layouts(np.zeros((4, 3)))))
def test_takes_every_layout(trefoil: NDArray[np.float64], layout: str) -> None:
    expected = korvex.knot(trefoil, closure="ring")
    assert korvex.knot(layouts(trefoil)[layout], closure="ring") == expected


class Group:
    """As the groups of atoms that other packages have."""

    def __init__(self, positions: Any) -> None:
        self.positions = positions


class Interface:
    def __init__(self, values: Any) -> None:
        self.values = values

    def __array__(self, dtype: Any = None) -> Any:
        return self.values


def test_takes_whatever_has_positions_or_is_an_array(trefoil: NDArray[np.float64]) -> None:
    expected = korvex.knot(trefoil, closure="ring")
    single = korvex.knot(trefoil.astype(np.float32), closure="ring")
    assert korvex.knot(Group(trefoil.astype(np.float32)), closure="ring") == single
    assert korvex.knot(Interface(trefoil), closure="ring") == expected


def test_contiguous_doubles_are_not_copied(trefoil: NDArray[np.float64]) -> None:
    assert positions_of(trefoil) is trefoil
    assert np.shares_memory(korvex.Chain(trefoil).positions, trefoil)
    chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    assert np.asarray(chain) is chain.positions


def test_arguments_are_not_changed(trefoil: NDArray[np.float64]) -> None:
    before = trefoil.copy()
    korvex.knot(trefoil)
    korvex.fingerprint(trefoil, directions=3)
    assert np.array_equal(before, trefoil) and trefoil.flags.writeable


@pytest.mark.parametrize(
    "positions",
    [
        np.zeros((5, 2)),
        np.zeros(3),
        np.zeros((2, 3, 3)),
        np.zeros((0, 3)),
        np.zeros((0,)),
        [[0, 0, 0], [1, 0, float("nan")], [2, 0, 0]],
        [[0, 0, 0], [1, 0, float("inf")], [2, 0, 0]],
        [[0, 0, 0], [1, 1, 1e301], [2, 0, 0]],
        np.zeros((4, 3), dtype=complex),
        [["a", "b", "c"]],
        "3_1",
        None,
    ],
)
@pytest.mark.parametrize("ask", [korvex.knot, korvex.closure_map])
def test_refuses_what_is_no_chain(ask: Any, positions: Any) -> None:
    with pytest.raises(ValueError) as refused:
        ask(positions)
    assert isinstance(refused.value, korvex.Error) and refused.value.code == "invalid_argument"


@pytest.mark.parametrize("points", [1, 2, 3, 4])
def test_chains_of_a_few_points_are_unknotted(points: int) -> None:
    chain = np.random.default_rng(1).normal(size=(points, 3))
    assert korvex.knot(chain).types[0][:2] == ("0_1", 1.0)
    assert korvex.knot(chain, closure="ring").type == "0_1"


@pytest.mark.parametrize("factor", [1e-100, 1e-9, 1e9, 1e100])
def test_the_unit_does_not_matter(trefoil: NDArray[np.float64], factor: float) -> None:
    assert korvex.knot(factor * trefoil, closure="ring").type == "+3_1"


def test_repeated_and_collinear_points_are_harmless() -> None:
    line = np.outer(np.arange(50.0), [1.0, 2.0, 3.0])
    assert korvex.knot(line).type == "0_1"
    assert korvex.knot(np.ones((30, 3))).type == "0_1"


def test_frames_of_an_array_answer_as_each_alone(trefoil: NDArray[np.float64], protein: korvex.Chain) -> None:
    frames = np.stack([trefoil, trefoil[:, [1, 0, 2]], trefoil + 7])
    found = korvex.knots(frames, closure="ring")
    assert list(found) == [korvex.knot(frame, closure="ring") for frame in frames]
    assert found.types.tolist() == ["+3_1", "-3_1", "+3_1"] and found.shares.tolist() == [1, 1, 1]
    mixed = [trefoil, protein, korvex.Chain(trefoil, closed=True)]
    assert list(korvex.knots(mixed)) == [korvex.knot(some) for some in mixed]
    assert len(korvex.knots(np.zeros((0, 5, 3)))) == 0


@pytest.mark.parametrize("frames", [np.zeros((2, 5, 2)), np.zeros((5, 3)), [np.zeros((5, 3)), np.zeros((4, 2))]])
def test_frames_of_another_shape_are_refused(frames: Any) -> None:
    with pytest.raises(korvex.InvalidArgument, match="shape"):
        korvex.knots(frames)
