"""Scans of whole archives as the tasks of a Dask cluster.

    from dask.distributed import Client
    from korvex import cluster

    results = cluster.scan(Client("scheduler:8786"), ["models.tar"], "found", tasks=1000)

Every task is one share of the pieces of `korvex scan`, which the workers run as a command, so that
they need korvex and a directory that all of them can write to, and nothing of this package. A task
that is run again, since its worker died, does what that one left undone. The bytes of the results
do not depend on workers or on their deaths.

Without dask.distributed this module can be imported; a client is all that it takes.
"""

from __future__ import annotations

import os
import subprocess
from collections.abc import Iterable, Sequence
from typing import Any

__all__ = ["merge", "scan", "scan_shard"]

_DONE = (0, 1)  # 1: some inputs failed, as the results tell


def _run(command: Sequence[str]) -> str:
    done = subprocess.run(command, capture_output=True, text=True, check=False)
    if done.returncode not in _DONE or not done.stdout:
        raise RuntimeError(done.stderr.strip() or f"{command[0]}: exit status {done.returncode}")
    return done.stdout.splitlines()[0]


def scan_shard(
    sources: Sequence[str],
    directory: str,
    shard: int,
    of: int,
    options: Sequence[str] = (),
    korvex: str = "korvex",
) -> str:
    """Scans one share of the pieces with one thread, and goes on with what is there of it.

    `shard` is from 1 to `of`; `options` are further options of the command. The summary of what
    was found. Raises RuntimeError with what the command complains of.
    """
    command = [korvex, "scan", *sources, "-o", directory, "--resume", "--threads", "1"]
    return _run([*command, "--shard", f"{shard}/{of}", *options])


def merge(directory: str, korvex: str = "korvex") -> str:
    """Puts the pieces of all shards together. The summary of what was found."""
    return _run([korvex, "merge", directory])


def scan(
    client: Any,
    sources: Iterable[str | os.PathLike[str]],
    directory: str | os.PathLike[str],
    *,
    tasks: int = 100,
    options: Sequence[str] = (),
    korvex: str = "korvex",
) -> str:
    """Scans `sources` into `directory` on the workers of a distributed.Client, and merges.

    The work is cut into so many `tasks`, which may be more than there are pieces; each of them
    passes over every source once. Seconds to minutes a task are a good size. The summary of what
    was found; the results are in `directory`. Raises RuntimeError as scan_shard() does.
    """
    if tasks < 1:
        raise ValueError("a scan needs at least one task")
    names = [os.fspath(source) for source in sources]
    where = os.fspath(directory)
    shards = [
        client.submit(
            scan_shard, names, where, shard, tasks, list(options), korvex, pure=False, retries=3
        )
        for shard in range(1, tasks + 1)
    ]
    client.gather(shards)
    return merge(where, korvex)
