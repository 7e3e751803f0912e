#!/usr/bin/python3
"""Prints the colours of src/engine/report/palette.cpp.

Each colour is, of those on a grid, the one farthest from all before it, so that the common knots, which
come first, are the farthest apart. The distance of two colours is the least of those in OKLab (B.
Ottosson, 2020) as seen normally and by people who lack red or green receptors (G. M. Machado et al.,
IEEE Trans. Vis. Comput. Graph. 15, 1291 (2009)).
"""
import itertools
import math
import sys

SEEN = (
    ((1, 0, 0), (0, 1, 0), (0, 0, 1)),
    ((0.152286, 1.052583, -0.204868), (0.114503, 0.786281, 0.099216), (-0.003882, -0.048116, 1.051998)),
    ((0.367322, 0.860646, -0.227968), (0.280085, 0.672501, 0.047413), (-0.011820, 0.042940, 0.968881)),
)
CONES = ((0.4122214708, 0.5363325363, 0.0514459929), (0.2119034982, 0.6806995451, 0.1073969566),
         (0.0883024619, 0.2817188376, 0.6299787005))
OKLAB = ((0.2104542553, 0.7936177850, -0.0040720468), (1.9779984951, -2.4285922050, 0.4505937099),
         (0.0259040371, 0.7827717662, -0.8086757660))
STEP = 17
LIGHTNESS = (0.40, 0.85)
LEAST_CHROMA = 0.09  # greys are left to the unknot
TAKEN = ((228, 228, 228), (255, 255, 255), (0, 0, 0))  # the unknot, the paper, the writing


def product(matrix, vector):
    return tuple(sum(m * v for m, v in zip(row, vector)) for row in matrix)


def linear(level):
    part = level / 255
    return part / 12.92 if part <= 0.04045 else ((part + 0.055) / 1.055) ** 2.4


def looks(colour):
    """The colour in OKLab, to each kind of eye."""
    light = tuple(map(linear, colour))
    seen = (tuple(min(max(c, 0), 1) for c in product(eye, light)) for eye in SEEN)
    return tuple(product(OKLAB, tuple(c ** (1 / 3) for c in product(CONES, s))) for s in seen)


def distance(a, b):
    return min(map(math.dist, a, b))


def palette(count):
    grid = {c: looks(c) for c in itertools.product(range(0, 256, STEP), repeat=3)}
    grid = {c: l for c, l in grid.items()
            if LIGHTNESS[0] <= l[0][0] <= LIGHTNESS[1] and math.hypot(*l[0][1:]) >= LEAST_CHROMA}
    far = {c: min(distance(l, looks(t)) for t in TAKEN) for c, l in grid.items()}
    for _ in range(count):
        best = max(far, key=far.get)
        yield best, far[best]
        far = {c: min(d, distance(grid[c], grid[best])) for c, d in far.items()}


if __name__ == "__main__":
    for colour, apart in palette(int(sys.argv[1])):
        print("#%02x%02x%02x" % colour, "%.3f" % apart)
