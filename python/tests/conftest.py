"""What the tests have in common. They are run from the root of the project."""
from __future__ import annotations

import os
import pathlib
import subprocess
from typing import Callable

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent

os.chdir(ROOT)  # examples and answers name files as seen from there


@pytest.fixture(scope="session")
def protein() -> korvex.Chain:
    """The smallest knotted protein: 82 residues, a left-handed trefoil."""
    return next(korvex.read("data/proteins/2efv_CA.pdb"))


@pytest.fixture(scope="session")
def predicted(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    """The smallest knotted protein as if it were a predicted model: confidences rise and fall along it."""
    lines = (ROOT / "data" / "proteins" / "2efv_CA.pdb").read_text().splitlines()
    atoms = [line for line in lines if line.startswith("ATOM")]
    marked = [f"{line[:60]}{50 + 0.57 * min(i, len(atoms) - i):6.2f}{line[66:]}" for i, line in enumerate(atoms)]
    path = tmp_path_factory.mktemp("predicted") / "model.pdb"
    path.write_text("\n".join(["TITLE     ALPHAFOLD MONOMER V2.0 PREDICTION", *marked, "END", ""]))
    return path


@pytest.fixture(scope="session")
def trefoil() -> NDArray[np.float64]:
    """A right-handed trefoil ring of 60 points."""
    t = np.linspace(0, 2 * np.pi, 60, endpoint=False)
    ring = [np.sin(t) + 2 * np.sin(2 * t), np.cos(t) - 2 * np.cos(2 * t), np.sin(3 * t)]
    return np.ascontiguousarray(np.stack(ring, axis=1))


@pytest.fixture(scope="session")
def coil() -> NDArray[np.float64]:
    """A chain that takes long: a random walk of 3,000 steps."""
    steps = np.random.default_rng(5).normal(size=(3000, 3))
    return np.cumsum(steps / np.linalg.norm(steps, axis=1)[:, None], axis=0)


@pytest.fixture(scope="session")
def command_line() -> Callable[..., bytes]:
    """Runs the command line, and gives what it writes."""
    program = os.environ.get("KORVEX_CLI", "")
    if not program:
        pytest.skip("KORVEX_CLI does not name the command line")

    def run(*arguments: str) -> bytes:
        result = subprocess.run([program, *arguments], cwd=ROOT, stdout=subprocess.PIPE, check=True)
        return result.stdout

    return run
