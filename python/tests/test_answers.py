"""Answers as values: compared, pickled, written as the command line writes them."""
from __future__ import annotations

import json
import pathlib
import pickle
from typing import Any, Callable, List

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex


@pytest.fixture(scope="module")
def answers(protein: korvex.Chain, trefoil: NDArray[np.float64]) -> List[Any]:
    return [
        protein,
        protein.summary,
        korvex.knot(protein),
        korvex.knot(protein, trials=50),
        korvex.knot(trefoil, closure="ring"),
        korvex.knots([protein, trefoil]),
        korvex.closure_map(protein),
        korvex.fingerprint(protein, step=8, directions=20),
        korvex.fingerprint(protein, step=8, exact=True),
        korvex.locate(protein, step=8),
        korvex.examine_ring(trefoil),
        korvex.identify(positions=trefoil),
        korvex.knot_type("+3_1"),
        korvex.KnotName("+3_1#-5_2"),
        korvex.Diagram.of_gauss_code("O1+U2+O3+U1+O2+U3+"),
    ]


def test_answers_survive_pickling(answers: List[Any]) -> None:
    for answer in answers:
        again = pickle.loads(pickle.dumps(answer))
        assert again == answer and hash(again) == hash(answer) and repr(again) == repr(answer)


def test_different_answers_differ(answers: List[Any]) -> None:
    for i, one in enumerate(answers):
        assert all(one != other for other in answers[i + 1 :])


def test_an_unpickled_fingerprint_writes_and_locates_the_same(protein: korvex.Chain) -> None:
    found = korvex.fingerprint(protein, step=8, directions=20, seed=3)
    again = pickle.loads(pickle.dumps(found))
    assert again.report("npz") == found.report("npz")
    assert korvex.locate(again) == korvex.locate(found)


def test_answers_cannot_be_changed(answers: List[Any]) -> None:
    for answer in answers:
        for name in ("chain", "types", "name", "stations", "crossings"):
            if hasattr(answer, name) and not isinstance(answer, korvex.Knots):
                with pytest.raises(AttributeError):
                    setattr(answer, name, None)
    found = next(answer for answer in answers if isinstance(answer, korvex.Fingerprint))
    arrays: List[NDArray[Any]] = [found.stations, found.dominant, found.share, found.chain.positions]
    for array in arrays:
        with pytest.raises(ValueError):
            array[...] = 0


def test_notebooks_show_tables_with_quoted_text(answers: List[Any]) -> None:
    shown = [answer._repr_html_() for answer in answers if hasattr(answer, "_repr_html_")]
    assert len(shown) >= 7 and all(text.startswith("<table>") for text in shown)
    evil = korvex.Chain(np.eye(3), name="<script>alert(1)</script>")
    assert "<script>" not in korvex.knot(evil)._repr_html_()


@pytest.mark.parametrize(
    "file, options",
    [
        ("data/proteins/2efv_CA.pdb", {}),
        ("data/proteins/4hhb.pdb", {}),
        ("data/proteins/4g6m_fab_merged_gap.pdb", {}),
        ("data/proteins/1ztu.pdb", {"trials": 64, "seed": 9}),
        ("data/proteins/1ubq.pdb", {"closure": "two-points"}),
        ("data/proteins/1ubq.pdb", {"closure": "direct"}),
        ("data/proteins/1ubq.pdb", {"trials": "auto", "tolerance": 0.1, "sampling": "independent"}),
        ("data/trajectories/ring_3_1.gro", {"closure": "ring"}),
        ("data/trajectories/ring_3_1.xtc", {"closure": "ring"}),
    ],
)
@pytest.mark.parametrize("form", ["json", "tsv", "text"])
def test_knots_are_written_as_the_command_line_does(
    command_line: Callable[..., bytes], file: str, options: "dict[str, Any]", form: str
) -> None:
    arguments = [text for name, value in options.items() for text in (f"--{name}", str(value))]
    expected = command_line("knot", file, "--format", form, *arguments)
    found = korvex.knots(korvex.read(file), **options)
    assert found.report(form).encode("utf-8", "surrogateescape") == expected


@pytest.mark.parametrize("form", ["json", "tsv", "text", "pymol", "chimerax"])
@pytest.mark.parametrize("options", [{"step": 4}, {"directions": 30, "step": 3, "threshold": 0.3}])
def test_places_are_written_as_the_command_line_does(
    command_line: Callable[..., bytes], form: str, options: "dict[str, Any]"
) -> None:
    file = f"data/proteins/{'1xd3_A_bound' if 'directions' in options else '2efv_CA'}.pdb"
    arguments = [text for name, value in options.items() for text in (f"--{name}", str(value))]
    expected = command_line("locate", file, "--format", form, *arguments)
    assert korvex.locate(next(korvex.read(file)), **options).report(form).encode() == expected


@pytest.mark.parametrize("form", ["json", "tsv", "npz", "matrix"])
@pytest.mark.parametrize("exact", [False, True])
def test_fingerprints_are_written_as_the_command_line_does(
    command_line: Callable[..., bytes], tmp_path: pathlib.Path, protein: korvex.Chain, form: str, exact: bool
) -> None:
    if exact and form == "matrix":
        pytest.skip("the matrix is of whole percentages of votes")
    written = tmp_path / f"fingerprint.{form}"
    by_python = tmp_path / f"python.{form}"
    options = ["--exact", "--step", "6"] if exact else ["--directions", "40", "--seed", "3"]
    command_line("fingerprint", "data/proteins/2efv_CA.pdb", "-o", str(written), "--format", form, *options)
    if exact:
        found = korvex.fingerprint(protein, exact=True, step=6)
    else:
        found = korvex.fingerprint(protein, directions=40, seed=3)
    found.save(by_python, format=form)
    assert by_python.read_bytes() == written.read_bytes()


@pytest.mark.parametrize("form", ["json", "tsv", "text"])
@pytest.mark.parametrize("command", ["knot", "locate", "map"])
def test_predicted_models_are_written_as_the_command_line_does(
    command_line: Callable[..., bytes], predicted: pathlib.Path, command: str, form: str
) -> None:
    chain = next(korvex.read(predicted))
    found = {"knot": korvex.knot, "locate": korvex.locate, "map": korvex.closure_map}[command](chain)  # type: ignore[operator]
    if command == "map":
        form = "json"
        expected = command_line("map", str(predicted), "-o", "-", "--format", form)
    else:
        expected = command_line(command, str(predicted), "--format", form)
    assert found.report(form).encode() == expected
    assert form != "json" or found.to_dict()["plddt"] == chain.summary.plddt


@pytest.mark.parametrize("form", ["json", "svg", "npz"])
def test_maps_are_written_as_the_command_line_does(
    command_line: Callable[..., bytes], tmp_path: pathlib.Path, protein: korvex.Chain, form: str
) -> None:
    written = tmp_path / f"map.{form}"
    by_python = tmp_path / f"python.{form}"
    command_line("map", "data/proteins/2efv_CA.pdb", "-o", str(written))
    korvex.closure_map(protein).save(by_python)
    assert by_python.read_bytes() == written.read_bytes()


def test_the_catalogue_is_written_as_the_command_line_does(command_line: Callable[..., bytes]) -> None:
    expected = json.loads(command_line("table", "+7_3", "--format", "json"))
    assert json.loads(korvex.knot_type("+7_3").report("json")) == expected


def test_an_archive_holds_the_arrays_of_a_fingerprint(tmp_path: pathlib.Path, protein: korvex.Chain) -> None:
    found = korvex.fingerprint(protein, step=5, directions=30)
    found.save(tmp_path / "fingerprint.npz")
    archive = np.load(tmp_path / "fingerprint.npz")
    assert np.array_equal(archive["dominant"], found.dominant)
    assert np.array_equal(archive["share"], found.share)
    assert np.array_equal(archive["stations"], found.stations)
    assert archive["types"].tolist() == list(found.types)
    assert archive["labels"].tolist() == found.labels
    knotted = found.knotted()
    assert np.array_equal(archive["begin"], knotted["begin"])
    assert np.array_equal(archive["end"], knotted["end"])
    assert np.allclose(archive["count"] / 30, knotted["share"])
    assert found.shares("-3_1")[0, -1] == pytest.approx(found.share[0, -1])


def test_a_file_is_written_whole_or_left_as_it_was(tmp_path: pathlib.Path, protein: korvex.Chain) -> None:
    target = tmp_path / "map.json"
    target.write_text("before")
    with pytest.raises(korvex.InvalidArgument, match="svg, json, npz"):
        korvex.closure_map(protein).save(target, format="pdf")
    assert target.read_text() == "before" and list(tmp_path.iterdir()) == [target]


def test_dictionaries_and_data_frames_hold_the_answer(protein: korvex.Chain) -> None:
    found = korvex.knot(protein)
    assert found.to_dict()["types"][0]["type"] == "-3_1" and found.to_dict()["residues"] == 82
    pandas = pytest.importorskip("pandas")
    frame = found.to_pandas()
    assert isinstance(frame, pandas.DataFrame) and list(frame["type"]) == [some.type for some in found.types]
    assert np.allclose(frame["share"], [some.share for some in found.types])
    assert len(korvex.knots([protein, protein]).to_pandas()) == 2 * len(frame)
    regions = korvex.closure_map(protein).to_pandas()
    assert len(regions) == 33 and regions["share"].sum() == pytest.approx(1)


def test_ranges_are_half_open_with_labels_beside_them(protein: korvex.Chain) -> None:
    found = korvex.locate(protein, step=3)
    place = found.knots[0]
    assert place.core.length == place.core.end - place.core.begin
    assert place.tail_before == place.core.begin and place.tail_after == len(protein) - place.core.end
    assert found.labels_of(place.core) == (
        protein.labels[place.core.begin],
        protein.labels[place.core.end - 1],
    )


def test_diagrams_are_drawn_as_the_command_line_does(command_line: Callable[..., bytes]) -> None:
    knot = korvex.knot_type("7_4")
    assert knot is not None
    drawing = korvex.Diagram(knot.gauss_code).svg(knot.name, korvex.colour_of_type(knot.name))
    assert drawing.encode() == command_line("draw", "7_4", "-o", "-")


def test_notebooks_show_diagrams_that_can_be_drawn() -> None:
    kinks = "".join(f"O{k}+U{k}+" for k in range(1, 1002))
    assert (korvex.Diagram("")._repr_svg_() or "").startswith("<svg")
    assert korvex.Diagram(kinks)._repr_svg_() is None
    with pytest.raises(ValueError, match="at most 1000"):
        korvex.Diagram(kinks).svg()
