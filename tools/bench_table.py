#!/usr/bin/python3
"""Runs the benchmarks and prints their medians beside the bars of bench/bars.tsv, pass or miss.

usage: bench_table.py PROGRAM [--filter REGEX] [--repetitions N] [--bars FILE] [--save FILE]
                      [--document FILE]

Every comparison measures the plain and the fast form in one run on the same fresh inputs; a
figure is the median of N repetitions, each with inputs of its own. --save keeps all figures, with
machine and date, as JSON for tools/plot_scaling.py; --document puts the table between the marks
in a Markdown file. Exit status 1 when a bar is missed.
"""
import argparse
import datetime
import json
import pathlib
import platform
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent


def read_bars(path):
    """[(benchmark, quantity, sense, bound)] of the table of bars."""
    bars = []
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if not line.strip() or line.startswith("#"):
            continue
        fields = line.split("\t")
        if len(fields) != 4 or fields[2] not in (">=", "<="):
            sys.exit(f"{path}:{number}: expected benchmark, quantity, >= or <=, bound")
        bars.append((fields[0], fields[1], fields[2], float(fields[3])))
    return bars


def plain_name(name):
    """A benchmark's name without what the library appends to it."""
    return re.sub(r"/(iterations:\d+|manual_time|real_time|repeats:\d+)", "", name)


def chosen(program, pattern):
    """The benchmarks whose names, as the table shows them, match, and a filter for just these."""
    listed = subprocess.run([program, "--benchmark_list_tests"], stdout=subprocess.PIPE, check=True,
                            text=True).stdout.split()
    names = [name for name in listed if re.search(pattern, plain_name(name))]
    if not names:
        sys.exit(f"no benchmark matches {pattern}")
    exact = (re.sub(r"([][.+*?(){}^$|\\])", r"\\\1", name) for name in names)
    return [plain_name(name) for name in names], "^(" + "|".join(exact) + ")$"


def run(program, pattern, repetitions):
    """Medians of every benchmark's quantities, by name, in the order of registration."""
    names, exactly = chosen(program, pattern)
    command = [
        program,
        f"--benchmark_filter={exactly}",
        f"--benchmark_repetitions={repetitions}",
        "--benchmark_enable_random_interleaving=true",
        "--benchmark_format=json",
    ]
    done = subprocess.run(command, stdout=subprocess.PIPE, check=False)
    if done.returncode != 0 or not done.stdout.strip():
        sys.exit(f"{program} failed with status {done.returncode}")
    not_counters = {
        "family_index", "per_family_instance_index", "repetitions", "repetition_index",
        "threads", "iterations", "real_time", "cpu_time",
    }
    medians = {}
    for entry in json.loads(done.stdout)["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry.get('error_message', 'failed')}")
        name = plain_name(entry["run_name"])
        if entry.get("aggregate_name") != "median" and repetitions > 1:
            continue
        factor = {"ns": 1e-3, "us": 1.0, "ms": 1e3, "s": 1e6}[entry["time_unit"]]
        figures = {"time_us": entry["real_time"] * factor}
        for key, value in entry.items():
            if key not in not_counters and isinstance(value, (int, float)):
                figures[key] = value
        medians[name] = figures
    return {name: medians[name] for name in names}


def machine():
    text = pathlib.Path("/proc/cpuinfo").read_text() if platform.system() == "Linux" else ""
    models = re.findall(r"^model name\s*:\s*(.*)$", text, re.MULTILINE)
    return f"{models[0] if models else platform.processor()}, {len(models)} cores"


def shown(value):
    return "" if value is None else f"{value:,.2f}" if value < 100 else f"{value:,.0f}"


def make_table(medians, bars):
    """The lines of the table, and how many bars were missed."""
    header = ("benchmark", "plain (us)", "fast (us)", "ratio", "bar", "verdict")
    rows = []
    missed = 0
    for name, figures in medians.items():
        verdicts = []
        for _, quantity, sense, bound in (bar for bar in bars if bar[0] == name):
            value = figures.get(quantity)
            if value is None:
                sys.exit(f"{name} has no quantity {quantity}")
            reached = value >= bound if sense == ">=" else value <= bound
            missed += not reached
            label = f"{sense} {bound:g}"
            if quantity != "ratio":
                label = f"{quantity} {shown(value)} {label}"
            verdicts.append((label, "pass" if reached else "MISS"))
        first, *rest = verdicts or [("", "")]
        fast = figures.get("fast_us", figures["time_us"])
        rows.append((name, shown(figures.get("plain_us")), shown(fast),
                     shown(figures.get("ratio")), *first))
        rows.extend(("", "", "", "", *verdict) for verdict in rest)
    widths = [max(len(row[i]) for row in [header, *rows]) for i in range(len(header))]
    lines = []
    for row in [header, tuple("-" * width for width in widths), *rows]:
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:4], widths[1:4])]
        cells += [cell.ljust(width) for cell, width in zip(row[4:], widths[4:])]
        lines.append("| " + " | ".join(cells) + " |")
    return lines, missed


def put_into(document, lines):
    """Replaces what stands between the marks in a Markdown file."""
    begin, end = "<!-- measured -->\n", "<!-- /measured -->"
    text = document.read_text(encoding="utf-8")
    if text.count(begin) != 1 or text.count(end) != 1:
        sys.exit(f"{document}: the marks {begin.strip()} and {end} must stand in it once each")
    before, rest = text.split(begin)
    document.write_text(before + begin + "\n".join(lines) + "\n" + end + rest.split(end)[1],
                        encoding="utf-8")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("program", help="the benchmark program")
    parser.add_argument("--filter", default=".", help="benchmarks to run, a regular expression")
    parser.add_argument("--repetitions", type=int, default=9, help="default 9")
    parser.add_argument("--bars", type=pathlib.Path, default=ROOT / "bench" / "bars.tsv")
    parser.add_argument("--save", type=pathlib.Path, help="keep the figures here, as JSON")
    parser.add_argument("--document", type=pathlib.Path, help="put the table into this file")
    options = parser.parse_args()
    bars = read_bars(options.bars)
    medians = run(options.program, options.filter, options.repetitions)
    date = datetime.date.today().isoformat()
    heading = f"{machine()}; {date}; medians of {options.repetitions} repetitions"
    table, missed = make_table(medians, bars)
    print(heading, *table, sep="\n")
    if options.document:
        put_into(options.document, [heading + ".", "", *table])
    if options.filter == ".":
        for name in sorted({bar[0] for bar in bars} - medians.keys()):
            print(f"no benchmark is named {name}, yet it has a bar")
            missed += 1
    if options.save:
        kept = {"machine": machine(), "date": date, "repetitions": options.repetitions,
                "medians": medians}
        options.save.write_text(json.dumps(kept, indent=1) + "\n")
    print(f"{missed} missed" if missed else "all bars reached")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
