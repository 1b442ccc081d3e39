"""Threads, memory and interpreters."""

import os
import signal
import subprocess
import sys
import time
from contextlib import suppress
from fractions import Fraction
from pathlib import Path
from threading import Thread, Timer

import pytest

import zelk
from zelk._terms import fraction

is_sanitized = "asan" in os.environ.get("LD_PRELOAD", "")


def turns_beside(ask, turn):
    """Those of this thread that begin and end in the middle half of the time in which another one asks."""
    span, turns = [], []
    thread = Thread(target=lambda: span.extend([time.perf_counter(), ask(), time.perf_counter()]))
    thread.start()
    while thread.is_alive():
        turns.append((time.perf_counter(), turn(), time.perf_counter()))
    begin, _, end = span
    quarter = (end - begin) / 4
    return [turn for turn in turns if begin + quarter < turn[0] and turn[2] < end - quarter]


long = fraction(3**500_000, 2**800_000)
some_digits = 400 if is_sanitized else 1000
COSTLY = [
    lambda: zelk.exp("1/3", 100_000),
    lambda: zelk.evaluate("log(3/2)/log(2)", 30_000),
    lambda: zelk.best("exp(1)", 10**30_000),
    lambda: zelk.best(long, 2**400_000),
    lambda: zelk.Solver().pi(some_digits),
]


@pytest.mark.parametrize("ask", COSTLY)
def test_other_threads_go_on(ask):
    assert turns_beside(ask, lambda: time.sleep(0.0005))


def test_a_solver_is_asked_by_one_thread_at_a_time():
    solver = zelk.Solver()
    assert not turns_beside(lambda: solver.pi(some_digits), lambda: solver.exp(1, 9))


def pages():
    return int(Path("/proc/self/statm").read_text().split()[1])


@pytest.mark.skipif(is_sanitized, reason="freed memory is kept for a while")
def test_memory_is_steady():
    big = 10**400 + 1

    def ask(i):
        zelk.exp(f"{i % 97}/101", 40)
        zelk.best(i, 7), zelk.terms("415/93"), zelk.simplest(big, big + i % 3)
        zelk.evaluate("x^2 - [0, 1]", 5, x=(i, i + 1)).decimal(3)
        for refused in (0.5, "1/0", "(", None):
            with suppress(TypeError, ValueError, ZeroDivisionError):
                zelk.log(refused, 5)

    for i in range(2000):
        ask(i)
    before = pages()
    for i in range(12_500):  # eight calls each
        ask(i)
    assert pages() - before < 256  # a megabyte: less than 11 bytes a call


TWO_INTERPRETERS = """
import _xxsubinterpreters as interpreters
{first}
other = interpreters.create()
try:
    interpreters.run_string(other, "import zelk")
except interpreters.RunFailedError as error:
    print(error)
interpreters.destroy(other)
import zelk
print(zelk.best("pi", 10))
"""


@pytest.mark.parametrize("first", ["", "import zelk"])
def test_a_second_interpreter_is_refused(first):
    pytest.importorskip("_xxsubinterpreters")
    if is_sanitized:
        pytest.skip("interpreters leak")
    run = subprocess.run([sys.executable, "-c", TWO_INTERPRETERS.format(first=first)], capture_output=True, text=True)
    assert run.returncode == 0 and run.stdout.endswith("22/7\n"), run.stderr
    assert "ImportError'>: zelk serves one interpreter, the main one of a process" in run.stdout


certificate = zelk.exp("1/3", 20_000).certificate
LONG = [
    lambda solver: zelk.evaluate("sin(1)^2+cos(1)^2", 90_000),
    lambda solver: solver.pi(some_digits),
    lambda solver: zelk.terms("pi", 50_000),
    lambda solver: zelk.check(certificate),
]


@pytest.mark.parametrize("ask", LONG)
def test_an_interrupt_ends_a_question_and_loses_nothing(ask):
    solver = zelk.Solver()
    for i in range(5):
        sent = []
        timer = Timer(0.01 + 0.03 * i, lambda: (sent.append(time.perf_counter()), signal.raise_signal(signal.SIGINT)))
        with pytest.raises(KeyboardInterrupt):
            timer.start()
            for _ in range(1000):
                ask(solver), ask(zelk.Solver())
        assert time.perf_counter() - sent[0] < (5 if is_sanitized else 0.5)
        timer.join()
        assert solver.pi(9) == zelk.Solver().pi(9) and zelk.terms("pi", 5) == [3, 7, 15, 1, 292]


def test_a_handler_may_ask_anybody_but_the_solver_that_is_answering():
    told, solver = [], zelk.Solver()

    def handler(*_):
        with pytest.raises(RuntimeError, match="answering a question of this thread"):
            solver.pi(9)
        told.append(zelk.exp("1/3", 20))

    before = signal.signal(signal.SIGALRM, handler)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.01)
        answer = solver.pi(2 * some_digits)
    finally:
        signal.signal(signal.SIGALRM, before)
    assert told == [zelk.exp("1/3", 20)] and answer.width < Fraction(1, 10**some_digits)


def test_limits_hold_in_their_block_and_thread():
    def stopped():
        try:
            return zelk.evaluate("log(3)", 20_000) and None
        except zelk.Stopped as error:
            return str(error)

    with zelk.limits(seconds=60, work=10**8):
        with zelk.limits(bits=10**9):
            assert "not finished within its work" in stopped()
        assert "not finished within its work" in stopped(), "what is spent is spent"
        elsewhere = []
        thread = Thread(target=lambda: elsewhere.append(stopped()))
        thread.start()
        thread.join()
        assert elsewhere == [None]
    with zelk.limits(seconds=0.001):
        time.sleep(0.002)
        assert "not finished in time" in stopped()
    with zelk.limits(bits=10**5), pytest.raises(OverflowError, match="max_bits"):
        zelk.exp(1, 9999)
    assert stopped() is None
    for wrong in (0, -1, "1", float("nan")):
        with pytest.raises((ValueError, TypeError)):
            zelk.limits(seconds=wrong).__enter__()


@pytest.mark.parametrize("ask", ["zelk.evaluate('exp(3e6)', 0)", "zelk.Solver().pi(2500)"])
def test_the_interpreter_ends_while_a_thread_asks(ask):
    code = f"import threading, time, zelk\nthreading.Thread(target=lambda: {ask}, daemon=True).start()\ntime.sleep(.2)"
    run = subprocess.run([sys.executable, "-c", code], capture_output=True, text=True, timeout=30)
    assert (run.returncode, run.stdout, run.stderr) == (0, "", "")
