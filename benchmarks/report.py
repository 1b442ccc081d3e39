#!/usr/bin/env python3
"""Turns a run of zelk_bench into a table of ratios and two charts.

usage: report.py RUN.json PEAK-KIB BATCH FOLDER

RUN.json is what zelk_bench wrote, PEAK-KIB what zelk_peak_memory printed, BATCH what batch.py did;
benchmarks.md, benchmarks-digits.svg and benchmarks-small.svg are written to FOLDER.
"""

import json
import math
import pathlib
import re
import statistics
import sys
from html import escape

OURS = "zelk"

# The headings of the report, the subjects below each by how they begin, and a word on the work.
SECTIONS = [
    ("Arithmetic", ("Fractions", "Integers"),
     "`r = a + b` reuses the variable `r`, which here costs a temporary; `r = a, r += b` "
     "works in place on a copy; `Q r(a + b)` makes a new variable. The operands "
     "are random, of either sign: 16,384 pairs of words, so that branch predictors do not learn "
     "them, 1024 of 128 bits, 64 of longer ones. Every operator stands at every size."),
    ("Whole computations", ("Whole",),
     "Each contender's numbers in the same loops, in place where that can be; FLINT adds and "
     "subtracts products in one call. All start from numbers that stand ready; sorting copies them "
     "first. The points of e^x are asked of a new object here, and summed by loops there."),
    ("Exponential, sine and pi", ("exp", "sin", "pi"),
     "Every evaluation starts with new objects and empty caches. The plain evaluation is the "
     "definition, summed and folded with this library's own numbers; the loops sum the same series "
     "with the rationals of GMP and FLINT; Arb computes a ball at that many digits, which is then "
     "turned into two rationals (those of pi not the simple ones that the others find). The bare "
     "expansion stands for the least that the bounds of pi can cost: both ends expanded, and every "
     "convergent copied out, but nothing summed."),
    ("Elementary functions over intervals", ("Elementary",),
     "One object answers all, so that its constants are computed already, as Arb's are. Arb computes "
     "a ball at that many digits after the point, which is then turned into two rationals; this "
     "library's ends are short ones, with about half as many digits."),
    ("Continued fractions", ("Continued",),
     "All terms of a random fraction; this library also enters them in its cache."),
    ("Repeated queries", ("Repeated",),
     "A standard map of the same records, with the same hash and equality, hands out the same "
     "copy."),
]

DIGITS_CHART = ["exp(1/3)", "sin(1/3)", "pi"]
SMALL_CHART = ["Fractions, parts up to 1000", "Integers up to 1000", "Fractions, parts up to 2^31",
               "Fractions, parts up to 2^40", "Fractions, parts up to 2^62", "Whole computation"]

COLOURS = {
    OURS: "#0072b2",
    "plain evaluation": "#d55e00",
    "loop on GMP's mpq": "#009e73",
    "loop on FLINT's fmpq": "#e69f00",
    "Arb": "#cc79a7",
    "bare expansion": "#555555",
    "FLINT": "#e69f00",
    "GMP": "#009e73",
    "Boost": "#cc79a7",
    "FLINT's function": "#d55e00",
}


def load(path):
    """The context of the run, {subject: {row: {contender: median seconds of one operation}}}, and
    the number of repetitions."""
    with open(path, encoding="utf-8") as file:
        run = json.load(file)
    samples = {}
    for entry in run["benchmarks"]:
        if entry.get("error_occurred"):
            sys.exit(f"{entry['name']}: {entry['error_message']}")
        if entry["run_type"] != "iteration":
            continue
        assert entry["time_unit"] == "ns"
        key = (entry["family_index"], entry["run_name"])
        samples.setdefault(key, []).append(1e-9 * entry["cpu_time"] / entry["operations"])
    table = {}
    for (_, name), times in sorted(samples.items()):  # in the order of registration
        subject, row, contender = name.split(": ")
        table.setdefault(subject, {}).setdefault(row, {})[contender] = statistics.median(times)
    return run["context"], table, max(len(times) for times in samples.values())


def two_digits(x):
    """x to two significant digits, or three from 100 on: the noise hides the rest."""
    if x >= 100:
        return str(round(x, 2 - math.floor(math.log10(x)))).removesuffix(".0")
    return f"{x:.{max(0, 1 - math.floor(math.log10(x)))}f}"


def duration(seconds):
    for unit, factor in (("s", 1), ("ms", 1e3), ("µs", 1e6)):
        if seconds * factor >= 1:
            return f"{two_digits(seconds * factor)} {unit}"
    return f"{two_digits(seconds * 1e9)} ns"


def processor():
    try:
        with open("/proc/cpuinfo", encoding="utf-8") as file:
            return re.search(r"model name\s*: *(.*)", file.read()).group(1)
    except (OSError, AttributeError):
        return "unknown processor"


def markdown(context, table, repetitions, peak_kib, batch):
    lines = [
        "# Benchmarks",
        "",
        "How many times as long the others take for the same work: above 1 this library is faster.",
        "The last column is its own time, for scale only.",
        "",
        "![Time against digits](benchmarks-digits.svg)",
        "",
        "![Small operands](benchmarks-small.svg)",
        "",
    ]
    for heading, prefixes, remark in SECTIONS:
        subjects = {s: rows for s, rows in table.items() if s.startswith(prefixes)}
        peers = dict.fromkeys(c for rows in subjects.values() for row in rows.values() for c in row)
        peers = [peer for peer in peers if peer != OURS]
        lines += [f"## {heading}", "", remark, ""]
        lines.append("| | | " + " | ".join(peers) + f" | {OURS} |")
        lines.append("|---|---|" + "---:|" * (len(peers) + 1))
        for subject, rows in subjects.items():
            for name, row in rows.items():
                ratios = [two_digits(row[p] / row[OURS]) if p in row else "" for p in peers]
                cells = [subject, f"`{name}`" if heading == "Arithmetic" else name, *ratios]
                lines.append(f"| {' | '.join(cells)} | {duration(row[OURS])} |")
                subject = ""
        lines.append("")
    libraries = ", ".join(f"{name} {context[name].replace('_', '.')}"
                          for name in ("GMP", "FLINT", "Arb", "Boost"))
    lines += [
        "## Batches",
        "",
        "Lines a second of `zelk batch --jobs 1`, reading and printing included, all lines different. "
        "The fastest of five runs.",
        "",
        "| lines | a second |",
        "|---|---:|",
        *(f"| `{line}` | {float(rate):,.0f} |" for line, rate in batch),
        "",
        "## Memory",
        "",
        "A process that computes pi to 1000 digits, with all that its caches keep, takes "
        f"{two_digits(int(peak_kib) / 1024)} MiB at its peak.",
        "",
        "## How this was measured",
        "",
        f"`scripts/bench`, on {context['date'][:10]}: {processor()}, {context['num_cpus']} cores; "
        f"{libraries}; compiler {context['compiler']}, `-O3`.",
        "",
        "All contenders run in one process, one thread, on the same operands. Before it is timed, "
        "each must give the same answer as this library (Arb: an enclosure of the same value, as "
        "narrow as asked for). Ratios are of medians of processor time over "
        f"{repetitions} repetitions, the repetitions of all rows shuffled.",
        "",
    ]
    return "\n".join(lines)


class Drawing:
    """A drawing in SVG; text stays text."""

    def __init__(self, width, height):
        self.parts = [
            f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" '
            f'width="{width}" height="{height}" font-family="sans-serif" font-size="12">',
            f'<rect width="{width}" height="{height}" fill="#ffffff"/>',
        ]

    def text(self, x, y, content, anchor="start", more=""):
        self.parts.append(f'<text x="{x:.1f}" y="{y:.1f}" text-anchor="{anchor}"{more}>'
                          f"{escape(content)}</text>")

    def line(self, points, colour="#dddddd", width=1):
        path = " ".join(f"{x:.1f},{y:.1f}" for x, y in points)
        self.parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" '
                          f'stroke-width="{width}"/>')

    def dot(self, x, y, colour):
        self.parts.append(f'<circle cx="{x:.1f}" cy="{y:.1f}" r="4" fill="{colour}"/>')

    def legend(self, x, y, names):
        for name in names:
            self.dot(x, y - 4, COLOURS[name])
            self.text(x + 9, y, name)
            x += 7 * len(name) + 30

    def __str__(self):
        return "\n".join([*self.parts, "</svg>", ""])


def log_scale(low, high, start, end):
    """Maps low to start and high to end, evenly in the logarithm."""
    return lambda v: start + (end - start) * math.log(v / low) / math.log(high / low)


def powers_of_ten(values):
    """The powers of ten from the last below all values to the first above."""
    first, last = math.floor(math.log10(min(values))), math.ceil(math.log10(max(values)))
    return [10.0 ** e for e in range(first, last + 1)]


def digits_chart(table):
    panels = {s: {int(row.split()[0]): c for row, c in table[s].items()} for s in DIGITS_CHART}
    times = [t for rows in panels.values() for row in rows.values() for t in row.values()]
    names = list(dict.fromkeys(c for rows in panels.values() for row in rows.values() for c in row))
    ticks = powers_of_ten(times)
    drawing = Drawing(960, 420)
    drawing.legend(70, 24, names)
    y = log_scale(ticks[0], ticks[-1], 370, 70)
    for i, (subject, rows) in enumerate(panels.items()):
        left = 70 + 305 * i
        decades = powers_of_ten(rows)
        x = log_scale(decades[0], decades[-1], left, left + 260)
        drawing.text(left + 130, 58, subject, "middle", ' font-weight="bold"')
        for tick in ticks:
            drawing.line([(left, y(tick)), (left + 260, y(tick))])
            if i == 0:
                drawing.text(left - 6, y(tick) + 4, duration(tick).replace("1.0", "1"), "end")
        for decade in decades:
            drawing.line([(x(decade), 70), (x(decade), 370)])
            label = f"{decade / 1000:.0f}k" if decade >= 1000 else f"{decade:.0f}"
            drawing.text(x(decade), 387, label, "middle")
        drawing.text(left + 130, 408, "digits", "middle")
        for name in reversed(names):  # ours on top
            points = [(x(d), y(row[name])) for d, row in sorted(rows.items()) if name in row]
            drawing.line(points, COLOURS[name], 3 if name == OURS else 1.5)
            for point in points:
                drawing.dot(*point, COLOURS[name])
    return str(drawing)


def small_chart(table):
    rows = [(f"{subject}:  {name}".removeprefix("Whole computation:  "),
             {p: t / row[OURS] for p, t in row.items() if p != OURS})
            for subject in SMALL_CHART for name, row in table[subject].items()]
    names = list(dict.fromkeys(p for _, row in rows for p in row))
    ratios = [r for _, row in rows for r in row.values()]
    low, high = min(0.8, *ratios) / 1.1, max(ratios) * 1.1
    x = log_scale(low, high, 370, 870)
    bottom = 60 + 24 * len(rows)
    drawing = Drawing(900, bottom + 45)
    drawing.legend(370, 24, names)
    for tick in (t for t in (0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1, 2, 5, 10, 20, 50, 100, 200) if low <= t <= high):
        drawing.line([(x(tick), 44), (x(tick), bottom)], "#444444" if tick == 1 else "#dddddd")
        drawing.text(x(tick), bottom + 16, str(tick), "middle")
    for i, (name, row) in enumerate(rows):
        drawing.text(360, 64 + 24 * i, name, "end")
        drawing.line([(370, 60 + 24 * i), (870, 60 + 24 * i)], "#eeeeee")
        for peer, ratio in row.items():
            drawing.dot(x(ratio), 60 + 24 * i, COLOURS[peer])
    drawing.text(620, bottom + 36, "time relative to zelk", "middle")
    return str(drawing)


def kept(path):
    """What the page has on Python, which benchmarks/python_table.py measures."""
    page = pathlib.Path(path)
    _, heading, section = (page.read_text() if page.exists() else "").partition("\n## Python\n")
    return heading + section


def main():
    if len(sys.argv) != 5:
        sys.exit(__doc__)
    path, peak_kib, batch, folder = sys.argv[1:]
    with open(batch, encoding="utf-8") as file:
        rates = [line.rstrip("\n").split("\t") for line in file]
    context, table, repetitions = load(path)
    report = markdown(context, table, repetitions, peak_kib, rates) + kept(f"{folder}/benchmarks.md")
    for name, content in (
        ("benchmarks.md", report),
        ("benchmarks-digits.svg", digits_chart(table)),
        ("benchmarks-small.svg", small_chart(table)),
    ):
        with open(f"{folder}/{name}", "w", encoding="utf-8") as file:
            file.write(content)


if __name__ == "__main__":
    main()
