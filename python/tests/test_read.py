"""Reading chains."""
from __future__ import annotations

import os
import pathlib

import numpy as np
import pytest

import korvex


def test_chains_carry_what_their_file_says() -> None:
    chains = list(korvex.read("data/proteins/4hhb.pdb"))
    assert [chain.name for chain in chains] == ["A", "B", "C", "D"]
    first = chains[0]
    assert len(first) == 141 and first.source == "data/proteins/4hhb.pdb" and not first.closed
    assert first.residues[0] == korvex.Residue(1, " ", "VAL") and first.labels[-1] == "141"
    assert first.numbers is not None and first.numbers.dtype == np.int32
    assert first.positions.dtype == np.float64 and not first.positions.flags.writeable
    assert 3.7 < first.bond < 3.9 and first.ends == "apart"


def test_gaps_are_told() -> None:
    chain = next(korvex.read("data/proteins/1ztu.pdb", gaps="bridge"))
    assert len(chain.gaps) == 2 and chain.gaps[0].after < chain.gaps[1].after
    step = np.linalg.norm(np.diff(chain.positions, axis=0), axis=1)
    assert step[chain.gaps[1].after] == pytest.approx(chain.gaps[1].length)
    parts = list(korvex.read("data/proteins/1ztu.pdb", gaps="split"))
    assert [part.part for part in parts] == [1, 2, 3]
    assert parts[2].split_length == pytest.approx(chain.gaps[1].length)


def test_frames_come_one_after_another() -> None:
    frames = korvex.read("data/trajectories/ring_3_1.lammpstrj")
    assert next(frames).model == 1 and next(frames).model == 2
    frames.close()  # type: ignore[attr-defined]


@pytest.mark.parametrize(
    "models, expected",
    [(3, [3]), ((2, 4), [2, 3, 4]), (slice(1, 8, 3), [1, 4, 7]), (range(5, 9, 2), [5, 7])],
)
def test_models_are_selected(models: object, expected: "list[int]") -> None:
    found = korvex.read("data/trajectories/ring_3_1.lammpstrj", models=models)  # type: ignore[arg-type]
    assert [chain.model for chain in found] == expected


def test_residues_are_selected_by_their_labels() -> None:
    chain = next(korvex.read("data/proteins/2efv_CA.pdb", residues=(20, "30")))
    assert chain.labels[0] == "20" and chain.labels[-1] == "30"
    assert next(korvex.read("data/proteins/2efv_CA.pdb", residues=(None, 30))).labels[-1] == "30"
    with pytest.raises(korvex.InvalidArgument, match="label"):
        korvex.read("data/proteins/2efv_CA.pdb", residues=("A20", 30))


def test_bytes_are_read_as_a_file_is() -> None:
    path = pathlib.Path("data/proteins/1tim.pdb.gz")
    read = list(korvex.read(path.read_bytes()))
    assert all(np.array_equal(a, b) for a, b in zip(read, korvex.read(path))) and len(read) == 2


def test_errors_of_files_are_told_as_python_does(tmp_path: pathlib.Path) -> None:
    with pytest.raises(OSError) as missing:
        next(korvex.read(tmp_path / "none.pdb"))
    assert isinstance(missing.value, korvex.CannotRead) and missing.value.code == "cannot_read"
    assert missing.value.file == os.fspath(tmp_path / "none.pdb")
    broken = tmp_path / "broken.xyz"
    broken.write_text("3\n\nC 0 0 0\nC 1 x 0\nC 2 0 0\n")
    with pytest.raises(korvex.BadInput) as bad:
        list(korvex.read(broken))
    assert bad.value.line == 4 and bad.value.file == os.fspath(broken) and isinstance(bad.value, ValueError)
    with pytest.raises(korvex.InvalidArgument):
        list(korvex.read("data/proteins/4hhb.pdb", chains="Z"))


def test_chains_before_a_mistake_are_given_first(tmp_path: pathlib.Path) -> None:
    broken = tmp_path / "broken.xyz"
    frame = "2\n\nC 0 0 0\nC 1 0 0\n"
    broken.write_text(frame + frame + "2\n\nC 0 0\n")
    chains = korvex.read(broken)
    try:
        seen = [chain.model for chain in chains]
    except korvex.BadInput:
        seen = []
    chains = korvex.read(broken)
    assert len(next(chains)) == 2 and seen == []


def test_frames_have_their_time_and_step() -> None:
    frame = next(korvex.read("data/trajectories/ring_3_1.xtc", models=50))
    assert frame.time == 49.0 and frame.step is not None and frame.summary[-3:-1] == (frame.time, frame.step)
    assert korvex.knot(frame).to_dict()["time"] == 49.0
    assert korvex.closure_map(frame.positions).to_dict().keys().isdisjoint({"time", "step", "plddt"})
    protein = next(korvex.read("data/proteins/2efv_CA.pdb"))
    assert protein.time is None and protein.step is None and protein.plddt is None


def test_predicted_models_have_their_confidence(predicted: pathlib.Path) -> None:
    chain = next(korvex.read(predicted))
    assert chain.plddt is not None and chain.plddt.dtype == np.float32 and len(chain.plddt) == len(chain)
    assert chain.summary.plddt == pytest.approx(float(np.mean(chain.plddt)), abs=0.006)
    cut = next(korvex.read(predicted, min_plddt=60))
    assert cut.plddt is not None and len(cut) < len(chain) and cut.plddt[0] >= 60 <= cut.plddt[-1]
    with pytest.raises(korvex.InvalidArgument, match="confidences"):
        korvex.Chain(np.eye(3), plddt=np.ones(2, dtype=np.float32))


def test_chains_of_ones_own_are_checked() -> None:
    with pytest.raises(korvex.InvalidArgument):
        korvex.Chain(np.zeros((3, 3)), numbers=np.arange(4))
    ring = korvex.Chain(np.eye(3), closed=True, name="r")
    assert ring.ends == "asked" and repr(ring) == "<Ring r: 3 points>"
    with pytest.raises(korvex.InvalidArgument, match="ring"):
        korvex.fingerprint(ring)
