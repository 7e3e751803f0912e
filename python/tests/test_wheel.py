"""The wheel, installed into an empty environment from which the sources cannot be seen."""
from __future__ import annotations

import os
import pathlib
import shutil
import subprocess
import sys
import venv
import zipfile

import numpy as np
import pytest

from conftest import ROOT

ASKED = """
import pathlib, sys
import numpy as np
import korvex
import korvex.classic
package = pathlib.Path(korvex.__file__).parent
maps = pathlib.Path("/proc/self/maps").read_text()
mapped = {line.split()[-1] for line in maps.splitlines() if "korvex" in line or "preprocess" in line}
assert all(path.startswith(str(package)) for path in mapped), mapped
assert {pathlib.Path(path).name.split(".")[0] for path in mapped} == {"_korvex", "libkorvex", "libpreprocess"}
assert (package / "py.typed").exists() and (package / "_korvex.pyi").exists()
chain = next(korvex.read(pathlib.Path("protein.pdb").read_bytes()))
print(korvex.__version__, korvex.knot(chain).type, korvex.locate(chain, step=4).type)
"""


def test_a_wheel_is_all_that_an_empty_environment_needs(tmp_path: pathlib.Path) -> None:
    pytest.importorskip("pip")
    sources = tmp_path / "sources"  # setuptools writes beside what it builds
    left_out = shutil.ignore_patterns("build", ".git", "__pycache__")
    build = os.environ.get("KORVEX_BUILD_DIRECTORY")
    if build:
        sources.mkdir()
        for name in ("pyproject.toml", "setup.py", "README.md"):
            shutil.copy(ROOT / name, sources)
        shutil.copytree(ROOT / "python" / "korvex", sources / "python" / "korvex", ignore=left_out)
    else:
        shutil.copytree(ROOT, sources, ignore=left_out)
    wheels = tmp_path / "wheels"
    offline = ["--no-build-isolation", "--no-deps", "--no-index", "--quiet"]
    environment = {name: value for name, value in os.environ.items() if name != "PYTHONPATH"}
    pip = [sys.executable, "-m", "pip"]
    subprocess.run([*pip, "wheel", ".", *offline, "-w", str(wheels)], cwd=sources, env=environment, check=True)
    (wheel,) = wheels.glob("*.whl")
    with zipfile.ZipFile(wheel) as archive:
        names = [pathlib.PurePath(name).name for name in archive.namelist()]
    assert names.count("libkorvex.so.0") == 1 and names.count("libpreprocess.so.0") == 1

    shutil.rmtree(sources)
    place = tmp_path / "environment"
    venv.create(place, with_pip=False)
    python = place / "bin" / "python3"
    (packages,) = place.glob("lib/python3*/site-packages")
    subprocess.run(
        [*pip, "install", "--quiet", "--no-index", "--no-deps", "--target", str(packages), str(wheel)],
        env=environment,
        check=True,
    )
    # NumPy is what it depends on, and there is no index to fetch it from.
    (packages / "numpy").symlink_to(pathlib.Path(np.__file__).parent)
    shutil.copy(ROOT / "data" / "proteins" / "2efv_CA.pdb", tmp_path / "protein.pdb")
    result = subprocess.run(
        [str(python), "-I", "-c", ASKED], cwd=tmp_path, env=environment, stdout=subprocess.PIPE, check=True, text=True
    )
    assert result.stdout.split() == ["0.1.0", "-3_1", "-3_1"]
