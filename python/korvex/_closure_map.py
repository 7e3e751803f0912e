"""The knot types of a chain in all directions of closing."""
from __future__ import annotations

from dataclasses import dataclass, fields
from typing import Any, Dict, List, Tuple

import numpy as np
from numpy.typing import NDArray

from . import _korvex
from ._answer import Answer, table_of_html
from ._chain import ChainSummary, summary_of
from ._errors import InvalidArgument
from ._knot import MOST_REGIONS, TypeShare
from ._positions import positions_of
from ._progress import Progress, told


@dataclass(frozen=True, eq=False, repr=False)
class ClosureMap(Answer):
    """The regions of the sphere of directions, with the knot type of each.

    Attributes
    ----------
    chain : ChainSummary
        What is known of the chain.
    types : tuple of TypeShare
        From the largest to the smallest share.
    doubt : float
        Share of the regions in doubt: no share is wrong by more.
    crossings : dict
        Shares by the crossings that are left in the simplified diagrams.
    region_type : ndarray of int32, (r,)
        Type of each region, an index into `types`; regions fall in size.
    region_share : ndarray of float64, (r,)
        Area over that of the sphere.
    region_direction : ndarray of float64, (r, 3)
        A unit vector well inside.
    region_clearance : ndarray of float64, (r,)
        How far that is from the boundary, in radians.
    region_proven, region_in_doubt : ndarray of uint8, (r,)
        Whether no other knot is possible; whether the region is too thin for double precision.
    region_crossings : ndarray of int64, (r,)
        Left in the simplified diagram.
    polygon_region : ndarray of int32, (p,)
        The region that each polygon bounds.
    polygon_begin : ndarray of int64, (p + 1,)
        Where the points of each polygon begin among `polygon_points`.
    polygon_points : ndarray of float64, (q, 3)
        Unit vectors; edges are shorter arcs of great circles, the region lies to the left from outside.

    See Also
    --------
    closure_map
    """

    chain: ChainSummary
    types: Tuple[TypeShare, ...]
    doubt: float
    crossings: Dict[int, float]
    region_type: NDArray[np.int32]
    region_share: NDArray[np.float64]
    region_direction: NDArray[np.float64]
    region_clearance: NDArray[np.float64]
    region_proven: NDArray[np.uint8]
    region_in_doubt: NDArray[np.uint8]
    region_crossings: NDArray[np.int64]
    polygon_region: NDArray[np.int32]
    polygon_begin: NDArray[np.int64]
    polygon_points: NDArray[np.float64]

    _formats = ("svg", "json", "npz")

    @property
    def type(self) -> str:
        """The type with the largest share."""
        return self.types[0].type

    def boundaries(self, region: int) -> List[NDArray[np.float64]]:
        """The polygons, (k, 3) each, that bound a region; none for the whole sphere."""
        begin = self.polygon_begin
        return [
            self.polygon_points[begin[i] : begin[i + 1]]
            for i in np.flatnonzero(self.polygon_region == region)
        ]

    def report(self, format: str = "svg") -> Any:
        """The map as the command line writes it: "svg" or "json" as str, "npz" as bytes."""
        written = _korvex.map_report(self, format)
        return written if format == "npz" else written.decode("utf-8", "surrogateescape")

    def to_pandas(self) -> Any:
        """A row for each region: type, share, direction and what else is known of it."""
        import pandas

        names = np.array([some.type for some in self.types], dtype=object)
        columns: Dict[str, Any] = {"type": names[self.region_type], "share": self.region_share}
        columns.update(zip("xyz", self.region_direction.T))
        columns["clearance"] = self.region_clearance
        columns["proven"] = self.region_proven.astype(bool)
        columns["in_doubt"] = self.region_in_doubt.astype(bool)
        columns["crossings"] = self.region_crossings
        return pandas.DataFrame(columns)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, ClosureMap):
            return NotImplemented
        return all(
            np.array_equal(getattr(self, field.name), getattr(other, field.name))
            if isinstance(getattr(self, field.name), np.ndarray)
            else getattr(self, field.name) == getattr(other, field.name)
            for field in fields(self)
        )

    def __hash__(self) -> int:
        return hash((self.chain, self.types))

    def __repr__(self) -> str:
        first = self.types[0]
        return f"<ClosureMap {first.type} {100 * first.share:.4g} % of {len(self.region_type)} regions>"

    def _repr_html_(self) -> str:
        rows = [(some.type, f"{100 * some.share:.2f} %", some.regions) for some in self.types]
        return table_of_html(f"{len(self.region_type)} regions", ("type", "share", "regions"), rows)


def closure_map(
    positions: Any,
    *,
    most_regions: int = MOST_REGIONS,
    boundaries: bool = True,
    threads: int = 0,
    progress: Progress = None,
) -> ClosureMap:
    """Map the knot types of an open chain, closed by rays, over all directions at once.

    As the direction moves, the type changes only where a ray meets the chain: the paths that the chain
    draws on the unit sphere, seen from its ends, cut the sphere into regions of one type each.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain or AtomGroup
        Points in order along the backbone, in any unit.
    most_regions : int
        A chain whose map has more is refused.
    boundaries : bool
        False leaves the polygons out.
    threads, progress
        As of `knot`.

    Returns
    -------
    ClosureMap

    Raises
    ------
    InvalidArgument
        For another shape, for coordinates that are no numbers, for more regions than `most_regions`.

    Examples
    --------
    >>> import korvex
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> found = korvex.closure_map(chain)
    >>> found
    <ClosureMap -3_1 77.41 % of 33 regions>
    >>> float(found.region_share.sum().round(9)), found.region_direction.shape
    (1.0, (33, 3))
    """
    array = positions_of(positions)
    with told(progress, "map") as tell:
        found = _korvex.closure_map(array, most_regions, boundaries, threads, tell)
    if found is None:
        raise InvalidArgument(
            f"the map has more than {most_regions} regions: allow for more by most_regions, or ask knot for votes"
        )
    found["types"] = tuple(map(TypeShare._make, found["types"]))
    return ClosureMap(chain=summary_of(positions, len(array)), **found)
