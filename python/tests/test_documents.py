"""The examples and pictures of the documents."""
from __future__ import annotations

import doctest
import pathlib
import re
from typing import Any, Callable, Dict, List

import pytest

from conftest import ROOT

BLOCK = re.compile(r"(<!-- \S+ -->\n)?```python\n(.*?)```", re.DOTALL)
PAGES = sorted(path for path in [*ROOT.glob("*.md"), *ROOT.glob("docs/*.md")] if BLOCK.search(path.read_text()))
PICTURES = {"2efv_map.svg": ("map", "data/proteins/2efv_CA.pdb", "--format", "svg", "-o", "-")}


def examples(page: pathlib.Path) -> List[str]:
    """The blocks of Python; one below the name of a file repeats that file, which other tests run."""
    blocks = []
    for name, code in BLOCK.findall(page.read_text()):
        if name:
            assert code == (ROOT / name.split()[1]).read_text(), f"{page.name}: {name}"
        else:
            blocks.append(code)
    return blocks


@pytest.mark.parametrize("page", PAGES, ids=[path.name for path in PAGES])
def test_the_examples_of_a_page_run(page: pathlib.Path) -> None:
    blocks = examples(page)
    for needed in ("MDAnalysis", "matplotlib"):
        if any(needed in block for block in blocks):
            pytest.importorskip(needed)
    runner = doctest.DocTestRunner()
    shared: Dict[str, Any] = {}
    for number, block in enumerate(blocks):
        assert ">>>" in block, "an example that is run has prompts"
        test = doctest.DocTestParser().get_doctest(block, shared, f"block {number}", page.name, 0)
        runner.run(test, clear_globs=False)
        shared = test.globs
    assert runner.failures == 0


@pytest.mark.parametrize("name", sorted(PICTURES))
def test_a_picture_is_what_the_command_line_draws(command_line: Callable[..., bytes], name: str) -> None:
    assert (ROOT / "docs" / "pictures" / name).read_bytes() == command_line(*PICTURES[name])


def test_every_picture_that_is_kept_has_its_command() -> None:
    assert {path.name for path in (ROOT / "docs" / "pictures").iterdir()} == set(PICTURES)
