"""The catalogue of knots to 10 crossings."""
from __future__ import annotations

from functools import lru_cache
from typing import Dict, List, NamedTuple, Tuple

from . import _korvex
from ._errors import InvalidArgument
from ._korvex import Diagram


class KnotType(NamedTuple):
    """A knot of the catalogue.

    Examples
    --------
    >>> import korvex
    >>> trefoil = korvex.knot_type("+3_1")
    >>> trefoil.determinant, trefoil.alexander, trefoil.diagram
    (3, (1, -1, 1), Diagram(3 crossings, writhe 3))
    """

    name: str  #: with hands: "+3_1", "4_1", "+3_1#-3_1"
    plain: str  #: without: "3_1", "4_1", "3_1#3_1"
    crossings: int  #: the fewest that a diagram can have
    chiral: bool  #: whether it differs from its mirror image
    prime: bool
    signature: int  #: -2 for "+3_1"
    determinant: int
    alexander: Tuple[int, ...]  #: coefficients, lowest power first, the first positive
    jones: Dict[int, int]  #: coefficients by exponent of t
    homfly: Dict[Tuple[int, int], int]  #: coefficients by exponents of a and z
    gauss_code: str  #: of a diagram

    @property
    def diagram(self) -> Diagram:
        """A diagram of the knot."""
        return Diagram.of_gauss_code(self.gauss_code)

    @property
    def colour(self) -> str:
        """The colour of the type in all drawings, "#rrggbb"."""
        return _korvex.colour_of_type(self.name)

    def report(self, format: str = "text") -> str:
        """As ``korvex table`` writes it: "text", "tsv" or "json"."""
        return _korvex.types_report([self.name], format)

    def __hash__(self) -> int:
        return hash(self.name)


@lru_cache(maxsize=1)
def catalogue() -> Tuple[KnotType, ...]:
    """All types to 10 crossings, composite knots among them, by crossing number, primes first.

    Returns
    -------
    tuple of KnotType

    Examples
    --------
    >>> import korvex
    >>> len({knot.plain for knot in korvex.catalogue() if knot.prime})
    249
    >>> [knot.name for knot in korvex.catalogue()[:4]]
    ['0_1', '+3_1', '-3_1', '4_1']
    """
    return tuple(map(KnotType._make, _korvex.catalogue()))


def knot_types(name: str) -> List[KnotType]:
    """The types of the catalogue that a name means.

    Parameters
    ----------
    name : str
        Factors in any order; one without a hand stands for either.

    Returns
    -------
    list of KnotType
        Empty where the name is none of the catalogue.

    Examples
    --------
    >>> import korvex
    >>> [knot.name for knot in korvex.knot_types("3_1#4_1")]
    ['+3_1#4_1', '-3_1#4_1']
    """
    return list(map(KnotType._make, _korvex.knot_types_named(name)))


def knot_type(name: str) -> KnotType:
    """The type of the catalogue that a name means first.

    Parameters
    ----------
    name : str
        As of `knot_types`.

    Returns
    -------
    KnotType

    Raises
    ------
    InvalidArgument
        If the name is none of the catalogue.

    Examples
    --------
    >>> import korvex
    >>> korvex.knot_type("3_1").name
    '+3_1'
    """
    found = knot_types(name)
    if not found:
        raise InvalidArgument(f"'{name}' is no knot of the catalogue, which goes to 10 crossings")
    return found[0]
