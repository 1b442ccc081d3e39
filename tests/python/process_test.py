"""Threads, memory and interpreters."""

import os
import subprocess
import sys
import time
from threading import Event, Thread

import pytest

import zelk

is_sanitized = "asan" in os.environ.get("LD_PRELOAD", "")


COSTLY = [
    lambda: zelk.exp("1/3", 100_000),
    lambda: zelk.evaluate("log(3/2)/log(2)", 30_000),
    lambda: zelk.best("exp(1)", 10**30_000),
    lambda: zelk.Solver().pi(500 if is_sanitized else 1500),
]


@pytest.mark.parametrize("ask", COSTLY)
def test_other_threads_go_on(ask):
    begun, turns = Event(), []

    def go_on():
        begun.set()
        while begun.is_set():
            turns.append(time.perf_counter())
            time.sleep(0.0005)

    thread = Thread(target=go_on)
    thread.start()
    begun.wait()
    begin = time.perf_counter()
    ask()
    end = time.perf_counter()
    begun.clear()
    thread.join()
    # Not once, between two pieces of Python, but within the time that it took.
    middle = [turn for turn in turns if begin + (end - begin) / 4 < turn < end - (end - begin) / 4]
    assert middle


def pages():
    with open("/proc/self/statm") as statm:
        return int(statm.read().split()[1])


@pytest.mark.skipif(is_sanitized, reason="freed memory is kept for a while")
def test_memory_is_steady():
    big = 10**400 + 1

    def ask(i):
        zelk.exp(f"{i % 97}/101", 40)
        zelk.best(i, 7), zelk.terms("415/93"), zelk.simplest(big, big + i % 3)
        zelk.evaluate("x^2 - [0, 1]", 5, x=(i, i + 1)).decimal(3)
        for refused in (0.5, "1/0", "(", None):
            try:
                zelk.log(refused, 5)
            except (TypeError, ValueError, ZeroDivisionError):
                pass

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
