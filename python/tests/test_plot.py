"""Pictures: what they show, in the colours of the types."""
from __future__ import annotations

import doctest
import pathlib
from typing import Any

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex

matplotlib = pytest.importorskip("matplotlib")
matplotlib.use("agg")
plot = pytest.importorskip("korvex.plot")

from matplotlib import pyplot  # noqa: E402
from matplotlib.colors import to_hex  # noqa: E402


@pytest.fixture(autouse=True)
def closing() -> Any:
    yield
    pyplot.close("all")


def pixels(ax: Any) -> NDArray[np.uint8]:
    ax.figure.set_dpi(50)
    ax.figure.canvas.draw()
    return np.asarray(ax.figure.canvas.buffer_rgba())[..., :3]


def share_of(colour: str, ax: Any) -> float:
    wanted = np.array([int(colour[i : i + 2], 16) for i in (1, 3, 5)])
    near = np.abs(pixels(ax).astype(int) - wanted).max(axis=-1) < 3
    return float(near.mean())


def test_axes_are_taken_and_given_back(protein: korvex.Chain) -> None:
    fingerprint = korvex.fingerprint(protein, step=8)
    found = korvex.closure_map(protein)
    knot = korvex.knot(protein)
    frames = korvex.knots([protein] * 3)
    for draw, answer in [
        (plot.fingerprint, fingerprint),
        (plot.closure_map, found),
        (plot.votes, knot),
        (plot.types, frames),
    ]:
        ax = pyplot.subplots()[1]
        assert draw(answer, ax=ax) is ax
    ax = pyplot.subplots(subplot_kw={"projection": "3d"})[1]
    assert plot.chain(protein, ax=ax) is ax


def test_pictures_can_be_cut_to_what_they_show_as_notebooks_do(protein: korvex.Chain, tmp_path: pathlib.Path) -> None:
    found = korvex.closure_map(protein)
    frames = korvex.knots([protein] * 3)
    drawn = [plot.closure_map(found), plot.votes(frames[0]), plot.types(frames), plot.chain(protein)]
    drawn.append(plot.fingerprint(korvex.fingerprint(protein, step=8)))
    for number, ax in enumerate(drawn):
        ax.figure.savefig(tmp_path / f"{number}.png", bbox_inches="tight", dpi=30)
        assert (tmp_path / f"{number}.png").stat().st_size > 500


def test_a_map_shows_every_type_with_its_share(protein: korvex.Chain) -> None:
    found = korvex.closure_map(protein)
    ax = plot.closure_map(found, legend=False)
    drawn = {name: share_of(korvex.colour_of_type(name), ax) for name in ("-3_1", "0_1")}
    total = sum(drawn.values())
    for name, share in drawn.items():
        expected = next(some.share for some in found.types if some.type == name)
        assert share / total == pytest.approx(expected, abs=0.02)


def test_a_map_of_one_region_is_all_of_its_colour() -> None:
    line = np.outer(np.arange(4.0), [1.0, 2.0, 3.0])
    ax = plot.closure_map(korvex.closure_map(line), legend=False)
    assert share_of(korvex.colour_of_type("0_1"), ax) > 0.3


def test_a_map_without_boundaries_is_refused(protein: korvex.Chain) -> None:
    with pytest.raises(korvex.InvalidArgument, match="boundaries"):
        plot.closure_map(korvex.closure_map(protein, boundaries=False))


def test_bars_have_the_shares_and_colours_of_the_types(protein: korvex.Chain) -> None:
    knot = korvex.knot(protein, trials=100)
    bars = plot.votes(knot).patches
    assert [bar.get_width() for bar in bars] == [100 * some.share for some in knot.types]
    assert [to_hex(bar.get_facecolor()) for bar in bars] == [korvex.colour_of_type(t.type) for t in knot.types]


def test_a_chain_unties_before_ones_eyes() -> None:
    found = korvex.knots(korvex.read("data/trajectories/open_3_1.lammpstrj"))
    ax = plot.types(found, unit="time")
    labels = [text.get_text() for text in ax.get_yticklabels()]
    heights = ax.collections[0].get_offsets()[:, 1].astype(int)
    drawn = [labels[height] for height in heights]
    assert drawn == found.types.tolist()
    assert set(drawn[:16]) == {"+3_1"} and set(drawn[45:]) == {"0_1"}
    last = max(frame for frame, name in enumerate(drawn) if name == "+3_1")
    assert last < 45


def test_the_cores_of_knots_are_coloured(protein: korvex.Chain) -> None:
    location = korvex.locate(protein, step=4)
    ax = plot.chain(protein, location=location)
    assert to_hex(ax.lines[1].get_color()) == korvex.colour_of_type("-3_1")
    assert len(ax.lines[1].get_data_3d()[0]) == location.knots[0].core.length


def test_every_picture_can_be_saved(protein: korvex.Chain, tmp_path: pathlib.Path) -> None:
    for ending in ("png", "svg"):
        path = tmp_path / f"fingerprint.{ending}"
        plot.fingerprint(korvex.fingerprint(protein, step=8)).figure.savefig(path)
        assert path.stat().st_size > 1000


def test_the_examples_of_the_docstrings_run() -> None:
    assert doctest.testmod(plot).failed == 0
