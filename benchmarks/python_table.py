#!/usr/bin/env python3
"""Times the Python package beside Fraction, gmpy2 and mpmath, and prints a table for docs/benchmarks.md.

    scripts/python benchmarks/python_table.py [--quick]

The contenders of a row take turns, from the same arguments (Fractions) to the same kind of answer (Fractions;
of mpmath an interval of its own); of each the least time counts, of the processor but for threads. Those that are
missing (Debian: python3-gmpy2, python3-mpmath) are left out.
"""

import sys
import threading
import time
from fractions import Fraction

import zelk

try:
    from gmpy2 import mpq
except ImportError:
    mpq = None
try:
    from mpmath import iv
except ImportError:
    iv = None

QUICK = "--quick" in sys.argv


def exp_loop(number, x, digits):
    """The series of e^x for 0 < x < 1, with the tail of a geometric one."""
    x, goal = number(x), number(1) / 10**digits
    term = total = number(1)
    k = 0
    while True:
        k += 1
        term *= x / k
        if term < goal * (1 - x):
            return total, total + term / (1 - x)
        total += term


def exp_gmpy2(x, digits):
    return tuple(Fraction(int(end.numerator), int(end.denominator)) for end in exp_loop(mpq, x, digits))


def exp_interval(x, digits):
    iv.dps = digits + 3
    return iv.exp(iv.mpf(x.numerator) / x.denominator)


def seconds(function, clock=time.perf_counter):
    begin = clock()
    function()
    return clock() - begin


def row(name, contenders, repeat, rounds=7):
    """The least time of the processor for each contender, by turns."""
    least = dict.fromkeys(contenders, float("inf"))
    for _ in range(2 if QUICK else rounds):
        for contender, function in contenders.items():
            spent = seconds(lambda: [function() for _ in range(repeat)], time.process_time) / repeat
            least[contender] = min(least[contender], spent)
    own = least["zelk"]
    cells = [f"{least[c] / own:.2g}" if c in least else "" for c in COLUMNS]
    cells[COLUMNS.index("zelk")] = f"{own * 1e6:.2g} µs" if own < 1 else f"{own:.2g} s"
    print(f"| {name} | {' | '.join(cells)} |", flush=True)


COLUMNS = ["Fraction", "gmpy2 mpq", "mpmath.iv", "zelk", "new Solver", "Solver, again"]


def series(digits):
    x = Fraction(1, 3)
    solver = zelk.Solver()
    contenders = {
        "zelk": lambda: zelk.exp(x, digits),
        "Fraction": lambda: exp_loop(Fraction, x, digits),
        "new Solver": lambda: zelk.Solver().exp(x, digits),
        "Solver, again": lambda: solver.exp(x, digits),
    }
    if mpq:
        contenders["gmpy2 mpq"] = lambda: exp_gmpy2(x, digits)
    if iv:
        contenders["mpmath.iv"] = lambda: exp_interval(x, digits)
    lower, upper = zelk.exp(x, digits)
    for name in ("Fraction", "gmpy2 mpq"):
        if name in contenders:
            low, high = contenders[name]()
            assert low <= upper and lower <= high and high - low < Fraction(1, 10**digits), name
    row(f"exp(1/3), {digits} digits", contenders, 200 if digits < 50 else 50)


def many_best():
    count = 10_000 if QUICK else 1_000_000
    points = [Fraction(k * 7919 % 1_000_003, 1_000_003) for k in range(1, count + 1)]
    for point in points[:1000]:
        ours, theirs = zelk.best(point, 1000), point.limit_denominator(1000)
        assert abs(ours - point) == abs(theirs - point)
    row(
        f"{count} times best(k/1000003, 1000)",
        {
            "zelk": lambda: [zelk.best(point, 1000) for point in points],
            "Fraction": lambda: [point.limit_denominator(1000) for point in points],
        },
        1,
        rounds=3,
    )


def two_threads():
    """Two costly questions, one after the other and side by side."""
    found = {}

    def ask(x):
        found[x] = zelk.evaluate("sin(x)", 6_000 if QUICK else 60_000, x=x)

    def side_by_side():
        threads = [threading.Thread(target=ask, args=(x,)) for x in ("1/3", "2/7")]
        [thread.start() for thread in threads]
        [thread.join() for thread in threads]

    times, answers = [], []
    for _ in range(5):
        for way in (lambda: (ask("1/3"), ask("2/7")), side_by_side):
            found.clear()
            times.append(seconds(way))
            answers.append(dict(found))
    assert answers.count(answers[0]) == len(answers)
    one, two = min(times[::2]), min(times[1::2])
    print(f"\nTwo costly questions: {one:.3g} s by one thread, {two:.3g} s by two, {one / two:.2f} times as fast.")


def main():
    print("| | " + " | ".join(COLUMNS) + " |\n|---|" + "---:|" * len(COLUMNS))
    for digits in (3, 10, 100, 300):
        series(digits)
    many_best()
    two_threads()


if __name__ == "__main__":
    main()
