"""Scans of whole archives as the tasks of a Dask cluster.

    from dask.distributed import Client
    from korvex import scan

    print(scan.on_dask(Client("scheduler:8786"), ["models.tar"], "found", tasks=1000))

Every task is one share of the pieces of `korvex scan`, which the workers run as a command, so that they need
it, the package, and a directory that all of them can write to. A task that is run again,
since its worker died, does what that one left undone. The bytes of the results do not depend on workers or on
their deaths.

Without dask.distributed this module can be imported; a client is all that it takes. One machine is served by the
command itself.
"""

from __future__ import annotations

import os
import subprocess
from collections.abc import Iterable, Sequence
from typing import Any

__all__ = ["merge", "on_dask", "shard"]

_DONE = (0, 1)  # 1: some inputs failed, as the results tell


def _run(command: Sequence[str]) -> str:
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode not in _DONE or not done.stdout:
        raise RuntimeError(done.stderr.strip() or f"{command[0]}: exit status {done.returncode}")
    return done.stdout.splitlines()[0]


def shard(
    sources: Sequence[str],
    directory: str,
    number: int,
    of: int,
    options: Sequence[str] = (),
    korvex: str = "korvex",
) -> str:
    """Scan one share of the pieces with one thread, and go on with what is there of it.

    Parameters
    ----------
    sources : sequence of str
        Folders, lists, archives and files, as the command takes them.
    directory : str
        Where the results go; the same for all shares.
    number, of : int
        Which share: the `number`-th, from 1, of so many.
    options : sequence of str
        Further options of the command, such as ``["--trials", "20"]``.
    korvex : str
        The command, or its path.

    Returns
    -------
    str
        The summary of what was found.

    Raises
    ------
    RuntimeError
        With what the command complains of.
    """
    command = [korvex, "scan", *sources, "-o", directory, "--resume", "--threads", "1"]
    return _run([*command, "--shard", f"{number}/{of}", *options])


def merge(directory: str, korvex: str = "korvex") -> str:
    """Put the pieces of all shares together.

    Parameters
    ----------
    directory : str
        Where the shares wrote.
    korvex : str
        The command, or its path.

    Returns
    -------
    str
        The summary of what was found.

    Raises
    ------
    RuntimeError
        Where pieces are missing.
    """
    return _run([korvex, "merge", directory])


def on_dask(
    client: Any,
    sources: Iterable[str | os.PathLike[str]],
    directory: str | os.PathLike[str],
    *,
    tasks: int = 100,
    options: Sequence[str] = (),
    korvex: str = "korvex",
) -> str:
    """Scan on the workers of a cluster, and merge.

    Parameters
    ----------
    client : distributed.Client
    sources : iterable of str or path
        Folders, lists, archives and files, as the command takes them.
    directory : str or path
        Where the results go; all workers write there.
    tasks : int
        How many shares to cut the work into; may be more than there are pieces. Each passes over every source
        once. Seconds to minutes a task are a good size.
    options : sequence of str
        Further options of the command, such as ``["--piece", "5000"]``.
    korvex : str
        The command on the workers, or its path.

    Returns
    -------
    str
        The summary of what was found; the results are in `directory`.

    Raises
    ------
    ValueError
        For less than one task.
    RuntimeError
        As `shard`.
    """
    if tasks < 1:
        raise ValueError("a scan needs at least one task")
    names = [os.fspath(source) for source in sources]
    where = os.fspath(directory)
    shares = [
        client.submit(shard, names, where, number, tasks, list(options), korvex, pure=False, retries=3)
        for number in range(1, tasks + 1)
    ]
    client.gather(shares)
    return merge(where, korvex)
