"""The knot types of all sub-chains."""
from __future__ import annotations

from dataclasses import dataclass, field
from typing import Any, Dict, List, Tuple

import numpy as np
from numpy.typing import NDArray

from . import _korvex
from ._answer import Answer, table_of_html
from ._chain import Chain, chain_of
from ._errors import InvalidArgument
from ._progress import Progress, told

MOST_MEMORY = 4 << 30


@dataclass(frozen=True, eq=False, repr=False)
class Fingerprint(Answer):
    """The votes, or the exact shares, of all sub-chains between stations.

    Stations are the residues 0, step, 2 step, ... and the last one. A sub-chain goes by the numbers of
    its first and its last station, both included.

    Attributes
    ----------
    chain : Chain
        The chain itself.
    options : dict
        How it was computed: exact, closure, sampling, directions, step, most_memory, seed.
    stations : ndarray of int32, (n,)
        Residue of each station, a 0-based index into the chain.
    types : tuple of str
        Knot types by number; the first is "0_1".
    dominant : ndarray of int32, (n, n)
        Number of the type with the largest share of sub-chain [begin, end]; -1 where begin >= end.
    share : ndarray of float32, (n, n)
        Its share; 0 where begin >= end.
    exact : bool
        Whether shares are exact.
    trials : int
        Votes cast for each sub-chain; 0 where shares are exact.
    doubt : float
        The largest share of a sub-chain whose type is in doubt; 0 for votes.

    See Also
    --------
    fingerprint, locate
    """

    chain: Chain
    options: Dict[str, Any]
    stations: NDArray[np.int32]
    types: Tuple[str, ...]
    dominant: NDArray[np.int32]
    share: NDArray[np.float32]
    exact: bool
    trials: int
    doubt: float
    _data: "List[_korvex.FingerprintData]" = field(default_factory=list)

    _formats = ("npz", "tsv", "json", "matrix")

    @property
    def labels(self) -> List[str]:
        """The labels of the stations' residues."""
        labels = self.chain.labels
        return [labels[station] for station in self.stations]

    @property
    def data(self) -> "_korvex.FingerprintData":
        """What the engine holds; computed anew, to the same bits, where this was unpickled."""
        if not self._data:
            self._data.append(_computed(self.chain, self.options, 0, None))
        return self._data[0]

    def shares(self, type: str) -> NDArray[np.float64]:
        """The shares of one type, (n, n); all 0 if it was not found."""
        if type not in self.types:
            return np.zeros(self.dominant.shape)
        return self.data.shares(self.types.index(type))

    def knotted(self) -> Dict[str, NDArray[Any]]:
        """All knotted (sub-chain, type) pairs: "begin", "end", "type" (int32) and "share" (float64), (m,)."""
        return dict(zip(("begin", "end", "type", "share"), self.data.knotted_arrays()))

    def report(self, format: str = "matrix") -> Any:
        """As the command line writes it: "tsv", "json" or "matrix" as str, "npz" as bytes."""
        written = _korvex.fingerprint_report(self.data, self.chain, format)
        return written if format == "npz" else written.decode("utf-8", "surrogateescape")

    def __reduce__(self) -> Tuple[Any, ...]:
        return Fingerprint, (
            self.chain, self.options, self.stations, self.types, self.dominant, self.share, self.exact,
            self.trials, self.doubt,
        )  # fmt: skip

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Fingerprint):
            return NotImplemented
        return (
            self.chain == other.chain
            and self.options == other.options
            and self.types == other.types
            and np.array_equal(self.dominant, other.dominant)
            and np.array_equal(self.share, other.share)
        )

    def __hash__(self) -> int:
        return hash((self.chain, self.types, self.trials))

    def _summary(self) -> List[Tuple[str, int, str]]:
        """Type, sub-chains where it dominates, labels of the shortest of them."""
        rows = []
        labels = self.labels
        for number, name in enumerate(self.types[1:], 1):
            begins, ends = np.nonzero(self.dominant == number)
            if len(begins):
                shortest = np.argmin(self.stations[ends] - self.stations[begins])
                rows.append((name, len(begins), f"{labels[begins[shortest]]}-{labels[ends[shortest]]}"))
        return rows

    def __repr__(self) -> str:
        how = "exact" if self.exact else f"{self.trials} directions"
        shown = ", ".join(f"{name} from {where}" for name, _, where in self._summary()[:3]) or "unknotted"
        return f"<Fingerprint of {len(self.chain)} points, {len(self.stations)} stations, {how}: {shown}>"

    def _repr_html_(self) -> str:
        how = "exact" if self.exact else f"{self.trials} directions"
        head = ("type", "sub-chains where it dominates", "shortest")
        return table_of_html(f"{len(self.stations)} stations, {how}", head, self._summary())


def _computed(chain: Chain, options: Dict[str, Any], threads: int, tell: Any) -> "_korvex.FingerprintData":
    return _korvex.fingerprint(
        chain.positions, options["exact"], options["closure"], options["sampling"], options["directions"],
        options["step"], options["most_memory"], threads, options["seed"], tell,
    )  # fmt: skip


def fingerprint(
    positions: Any,
    *,
    exact: bool = False,
    closure: str = "rays",
    sampling: str = "lattice",
    directions: int = 100,
    step: int = 1,
    most_memory: int = MOST_MEMORY,
    threads: int = 0,
    seed: int = 1,
    progress: Progress = None,
) -> Fingerprint:
    """The knot types of all sub-chains of an open chain.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain or AtomGroup
        Points in order along the backbone, in any unit.
    exact : bool
        Shares of all directions of closing by rays, without votes. They are of rays alone: directions,
        sampling and seed count for nothing then.
    closure : {"rays", "two-points"}
        How both ends of a sub-chain are led to infinity: in one direction, or each in its own.
    sampling : {"lattice", "independent"}
        Directions: an even lattice turned at random, or each on its own at random.
    directions : int
        Votes for every sub-chain, 1 to a million.
    step : int
        Residues from one station to the next.
    most_memory : int
        Bytes that the votes may take; a chain that needs more is refused.
    threads, seed, progress
        As of `knot`.

    Returns
    -------
    Fingerprint

    Raises
    ------
    InvalidArgument
        For a closed chain, another shape, coordinates that are no numbers, options out of range.

    Notes
    -----
    The matrix of sub-chains: N. P. King, E. O. Yeates and T. O. Yeates, J. Mol. Biol. 373, 153 (2007),
    and J. I. Sulkowska et al., PNAS 109, E1715 (2012).

    Examples
    --------
    >>> import korvex
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> found = korvex.fingerprint(chain, directions=50, step=4)
    >>> found
    <Fingerprint of 82 points, 22 stations, 50 directions: -3_1 from 10-82>
    >>> found.types[found.dominant[0, -1]], round(float(found.share[0, -1]), 2)
    ('-3_1', 0.76)
    """
    chain = chain_of(positions)
    if chain.closed:
        raise InvalidArgument(
            "it is a ring, and sub-chains are those of an open chain: knot names the ring's knot; to have it "
            "cut open, give its positions alone"
        )
    options: Dict[str, Any] = {
        "exact": exact, "closure": closure, "sampling": sampling, "directions": directions, "step": step,
        "most_memory": most_memory, "seed": seed,
    }  # fmt: skip
    with told(progress, "fingerprint") as tell:
        data = _computed(chain, options, threads, tell)
    dominant, share = data.dominant_arrays()
    return Fingerprint(
        chain, options, data.stations, data.types, dominant, share, data.exact, data.trials, data.doubt, [data]
    )
