"""Answers beside those of Python's fractions and of mpmath's intervals."""

import os
import re
import subprocess
from contextlib import nullcontext
from fractions import Fraction
from functools import partial
from itertools import product
from operator import add, ge, gt, le, lt, mul, sub, truediv

import mpmath
import pytest
from hypothesis import given, strategies as st
from pytest import raises

import zelk

words = [0, 1, 2**31, 2**62, 2**63 - 1, 2**63, 2**64 - 1, 2**64, 2**127, 10**400]
integers = st.one_of(
    st.builds(lambda n, d, s: s * (n + d), st.sampled_from(words), st.integers(-2, 2), st.sampled_from([1, -1])),
    st.integers(-1000, 1000),
)
fractions = st.builds(Fraction, integers, integers.filter(bool))
points = st.builds(Fraction, st.integers(-90, 90), st.integers(1, 60))


@given(fractions)
def test_numbers_come_back_as_they_went(q):
    back = zelk.simplest(q, q)
    assert type(back) is Fraction and back == q and hash(back) == hash(q) and type(back.numerator) is int
    assert (back.numerator, back.denominator) == (q.numerator, q.denominator)
    assert zelk.simplest(str(q), str(q)) == q if len(str(q)) < 4000 else True


def exactly(raw):
    sign, man, exp, _ = raw
    return (-1) ** sign * man * Fraction(2) ** exp


FUNCTIONS = {"exp": "exp", "sin": "sin", "cos": "cos", "log": "log", "atan": "atan", "root": "sqrt"}


@pytest.mark.parametrize("name", FUNCTIONS)
@given(x=points, digits=st.integers(0, 60))
def test_enclosures_hold_the_truth_and_are_narrow(name, x, digits):
    if name in ("log", "root"):
        x = abs(x) + Fraction(1, 7)
    mpmath.mp.dps = digits + 120
    sign, mantissa, exponent, _ = getattr(mpmath, FUNCTIONS[name])(mpmath.mpf(x.numerator) / x.denominator)._mpf_
    near, error = (-1) ** sign * mantissa * Fraction(2) ** exponent, Fraction(1, 10 ** (digits + 60))
    found = getattr(zelk, name)(*((x, 2) if name == "root" else (x,)), digits=digits)
    is_exact = found.lower == found.upper
    assert abs(found.lower - near) <= error if is_exact else (near - error, near + error) in found
    assert found.width <= Fraction(1, 10**digits)
    # Neither what was asked before nor the way of asking decides.
    assert found == zelk.evaluate("root(x, 2)" if name == "root" else f"{name}(x)", digits, x=x)


@given(fractions, st.integers(1, 10**6))
def test_best_is_as_near_as_limit_denominator(q, limit):
    best = zelk.best(q, limit)
    assert best.denominator <= limit and abs(best - q) == abs(q.limit_denominator(limit) - q)
    lower, upper = (zelk.best(q, limit, side=side) for side in ("lower", "upper"))
    assert lower <= q <= upper and best in (lower, upper)


@given(st.fractions(-9, 9, max_denominator=60), st.fractions(-9, 9, max_denominator=60), st.booleans())
def test_simplest_is_the_first_of_the_smallest_denominator(a, b, is_open):
    a, b = min(a, b), max(a, b)
    if is_open and a == b:
        return
    found = zelk.simplest(a, b, open=is_open)
    for d in range(1, found.denominator + 1):
        inside = [n for n in range(-(-a.numerator * d // a.denominator), b.numerator * d // b.denominator + 1)
                  if not is_open or a < Fraction(n, d) < b]
        assert bool(inside) == (d == found.denominator)
    assert found == Fraction(min(inside, key=lambda n: (abs(n), n)), found.denominator)


@given(fractions)
def test_terms_and_convergents(q):
    terms, rest = [q // 1], q % 1
    while rest:
        terms.append(1 / rest // 1)
        rest = 1 / rest % 1
    assert zelk.terms(q) == terms and zelk.convergents(q)[-1] == q
    assert zelk.terms(q, 3) == terms[:3] and zelk.convergents(q, 3) == zelk.convergents(q)[:3]


intervals = st.one_of(st.tuples(fractions, fractions).map(sorted), fractions.map(lambda q: [q, q]))


def hull(numbers):
    return min(numbers), max(numbers)


@given(intervals, intervals, st.integers(-4, 5))
def test_enclosures_are_combined_and_compared_as_intervals(a, b, n):
    x, y = zelk.Enclosure(*a), zelk.Enclosure(*b)
    sides = [(x, y), (x, tuple(b)), (tuple(a), y)]
    sides += [(x, b[0])] * (b[0] == b[1]) + [(a[0], y)] * (a[0] == a[1])
    for (left, right), operation in product(sides, (add, sub, mul, truediv)):
        with raises(ZeroDivisionError) if operation is truediv and 0 in y else nullcontext():
            assert operation(left, right) == hull([operation(p, q) for p in a for q in b])
    for (left, right), relation in product(sides, (lt, le, gt, ge)):
        answers = {relation(p, q) for p in a for q in b}
        with nullcontext() if len(answers) == 1 else raises(ValueError, match="not decided, since they overlap"):
            assert {relation(left, right)} == answers
    extremes = [*a, 0] if a[0] < 0 < a[1] else a
    with raises(ZeroDivisionError) if n < 0 and 0 in x else nullcontext():
        assert x**n == hull([p**n for p in (extremes if n > 0 else a)])
    assert abs(x) == hull([abs(p) for p in extremes]) and -x == (-a[1], -a[0]) and +x == x and type(+x) is type(x)


QUESTIONS = {f"eval {text} {digits}": partial(zelk.evaluate, text, digits) for text, digits in (
    ("exp(2)", 3), ("log(2)", 40), ("sin(pi/6)", 5), ("cos([3,4])", 5), ("atan(1)", 1200), ("root(2,3)", 7), ("pi", 20),
    ("sqrt(2)^2-2", 5), ("tan(1)/log(3)", 30))} | {
    "eval exp(-70/3) 9 --relative": lambda: zelk.exp("-70/3", 9, relative=True),
    "exp -1/2 2": lambda: solver.exp("-1/2", 2), "sin 3 1 --derivative": lambda: solver.sin(3, 1, derivative=True),
    "cos 1/3 5": lambda: solver.cos("1/3", 5), "pi 5": lambda: solver.pi(5), "cf -7/2": lambda: solver.terms("-7/2"),
    "sin 1/3 5": lambda: solver.sin("1/3", 5), "cf 415/93 --terms 2": lambda: solver.terms("415/93", 2),
    "cf e --terms 7": lambda: zelk.terms("e", 7), "best pi 99 --lower": lambda: [zelk.best("pi", 99, side="lower")],
}  # fmt: skip
solver = zelk.Solver()


@pytest.mark.skipif("ZELK_COMMAND" not in os.environ, reason="without the command")
def test_answers_are_those_of_the_command():
    told = subprocess.check_output([os.environ["ZELK_COMMAND"], "batch"], input="\n".join(QUESTIONS), text=True)
    assert len(told.splitlines()) == len(QUESTIONS)
    for (question, ask), line in zip(QUESTIONS.items(), told.splitlines()):
        assert re.findall("[-/0-9]+", line) == list(map(str, ask())) == list(map(str, ask())), question


def test_expressions_and_intervals():
    assert zelk.terms("pi", 6) == [3, 7, 15, 1, 292, 1]
    assert zelk.evaluate("x*x", 5, x="sqrt(4)") == (4, 4)
    assert zelk.evaluate("x*x - [0, 1]", 5, x=(-1, Fraction(1, 2))) == (Fraction(-3, 2), 1)
    assert zelk.exp((0, 1), digits=9).lower == 1 and "2.7182818284" in zelk.exp((0, 1), digits=9)
    assert zelk.exp(-1000, digits=3, relative=True).lower > 0 == zelk.exp(-1000, digits=3).lower
