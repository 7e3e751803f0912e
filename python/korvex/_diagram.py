"""Invariants of knots and the names that they prove."""
from __future__ import annotations

from typing import Any, Dict, List, NamedTuple, Optional, Sequence, Tuple, Union

from . import _korvex
from ._errors import InvalidArgument
from ._korvex import Diagram
from ._ring import examine_ring

PdCode = Union[str, Sequence[Sequence[int]]]


class Identity(NamedTuple):
    """What the knot of a diagram is, and what proves it."""

    name: str  #: "0_1", "+3_1", "+8_16|+10_156" for several candidates, "?..." for no knot of the catalogue
    candidates: Tuple[str, ...]  #: the types of the catalogue that it may be of
    summands: Tuple["Identity", ...]  #: where the simplest diagram is visibly a connected sum
    evidence: str  #: what decided: "diagram", "alexander", "jones", "homfly", "signature", "colourings"
    proven: bool  #: whether no other knot is possible
    crossings: int  #: of the simplest diagram found
    alexander_key: int
    alexander: Optional[Tuple[int, ...]]  #: coefficients, where there is no candidate

    def __repr__(self) -> str:
        how = "proven" if self.proven else "not proven"
        return f"<Identity {self.name}, {how} by {self.evidence}>"


def _identity_of(fields: Tuple[Any, ...]) -> Identity:
    identity = Identity._make(fields)
    return identity._replace(summands=tuple(map(_identity_of, identity.summands)))


def _diagram_of(
    diagram: Optional[Diagram], pd: Optional[PdCode], gauss: Optional[str], positions: Any
) -> Diagram:
    if sum(given is not None for given in (diagram, pd, gauss, positions)) != 1:
        raise InvalidArgument("one of a diagram, pd, gauss and positions")
    if diagram is not None:
        if not isinstance(diagram, Diagram):
            raise InvalidArgument(f"a Diagram, not {type(diagram).__name__}: name pd=, gauss= or positions=")
        return diagram
    if gauss is not None:
        return Diagram.of_gauss_code(gauss)
    if pd is not None:
        return Diagram.of_pd(pd if isinstance(pd, str) else [tuple(map(int, some)) for some in pd])
    return examine_ring(positions).simplified


def identify(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
    hand: bool = True,
) -> Identity:
    """Name the knot of a diagram, or of a ring.

    Parameters
    ----------
    diagram : Diagram, optional
        One of these four is given.
    pd : str or sequence of four labels each, optional
        A planar diagram code: counter-clockwise from the incoming under-strand.
    gauss : str, optional
        A signed Gauss code, such as ``O1+U2+O3+U1+O2+U3+``.
    positions : array_like, (n, 3), optional
        Points in order around a ring.
    hand : bool
        Whether to tell a knot from its mirror image.

    Returns
    -------
    Identity

    Raises
    ------
    BadInput
        For a code that is not one of a single curve in the plane.

    Examples
    --------
    >>> import korvex
    >>> korvex.identify(pd=[[1, 5, 2, 4], [5, 3, 6, 2], [3, 1, 4, 6]])
    <Identity +3_1, proven by homfly>
    >>> korvex.identify(gauss="O1-U2-O3-U1-O2-U3-", hand=False).name
    '3_1'
    """
    return _identity_of(_korvex.identify(_diagram_of(diagram, pd, gauss, positions), hand))


def alexander(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
    threads: int = 0,
) -> Tuple[int, ...]:
    """The Alexander polynomial: coefficients of any size, lowest power first, the first positive.

    Parameters
    ----------
    diagram, pd, gauss, positions
        As of `identify`.
    threads : int
        0 for as many as the machine has.

    Returns
    -------
    tuple of int

    Notes
    -----
    Values modulo primes, Newton's interpolation, Chinese remainders; L. H. Kauffman, Formal Knot Theory
    (1983), for the bound on coefficients.

    Examples
    --------
    >>> import korvex
    >>> korvex.alexander(gauss="O1+U2+O3+U1+O2+U3+")
    (1, -1, 1)
    """
    return _korvex.alexander(_diagram_of(diagram, pd, gauss, positions), threads)


def alexander_key(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
) -> int:
    """D(t) D(1/t) of the Alexander polynomial, modulo 2^61 - 1 at one fixed t.

    The same for every diagram of a knot and for its mirror image; 1 for the unknot.

    Parameters
    ----------
    diagram, pd, gauss, positions
        As of `identify`.

    Returns
    -------
    int

    Examples
    --------
    >>> import korvex
    >>> korvex.alexander_key(korvex.Diagram())
    1
    """
    return _korvex.alexander_key(_diagram_of(diagram, pd, gauss, positions))


def jones(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
) -> Optional[Dict[int, int]]:
    """The Jones polynomial: coefficients by exponent of t.

    Parameters
    ----------
    diagram, pd, gauss, positions
        As of `identify`. Simplify large diagrams first.

    Returns
    -------
    dict or None
        None where the diagram is too large.

    Notes
    -----
    V(unknot) = 1, and the right-handed trefoil has t + t^3 - t^4. State sum of L. H. Kauffman, Topology
    26, 395 (1987).

    Examples
    --------
    >>> import korvex
    >>> korvex.jones(gauss="O1+U2+O3+U1+O2+U3+")
    {1: 1, 3: 1, 4: -1}
    """
    return _korvex.jones(_diagram_of(diagram, pd, gauss, positions))


def homfly(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
) -> Optional[Dict[Tuple[int, int], int]]:
    """The HOMFLY-PT polynomial: coefficients by exponents of a and z.

    Parameters
    ----------
    diagram, pd, gauss, positions
        As of `identify`. Simplify large diagrams first.

    Returns
    -------
    dict or None
        None where the diagram is too large.

    Notes
    -----
    a P(L+) - a^-1 P(L-) = z P(L0) and P(unknot) = 1. Skein relation: P. Freyd et al., Bull. Amer. Math.
    Soc. 12, 239 (1985); J. H. Przytycki and P. Traczyk, Kobe J. Math. 4, 115 (1988).

    Examples
    --------
    >>> import korvex
    >>> korvex.homfly(gauss="O1+U2+O3+U1+O2+U3+")
    {(-4, 0): -1, (-2, 0): 2, (-2, 2): 1}
    """
    return _korvex.homfly(_diagram_of(diagram, pd, gauss, positions))


def signature(
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
) -> int:
    """The signature; the right-handed trefoil has -2.

    Parameters
    ----------
    diagram, pd, gauss, positions
        As of `identify`.

    Returns
    -------
    int

    Notes
    -----
    C. McA. Gordon and R. A. Litherland, Invent. Math. 47, 53 (1978).

    Examples
    --------
    >>> import korvex
    >>> korvex.signature(gauss="O1+U2+O3+U1+O2+U3+")
    -2
    """
    return _korvex.signature(_diagram_of(diagram, pd, gauss, positions))


def parabolic_colourings(
    p: int,
    diagram: Optional[Diagram] = None,
    *,
    pd: Optional[PdCode] = None,
    gauss: Optional[str] = None,
    positions: Any = None,
) -> Optional[List[int]]:
    """Colourings of a knot by parabolic elements of PSL(2, p), counted by their longitudes.

    Parameters
    ----------
    p : int
        An odd prime up to 31.
    diagram, pd, gauss, positions
        As of `identify`.

    Returns
    -------
    list of p int, or None
        None where the diagram is too large.

    Notes
    -----
    R. Riley, Proc. London Math. Soc. 24, 217 (1972); M. Eisermann, Pacific J. Math. 231, 305 (2007).

    Examples
    --------
    >>> import korvex
    >>> korvex.parabolic_colourings(5, gauss="O1+U2+O3+U1+O2+U3+")
    [1, 0, 0, 0, 5]
    """
    return _korvex.parabolic_colourings(_diagram_of(diagram, pd, gauss, positions), p)
