"""The site of the documents: built without a warning, whole, and with every name in its reference."""
from __future__ import annotations

import html
import json
import os
import pathlib
import re
import subprocess
import sys
from typing import Set
from urllib.parse import unquote, urldefrag

import pytest

import korvex
from conftest import ROOT
from test_names import declared, exported

for needed in ("sphinx", "myst_parser", "numpydoc", "nbconvert", "ipykernel", "matplotlib", "MDAnalysis"):
    pytest.importorskip(needed)


@pytest.fixture(scope="module")
def site(tmp_path_factory: pytest.TempPathFactory) -> pathlib.Path:
    program = os.environ.get("KORVEX_CLI", "")
    if not program:
        pytest.skip("KORVEX_CLI does not name the command line")
    output = tmp_path_factory.mktemp("documents") / "site"
    build = [sys.executable, "-W", "ignore", str(ROOT / "tools" / "build_site.py"), program, str(output)]
    result = subprocess.run(build, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False, text=True)
    assert result.returncode == 0, result.stdout
    return output


def text_of(page: pathlib.Path) -> str:
    return html.unescape(re.sub(r"<[^>]+>", "", page.read_text()))


def test_every_link_leads_somewhere(site: pathlib.Path) -> None:
    pages = list(site.rglob("*.html"))
    assert len(pages) > 40
    for page in pages:
        for link in re.findall(r'(?:href|src)="([^"]+)"', page.read_text()):
            target = unquote(urldefrag(html.unescape(link))[0])
            if target and "://" not in target:
                assert (page.parent / target).exists(), f"{page.name}: {link}"


def test_three_first_pages_lead_to_an_answer(site: pathlib.Path) -> None:
    first = text_of(site / "index.html")
    for name, title in (("one-protein", "One protein"), ("a-trajectory", "A trajectory"), ("an-archive", "An archive")):
        page = text_of(site / f"{name}.html")
        assert title in first and "Install" in page and "$ korvex" in page


def test_pictures_are_built(site: pathlib.Path) -> None:
    names = {path.name for path in (site / "_images").iterdir()}
    assert {"map.svg", "fingerprint.svg", "types.svg"} <= names
    assert len([name for name in names if name.startswith("knots-of-a-trajectory")]) >= 3


def test_the_reference_has_every_name_of_the_package(site: pathlib.Path) -> None:
    page = (site / "python-reference.html").read_text()
    named = set(re.findall(r'id="korvex\.([\w.]+)"', page))
    assert {name for name in korvex.__all__ if not name.startswith("__")} <= named
    assert {"mda.KnotAnalysis", "plot.types", "scan.on_dask", "classic.atoms_of"} <= named


def test_the_reference_has_every_name_of_the_headers(site: pathlib.Path) -> None:
    headings: Set[str] = set()
    code = ""
    for page in (site / "cpp").glob("*.html"):
        content = page.read_text()
        code += text_of(page)
        for heading in re.findall(r"<h2>(.*?)</h2>", content):
            headings |= set(re.findall(r'class="pre">([^<]+)<', heading))
    assert exported() - {name for name in headings} == set()
    assert {name for name in declared() if "." not in name} <= headings
    assert all(name.rpartition(".")[2] in code for name in declared())


def test_the_notebook_is_stored_without_answers_and_runs(site: pathlib.Path) -> None:
    (notebook,) = ROOT.glob("docs/*.ipynb")
    cells = [cell for cell in json.loads(notebook.read_text())["cells"] if cell["cell_type"] == "code"]
    assert len(cells) > 5 and not any(cell["outputs"] or cell["execution_count"] for cell in cells)
    shown = text_of(site / f"{notebook.stem}.html")
    assert "Traceback" not in shown and "'+3_1': " in shown and "<Location" not in shown
