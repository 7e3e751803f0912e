"""Chains, and reading them from files."""
from __future__ import annotations

import math
import os
import re
from dataclasses import dataclass, fields
from functools import lru_cache
from typing import Any, Iterable, Iterator, List, NamedTuple, Optional, Tuple, Union

import numpy as np
from numpy.typing import NDArray

from . import _korvex
from ._errors import InvalidArgument
from ._positions import Positions, positions_of

_LABEL = re.compile(r"(-?\d+)(\D?)\Z")


class Gap(NamedTuple):
    """Two neighbours in a chain between which something is missing, or seems to be."""

    after: int  #: 0-based index of the point before the gap; the next point is after it
    length: float  #: distance of the two points, unit of the chain


class Residue(NamedTuple):
    """What the file calls one residue, bead or atom of a chain."""

    number: int  #: as in the file; counted from 1 where the file has none
    insertion_code: str  #: " " for none; tells residues of equal number apart
    name: str  #: such as "GLY"; empty where the file has none


class ChainSummary(NamedTuple):
    """What an answer tells of the chain that it is about."""

    name: str  #: chain or molecule identifier; empty where the file has none
    source: str  #: the file; empty for positions from elsewhere
    model: int  #: model number of the file, or its frame counted from 1
    points: int  #: how many
    closed: bool  #: the last point is joined to the first
    ends: str  #: why: "apart", "near", "asked", "repeated" or "bonded"
    gaps: Tuple[Gap, ...]  #: those that are bridged by straight lines
    mended: int  #: bonds that a vector of the periodic box made whole
    part: int  #: of a chain that was split at gaps: which part, from 1; else 0
    split_length: float  #: the gap between the part before and this one
    time: Optional[float] = None  #: of its frame, as the file has it (XTC, TRR and GRO: ps)
    step: Optional[int] = None  #: of its frame
    plddt: Optional[float] = None  #: mean confidence of a predicted model, 0 to 100, to two digits


@dataclass(frozen=True, eq=False, repr=False)
class Chain:
    """An ordered list of points in space, with what its file says of them.

    A closed chain does not repeat its first point at its end. Every function that takes positions
    takes a chain. ``len(chain)`` is the number of points, ``numpy.asarray(chain)`` the positions.

    Attributes
    ----------
    positions : ndarray of float64, (n, 3)
        In ångström for PDB, mmCIF and GRO files, else in the unit of the input. Read-only.
    name, source : str
        Chain identifier and file; empty where there is none.
    model : int
        Model number of the file, or its frame counted from 1.
    closed : bool
        Whether the last point is joined to the first.
    ends : {"apart", "near", "asked", "repeated", "bonded"}
        Why it is closed or open: nothing joins the ends; they lie within 1.5 median bonds, so that it
        may be a ring; the caller joined them; the last point of the input repeated the first; a bond.
    gaps : tuple of Gap
        Those that are bridged by straight lines, in chain order.
    bond : float
        Median distance of neighbours, unit of the chain.
    mended : int
        Bonds that a vector of the periodic box made whole.
    part : int
        Of a chain that was split at gaps: which part, from 1; else 0.
    split_length : float
        The gap between the part before and this one.
    time : float or None
        Of its frame, as the file has it (XTC, TRR and GRO: ps).
    step : int or None
        Of its frame.
    plddt : ndarray of float32, (n,), or None
        Confidence of a predicted model in each point, 0 to 100; None where the file tells of none.
    numbers : ndarray of int32, (n,), or None
        Residue numbers as in the file.
    codes : str
        Insertion codes of the residues, a character each.
    residue_names : tuple of str
        Names of the residues; empty where the file has none.

    Examples
    --------
    >>> import korvex
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> chain
    <Chain A of data/proteins/2efv_CA.pdb: 82 points>
    >>> chain.positions.shape, chain.labels[:3]
    ((82, 3), ['6', '7', '8'])
    >>> ring = korvex.Chain([[0, 0, 0], [1, 0, 0], [0, 1, 0]], closed=True)
    >>> korvex.knot(ring).type
    '0_1'
    """

    positions: Positions
    name: str = ""
    source: str = ""
    model: int = 1
    closed: bool = False
    ends: str = ""
    gaps: Tuple[Gap, ...] = ()
    bond: float = 0.0
    mended: int = 0
    part: int = 0
    split_length: float = 0.0
    numbers: Optional[NDArray[np.int32]] = None
    codes: str = ""
    residue_names: Tuple[str, ...] = ()
    time: Optional[float] = None
    step: Optional[int] = None
    plddt: Optional[NDArray[np.float32]] = None

    def __post_init__(self) -> None:
        positions = positions_of(self.positions)
        if positions.flags.writeable:
            positions = positions.view()
            positions.flags.writeable = False
        object.__setattr__(self, "positions", positions)
        object.__setattr__(self, "gaps", tuple(Gap(*gap) for gap in self.gaps))
        if not self.ends:
            object.__setattr__(self, "ends", "asked" if self.closed else "apart")
        if self.numbers is not None:
            object.__setattr__(self, "numbers", _column(self.numbers, np.int32, "numbers", len(positions)))
        if self.plddt is not None:
            object.__setattr__(self, "plddt", _column(self.plddt, np.float32, "confidences", len(positions)))

    def __len__(self) -> int:
        return len(self.positions)

    def __array__(self, dtype: Any = None, copy: Optional[bool] = None) -> NDArray[Any]:
        if dtype is None or np.dtype(dtype) == self.positions.dtype:
            return self.positions.copy() if copy else self.positions
        return self.positions.astype(dtype)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, Chain):
            return NotImplemented
        return all(
            np.array_equal(getattr(self, field.name), getattr(other, field.name))
            for field in fields(self)
        )

    def __hash__(self) -> int:
        return hash((self.source, self.model, self.name, self.part, len(self)))

    def __repr__(self) -> str:
        about = [text for text in (self.name, self.source and f"of {self.source}") if text]
        if self.model != 1:
            about.append(f"model {self.model}")
        if self.part:
            about.append(f"part #{self.part}")
        kind = " ".join(["Ring" if self.closed else "Chain", *about])
        return f"<{kind}: {len(self)} points>"

    @property
    def labels(self) -> List[str]:
        """Labels of the points: number and insertion code, or counted from 1."""
        if self.numbers is None:
            return [str(index + 1) for index in range(len(self))]
        codes = self.codes or " " * len(self)
        return [f"{number}{code.strip()}" for number, code in zip(self.numbers.tolist(), codes)]

    @property
    def residues(self) -> Tuple[Residue, ...]:
        """The residues with number, insertion code and name; none where nothing is known of them."""
        if self.numbers is None:
            return ()
        codes = self.codes or " " * len(self)
        names = self.residue_names or ("",) * len(self)
        return tuple(map(Residue, self.numbers.tolist(), codes, names))

    @property
    def summary(self) -> ChainSummary:
        """What answers tell of the chain."""
        return ChainSummary(
            self.name, self.source, self.model, len(self), self.closed, self.ends, self.gaps,
            self.mended, self.part, self.split_length, self.time, self.step, self._mean_plddt(),
        )  # fmt: skip

    def _mean_plddt(self) -> Optional[float]:
        """Added in the order of the chain, and rounded half up, as reports do."""
        if self.plddt is None or not len(self.plddt):
            return None
        hundredths = 100 * float(np.cumsum(self.plddt, dtype=np.float64)[-1]) / len(self.plddt)
        whole = math.floor(hundredths)
        return (whole + (hundredths - whole >= 0.5)) / 100


def _column(values: Any, dtype: Any, what: str, points: int) -> NDArray[Any]:
    column = np.asarray(values, dtype=dtype)
    if column.shape != (points,):
        raise InvalidArgument(f"{points} points have as many {what}, not {column.shape}")
    return column


@lru_cache(maxsize=256)
def _summary_of_unknown(points: int) -> ChainSummary:
    return ChainSummary("", "", 1, points, False, "apart", (), 0, 0, 0.0)


def chain_of(positions: Any) -> Chain:
    """The chain itself, or one of the positions of which nothing else is known."""
    return positions if isinstance(positions, Chain) else Chain(positions_of(positions))


def summary_of(positions: Any, points: int) -> ChainSummary:
    if isinstance(positions, Chain):
        return positions.summary
    return _summary_of_unknown(points)


Models = Union[None, int, slice, range, Tuple[int, int]]
Label = Union[int, str]


def _models(models: Models) -> Tuple[Optional[int], Optional[int], int]:
    """First, last (both included) and step."""
    if models is None:
        return None, None, 1
    if isinstance(models, int):
        return models, models, 1
    if isinstance(models, tuple):
        return models[0], models[1], 1
    step = models.step or 1
    if step < 1:
        raise InvalidArgument(f"models are read in rising order, not with a step of {step}")
    stop = None if models.stop is None else models.stop - 1
    return models.start, stop, step


def _bound(label: Optional[Label]) -> Optional[Tuple[int, str]]:
    if label is None:
        return None
    match = _LABEL.match(str(label))
    if not match:
        raise InvalidArgument(f"'{label}' is no label of a residue: labels are as 52 or 52A")
    return int(match[1]), match[2]


def _names(names: Union[None, str, Iterable[str]]) -> List[str]:
    if names is None:
        return []
    return [names] if isinstance(names, str) else list(names)


def read(
    path: Union[str, "os.PathLike[str]", bytes],
    *,
    models: Models = None,
    chains: Union[None, str, Iterable[str]] = None,
    atoms: Union[None, str, Iterable[str]] = None,
    residues: Optional[Tuple[Optional[Label], Optional[Label]]] = None,
    numbering: str = "author",
    min_plddt: float = 0.0,
    closed: bool = False,
    chain_length: int = 0,
    topology: Union[str, "os.PathLike[str]"] = "",
    gaps: str = "auto",
    max_gap: float = 10.0,
    unwrap: bool = True,
) -> Iterator[Chain]:
    """Read chains from a file, one after another.

    Formats are told by the content, also compressed by gzip: PDB, mmCIF, BinaryCIF, GRO, XYZ, XTC, TRR, DCD,
    LAMMPS text dumps, plain text. A thread reads a few chains ahead, so that of a long trajectory only a few frames are in
    memory.

    Parameters
    ----------
    path : str, path or bytes
        The file; or its content, as bytes.
    models : int, (first, last), slice or range, optional
        Models or frames by their numbers, from 1: one; from the first to the last, both included; or
        half open as Python has it. By default all.
    chains : str or iterable of str, optional
        Names of chains. By default all.
    atoms : str or iterable of str, optional
        Names of the atoms that make the chain; "all" for every atom. By default CA of amino acids, P of
        nucleotides, every atom of files without residues.
    residues : (first, last), optional
        Residues by their labels, both included, such as ``(10, "52A")``; None for no bound.
    numbering : {"author", "label"}
        Chain names and residue numbers of an mmCIF file.
    min_plddt : float
        Cut residues of a lower confidence off both ends of chains of predicted models.
    closed : bool
        Join the last point to the first.
    chain_length : int
        Cut what the file has as one chain into chains of so many points; 0 cuts nothing.
    topology : str or path, optional
        A file with the chains of a trajectory that has positions alone (XTC, TRR, DCD): PDB, GRO, mmCIF or
        LAMMPS data. LAMMPS data also tell the molecules and bonds of a LAMMPS dump.
    gaps : {"auto", "bridge", "split", "reject"}
        Where neighbours lie farther apart than 1.5 median bonds, or residues are missing: bridge up to
        `max_gap` and split at longer ones; join straight; make two chains; or raise.
    max_gap : float
        Longest gap that "auto" bridges, in median bonds; at least 1.5.
    unwrap : bool
        Mend the bonds that the file's periodic box broke.

    Yields
    ------
    Chain
        In the order of models, and of chains in the file.

    Raises
    ------
    CannotRead
        An `OSError`, for a file that cannot be opened or read.
    BadInput
        For a text that breaks the rules of its format.
    InvalidArgument
        For a selection that nothing meets.

    Examples
    --------
    >>> import korvex
    >>> for chain in korvex.read("data/proteins/4hhb.pdb", chains=["A", "B"]):
    ...     print(chain)
    <Chain A of data/proteins/4hhb.pdb: 141 points>
    <Chain B of data/proteins/4hhb.pdb: 146 points>
    """
    content: Optional[bytes] = None
    if isinstance(path, bytes):
        content, name = path, "bytes"
    else:
        name = os.fspath(path)
    first, last = residues if residues is not None else (None, None)
    reader = _korvex.reader(
        content,
        os.fsencode(name),
        _models(models),
        _names(chains),
        _names(atoms),
        (_bound(first), _bound(last)),
        numbering,
        min_plddt,
        closed,
        chain_length,
        os.fsencode(topology),
        gaps,
        max_gap,
        unwrap,
    )
    return _chains(reader)


def _chains(reader: "_korvex.ChainReader") -> Iterator[Chain]:
    while True:
        arguments = reader.next()
        if arguments is None:
            return
        yield Chain(**arguments)
