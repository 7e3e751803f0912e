#!/usr/bin/python3
"""What the Python package costs besides the engine: CPU times, medians, rounds interleaved.

usage: PYTHONPATH=build/release/python python_bench.py [KNOTS_OF_FRAMES]

KNOTS_OF_FRAMES is the program of that name in bench/, which answers the same frames without Python.

The binding's own function is called with arguments that need no preparation, so that what is left is the engine and
the call itself; a chain of two points costs the engine next to nothing, so that its time bounds the overhead.
"""
import statistics
import subprocess
import sys
import time

import numpy as np

import korvex
from korvex import _korvex


def cpu(work, calls, rounds=9):
    """Median CPU time of a call, in microseconds."""
    times = []
    for _ in range(rounds):
        before = time.process_time()
        for _ in range(calls):
            work()
        times.append(1e6 * (time.process_time() - before) / calls)
    return statistics.median(times)


def spent(work):
    """CPU time and time by the clock, in seconds."""
    before, begin = time.process_time(), time.perf_counter()
    work()
    return time.process_time() - before, time.perf_counter() - begin


def compare_frames(frames, program=None, rounds=9):
    """Many frames in C++ and in Python, on one thread and on two, in turn."""
    times = {}
    for _ in range(rounds):
        for threads in (1, 2):
            times.setdefault(("Python", threads), []).append(
                spent(lambda: korvex.knots(frames, closure="ring", threads=threads))
            )
            if program is None:
                continue
            command = [program, str(frames.shape[1]), str(threads), "2"]  # the first fills the cache of types
            told = subprocess.run(command, input=frames.tobytes(), stdout=subprocess.PIPE, check=True).stdout
            times.setdefault(("C++", threads), []).append(tuple(map(float, told.split()[2:])))
    medians = {key: [statistics.median(column) for column in zip(*some)] for key, some in times.items()}
    best = {key: min(clock for _, clock in some) for key, some in times.items()}
    for (language, threads), (processor, clock) in medians.items():
        print(f"knots, {len(frames)} rings of {frames.shape[1]} beads, {language}, {threads} threads: "
              f"{1e3 * processor:.1f} ms CPU, {1e3 * clock:.1f} ms by the clock")  # fmt: skip
    one, two = best["Python", 1], best["Python", 2]
    print(f"two threads against one, the fastest by the clock: {one / two:.2f}; CPU: "
          f"{medians['Python', 2][0] / medians['Python', 1][0]:.3f}")  # fmt: skip
    if program is not None:
        print(f"Python against C++, CPU: {medians['Python', 1][0] / medians['C++', 1][0]:.3f} on one thread, "
              f"{medians['Python', 2][0] / medians['C++', 2][0]:.3f} on two")  # fmt: skip


def main(*programs):
    walk = np.random.default_rng(3).normal(size=(100, 3)).cumsum(axis=0)
    for name, chain in (("2 points", walk[:2].copy()), ("100 points", walk)):
        arguments = (chain, "rays", None, None, None, 10000, 100000, 1, 1, None)
        calls = 5000 if len(chain) == 2 else 20
        whole = cpu(lambda: korvex.knot(chain, threads=1), calls)
        bare = cpu(lambda: _korvex.knot(*arguments), calls)
        print(f"knot, {name}: {whole:.1f} us, of which the binding and the engine {bare:.1f} us")

    frames = np.array([chain.positions for chain in korvex.read("data/trajectories/ring_3_1.lammpstrj")])
    compare_frames(np.concatenate([frames] * (1000 // len(frames))), *programs)

    script = "import time, sys; a = time.process_time(); import korvex; print(time.process_time() - a)"
    times = [float(subprocess.check_output([sys.executable, "-c", script])) for _ in range(9)]
    script = script.replace("korvex;", "numpy;")
    numpys = [float(subprocess.check_output([sys.executable, "-c", script])) for _ in range(9)]
    print(f"import korvex: {statistics.median(times):.3f} s, of which NumPy {statistics.median(numpys):.3f} s")


if __name__ == "__main__":
    main(*sys.argv[1:])
