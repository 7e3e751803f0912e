#!/usr/bin/python3
"""Builds the site of the documents.

usage: PYTHONPATH=BUILD/python build_site.py KORVEX OUTPUT-DIRECTORY

KORVEX is the command line. What is built here, not kept: the pictures and the notebook's answers, of the data that come
with korvex, and the reference of the headers. Every warning of Sphinx is an error.
"""
import pathlib
import shutil
import subprocess
import sys

import cpp_reference

ROOT = pathlib.Path(__file__).resolve().parent.parent
LINKED = ("data", "include", "LICENSE")  # what the documents link to, or compute with


def put_together(top):
    """The sources of the site, laid out as the project is, so that links between documents hold."""
    documents = top / "docs"
    shutil.copytree(ROOT / "docs", documents)
    for name in LINKED:
        (top / name).symlink_to(ROOT / name)
    (documents / "data").symlink_to(ROOT / "data")
    shutil.copy(ROOT / "CHANGELOG.md", documents / "changelog.md")
    cpp_reference.main(ROOT / "include", documents / "cpp")
    return documents


def draw(program, pictures):
    """The pictures of the pages."""
    import matplotlib

    matplotlib.use("agg")
    matplotlib.rcParams["svg.hashsalt"] = "korvex"
    import korvex.plot

    pictures.mkdir(exist_ok=True)
    protein = ROOT / "data" / "proteins" / "2efv_CA.pdb"
    subprocess.run(
        [program, "map", "data/proteins/2efv_CA.pdb", "-o", pictures / "map.svg"], cwd=ROOT, check=True
    )

    def save(ax, name):
        ax.figure.savefig(pictures / f"{name}.svg", bbox_inches="tight", metadata={"Date": None})

    chain = next(korvex.read(protein))
    save(korvex.plot.fingerprint(korvex.fingerprint(chain, exact=True, step=2)), "fingerprint")
    frames = list(korvex.read(ROOT / "data" / "trajectories" / "open_3_1.xtc"))
    times = [frame.time for frame in frames]
    save(korvex.plot.types(korvex.knots(frames), times=times, unit="time (ps)"), "types")


def run_notebooks(documents):
    """Every notebook as a page of Markdown, with what it shows now."""
    import nbformat
    from nbconvert import MarkdownExporter
    from nbconvert.preprocessors import ExecutePreprocessor

    for path in sorted(documents.glob("*.ipynb")):
        notebook = nbformat.read(path, as_version=4)
        ExecutePreprocessor(timeout=300, kernel_name="python3").preprocess(
            notebook, {"metadata": {"path": str(documents)}}
        )
        for cell in notebook.cells:
            for output in cell.get("outputs", ()):  # pictures that cannot be drawn stop no notebook
                if output.output_type == "error" or output.get("name") == "stderr":
                    sys.exit(f"{path.name}: {output.get('evalue') or output.get('text')}")
        files = f"{path.stem}-files"
        text, resources = MarkdownExporter().from_notebook_node(
            notebook, {"output_files_dir": files, "unique_key": path.stem}
        )
        for name, content in resources["outputs"].items():
            (documents / name).parent.mkdir(exist_ok=True)
            (documents / name).write_bytes(content)
        path.with_suffix(".md").write_text(text)
        path.unlink()
        for page in documents.glob("*.md"):  # they link to the notebook
            page.write_text(page.read_text().replace(f"]({path.name})", f"]({path.stem}.md)"))


def main(program, output):
    program, output = pathlib.Path(program).resolve(), pathlib.Path(output).resolve()
    top = output.parent / f"{output.name}-source"
    for directory in (top, output):
        shutil.rmtree(directory, ignore_errors=True)
    top.mkdir(parents=True)
    documents = put_together(top)
    draw(program, documents / "pictures")
    run_notebooks(documents)
    (documents / "data").unlink()
    command = ["-m", "sphinx", "-q", "-W", "--keep-going", "-b", "html", str(documents), str(output)]
    return subprocess.run([sys.executable, *command], check=False).returncode


if __name__ == "__main__":
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    sys.exit(main(*sys.argv[1:]))
