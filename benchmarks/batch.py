#!/usr/bin/env python3
"""Measures how many lines `zelk batch` answers a second.

usage: batch.py PATH/TO/zelk LINES

For each kind of line prints what it looks like, a tab and the rate.
"""

import random
import subprocess
import sys
import time


def fraction(limit, most=10**9):
    return f"{random.choice(('', '-'))}{random.randint(1, most)}/{random.randint(most // limit, most)}"


KINDS = {
    "approx P/Q 5": lambda: f"approx {fraction(10**9)} 5",
    "exp P/Q 3": lambda: f"exp {fraction(2, 1000)} 3",
    "sin P/Q 3": lambda: f"sin {fraction(2, 1000)} 3",
    "cf P/Q": lambda: f"cf {fraction(10**9)}",
    "eval 'sqrt(P/Q)' 10": lambda: f"eval 'sqrt({fraction(10**9).lstrip('-')})' 10",
}


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    command, count = sys.argv[1], int(sys.argv[2])
    random.seed(1)
    for name, line in KINDS.items():
        lines = set()
        while len(lines) < count:
            lines.add(line())
        text = "".join(line + "\n" for line in sorted(lines)).encode()
        best = float("inf")
        for _ in range(5):
            start = time.perf_counter()
            subprocess.run([command, "batch", "--jobs", "1"], input=text, check=True,
                           stdout=subprocess.DEVNULL)
            best = min(best, time.perf_counter() - start)
        print(f"{name}\t{count / best}", flush=True)


if __name__ == "__main__":
    main()
