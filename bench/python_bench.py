#!/usr/bin/python3
"""What the Python package costs besides the engine: CPU times, medians.

usage: PYTHONPATH=build/release/python python_bench.py

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


def main():
    walk = np.random.default_rng(3).normal(size=(100, 3)).cumsum(axis=0)
    for name, chain in (("2 points", walk[:2].copy()), ("100 points", walk)):
        arguments = (chain, "rays", None, None, None, 10000, 100000, 1, 1, None)
        calls = 5000 if len(chain) == 2 else 20
        whole = cpu(lambda: korvex.knot(chain, threads=1), calls)
        bare = cpu(lambda: _korvex.knot(*arguments), calls)
        print(f"knot, {name}: {whole:.1f} us, of which the binding and the engine {bare:.1f} us")

    frames = np.array([chain.positions for chain in korvex.read("data/trajectories/ring_3_1.lammpstrj")])
    frames = np.concatenate([frames] * 20)
    arrays = list(frames)
    rings = ["ring"] * len(frames)
    rest = (None, None, None, 10000, 100000, 1, 1, None)
    whole = cpu(lambda: korvex.knots(frames, closure="ring", threads=1), 1)
    bare = cpu(lambda: _korvex.knots(arrays, rings, *rest), 1)
    print(f"knots, {len(frames)} frames of 120 beads: {whole / 1e3:.1f} ms, the binding and the engine {bare / 1e3:.1f} ms")

    script = "import time, sys; a = time.process_time(); import korvex; print(time.process_time() - a)"
    times = [float(subprocess.check_output([sys.executable, "-c", script])) for _ in range(9)]
    script = script.replace("korvex;", "numpy;")
    numpys = [float(subprocess.check_output([sys.executable, "-c", script])) for _ in range(9)]
    print(f"import korvex: {statistics.median(times):.3f} s, of which NumPy {statistics.median(numpys):.3f} s")


if __name__ == "__main__":
    main()
