"""What all answers have in common."""
from __future__ import annotations

import csv
import io
import json
import os
import tempfile
from typing import TYPE_CHECKING, Any, Dict, List, Sequence, Tuple, Union

from . import _korvex
from ._errors import InvalidArgument

if TYPE_CHECKING:
    import pandas

PathLike = Union[str, "os.PathLike[str]"]


def table_of_html(title: str, head: Sequence[str], rows: Sequence[Sequence[object]]) -> str:
    """A table for a notebook; all text is quoted."""

    def cells(tag: str, values: Sequence[object]) -> str:
        return "".join(f"<{tag}>{_korvex.quoted_for_xml(str(value))}</{tag}>" for value in values)

    body = "".join(f"<tr>{cells('td', row)}</tr>" for row in rows)
    caption = _korvex.quoted_for_xml(title)
    return f"<table><caption>{caption}</caption><tr>{cells('th', head)}</tr>{body}</table>"


def swatch(knot_type: str) -> str:
    """A piece of text in the colour of the type."""
    colour = _korvex.colour_of_type(knot_type)
    name = _korvex.quoted_for_xml(knot_type)
    return f'<span style="color:{colour}">&#9632;</span> {name}'


def write_whole(path: PathLike, content: bytes) -> None:
    """Beside the file first, so that it is there whole or as it was."""
    directory = os.path.dirname(os.path.abspath(path))
    handle, beside = tempfile.mkstemp(dir=directory, prefix=".korvex-")
    try:
        with os.fdopen(handle, "wb") as file:
            file.write(content)
            file.flush()
            os.fsync(file.fileno())
        mask = os.umask(0)
        os.umask(mask)
        os.chmod(beside, 0o666 & ~mask)
        os.replace(beside, path)
    except BaseException:
        os.unlink(beside)
        raise


class Answer:
    """An answer that can be written in the formats of the command line."""

    _formats: Tuple[str, ...] = ()

    def report(self, format: str = "text") -> Any:
        """The answer as the command line writes it.

        Parameters
        ----------
        format : str
            As the command line's ``--format``.

        Returns
        -------
        str, or bytes for "npz"
        """
        raise NotImplementedError

    def save(self, path: PathLike, format: str = "") -> None:
        """Write the answer to a file, whole or not at all.

        Parameters
        ----------
        path : str or path
        format : str, optional
            As of `report`; by default the end of the file's name tells it.

        Raises
        ------
        InvalidArgument
            If the answer has no such format.
        """
        chosen = format or os.path.splitext(os.fspath(path))[1].lstrip(".")
        if chosen not in self._formats:
            raise InvalidArgument(f"{os.fspath(path)}: '{chosen}': one of {', '.join(self._formats)}")
        content = self.report(chosen)
        if isinstance(content, str):
            content = content.encode("utf-8", "surrogateescape")
        write_whole(path, content)

    def to_dict(self) -> Dict[str, Any]:
        """The answer as the command line's JSON has it, as a dictionary."""
        read = json.loads(self.report("json"))
        return read[0] if isinstance(read, list) else read  # type: ignore[no-any-return]

    def to_pandas(self) -> "pandas.DataFrame":
        """The rows of the command line's table, as a data frame of pandas."""
        return frame_of_tsv(self.report("tsv"))


def frame_of_tsv(table: Union[str, bytes]) -> "pandas.DataFrame":
    import pandas

    text = table.decode() if isinstance(table, bytes) else table
    rows: List[List[str]] = list(csv.reader(io.StringIO(text), delimiter="\t", quoting=csv.QUOTE_NONE))
    frame = pandas.DataFrame(rows[1:], columns=rows[0])
    words = {"source", "chain", "type", "closure", "trials", "ends", "begin", "end", "plain", "name"}
    for column in frame.columns:
        if column not in words:
            try:
                frame[column] = pandas.to_numeric(frame[column])
            except ValueError:
                pass
    return frame
