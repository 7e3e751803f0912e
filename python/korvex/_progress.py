"""What is told of the progress of a computation."""
from __future__ import annotations

from contextlib import contextmanager
from typing import Any, Callable, Iterator, Optional, Union

Progress = Union[bool, Callable[[float], object], None]


@contextmanager
def told(progress: Progress, about: str) -> Iterator[Optional[Callable[[float], object]]]:
    """A callable for the engine: the one that was given, or one that draws a bar by tqdm."""
    if not progress:
        yield None
    elif callable(progress):
        yield progress
    else:
        bar = _bar(about)
        if bar is None:
            yield None
            return
        with bar:
            yield lambda fraction: bar.update(fraction - bar.n)


def _bar(about: str) -> Any:
    try:
        from tqdm.auto import tqdm
    except ImportError:
        return None
    return tqdm(total=1.0, desc=about, bar_format="{desc}: {percentage:3.0f}%|{bar}| {elapsed}<{remaining}")
