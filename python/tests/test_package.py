"""The package itself: its documents, its types, its import."""
from __future__ import annotations

import doctest
import importlib
import inspect
import os
import pathlib
import subprocess
import sys

import pytest

import korvex

PACKAGE = pathlib.Path(korvex.__file__).parent
MODULES = sorted(path.stem for path in PACKAGE.glob("_*.py")) + ["_korvex", "classic"]


@pytest.mark.parametrize("name", MODULES)
def test_the_examples_of_the_docstrings_run(name: str) -> None:
    module = korvex if name == "__init__" else importlib.import_module(f"korvex.{name}")
    assert doctest.testmod(module).failed == 0


def test_everything_public_is_documented_with_an_example_where_it_is_called() -> None:
    for name in korvex.__all__:
        some = getattr(korvex, name)
        if name.startswith("__") or name == "identity_cache":
            continue
        assert inspect.getdoc(some), name
        if inspect.isfunction(some):
            doc = inspect.getdoc(some) or ""
            assert ">>>" in doc and "Parameters\n---" in doc + "Parameters\n---", name
            for parameter in inspect.signature(some).parameters:
                assert parameter in doc, f"{name}: {parameter}"


def test_the_import_is_light() -> None:
    heavy = ("matplotlib", "pandas", "MDAnalysis", "tqdm", "scipy", "korvex.mda", "korvex.plot")
    script = f"import sys, korvex; print([name for name in {heavy!r} if name in sys.modules])"
    result = subprocess.run([sys.executable, "-c", script], stdout=subprocess.PIPE, check=True, text=True)
    assert result.stdout == "[]\n"


def test_types_are_checked_strictly(tmp_path: pathlib.Path) -> None:
    pytest.importorskip("mypy")
    root = pathlib.Path(__file__).resolve().parent.parent.parent
    sources = [str(root / "python" / "korvex"), *map(str, sorted((root / "python" / "tests").glob("*.py")))]
    environment = dict(os.environ, MYPYPATH=str(root / "python"))
    command = [sys.executable, "-m", "mypy", "--config-file", str(root / "pyproject.toml"), *sources]
    cache = os.environ.get("KORVEX_MYPY_CACHE", str(tmp_path))
    result = subprocess.run(
        [*command, "--cache-dir", cache], stdout=subprocess.PIPE, cwd=tmp_path, env=environment, check=False, text=True
    )
    assert result.returncode == 0, result.stdout
