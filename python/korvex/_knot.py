"""The knot types of whole chains."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Dict, Iterable, Iterator, List, NamedTuple, Optional, Sequence, Tuple, Union, overload

import numpy as np
from numpy.typing import NDArray

from . import _korvex
from ._answer import Answer, frame_of_tsv, table_of_html
from ._chain import Chain, ChainSummary, summary_of
from ._positions import frames_of, positions_of
from ._progress import Progress, told
from ._ring import RingReport

TYPE_CHECKING = False
if TYPE_CHECKING:
    import pandas

MOST_REGIONS = 100_000
MOST_TRIALS = 10_000


class TypeShare(NamedTuple):
    """A knot type and the share of the closures that have it."""

    type: str  #: such as "+3_1"
    share: float  #: of all directions, or of the votes
    low: float  #: what the doubt leaves open; of votes the 95 % interval (Wilson)
    high: float
    proven: float  #: share of all whose diagrams can be of no other knot
    votes: Optional[int]  #: None where shares are exact
    regions: Optional[int]  #: of the sphere of directions, of this type; None for votes


@dataclass(frozen=True, repr=False)
class Knot(Answer):
    """The knot type of a chain, with its share.

    Attributes
    ----------
    chain : ChainSummary
        What is known of the chain.
    closure : {"rays", "two-points", "out", "direct", "ring"}
        How the ends were joined.
    types : tuple of TypeShare
        From the largest to the smallest share.
    exact : bool
        Whether shares are exact, not of votes.
    trials : int
        Votes cast; 0 where shares are exact.
    regions : int
        Regions of the sphere of directions; 0 for votes.
    doubt : float
        No exact share is wrong by more; 0 for votes.
    crossings : dict
        Crossings left in the simplified diagrams, and the share or the number of diagrams with them.
    ring : RingReport or None
        Of the closed curve itself, where it was closed directly or is a ring.

    See Also
    --------
    knot, knots
    """

    chain: ChainSummary
    closure: str
    types: Tuple[TypeShare, ...]
    exact: bool
    trials: int
    regions: int
    doubt: float
    crossings: Dict[int, float]
    ring: Optional[RingReport]

    _formats = ("text", "tsv", "json")

    @property
    def type(self) -> str:
        """The type with the largest share; of equal ones the first by name."""
        return self.types[0].type

    @property
    def share(self) -> float:
        """The share of `type`."""
        return self.types[0].share

    def share_of(self, type: str) -> float:
        """The share of a type, 0 if it was not found."""
        return next((some.share for some in self.types if some.type == type), 0.0)

    def report(self, format: str = "text") -> str:
        return _korvex.knots_report([self], format)

    def __hash__(self) -> int:
        return hash((self.chain, self.closure, self.types))

    def __repr__(self) -> str:
        shown = ", ".join(f"{some.type} {100 * some.share:.4g} %" for some in self.types[:3])
        more = f", {len(self.types) - 3} more" if len(self.types) > 3 else ""
        how = "exact" if self.exact else f"{self.trials} vote{'s' if self.trials > 1 else ''}"
        return f"<Knot {shown}{more} ({self.closure}, {how})>"

    def _repr_html_(self) -> str:
        rows = [(t.type, f"{100 * t.share:.2f} %", f"{100 * t.low:.2f} - {100 * t.high:.2f} %") for t in self.types]
        how = "exact shares" if self.exact else f"{self.trials} votes"
        return table_of_html(f"{_title(self.chain)}: {self.closure}, {how}", ("type", "share", "interval"), rows)


def _title(chain: ChainSummary) -> str:
    return " ".join(filter(None, (chain.source, chain.name))) or f"{chain.points} points"


class Knots(Sequence[Knot]):
    """The knot types of many chains, in their order.

    A sequence of `Knot`. ``types`` and ``shares`` have all dominant types at once.

    See Also
    --------
    knots
    """

    def __init__(self, answers: Iterable[Knot]) -> None:
        self._answers = tuple(answers)

    @overload
    def __getitem__(self, index: int) -> Knot: ...

    @overload
    def __getitem__(self, index: slice) -> "Knots": ...

    def __getitem__(self, index: Union[int, slice]) -> Union[Knot, "Knots"]:
        if isinstance(index, slice):
            return Knots(self._answers[index])
        return self._answers[index]

    def __len__(self) -> int:
        return len(self._answers)

    def __iter__(self) -> Iterator[Knot]:
        return iter(self._answers)

    def __eq__(self, other: object) -> bool:
        return isinstance(other, Knots) and self._answers == other._answers

    def __hash__(self) -> int:
        return hash(self._answers)

    @property
    def types(self) -> NDArray[np.str_]:
        """The dominant type of each chain."""
        return np.array([knot.type for knot in self._answers], dtype=np.str_)

    @property
    def shares(self) -> NDArray[np.float64]:
        """The share of the dominant type of each chain."""
        return np.array([knot.share for knot in self._answers], dtype=np.float64)

    def report(self, format: str = "text") -> str:
        """All answers as the command line writes them: "text", "tsv" or "json"."""
        return _korvex.knots_report(list(self._answers), format)

    def to_pandas(self) -> "pandas.DataFrame":
        """A row for each type of each chain, as a data frame of pandas."""
        return frame_of_tsv(self.report("tsv"))

    def counts(self) -> Dict[str, int]:
        """How many chains have each dominant type, the most frequent first."""
        names, counts = np.unique(self.types, return_counts=True)
        order = sorted(range(len(names)), key=lambda i: (-counts[i], names[i]))
        return {str(names[i]): int(counts[i]) for i in order}

    def __repr__(self) -> str:
        shown = ", ".join(f"{count} of {name}" for name, count in list(self.counts().items())[:4])
        return f"<Knots of {len(self)} chains: {shown}>"

    def _repr_html_(self) -> str:
        return table_of_html(f"{len(self)} chains", ("type", "chains"), list(self.counts().items()))


def _closure_of(positions: Any, closure: Optional[str]) -> str:
    if closure is not None:
        return closure
    return "ring" if isinstance(positions, Chain) and positions.closed else "rays"


def _knot_of(chain: ChainSummary, closure: str, attributes: Tuple[Any, ...]) -> Knot:
    types, exact, trials, regions, doubt, crossings, ring = attributes
    knot = object.__new__(Knot)  # whose __init__ sets a frozen attribute at a time, three times as slowly
    knot.__dict__.update(
        chain=chain, closure=closure, types=tuple(map(TypeShare._make, types)), exact=exact, trials=trials,
        regions=regions, doubt=doubt, crossings=crossings, ring=RingReport.of(ring) if ring is not None else None,
    )  # fmt: skip
    return knot


def _trials(trials: Union[None, int, str]) -> Optional[int]:
    return 0 if trials == "auto" else trials  # type: ignore[return-value]


def knot(
    positions: Any,
    *,
    closure: Optional[str] = None,
    trials: Union[None, int, str] = None,
    tolerance: Optional[float] = None,
    sampling: Optional[str] = None,
    most_trials: int = MOST_TRIALS,
    most_regions: int = MOST_REGIONS,
    threads: int = 0,
    seed: int = 1,
    progress: Progress = None,
) -> Knot:
    """Which knot a chain forms.

    An open chain has no knot type of its own: its ends are led to infinity in all directions, and the
    answer is the share of the directions that each type has, exactly. Votes over sampled directions are
    cast where they are asked for, and where there are too many regions.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain or AtomGroup
        Points in order along the backbone, or around the ring, in any unit. Float64 in C order is not
        copied.
    closure : {"rays", "two-points", "out", "direct", "ring"}, optional
        How the ends are joined: both to infinity in one direction; each in its own; away from the
        centre; straight to each other; or they are joined already. By default "ring" for a closed
        `Chain`, else "rays".
    trials : int or "auto", optional
        Votes by rays or two points. "auto" casts as many as it takes until one type has more than half
        for certain, or all shares are known to the tolerance, or to one that is given. By default none
        by rays, whose shares are exact, else 100.
    tolerance : float, optional
        Half the width of the 95 % intervals at which "auto" stops. By default 0.02.
    sampling : {"lattice", "independent"}, optional
        Directions of votes: an even lattice turned at random, or each on its own at random.
    most_trials : int
        Most votes that "auto" casts.
    most_regions : int
        Most regions of exact shares; a chain that has more is voted on.
    threads : int
        0 for as many as the machine has. Changes no answer.
    seed : int
        Fixes the directions of votes.
    progress : bool or callable, optional
        True shows a bar of tqdm, if that is installed; a callable is told the fraction done.

    Returns
    -------
    Knot

    Raises
    ------
    InvalidArgument
        A `ValueError`, for another shape, for coordinates that are no numbers, for options out of range.

    See Also
    --------
    knots : for many chains at once.
    closure_map : for the regions themselves.

    Notes
    -----
    Wilson's interval is that of E. B. Wilson, J. Am. Stat. Assoc. 22, 209 (1927). Hands of knots and
    names are those of the conventions: "+3_1" is the right-handed trefoil.

    Examples
    --------
    >>> import korvex
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> korvex.knot(chain)
    <Knot -3_1 77.41 %, 0_1 22.57 %, -5_2 0.01526 % (rays, exact)>
    >>> korvex.knot(chain.positions, trials=200, seed=7)
    <Knot -3_1 77.5 %, 0_1 22.5 % (rays, 200 votes)>

    A ring, here a trefoil with 60 beads, has one type:

    >>> import numpy as np
    >>> t = np.linspace(0, 2 * np.pi, 60, endpoint=False)
    >>> ring = np.stack([np.sin(t) + 2 * np.sin(2 * t), np.cos(t) - 2 * np.cos(2 * t), -np.sin(3 * t)], axis=1)
    >>> korvex.knot(ring, closure="ring").type
    '-3_1'
    """
    array = positions_of(positions)
    how = _closure_of(positions, closure)
    if progress:
        with told(progress, "knot") as tell:
            attributes = _korvex.knot(
                array, how, _trials(trials), tolerance, sampling, most_trials, most_regions, threads, seed, tell
            )
    else:
        attributes = _korvex.knot(
            array, how, _trials(trials), tolerance, sampling, most_trials, most_regions, threads, seed, None
        )
    return _knot_of(summary_of(positions, len(array)), how, attributes)


def knots(
    positions: Any,
    *,
    closure: Optional[str] = None,
    trials: Union[None, int, str] = None,
    tolerance: Optional[float] = None,
    sampling: Optional[str] = None,
    most_trials: int = MOST_TRIALS,
    most_regions: int = MOST_REGIONS,
    threads: int = 0,
    seed: int = 1,
    progress: Progress = None,
) -> Knots:
    """Which knots many chains form, on all processors.

    Each answer is that of `knot` for the chain alone.

    Parameters
    ----------
    positions : array_like, (f, n, 3), or iterable of what `knot` takes
        Frames of one chain, or chains of any lengths. All are in memory at once.
    closure, trials, tolerance, sampling, most_trials, most_regions, threads, seed, progress
        As of `knot`.

    Returns
    -------
    Knots
        A sequence of `Knot`, one a chain.

    Raises
    ------
    InvalidArgument
        As `knot`.

    Examples
    --------
    >>> import korvex
    >>> frames = korvex.read("data/trajectories/ring_3_1.lammpstrj", models=(1, 10), closed=True)
    >>> found = korvex.knots(frames)
    >>> found
    <Knots of 10 chains: 10 of +3_1>
    >>> found.shares.min()
    1.0
    """
    if isinstance(positions, np.ndarray) and positions.dtype != object:
        chains: List[Any] = list(frames_of(positions))
        arrays = chains
    else:
        chains = list(positions)
        arrays = [positions_of(some) for some in chains]
    closures = [_closure_of(some, closure) for some in chains]
    with told(progress, "knots") as tell:
        answers = _korvex.knots(
            arrays, closures, _trials(trials), tolerance, sampling, most_trials, most_regions, threads, seed, tell
        )
    return Knots(
        _knot_of(summary_of(some, len(array)), how, attributes)
        for some, array, how, attributes in zip(chains, arrays, closures, answers)
    )
