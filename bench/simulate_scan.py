#!/usr/bin/python3
"""Tells what a scan of a large archive waits for first: processors, long chains, bytes or small operations.

usage: simulate_scan.py KORVEX [--trials COUNT] [--models COUNT] [--bytes-per-second B] [--operations-per-second N]

Measures what models of several lengths cost the given korvex in processor time and bytes: chains of shipped proteins,
and as longer ones several of them on a string. From that it simulates scans by 1 to 10,000 workers of one thread, on
lengths drawn from two distributions:

- shipped: the lengths of the chains of data/proteins, as often as they stand there;
- wide: log-normal, median 300, sigma 0.75, from 16 to 2,700 residues: an assumption about archives of predicted
  models, not taken from one.

All workers share a file system of so many bytes and operations a second (1e9 and 20,000 by default, assumptions
too). They take either shards of one archive, through all of which each goes, an operation a block of 16 KiB or
less, to skip what is not its own; or archives of their own, as many as there are workers.
"""
import argparse
import bisect
import io
import math
import pathlib
import random
import resource
import shutil
import subprocess
import tarfile
import tempfile

import make_models

COPIES = {1: 24, 2: 8, 4: 4, 8: 2}  # models measured, by their domains
BLOCK = 16384  # of an archive
OPERATIONS_OF_A_PART = 8  # made, written, synchronised, renamed; looked for before


def on_a_string(domains):
    """One chain of several, each far from the others."""
    atoms, last = [], 0
    for place, domain in enumerate(domains):
        for name, residue, number, x, y, z in domain:
            atoms.append((name, residue, last + number, x + 150.0 * place, y, z))
        last = atoms[-1][2]
    return atoms


def archive_of(atoms, count, generator):
    out = io.BytesIO()
    with tarfile.open(fileobj=out, mode="w") as archive:
        for k in range(count):
            content = make_models.gzip.compress(make_models.model(f"m{k}", atoms, generator), mtime=0)
            entry = tarfile.TarInfo(f"m{k}.cif.gz")
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content))
    return out.getvalue()


def processor_time(korvex, archive, trials, folder):
    """Of a scan on one thread that looks for types alone: the least of three."""
    best = math.inf
    for _ in range(3):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        command = [korvex, "scan", str(archive), "-o", f"{folder}/found", "--threads", "1", "--locate-above", "1"]
        command += ["--trials", str(trials)]
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        shutil.rmtree(f"{folder}/found")
        best = min(best, after.ru_utime - before.ru_utime)
    return best


def measured(korvex, trials):
    """(residues, seconds, bytes) of a model, from the shortest to the longest."""
    generator = random.Random(1)
    chains = [make_models.atoms_of(*chain) for chain in (("1ubq.pdb", "A"), ("4hhb.pdb", "A"), ("1ca2.pdb", "A"))]
    cases = [([chain], COPIES[1]) for chain in chains]
    cases += [([chains[-1]] * domains, count) for domains, count in COPIES.items() if domains > 1]
    rows = []
    with tempfile.TemporaryDirectory() as folder:
        archive = pathlib.Path(folder) / "models.tar"
        archive.write_bytes(archive_of(chains[0], 1, generator))
        start = processor_time(korvex, archive, 1, folder)
        for domains, count in cases:
            atoms = on_a_string(domains)
            archive.write_bytes(archive_of(atoms, count, generator))
            seconds = max(processor_time(korvex, archive, trials, folder) - start, 1e-4) / count
            rows.append((atoms[-1][2], seconds, archive.stat().st_size / count))
    return rows


def between(rows, residues, column):
    """A measured value at another length, by the power law between its neighbours."""
    lengths = [row[0] for row in rows]
    k = min(max(bisect.bisect(lengths, residues), 1), len(rows) - 1)
    (a, b), (u, v) = lengths[k - 1 : k + 1], (rows[k - 1][column], rows[k][column])
    return u * (residues / a) ** (math.log(v / u) / math.log(b / a))


def shipped_lengths():
    lengths = []
    for path in sorted(make_models.PROTEINS.iterdir()):
        content = make_models.gzip.open(path, "rt") if path.suffix == ".gz" else open(path, errors="replace")
        with content as lines:
            traces = [line for line in lines if line[:4] == "ATOM" and line[12:16] == " CA " and ".pdb" in path.name]
        for chain in {line[21] for line in traces}:
            lengths.append(len({line[22:27] for line in traces if line[21] == chain}))
    return lengths


def wide_length(generator):
    while True:
        length = round(generator.lognormvariate(math.log(300), 0.75))
        if 16 <= length <= 2700:
            return length


def simulate(costs, sizes, workers, arguments):
    """What a scan waits for, in seconds each; all of it may go on at once.

    The busiest processor, the longest model, bytes, parts, and reads where nobody skips anything.
    """
    pieces = [sum(costs[k : k + arguments.piece]) for k in range(0, len(costs), arguments.piece)]
    shards = [0.0] * workers
    for k, cost in enumerate(pieces):
        shards[k % workers] += cost
    reads = sum(min(size // BLOCK, 1) + 1 for size in sizes)
    operations = arguments.operations_per_second
    parts = OPERATIONS_OF_A_PART * len(pieces) / operations
    return (
        max(shards),
        max(costs),
        sum(sizes) / arguments.bytes_per_second,
        parts,
        reads / operations,
    )


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("korvex")
    parser.add_argument("--trials", type=int, default=100, help="votes for each model; 0: exact shares")
    parser.add_argument("--models", type=int, default=1_000_000)
    parser.add_argument("--piece", type=int, default=200)
    parser.add_argument("--bytes-per-second", type=float, default=1e9)
    parser.add_argument("--operations-per-second", type=float, default=20_000)
    arguments = parser.parse_args()
    rows = measured(arguments.korvex, arguments.trials)
    print("| residues | processor time (ms) | bytes |\n|---|---|---|")
    for residues, seconds, size in rows:
        print(f"| {residues} | {1e3 * seconds:.2f} | {size:.0f} |")
    generator = random.Random(2)
    shipped = shipped_lengths()
    drawn = {
        "shipped": [generator.choice(shipped) for _ in range(arguments.models)],
        "wide": [wide_length(generator) for _ in range(arguments.models)],
    }
    for name, lengths in drawn.items():
        costs = {length: between(rows, length, 1) for length in set(lengths)}
        sizes = {length: between(rows, length, 2) for length in set(lengths)}
        mean = sum(lengths) / len(lengths)
        total = sum(costs[length] for length in lengths)
        print(f"\n{name}: {mean:.0f} residues on average, {total / 3600:.2f} core hours\n")
        print("seconds; reads by workers with archives of their own, and with shards of one\n")
        print("| workers | processors | longest model | bytes | parts | reads, own | reads, shards |")
        print("|---|---|---|---|---|---|---|")
        all_costs = [costs[length] for length in lengths]
        all_sizes = [sizes[length] for length in lengths]
        for workers in (1, 10, 100, 1000, 10000):
            needs = simulate(all_costs, all_sizes, workers, arguments)
            cells = [f"{seconds:.3g}" for seconds in (*needs, workers * needs[-1])]
            print(f"| {workers} | {' | '.join(cells)} |")


if __name__ == "__main__":
    main()
