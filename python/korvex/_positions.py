"""Positions in every form that people have them in, as the engine takes them."""
from __future__ import annotations

from typing import Any

import numpy as np
from numpy.typing import ArrayLike, NDArray

from ._errors import InvalidArgument

Positions = NDArray[np.float64]
PositionsLike = Any  # a Chain, an AtomGroup, or what NumPy takes for an array
_NUMBERS = "fiu"


def array_of(positions: Any) -> NDArray[np.float64]:
    """The numbers as float64 in C order, themselves where they are so already."""
    inner = getattr(positions, "positions", None)
    if inner is not None:
        positions = inner
    given = np.asarray(positions)
    if given.dtype.kind not in _NUMBERS:
        raise InvalidArgument(f"positions are real numbers, not {given.dtype}")
    return np.ascontiguousarray(given, dtype=np.float64)


def positions_of(positions: Any) -> Positions:
    """The positions of one chain, (n, 3)."""
    array = array_of(positions)
    if array.ndim != 2 or array.shape[1] != 3:
        raise InvalidArgument(f"positions have the shape (n, 3), not {array.shape}")
    return array


def frames_of(positions: ArrayLike) -> "list[Positions]":
    """The positions of many chains: of an array (f, n, 3), or of each element."""
    if isinstance(positions, np.ndarray) and positions.dtype != object:
        array = array_of(positions)
        if array.ndim != 3 or array.shape[2] != 3:
            raise InvalidArgument(f"positions of many chains have the shape (f, n, 3), not {array.shape}")
        return list(array)
    return [positions_of(some) for some in positions]  # type: ignore[union-attr]
