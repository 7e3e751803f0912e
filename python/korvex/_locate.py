"""Where along a chain its knots sit."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any, NamedTuple, Optional, Tuple

from . import _korvex
from ._answer import Answer, table_of_html
from ._chain import Chain, chain_of
from ._fingerprint import MOST_MEMORY, Fingerprint, fingerprint
from ._progress import Progress

# Up to so many stations exact shares take no longer than people wait for; as the command line.
MOST_EXACT = 100


class Stretch(NamedTuple):
    """Residues of a chain: 0-based indices, half open, as slices are."""

    begin: int
    end: int

    @property
    def length(self) -> int:
        return self.end - self.begin


class Threading(NamedTuple):
    """How a knot comes undone for good when its core grows at one end: it is a slipknot."""

    residue: int  #: index of the first residue with which the knot is gone
    loop: Stretch  #: from the core to that residue: the slipknot loop
    tail: Stretch  #: from that residue to the end of the chain: the slipknot tail
    becomes: str  #: the dominant type with that residue


class Dip(NamedTuple):
    """How a knot comes undone in the same way and returns: no slipknot."""

    residue: int  #: index of the first residue with which the knot is gone
    back: int  #: index of the first residue with which it is there again
    share: float  #: the least share between the two
    becomes: str  #: the dominant type with the first


class KnotPlace(NamedTuple):
    """One place of a knot type."""

    type: str
    core: Stretch  #: the shortest sub-chain there whose share of the type reaches the threshold
    core_share: float  #: share of the type there
    whole_share: float  #: share of the type in the whole chain
    longest: Stretch  #: the longest sub-chain of its domain
    sub_chains: int  #: size of its domain
    tail_before: int  #: residues before the core
    tail_after: int  #: residues after it
    undone_before: Optional[Threading]  #: when the core grows at its beginning
    undone_after: Optional[Threading]  #: when the core grows at its end
    dips_before: Tuple[Dip, ...]  #: from the core outwards
    dips_after: Tuple[Dip, ...]

    @property
    def slipknot(self) -> bool:
        """Whether longer sub-chains are less knotted."""
        return self.undone_before is not None or self.undone_after is not None


def _threading_of(fields: Any) -> Optional[Threading]:
    if fields is None:
        return None
    residue, loop, tail, becomes = fields
    return Threading(residue, Stretch(*loop), Stretch(*tail), becomes)


def _place_of(fields: Tuple[Any, ...]) -> KnotPlace:
    place = KnotPlace._make(fields)
    return place._replace(
        core=Stretch(*place.core),
        longest=Stretch(*place.longest),
        undone_before=_threading_of(place.undone_before),
        undone_after=_threading_of(place.undone_after),
        dips_before=tuple(Dip(*dip) for dip in place.dips_before),
        dips_after=tuple(Dip(*dip) for dip in place.dips_after),
    )


@dataclass(frozen=True, repr=False)
class Location(Answer):
    """Every place of every knot type in a chain.

    Attributes
    ----------
    chain : Chain
        The chain itself.
    type : str
        Dominant type of the whole chain.
    share : float
        Its share.
    factors : tuple of str
        Factors of that type; one for a prime knot, none for the unknot.
    knots : tuple of KnotPlace
        By the length of the cores, the longest first.
    exact : bool
        Whether shares are exact, not of votes.
    trials : int
        Votes cast for each sub-chain; 0 where shares are exact.

    See Also
    --------
    locate
    """

    chain: Chain
    type: str
    share: float
    factors: Tuple[str, ...]
    knots: Tuple[KnotPlace, ...]
    exact: bool
    trials: int

    _formats = ("text", "tsv", "json", "pymol", "chimerax")

    def report(self, format: str = "text") -> str:
        """As the command line writes it: "text", "tsv", "json", "pymol" or "chimerax"."""
        return _korvex.locations_report([self], format)

    def labels_of(self, stretch: Stretch) -> Tuple[str, str]:
        """The labels of a stretch's first and last residue, both included."""
        labels = self.chain.labels
        return labels[stretch.begin], labels[stretch.end - 1]

    def __repr__(self) -> str:
        places = ", ".join("{} at {}-{}".format(place.type, *self.labels_of(place.core)) for place in self.knots[:3])
        return f"<Location {self.type}, share {self.share:.2f}{': ' if places else ''}{places}>"

    def _repr_html_(self) -> str:
        rows = [
            (place.type, "-".join(self.labels_of(place.core)), f"{place.core_share:.2f}",
             "slipknot" if place.slipknot else "")
            for place in self.knots
        ]  # fmt: skip
        return table_of_html(f"{self.type}, share {self.share:.2f}", ("type", "core", "share", ""), rows)


def locate(
    positions: Any,
    *,
    threshold: float = 0.5,
    exact: Optional[bool] = None,
    closure: str = "rays",
    sampling: Optional[str] = None,
    directions: Optional[int] = None,
    step: int = 1,
    most_memory: int = MOST_MEMORY,
    threads: int = 0,
    seed: int = 1,
    progress: Progress = None,
) -> Location:
    """Where along a chain its knots sit: cores, tails, slipknots, composites.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain, AtomGroup or Fingerprint
        Points in order along the backbone; or what `fingerprint` found for them, and then all options
        but the threshold count for nothing.
    threshold : float
        Share of a sub-chain's closures at which it counts as so knotted; above 0, at most 1.
    exact : bool, optional
        Exact shares of all directions. By default by rays up to 100 stations, unless votes are asked for
        by directions or sampling.
    closure, sampling, directions, step, most_memory, threads, seed, progress
        As of `fingerprint`.

    Returns
    -------
    Location

    Raises
    ------
    InvalidArgument
        As `fingerprint`, and for a threshold out of range.

    Notes
    -----
    Cores and tails: J. I. Sulkowska et al., PNAS 109, E1715 (2012); slipknots: N. P. King, E. O. Yeates
    and T. O. Yeates, J. Mol. Biol. 373, 153 (2007).

    Examples
    --------
    >>> import korvex
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> found = korvex.locate(chain)
    >>> found
    <Location -3_1, share 0.77: -3_1 at 10-82>
    >>> core = found.knots[0].core
    >>> core, chain.labels[core.begin], len(chain.positions[core.begin:core.end])
    (Stretch(begin=4, end=77), '10', 73)
    """
    if isinstance(positions, Fingerprint):
        found = positions
    else:
        chain = chain_of(positions)
        sampled = sampling is not None or directions is not None or closure != "rays"
        if exact is None:
            exact = not sampled and len(chain) <= MOST_EXACT * step
        found = fingerprint(
            chain, exact=exact, closure=closure, sampling=sampling or "lattice", directions=directions or 100,
            step=step, most_memory=most_memory, threads=threads, seed=seed, progress=progress,
        )  # fmt: skip
    type, share, factors, knots, is_exact, trials = _korvex.locate(found.data, threshold)
    return Location(found.chain, type, share, factors, tuple(map(_place_of, knots)), is_exact, trials)
