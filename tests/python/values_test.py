"""Answers beside those of Python's fractions and of mpmath's intervals."""

from fractions import Fraction
from math import gcd

import mpmath
import pytest
from hypothesis import given, strategies as st

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
    assert type(back) is Fraction and back == q and hash(back) == hash(q)
    assert (back.numerator, back.denominator) == (q.numerator, q.denominator)
    assert type(back.numerator) is int and back.denominator > 0
    assert gcd(back.numerator, back.denominator) == 1
    assert zelk.simplest(str(q), str(q)) == q if len(str(q)) < 4000 else True


def exactly(raw):
    sign, man, exp, _ = raw
    return (-1) ** sign * man * Fraction(2) ** exp


FUNCTIONS = {"exp": "exp", "sin": "sin", "cos": "cos", "log": "log", "atan": None, "root": "sqrt"}


@pytest.mark.parametrize("name", FUNCTIONS)
@given(x=points, digits=st.integers(0, 60))
def test_enclosures_hold_the_truth_and_are_narrow(name, x, digits):
    if name in ("log", "root"):
        x = abs(x) + Fraction(1, 7)
    arguments = (x, 2) if name == "root" else (x,)
    mpmath.iv.dps = digits + 80
    point = mpmath.iv.mpf(x.numerator) / x.denominator
    if name == "atan":  # which has no intervals
        mpmath.mp.dps = digits + 80
        near = exactly(mpmath.atan(mpmath.mpf(x.numerator) / x.denominator)._mpf_)
        low, high = near - Fraction(1, 10 ** (digits + 60)), near + Fraction(1, 10 ** (digits + 60))
    else:
        truth = getattr(mpmath.iv, FUNCTIONS[name])(point)
        low, high = map(exactly, truth._mpi_)
    found = getattr(zelk, name)(*arguments, digits=digits)
    exact = found.lower == found.upper
    assert (low <= found.lower <= high) if exact else (found.lower <= low and high <= found.upper)
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
    terms, rest = [], q
    while True:
        terms.append(rest.numerator // rest.denominator)
        if rest == terms[-1]:
            break
        rest = 1 / (rest - terms[-1])
    assert zelk.terms(q) == terms and zelk.convergents(q)[-1] == q
    assert zelk.terms(q, 3) == terms[:3] and zelk.convergents(q, 3) == zelk.convergents(q)[:3]


def test_expressions_and_intervals():
    assert zelk.terms("pi", 6) == [3, 7, 15, 1, 292, 1]
    assert zelk.evaluate("x*x", 5, x="sqrt(4)") == (4, 4)
    assert zelk.evaluate("x*x - [0, 1]", 5, x=(-1, Fraction(1, 2))) == (Fraction(-3, 2), 1)
    assert zelk.exp((0, 1), digits=9).lower == 1 and "2.7182818284" in zelk.exp((0, 1), digits=9)
    assert zelk.exp(-1000, digits=3, relative=True).lower > 0 == zelk.exp(-1000, digits=3).lower
