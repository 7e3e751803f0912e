"""Trajectories through MDAnalysis: the same types as through the readers of korvex."""
from __future__ import annotations

import doctest
import pathlib
import shutil
import warnings
from typing import Any, Dict, List

import numpy as np
import pytest

import korvex

MDAnalysis = pytest.importorskip("MDAnalysis")
mda = pytest.importorskip("korvex.mda")
warnings.filterwarnings("ignore", module="MDAnalysis")


@pytest.fixture(scope="module", autouse=True)
def copies(tmp_path_factory: pytest.TempPathFactory) -> Any:
    """MDAnalysis writes beside the files that it reads."""
    directory = tmp_path_factory.mktemp("trajectories")
    for file in pathlib.Path("data/trajectories").iterdir():
        shutil.copy(file, directory)
    globals()["COPIES"] = directory


COPIES = pathlib.Path()


def universe_of(name: str, form: str) -> Any:
    data = str(COPIES / name)
    if form == "gro":
        return MDAnalysis.Universe(f"{data}.gro")
    if form == "lammpstrj":
        return MDAnalysis.Universe(f"{data}.lammpstrj", format="LAMMPSDUMP", topology_format="LAMMPSDUMP")
    return MDAnalysis.Universe(f"{data}.gro", f"{data}.{form}")


def own_types(name: str, form: str) -> List[str]:
    """By korvex's own reader of the same file."""
    file = f"data/trajectories/{name}.{form}"
    return list(korvex.knots(korvex.read(file, closed=name.startswith("ring"))).types.tolist())


@pytest.mark.parametrize("name", ["ring_3_1", "open_3_1"])
@pytest.mark.parametrize("form", ["xtc", "dcd", "gro", "lammpstrj"])
def test_types_are_those_of_the_own_readers(name: str, form: str) -> None:
    universe = universe_of(name, form)
    analysis = mda.KnotAnalysis(universe.atoms, closed=name.startswith("ring")).run()
    assert analysis.results.types[:, 0].tolist() == own_types(name, form)
    assert analysis.results.times.shape == (universe.trajectory.n_frames,)
    assert len(analysis.results.knots) == universe.trajectory.n_frames


@pytest.mark.parametrize("name", ["ring_3_1", "open_3_1"])
@pytest.mark.parametrize("skew", [0.0, 12.0])
def test_folding_into_a_box_changes_no_type(name: str, skew: float) -> None:
    universe = universe_of(name, "xtc")
    how: Dict[str, Any] = {"closed": True} if name.startswith("ring") else {"trials": 40}
    expected = mda.KnotAnalysis(universe.atoms, **how).run(step=13)
    box = np.array([[30.0, 0, 0], [skew, 30, 0], [0, skew, 30]])
    dimensions = MDAnalysis.lib.mdamath.triclinic_box(*box)

    def fold(frame: Any) -> Any:
        frame.dimensions = dimensions
        vectors = frame.triclinic_dimensions.astype(float)
        fractions = frame.positions @ np.linalg.inv(vectors)
        frame.positions = ((fractions - np.floor(fractions)) @ vectors).astype(np.float32)
        return frame

    universe.trajectory.add_transformations(fold)
    folded = mda.KnotAnalysis(universe.atoms, **how).run(step=13)
    assert folded.results.types.tolist() == expected.results.types.tolist()
    assert np.allclose(folded.results.shares, expected.results.shares, atol=0.05)
    torn = mda.KnotAnalysis(universe.atoms, unwrap=False, **how).run(step=13)
    assert torn.results.types.tolist() != expected.results.types.tolist()


def test_bonds_give_the_order_and_close_rings() -> None:
    universe = universe_of("ring_3_1", "dcd")
    count = len(universe.atoms)
    shuffled = np.random.default_rng(2).permutation(count)
    places = np.argsort(shuffled)
    bonds = [(places[i], places[(i + 1) % count]) for i in range(count)]
    universe.add_TopologyAttr("bonds", bonds)
    universe.trajectory.add_transformations(lambda frame: _with(frame, frame.positions[shuffled]))
    analysis = mda.KnotAnalysis(universe.atoms).run(stop=3)
    assert analysis.results.types.tolist() == [["+3_1"]] * 3
    assert {knot.closure for frame in analysis.results.knots for knot in frame} == {"ring"}


def _with(frame: Any, positions: Any) -> Any:
    frame.positions = positions
    return frame


def test_chains_are_cut_and_grouped() -> None:
    universe = universe_of("open_3_1", "xtc")
    by_number = mda.KnotAnalysis(universe.atoms, chains=60).run(stop=2)
    by_groups = mda.KnotAnalysis(universe.atoms, chains=[universe.atoms[:60], universe.atoms[60:]]).run(stop=2)
    assert by_number.results.types.shape == (2, 2)
    assert by_number.results.knots == by_groups.results.knots
    for wrong in (7, "fragments", "families"):
        with pytest.raises(korvex.InvalidArgument):
            mda.KnotAnalysis(universe.atoms, chains=wrong)
    with pytest.raises(korvex.InvalidArgument):
        mda.KnotAnalysis(universe.atoms[:0])


def test_proteins_go_by_their_segments() -> None:
    universe = MDAnalysis.Universe("data/proteins/4hhb.pdb")
    backbone = universe.select_atoms("protein and name CA")
    found = mda.KnotAnalysis(backbone, chains="segments").run()
    own = korvex.knots(korvex.read("data/proteins/4hhb.pdb"))
    assert found.results.types[0].tolist() == own.types.tolist()
    assert np.allclose(found.results.shares[0], own.shares, atol=1e-3)
    direct = korvex.knot(backbone.segments[0].atoms.select_atoms("name CA"))
    assert direct.type == own[0].type


def test_the_examples_of_the_docstrings_run() -> None:
    assert doctest.testmod(mda).failed == 0
