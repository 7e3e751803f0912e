#!/usr/bin/python3
"""Plots how the measured times grow with size: a panel a kernel, log-log, as SVG.

usage: plot_scaling.py FIGURES.json OUTPUT.svg

FIGURES.json is what tools/bench_table.py --save wrote. Every family of comparisons NAME/KIND/SIZE
with three sizes or more makes two lines, of the plain form (dashed) and of the fast one (full); the
number at a line's end is the exponent of time against size between its last two points.
"""
import html
import json
import math
import pathlib
import sys

WIDTH, HEIGHT = 400, 330  # a panel, with margins
LEFT, RIGHT, TOP, BOTTOM = 66, 46, 40, 48
COLUMNS = 2
COLOURS = ("#0072b2", "#d55e00", "#009e73", "#cc79a7")
INK, GRID = "#222222", "#dddddd"
SIZES = {"FindAllCrossings": "edges", "det_poly": "crossings", "det_double": "crossings"}


def families(medians):
    """{kernel: {kind: [(size, plain us, fast us)]}} of those with three sizes or more."""
    found = {}
    for name, figures in medians.items():
        *path, size = name.split("/")
        if size.isdigit() and "plain_us" in figures:
            kind = "/".join(path[1:])
            points = found.setdefault(path[0], {}).setdefault(kind, [])
            points.append((int(size), figures["plain_us"], figures["fast_us"]))
    kept = {}
    for kernel, kinds in found.items():
        long_enough = {kind: sorted(points) for kind, points in kinds.items() if len(points) >= 3}
        if long_enough:
            kept[kernel] = long_enough
    return kept


def exponent(points):
    (x1, y1), (x2, y2) = points[-2:]
    return math.log(y2 / y1) / math.log(x2 / x1)


def time_label(microseconds):
    for bound, unit in ((1e6, "s"), (1e3, "ms"), (1, "µs"), (1e-3, "ns")):
        if microseconds >= bound * 0.999:
            return f"{microseconds / bound:g} {unit}"
    return f"{microseconds * 1e6:g} ps"


class Panel:
    """One kernel's lines in a frame with logarithmic axes."""

    def __init__(self, kernel, kinds, origin):
        self.kernel, self.kinds = kernel, kinds
        self.left, self.top = origin[0] + LEFT, origin[1] + TOP
        self.width, self.height = WIDTH - LEFT - RIGHT, HEIGHT - TOP - BOTTOM
        sizes = [size for points in kinds.values() for size, _, _ in points]
        times = [t for points in kinds.values() for _, plain, fast in points for t in (plain, fast)]
        self.sizes = (math.log10(min(sizes)) - 0.08, math.log10(max(sizes)) + 0.08)
        self.times = (math.floor(math.log10(min(times))), math.ceil(math.log10(max(times))))

    def x(self, size):
        low, high = self.sizes
        return self.left + self.width * (math.log10(size) - low) / (high - low)

    def y(self, time):
        low, high = self.times
        return self.top + self.height * (high - math.log10(time)) / (high - low)

    def text(self, x, y, words, anchor="middle", colour=INK, size=11, weight="normal"):
        return (f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}" fill="{colour}" '
                f'font-size="{size}" font-weight="{weight}">{html.escape(words)}</text>')

    def axes(self):
        out = [f'<rect x="{self.left}" y="{self.top}" width="{self.width}" '
               f'height="{self.height}" fill="none" stroke="{INK}" stroke-width="0.8"/>']
        for power in range(self.times[0], self.times[1] + 1):
            y = self.y(10.0**power)
            out.append(f'<path d="M{self.left} {y:.1f}h{self.width}" stroke="{GRID}"/>')
            out.append(self.text(self.left - 6, y + 4, time_label(10.0**power), "end"))
        for size in sorted({size for points in self.kinds.values() for size, _, _ in points}):
            x = self.x(size)
            out.append(f'<path d="M{x:.1f} {self.top}v{self.height}" stroke="{GRID}"/>')
            out.append(self.text(x, self.top + self.height + 16, f"{size:,}", size=10))
        out.append(self.text(self.left + self.width / 2, self.top + self.height + 34,
                             SIZES.get(self.kernel, "points")))
        out.append(self.text(self.left, self.top - 10, self.kernel, "start", size=13,
                             weight="bold"))
        return out

    def line(self, points, colour, dashed):
        path = "M" + "L".join(f"{self.x(size):.1f} {self.y(time):.1f}" for size, time in points)
        dash = ' stroke-dasharray="5 3"' if dashed else ""
        out = [f'<path d="{path}" fill="none" stroke="{colour}" stroke-width="1.8"{dash}/>']
        out += [f'<circle cx="{self.x(size):.1f}" cy="{self.y(time):.1f}" r="2.6" '
                f'fill="{"#ffffff" if dashed else colour}" stroke="{colour}"/>'
                for size, time in points]
        return out

    def end_labels(self, ends):
        """The exponents at the lines' ends, moved apart where they would overlap."""
        out, last = [], -math.inf
        for y, words, colour in sorted(ends):
            last = max(y, last + 12)
            out.append(self.text(self.left + self.width + 5, last + 4, words, "start", colour))
        return out

    def draw(self):
        out, ends = self.axes(), []
        for (kind, points), colour in zip(self.kinds.items(), COLOURS):
            for column, dashed in ((1, True), (2, False)):
                line = [(point[0], point[column]) for point in points]
                out += self.line(line, colour, dashed)
                ends.append((self.y(line[-1][1]), f"n^{exponent(line):.1f}", colour))
        out += self.end_labels(ends)
        x = self.left + self.width
        for kind, colour in reversed(list(zip(self.kinds, COLOURS))):
            out.append(self.text(x, self.top - 10, kind or self.kernel, "end", colour))
            x -= 7 * len(kind or self.kernel) + 10
        return out


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__.strip())
    kept = json.loads(pathlib.Path(sys.argv[1]).read_text(encoding="utf-8"))
    found = families(kept["medians"])
    rows = -(-len(found) // COLUMNS)
    width, height = COLUMNS * WIDTH, rows * HEIGHT + 34
    out = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}" '
           f'viewBox="0 0 {width} {height}" font-family="sans-serif">',
           f'<rect width="{width}" height="{height}" fill="#ffffff"/>']
    for place, (kernel, kinds) in enumerate(found.items()):
        origin = (place % COLUMNS * WIDTH, place // COLUMNS * HEIGHT)
        out += Panel(kernel, kinds, origin).draw()
    note = f"dashed: plain form; full: fast form. {kept['machine']}, {kept['date']}"
    out.append(f'<text x="{LEFT}" y="{height - 12}" font-size="11" fill="{INK}">'
               f"{html.escape(note)}</text>")
    out.append("</svg>")
    pathlib.Path(sys.argv[2]).write_text("\n".join(out) + "\n", encoding="utf-8")


if __name__ == "__main__":
    main()
