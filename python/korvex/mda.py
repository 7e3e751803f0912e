"""Knots along trajectories, as an analysis of MDAnalysis: any format that it reads."""
from __future__ import annotations

from typing import Any, Dict, List, Optional, Sequence, Tuple, Union

import numpy as np
from MDAnalysis.analysis.base import AnalysisBase
from MDAnalysis.exceptions import NoDataError
from numpy.typing import NDArray

from ._chain import Chain
from ._errors import InvalidArgument
from ._knot import Knot, knots
from ._positions import Positions

Chains = Union[str, int, Sequence[Any]]

_TOGETHER = 256  # chains that are answered at once, on all processors


class KnotAnalysis(AnalysisBase):  # type: ignore[misc]
    """The knot types of chains, frame by frame.

    Parameters
    ----------
    atomgroup : AtomGroup
        The points of the chains: beads, or atoms such as those of ``select_atoms("name CA")``.
    chains : {"fragments", "molecules", "segments", "all"}, int, or sequence of AtomGroup
        What one chain is: atoms joined by bonds, in the order of the bonds; of one molecule or segment;
        all of the group; so many atoms, one chain after another; or the groups themselves. By default
        "fragments" where there are bonds, else "all".
    closed : bool, optional
        Whether the last atom is joined to the first. By default where a bond joins them.
    unwrap : bool
        Make whole what the periodic box folds: every atom is taken at the image nearest the atom before
        it. Frames without a box are left as they are.
    threads : int
        0 for as many as the machine has.
    verbose : bool
        Show a bar.
    **options
        As of `korvex.knot`: closure, trials, tolerance, sampling, most_trials, most_regions, seed.

    Attributes
    ----------
    results.types : ndarray of str, (f, c)
        The dominant type of each chain in each frame.
    results.shares : ndarray of float64, (f, c)
        Its share.
    results.knots : list of list of Knot
        The answers, by frame and chain.
    results.times : ndarray of float64, (f,)
        Time of each frame, in picoseconds as MDAnalysis has it.

    Examples
    --------
    >>> import MDAnalysis, korvex.mda
    >>> universe = MDAnalysis.Universe("data/trajectories/ring_3_1.gro", "data/trajectories/ring_3_1.dcd")
    >>> analysis = korvex.mda.KnotAnalysis(universe.atoms, chains="all", closed=True).run(stop=3)
    >>> analysis.results.types.tolist()
    [['+3_1'], ['+3_1'], ['+3_1']]
    """

    def __init__(
        self,
        atomgroup: Any,
        *,
        chains: Optional[Chains] = None,
        closed: Optional[bool] = None,
        unwrap: bool = True,
        threads: int = 0,
        verbose: bool = False,
        **options: Any,
    ) -> None:
        super().__init__(atomgroup.universe.trajectory, verbose=verbose)
        self._chains = _chains_of(atomgroup, chains, closed)
        self._unwrap = unwrap
        self._options: Dict[str, Any] = {"threads": threads, **options}

    def _prepare(self) -> None:
        self._waiting: List[Chain] = []
        self._answers: List[Knot] = []
        self._times: List[float] = []

    def _single_frame(self) -> None:
        frame = self._ts
        box = frame.triclinic_dimensions if self._unwrap and frame.dimensions is not None else None
        for group, closed in self._chains:
            positions = group.positions.astype(np.float64)
            if box is not None:
                positions = whole(positions, box)
            self._waiting.append(Chain(positions, model=frame.frame + 1, closed=closed))
        self._times.append(frame.time)
        if len(self._waiting) >= _TOGETHER:
            self._answer()

    def _answer(self) -> None:
        self._answers += knots(self._waiting, **self._options)
        self._waiting.clear()

    def _conclude(self) -> None:
        self._answer()
        count = len(self._chains)
        shape = (len(self._times), count)
        self.results.knots = [self._answers[i : i + count] for i in range(0, len(self._answers), count)]
        self.results.types = np.array([knot.type for knot in self._answers], dtype=np.str_).reshape(shape)
        self.results.shares = np.array([knot.share for knot in self._answers], dtype=float).reshape(shape)
        self.results.times = np.array(self._times)


def whole(positions: Positions, box: NDArray[Any]) -> Positions:
    """The chain with every point at the image nearest the point before it.

    Parameters
    ----------
    positions : ndarray of float64, (n, 3)
    box : array_like, (3, 3)
        The vectors of the periodic box, a row each.

    Returns
    -------
    ndarray of float64, (n, 3)

    Examples
    --------
    >>> import numpy as np, korvex.mda
    >>> folded = np.array([[9.0, 0, 0], [9.8, 0, 0], [0.6, 0, 0]])
    >>> korvex.mda.whole(folded, np.diag([10.0, 10, 10]))[:, 0].tolist()
    [9.0, 9.8, 10.6]
    """
    vectors = np.asarray(box, dtype=np.float64)
    if not np.isfinite(vectors).all() or np.linalg.det(vectors) == 0:
        return positions
    steps = np.diff(positions, axis=0)
    images = np.rint(steps @ np.linalg.inv(vectors))
    mended = positions.copy()
    mended[1:] -= np.cumsum(images, axis=0) @ vectors
    return mended


def _chains_of(atoms: Any, chains: Optional[Chains], closed: Optional[bool]) -> List[Tuple[Any, bool]]:
    """The atoms of each chain in order, and whether it is closed."""
    if not len(atoms):
        raise InvalidArgument("there are no atoms in the group")
    bonded = _has_bonds(atoms)
    if chains is None:
        chains = "fragments" if bonded else "all"
    if chains == "fragments":
        if not bonded:
            raise InvalidArgument(
                "the topology has no bonds: say what a chain is by chains='molecules', 'segments', 'all' or a number"
            )
        found = [_along_bonds(piece) for piece in _pieces(atoms)]
        return [(group, joined if closed is None else closed) for group, joined in found]
    return [(group, bool(closed)) for group in _groups(atoms, chains)]


def _has_bonds(atoms: Any) -> bool:
    try:
        return bool(len(atoms.bonds))
    except (AttributeError, NoDataError):
        return False


def _groups(atoms: Any, chains: Chains) -> List[Any]:
    if isinstance(chains, int):
        if chains < 1 or len(atoms) % chains:
            raise InvalidArgument(f"{len(atoms)} atoms are no whole number of chains of {chains}")
        return [atoms[i : i + chains] for i in range(0, len(atoms), chains)]
    if not isinstance(chains, str):
        return list(chains)
    if chains == "all":
        return [atoms]
    if chains not in ("molecules", "segments"):
        raise InvalidArgument(f"chains '{chains}': fragments, molecules, segments or all")
    try:
        groups: Dict[Any, Any] = atoms.groupby("molnums" if chains == "molecules" else "segindices")
    except (AttributeError, NoDataError) as error:
        raise InvalidArgument(f"the topology has no {chains}") from error
    return list(groups.values())


def _pieces(atoms: Any) -> List[Any]:
    """The atoms of the group by fragment, in the order of the topology."""
    return [atoms[atoms.fragindices == number] for number in np.unique(atoms.fragindices)]


def _along_bonds(piece: Any) -> Tuple[Any, bool]:
    """The atoms in the order of their bonds, and whether those close the chain; as they are where the bonds
    between them are not those of one chain or ring, as of the CA atoms of a protein."""
    place = {index: number for number, index in enumerate(piece.indices.tolist())}
    partners: List[List[int]] = [[] for _ in place]
    for a, b in piece.bonds.indices.tolist():
        if a in place and b in place:
            partners[place[a]].append(place[b])
            partners[place[b]].append(place[a])
    degrees = [len(some) for some in partners]
    ends = [number for number, degree in enumerate(degrees) if degree == 1]
    if max(degrees) > 2 or min(degrees) == 0 or len(ends) not in (0, 2):
        return piece, False
    order = [ends[0] if ends else 0]
    seen = set(order)
    while True:
        further = [number for number in partners[order[-1]] if number not in seen]
        if not further:
            break
        order.append(min(further))
        seen.add(order[-1])
    if len(order) != len(place):
        return piece, False
    return piece[order], not ends
