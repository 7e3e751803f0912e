"""How computations are carried out: threads, progress, interrupts, the interpreter's lock, forks."""
from __future__ import annotations

import gc
import os
import signal
import subprocess
import sys
import threading
import tracemalloc
from concurrent.futures import ThreadPoolExecutor
from typing import Any, Callable, List

import numpy as np
import pytest
from numpy.typing import NDArray

import korvex


def test_threads_change_no_answer(protein: korvex.Chain) -> None:
    questions: List[Callable[..., Any]] = [korvex.knot, korvex.closure_map, korvex.fingerprint]
    for ask in questions:
        assert ask(protein, threads=1) == ask(protein, threads=3)
    assert korvex.knots([protein] * 5, threads=1) == korvex.knots([protein] * 5, threads=4)


def test_the_seed_fixes_the_directions(protein: korvex.Chain) -> None:
    ask = [korvex.knot(protein, trials=40, sampling="independent", seed=seed) for seed in (1, 2, 1)]
    assert ask[0] == ask[2] != ask[1]


def test_progress_rises_to_one(protein: korvex.Chain) -> None:
    told: List[float] = []
    korvex.fingerprint(protein, progress=told.append)
    assert told == sorted(told) and told[-1] == 1.0


def test_an_exception_of_progress_ends_the_computation(protein: korvex.Chain) -> None:
    def refuse(fraction: float) -> None:
        raise LookupError("enough")

    with pytest.raises(LookupError, match="enough"):
        korvex.fingerprint(protein, progress=refuse, threads=2)


def test_progress_may_compute(protein: korvex.Chain) -> None:
    found: List[str] = []
    korvex.fingerprint(protein, progress=lambda _: found.append(korvex.knot(protein).type))
    assert set(found) == {"-3_1"}


def test_a_bar_is_drawn_where_tqdm_is_installed(protein: korvex.Chain, capsys: Any) -> None:
    pytest.importorskip("tqdm")
    korvex.knots([protein] * 3, progress=True)
    assert "100%" in capsys.readouterr().err


def test_other_threads_run_meanwhile(coil: NDArray[np.float64]) -> None:
    turns: List[int] = []
    ended = threading.Event()

    def count() -> None:
        while not ended.is_set():
            turns.append(len(turns))

    other = threading.Thread(target=count)
    other.start()
    before = len(turns)
    korvex.knot(coil, trials=20, threads=1)
    after = len(turns)
    ended.set()
    other.join()
    assert after > before


def test_many_threads_may_ask_at_once(protein: korvex.Chain) -> None:
    expected = korvex.fingerprint(protein, directions=10)
    with ThreadPoolExecutor(8) as pool:
        answers = list(pool.map(lambda _: korvex.fingerprint(protein, directions=10), range(24)))
    assert all(answer == expected for answer in answers)


INTERRUPTED = """
import os, signal, sys, threading
import numpy as np
import korvex
walk = np.cumsum(np.random.default_rng(5).normal(size=(4000, 3)), axis=0)
asked = {
    "fingerprint": lambda: korvex.fingerprint(walk, threads=2),
    "map": lambda: korvex.closure_map(np.tile(walk[:1500], (1, 1)), most_regions=10**7),
    "knots": lambda: korvex.knots(np.stack([walk] * 50), trials=10000),
    "votes": lambda: korvex.knot(walk, trials=10**6),
    "ring": lambda: korvex.examine_ring(np.random.default_rng(1).normal(size=(20000, 3))),
}
threading.Timer(0.1, os.kill, (os.getpid(), signal.SIGINT)).start()
try:
    asked[sys.argv[1]]()
except KeyboardInterrupt:
    print("interrupted", korvex.knot(walk[:50]).type, signal.getsignal(signal.SIGINT).__name__)
"""


@pytest.mark.parametrize("what", ["fingerprint", "map", "knots", "votes", "ring"])
def test_an_interrupt_ends_a_computation(what: str) -> None:
    result = subprocess.run(
        [sys.executable, "-c", INTERRUPTED, what], stdout=subprocess.PIPE, timeout=60, check=True, text=True
    )
    assert result.stdout == "interrupted 0_1 default_int_handler\n"


def test_a_handler_that_goes_on_changes_no_answer(protein: korvex.Chain) -> None:
    calls: List[int] = []
    expected = korvex.fingerprint(protein)
    told: List[float] = []

    def once(fraction: float) -> None:
        if not told:
            os.kill(os.getpid(), signal.SIGINT)
        told.append(fraction)

    before = signal.signal(signal.SIGINT, lambda number, frame: calls.append(number))
    try:
        assert korvex.fingerprint(protein, progress=once) == expected
    finally:
        signal.signal(signal.SIGINT, before)
    assert calls == [signal.SIGINT]


def test_computes_after_a_fork(protein: korvex.Chain) -> None:
    expected = korvex.fingerprint(protein, directions=10)
    reading = korvex.read("data/trajectories/ring_3_1.lammpstrj")
    next(reading)
    child = os.fork()
    if child == 0:
        same = korvex.fingerprint(protein, directions=10, threads=2) == expected
        same = same and len(list(korvex.read("data/proteins/4hhb.pdb"))) == 4
        try:
            next(reading)
            same = False
        except korvex.InvalidArgument:
            pass
        del reading
        gc.collect()
        os._exit(0 if same else 1)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0
    assert next(reading).model == 2


def test_references_are_neither_lost_nor_kept() -> None:
    chain = np.array([[0, 0, 0], [1, 0, 0], [1, 1, 0], [0, 1, 1.0]])
    strange = np.array([[0, 0, 0], [1, 0, float("nan")]])
    watched = [chain, strange, None, korvex.Knot, korvex.InvalidArgument, "rays"]

    def call() -> None:
        korvex.knot(chain, threads=1)
        try:
            korvex.knot(strange)
        except ValueError:
            pass

    call()
    gc.collect()
    counts = [sys.getrefcount(some) for some in watched]
    blocks = sys.getallocatedblocks()
    for _ in range(100_000 if os.environ.get("KORVEX_LONG_TESTS") else 5_000):
        call()
    gc.collect()
    assert all(abs(sys.getrefcount(some) - count) < 50 for some, count in zip(watched, counts))
    assert sys.getallocatedblocks() - blocks < 1000


def test_arrays_of_a_long_chain_are_the_engines_own() -> None:
    walk = np.random.default_rng(2).normal(size=(637, 3)).cumsum(axis=0)
    data = korvex.fingerprint(walk, directions=1).data
    tracemalloc.start()  # counts what NumPy allocates, and not what the engine hands over
    try:
        arrays: List[NDArray[Any]] = [*data.dominant_arrays(), data.shares(0), data.stations, *data.knotted_arrays()]
        most = tracemalloc.get_traced_memory()[1]
    finally:
        tracemalloc.stop()
    assert sum(array.nbytes for array in arrays) > 16 * 637 * 637 and most < 10_000
    assert not any(isinstance(array.base, np.ndarray) or array.flags.owndata for array in arrays)


def test_an_iterator_that_is_dropped_ends_its_thread() -> None:
    for _ in range(200):
        next(korvex.read("data/trajectories/ring_3_1.lammpstrj"))
    assert len(os.listdir("/proc/self/task")) < 50
