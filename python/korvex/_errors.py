"""What korvex raises."""
from __future__ import annotations


class Error(Exception):
    """Base of all that korvex raises for what its caller can mend.

    The message says what is wrong, where, and what to do about it.

    Attributes
    ----------
    code : str
        Which kind: ``"invalid_argument"``, ``"bad_input"``, ``"cannot_read"`` or ``"cancelled"``.
    file : str
        The input that it is about; empty if it is about none.
    line : int
        The line in that file, counted from 1; 0 if it is about none.

    Examples
    --------
    >>> import korvex
    >>> try:
    ...     korvex.knot([[0.0, 0.0], [1.0, 0.0]])
    ... except korvex.Error as error:
    ...     print(error.code, isinstance(error, ValueError))
    invalid_argument True
    """

    code: str = "error"
    file: str = ""
    line: int = 0

    def __init__(self, message: str, file: str = "", line: int = 0) -> None:
        super().__init__(message)
        self.file = file
        self.line = line


class InvalidArgument(Error, ValueError):
    """An argument outside its stated range, or positions of another shape or that are no numbers."""

    code = "invalid_argument"


class BadInput(Error, ValueError):
    """A file or a chain that cannot be understood."""

    code = "bad_input"


class CannotRead(Error, OSError):
    """A file that cannot be opened or read."""

    code = "cannot_read"


class Cancelled(Error):
    """A computation that was asked to stop."""

    code = "cancelled"
