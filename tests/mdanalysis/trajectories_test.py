"""Trajectories that MDAnalysis writes, and the shipped ones, read by korvex as MDAnalysis reads them:
positions, times, steps, with odd numbers of atoms, boxes, precisions and both byte orders."""
import pathlib
import struct
import subprocess
import sys
import tempfile
import warnings

try:
    with warnings.catch_warnings():
        warnings.simplefilter("ignore")
        import MDAnalysis
    import numpy
except ImportError:
    sys.exit(77)


def frames_of(program, path, topology=None):
    """(model, step, time, points) of every frame, by korvex."""
    command = [program, str(path)] + ([str(topology)] if topology else [])
    lines = subprocess.run(command, check=True, capture_output=True, text=True).stdout.splitlines()
    frames = []
    while lines:
        model, step, time, count = lines[0].split()
        rows = [[float(word) for word in line.split()] for line in lines[1 : int(count) + 1]]
        frames.append((int(model), int(step), float(time), numpy.array(rows)))
        lines = lines[int(count) + 1 :]
    return frames


def universe(count, frames, box, rng):
    """Beads that walk about, so that small and large distances of neighbours both occur."""
    made = MDAnalysis.Universe.empty(count, trajectory=True)
    steps = rng.normal(size=(frames, count, 3)) * rng.choice([0.05, 1, 30], size=(frames, count, 1))
    places = numpy.cumsum(steps, axis=1).astype("f4")
    boxes = None if box is None else numpy.tile(numpy.array(box, "f4"), (frames, 1))
    made.load_new(places, dimensions=boxes, dt=2.5)
    return made


def compare(program, path, atoms, tolerance, has_time=True):
    with MDAnalysis.coordinates.core.reader(str(path), **({"n_atoms": atoms} if atoms else {})) as reader:
        wanted = [(frame.time, frame.positions.copy()) for frame in reader]
    found = frames_of(program, path)
    assert len(found) == len(wanted) > 0, (path.name, len(found), len(wanted))
    for i, ((model, _, time, points), (wanted_time, positions)) in enumerate(zip(found, wanted)):
        assert model == i + 1, path.name
        if len(points) + 1 == len(positions) and (positions[0] == positions[-1]).all():
            points = numpy.vstack([points, points[:1]])  # a last point that repeats the first closes
        assert points.shape == positions.shape, (path.name, points.shape, positions.shape)
        worst = numpy.abs(points - positions).max()
        assert worst <= tolerance + 2e-6 * numpy.abs(positions).max(), (path.name, i, worst)
        if has_time:
            assert abs(time - wanted_time) < 1e-4 * (1 + wanted_time), (path.name, time, wanted_time)


def swapped(content):
    """A DCD file in the other byte order: its records hold text, doubles (the box) and words."""
    out, place, number = b"", 0, 0
    while place < len(content):
        (size,) = struct.unpack_from("<i", content, place)
        body = content[place + 4 : place + 4 + size]
        text = 4 if number == 0 else 0
        if number == 1:
            body = body[:4][::-1] + body[4:]
        else:
            width = 8 if size == 48 else 4
            words = [body[at : at + width][::-1] for at in range(text, size, width)]
            body = body[:text] + b"".join(words)
        out += struct.pack(">i", size) + body + struct.pack(">i", size)
        place += size + 8
        number += 1
    return out


def main():
    program, shipped = sys.argv[1], pathlib.Path(sys.argv[2])
    warnings.simplefilter("ignore")
    rng = numpy.random.default_rng(4)
    boxes = [None, [40, 50, 60, 90, 90, 90], [40, 50, 60, 70, 80, 65]]
    checked = 0
    with tempfile.TemporaryDirectory() as folder:
        folder = pathlib.Path(folder)
        for count in (1, 2, 9, 10, 11, 12, 50, 333, 1001):
            for box in boxes:
                made = universe(count, 4, box, rng)
                for kind in ("xtc", "trr", "dcd"):
                    for precision in (0, 1, 2, 3, 5) if kind == "xtc" else (None,):
                        path = folder / f"{count}_{boxes.index(box)}_{precision}.{kind}"
                        options = {} if precision is None else {"precision": precision}
                        with MDAnalysis.Writer(str(path), n_atoms=count, **options) as writer:
                            for _ in made.trajectory:
                                writer.write(made.atoms)
                        compare(program, path, count, 1e-4, kind != "dcd")
                        checked += 1
                        # With twelve atoms a record of coordinates is as long as one of a box.
                        if kind == "dcd" and count != 12:
                            other = folder / f"swapped_{path.name}"
                            other.write_bytes(swapped(path.read_bytes()))
                            assert str(frames_of(program, other)) == str(frames_of(program, path))
                            checked += 1
    for path in sorted(shipped.glob("*.xtc")) + sorted(shipped.glob("*.dcd")):
        compare(program, path, None, 1e-4, path.suffix != ".dcd")
        checked += 1
    print(f"{checked} trajectories agree with MDAnalysis {MDAnalysis.__version__}")


main()
