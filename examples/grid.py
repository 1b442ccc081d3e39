#!/usr/bin/env python3
"""Encloses exp(-x^2 - y^2) over a grid, on a cluster of worker processes.

Each worker has a Solver of its own, which keeps its answers, and equal questions go to the same worker:
on a grid most of them are, since many points lie equally far from the centre. What a lost worker
had not answered is asked once more, of another one or of its successor.

    examples/grid.py [--steps 100] [--digits 30] [--workers 2] [--lose-one]

prints how many points and different questions there were, how long it took, and a hash of all answers,
which does not depend on the workers; --workers 0 asks in this process. --lose-one kills a
worker on the way. It needs dask.distributed (Debian: python3-distributed).
"""

import argparse
import hashlib
import itertools
import os
import signal
import time
from collections import defaultdict
from fractions import Fraction

import zelk


def questions(steps):
    """The exponent at each point of [-2, 2]^2, row by row, in steps of 2/steps."""
    axis = [Fraction(2 * i, steps) ** 2 for i in range(-steps, steps + 1)]
    return [-(x + y) for x, y in itertools.product(axis, axis)]


def answer_all(solver, exponents, digits):
    return {exponent: solver.exp(exponent, digits) for exponent in exponents}


def on_worker(exponents, digits):
    from distributed import get_worker

    worker = get_worker()
    if not hasattr(worker, "solver"):
        worker.solver = zelk.Solver()
    return answer_all(worker.solver, exponents, digits)


def on_cluster(exponents, digits, workers, lose_one):
    from distributed import Client, LocalCluster

    # Equal questions make one share. There are more shares than workers, so that little is lost.
    shares = defaultdict(list)
    for exponent in exponents:
        shares[hash(exponent) % (8 * workers)].append(exponent)
    with LocalCluster(n_workers=workers, threads_per_worker=1, dashboard_address=None) as cluster:
        with Client(cluster) as client:
            addresses = sorted(client.scheduler_info()["workers"])
            begin = time.perf_counter()
            futures = [
                client.submit(on_worker, share, digits, pure=False,
                              workers=addresses[number % workers], allow_other_workers=True)
                for number, share in sorted(shares.items())
            ]  # fmt: skip
            if lose_one:
                futures[0].result()
                os.kill(client.run(os.getpid)[addresses[0]], signal.SIGKILL)
            answers = {}
            for future in futures:
                answers.update(future.result())
            return answers, time.perf_counter() - begin


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--steps", type=int, default=100)
    parser.add_argument("--digits", type=int, default=30)
    parser.add_argument("--workers", type=int, default=2)
    parser.add_argument("--lose-one", action="store_true")
    options = parser.parse_args()

    exponents = questions(options.steps)
    if options.workers == 0:
        begin = time.perf_counter()
        answers = answer_all(zelk.Solver(), exponents, options.digits)
        seconds = time.perf_counter() - begin
    else:
        answers, seconds = on_cluster(exponents, options.digits, options.workers, options.lose_one)
    print(f"{len(exponents)} points, {len(set(exponents))} questions, {seconds:.2f} s")
    digest = hashlib.sha256()
    for end in itertools.chain.from_iterable(answers[exponent] for exponent in exponents):
        digest.update(f"{end.numerator:x}/{end.denominator:x}\n".encode())
    print(digest.hexdigest())


if __name__ == "__main__":
    main()
