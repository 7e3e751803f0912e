"""Pictures of answers, by matplotlib.

Each function draws into Axes and returns them; without ``ax=`` it makes some. Knot types have the colours that
they have in all drawings of korvex, which eyes without red or green receptors can tell apart. matplotlib is
imported when something is drawn first.
"""
from __future__ import annotations

from typing import Any, Dict, List, Optional, Sequence, Tuple

import numpy as np
from numpy.typing import NDArray

from ._chain import Chain
from ._closure_map import ClosureMap
from ._errors import InvalidArgument
from ._fingerprint import Fingerprint
from ._knot import Knot
from ._korvex import KnotName, colour_of_type
from ._locate import Location
from ._positions import positions_of

_SMALL = 0.005  # shares below are not worth a line of a legend


def _axes(ax: Any, **options: Any) -> Any:
    if ax is not None:
        return ax
    import matplotlib.pyplot as pyplot

    return pyplot.subplots(**options)[1]


def _legend(ax: Any, types: Sequence[str], **options: Any) -> None:
    from matplotlib.patches import Patch

    patches = [Patch(facecolor=colour_of_type(name), edgecolor="0.4", linewidth=0.5, label=name) for name in types]
    if patches:
        ax.legend(handles=patches, frameon=False, **options)


def fingerprint(found: Fingerprint, *, ax: Any = None, legend: bool = True) -> Any:
    """The matrix of all sub-chains: first residue across, last residue up.

    A cell has the colour of its dominant type, the paler the smaller its share.

    Parameters
    ----------
    found : Fingerprint
    ax : matplotlib Axes, optional
    legend : bool

    Returns
    -------
    matplotlib Axes

    Examples
    --------
    >>> import korvex, korvex.plot, matplotlib
    >>> matplotlib.use("agg")
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> ax = korvex.plot.fingerprint(korvex.fingerprint(chain, step=4))
    >>> ax.get_xlabel()
    'first residue'
    """
    from matplotlib.colors import to_rgb

    ax = _axes(ax, figsize=(5, 5))
    colours = np.array([to_rgb(colour_of_type(name)) for name in found.types])
    known = found.dominant >= 0
    weight = np.where(found.dominant > 0, np.clip(found.share, 0, 1), 0.5)[..., None]
    image = np.ones((*found.dominant.shape, 3))
    image[known] = (weight * colours[found.dominant] + (1 - weight))[known]
    edges = _edges(found.stations)
    mesh = ax.pcolormesh(edges, edges, np.zeros(known.shape), rasterized=True)
    mesh.set_array(None)
    mesh.set_facecolor(image.transpose(1, 0, 2).reshape(-1, 3))
    labels = found.labels
    ticks = np.unique(np.linspace(0, len(labels) - 1, min(6, len(labels))).astype(int))
    places = found.stations[ticks]
    ax.set_xticks(places, [labels[tick] for tick in ticks])
    ax.set_yticks(places, [labels[tick] for tick in ticks])
    ax.set(xlabel="first residue", ylabel="last residue", aspect="equal", title=_title(found.chain))
    if legend:
        _legend(ax, [name for number, name in enumerate(found.types) if (found.dominant == number).any()],
                loc="lower right")  # fmt: skip
    return ax


def _edges(stations: NDArray[np.int32]) -> NDArray[np.float64]:
    """Half way between stations."""
    inner = (stations[1:] + stations[:-1]) / 2
    return np.concatenate([[stations[0] - 0.5], inner, [stations[-1] + 0.5]])


def _title(chain: Chain) -> str:
    return " ".join(filter(None, (chain.source.rpartition("/")[2], chain.name)))


def votes(found: Knot, *, ax: Any = None) -> Any:
    """The shares of the types as bars, with what the doubt or the votes leave open.

    Parameters
    ----------
    found : Knot
    ax : matplotlib Axes, optional

    Returns
    -------
    matplotlib Axes

    Examples
    --------
    >>> import korvex, korvex.plot, matplotlib
    >>> matplotlib.use("agg")
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> len(korvex.plot.votes(korvex.knot(chain, trials=100)).patches)
    2
    """
    shown = [some for some in found.types if some.share >= _SMALL] or list(found.types[:1])
    ax = _axes(ax, figsize=(5, 0.8 + 0.35 * len(shown)))
    shares = np.array([some.share for some in shown])
    open_to = np.array([[some.share - some.low, some.high - some.share] for some in shown]).T.clip(min=0)
    colours = [colour_of_type(some.type) for some in shown]
    ax.barh(range(len(shown)), 100 * shares, color=colours, xerr=100 * open_to, ecolor="0.3", capsize=2)
    ax.set_yticks(range(len(shown)), [some.type for some in shown])
    ax.invert_yaxis()
    how = "directions" if found.exact else f"{found.trials} votes"
    ax.set(xlim=(0, 100), xlabel=f"% of the {how}")
    return ax


def closure_map(found: ClosureMap, *, ax: Any = None, legend: bool = True) -> Any:
    """The knot types of all directions of closing: both hemispheres in equal area (Lambert).

    Left as seen from +z, right as seen from -z; y runs up in both.

    Parameters
    ----------
    found : ClosureMap
        With its boundaries.
    ax : matplotlib Axes, optional
    legend : bool

    Returns
    -------
    matplotlib Axes

    Examples
    --------
    >>> import korvex, korvex.plot, matplotlib
    >>> matplotlib.use("agg")
    >>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> ax = korvex.plot.closure_map(korvex.closure_map(chain))
    >>> [text.get_text() for text in ax.get_legend().get_texts()]
    ['-3_1', '0_1']
    """
    from matplotlib.patches import Circle, PathPatch

    if found.polygon_region.size == 0 and len(found.region_type) > 1:
        raise InvalidArgument("the map has no boundaries to draw: ask for it with boundaries=True")
    ax = _axes(ax, figsize=(8, 4.4))
    for side in (1, -1):
        centre = np.array([-1.05 * side, 0.0])
        disc = ax.add_patch(Circle(centre, 1, facecolor="none", edgecolor="0.4", zorder=3))
        for region, number in enumerate(found.region_type):
            colour = colour_of_type(found.types[number].type)
            path = _outline(found.boundaries(region), side, centre)
            patch = ax.add_patch(PathPatch(path, facecolor=colour, edgecolor=colour, linewidth=0.3))
            patch.set_clip_path(disc)
            patch.set_in_layout(False)  # the disc is, and some versions of matplotlib cannot clip a map's outlines
        ax.text(*(centre - (0, 1.08)), f"from {'+' if side > 0 else '-'}z", ha="center", va="top")
    ax.set(xlim=(-2.1, 2.1), ylim=(-1.25, 1.1), aspect="equal")
    ax.set_axis_off()
    if legend:
        _legend(ax, [some.type for some in found.types if some.share >= _SMALL], ncol=6, loc="upper center",
                bbox_to_anchor=(0.5, 0.02))  # fmt: skip
    return ax


def _outline(polygons: Sequence[NDArray[np.float64]], side: int, centre: NDArray[np.float64]) -> Any:
    """A region in the plane. The far pole goes to a circle of radius sqrt(2), beyond the disc that is shown; a
    region that holds it has its outlines turned round, and that circle as its rim."""
    from matplotlib.path import Path

    flat = [_lambert(_along_arcs(polygon), side) for polygon in polygons]
    if sum(map(_signed_area, flat)) <= 0:
        turn = np.linspace(0, 2 * np.pi, 73)[:-1]
        flat.append(1.5 * np.stack([np.cos(turn), np.sin(turn)], axis=1))
    paths = [Path(np.concatenate([points, points[:1]]) + centre, closed=True) for points in flat]
    return Path.make_compound_path(*paths)


def _along_arcs(polygon: NDArray[np.float64], most: float = 0.05) -> NDArray[np.float64]:
    """The polygon with points no farther apart than `most` radians along its arcs."""
    pieces = []
    for here, there in zip(polygon, np.roll(polygon, -1, axis=0)):
        angle = np.arctan2(np.linalg.norm(np.cross(here, there)), here @ there)
        steps = max(1, int(np.ceil(angle / most)))
        if steps == 1:
            pieces.append(here[None])
            continue
        part = np.arange(steps)[:, None] / steps
        pieces.append((np.sin((1 - part) * angle) * here + np.sin(part * angle) * there) / np.sin(angle))
    return np.concatenate(pieces)


def _lambert(points: NDArray[np.float64], side: int) -> NDArray[np.float64]:
    """The equal-area projection seen from outside, from +z or -z; the equator has radius 1."""
    flat = points[:, :2] / np.sqrt(np.maximum(1 + side * points[:, 2:], 1e-12))
    flat[:, 0] *= side
    return np.asarray(flat)


def _signed_area(polygon: NDArray[np.float64]) -> float:
    x, y = polygon.T
    return float(x @ np.roll(y, -1) - y @ np.roll(x, -1)) / 2


def types(
    found: Any,
    *,
    times: Optional[Any] = None,
    ax: Any = None,
    unit: str = "frame",
) -> Any:
    """The type of each frame against time, the simplest at the bottom; how pale, the smaller the share.

    Parameters
    ----------
    found : Knots, or results of KnotAnalysis
        Anything with ``types`` and ``shares``, (f,) or (f, chains).
    times : array_like, (f,), optional
        By default ``found.times`` or the number of the frame.
    ax : matplotlib Axes, optional
    unit : str
        What time is counted in.

    Returns
    -------
    matplotlib Axes

    Examples
    --------
    >>> import korvex, korvex.plot, matplotlib
    >>> matplotlib.use("agg")
    >>> found = korvex.knots(korvex.read("data/trajectories/open_3_1.lammpstrj", models=slice(1, None, 5)))
    >>> ax = korvex.plot.types(found)
    >>> [text.get_text() for text in ax.get_yticklabels()]
    ['0_1', '+3_1']
    """
    names = np.asarray(found.types).reshape(len(found.types), -1)
    shares = np.asarray(found.shares, dtype=float).reshape(names.shape)
    if times is None:
        times = getattr(found, "times", None)
    at = np.arange(len(names)) if times is None else np.asarray(times, dtype=float)
    ax = _axes(ax, figsize=(7, 2.4))
    order = sorted(set(names.ravel().tolist()), key=_order)
    level = {name: number for number, name in enumerate(order)}
    for column in range(names.shape[1]):
        heights = [level[name] for name in names[:, column].tolist()]
        ax.step(at, heights, where="mid", color="0.8", linewidth=0.8, zorder=1)
        colours = [colour_of_type(name) for name in names[:, column].tolist()]
        ax.scatter(at, heights, c=colours, s=8 + 32 * shares[:, column], edgecolors="0.4", linewidths=0.4, zorder=2)
    ax.set_yticks(range(len(order)), order)
    ax.set(xlabel=unit, ylim=(-0.6, len(order) - 0.4))
    return ax


def _order(name: str) -> Tuple[Any, str]:
    try:
        return (KnotName(name), name)
    except InvalidArgument:
        return (KnotName("?key:0"), name)


def chain(positions: Any, *, location: Optional[Location] = None, ax: Any = None) -> Any:
    """A chain in space, the cores of its knots in the colours of their types.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain or AtomGroup
    location : Location, optional
        Of `locate`; without it nothing is coloured.
    ax : matplotlib Axes3D, optional

    Returns
    -------
    matplotlib Axes3D

    Examples
    --------
    >>> import korvex, korvex.plot, matplotlib
    >>> matplotlib.use("agg")
    >>> protein = next(korvex.read("data/proteins/2efv_CA.pdb"))
    >>> ax = korvex.plot.chain(protein, location=korvex.locate(protein, step=4))
    >>> len(ax.lines)
    2
    """
    points = positions_of(positions)
    ax = _axes(ax, subplot_kw={"projection": "3d"}, figsize=(5, 5))
    closed = isinstance(positions, Chain) and positions.closed
    shown = np.concatenate([points, points[:1]]) if closed else points
    ax.plot(*shown.T, color="0.6", linewidth=1.5)
    coloured: Dict[str, None] = {}
    for place in location.knots if location is not None else ():
        ax.plot(*points[place.core.begin : place.core.end].T, color=colour_of_type(place.type), linewidth=3)
        coloured[place.type] = None
    _legend(ax, list(coloured), loc="upper right")
    ax.set_box_aspect(np.maximum(np.ptp(points, axis=0), 1e-9))
    ax.set_axis_off()
    return ax
