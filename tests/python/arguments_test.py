"""What is taken for a number, and what people are told of the rest."""

from decimal import Decimal
from fractions import Fraction
from numbers import Rational

import pytest

import zelk


class Strange(Rational):
    """A rational number of somebody else, whose parts are whatever they are."""

    __abs__ = __add__ = __ceil__ = __eq__ = __floor__ = __floordiv__ = __le__ = __lt__ = None
    __mod__ = __mul__ = __neg__ = __pos__ = __pow__ = __radd__ = __rfloordiv__ = __rmod__ = None
    __rmul__ = __round__ = __rpow__ = __rtruediv__ = __truediv__ = __trunc__ = None

    def __init__(self, numerator, denominator):
        self.parts = numerator, denominator

    numerator = property(lambda self: self.parts[0])
    denominator = property(lambda self: self.parts[1])


class Index:
    def __index__(self):
        return 2**70


def broken():
    raise KeyError("broken")


third = Fraction(1, 3)


@pytest.mark.parametrize(
    "given, value",
    [(7, 7), (True, 1), (third, third), ("1/3", third), ("3.14", Fraction(314, 100)), (" +.5", Fraction(1, 2)),
     ("1e-3", Fraction(1, 1000)), ("-7/2", Fraction(-7, 2)), ("2-1", 1), ("sqrt(4)", 2),
     (Strange(2, -6), -third), (Strange(Index(), 2**71), Fraction(1, 2)), (-2**63, -2**63)],
)  # fmt: skip
def test_numbers(given, value):
    assert zelk.simplest(given, given) == value
    if value > 0:
        assert zelk.log((given, 200), digits=9) == zelk.log((value, 200), digits=9)


REFUSED = [
    (lambda: zelk.exp(0.1, 5), TypeError, "float: a text such as '0.1' is taken exactly"),
    (lambda: zelk.exp(Decimal("0.1"), 5), TypeError, "not decimal.Decimal"),
    (lambda: zelk.exp(1j, 5), TypeError, "expected a rational number or a text, not complex"),
    (lambda: zelk.exp(None, 5), ValueError, "the variable x has no value"),
    (lambda: zelk.exp((1, 2, 3), 5), TypeError, "not tuple"),
    (lambda: zelk.exp((2, 1), 5), ValueError, r"\[2, 1\]: the lower end of an interval is above"),
    (lambda: zelk.exp(Strange(1, 0), 5), ZeroDivisionError, "the denominator 0"),
    (lambda: zelk.exp(Strange(1, 1.5), 5), TypeError, "float"),
    (lambda: zelk.exp(Strange("1", 2), 5), TypeError, "str"),
    (lambda: zelk.exp(type("K", (Strange,), {"numerator": property(lambda s: broken())})(1, 2), 5), KeyError, "broken"),
    (lambda: zelk.exp("1/0", 5), ZeroDivisionError, 'at x = "1/0": division by 0'),
    (lambda: zelk.evaluate("1/x", 5, x=0), ZeroDivisionError, "at x = 0: division by 0"),
    (lambda: zelk.evaluate("0^-1", 5), ZeroDivisionError, "negative power"),
    (lambda: zelk.exp("2 3", 5), ValueError, '"2 3": column 3: expected an operator'),
    (lambda: zelk.exp("1/\0", 5), ValueError, r"\\x00.*column 3"),
    (lambda: zelk.exp("\udcff", 5), ValueError, "surrogates"),
    (lambda: zelk.exp("1e9999999", 5), ValueError, "the exponent is beyond 1000000"),
    (lambda: zelk.simplest("pi", 4), ValueError, '"pi": not known to be a rational number'),
    (lambda: zelk.simplest(2, 1), ValueError, r"simplest\(2, 1\): the lower end"),
    (lambda: zelk.simplest(2**99, 2**99, open=True), ValueError, "the interval is empty"),
    (lambda: zelk.best(1, 0), ValueError, "the limit of denominators is not a positive integer"),
    (lambda: zelk.best("sin(1)^2+cos(1)^2", 9, side="lower"), ValueError, "not decided by 10000 digits"),
    (lambda: zelk.best(1, 9, side="left"), ValueError, "expected one of lower, nearest, upper"),
    (lambda: zelk.terms("pi"), ValueError, "count must say how many terms"),
    (lambda: zelk.terms((1, 2), 2), ValueError, "only the first 0 terms are certain"),
    (lambda: zelk.log(-(10**5000), 5), ValueError, r"at x = -1(0){38}...: log of what is not positive"),
    (lambda: zelk.root(-2, 2, 5), ValueError, "even root of what is negative"),
    (lambda: zelk.root(2, -1, 5), ValueError, "degree: a count cannot be negative"),
    (lambda: zelk.exp(1, -1), ValueError, "digits: a count cannot be negative"),
    (lambda: zelk.exp(1, 1.5), TypeError, "float"),
    (lambda: zelk.exp(1, 10**20), OverflowError, "digits: a count is at most 4294967295"),
    (lambda: zelk.exp(1, 100001), OverflowError, "more than max_digits, 100000"),
    (lambda: zelk.exp(10**12, 5), OverflowError, "at x = 1000000000000: a result would have more bits"),
    (lambda: zelk.evaluate("9^9^9^9", 5), OverflowError, "more bits"),
    (lambda: zelk.terms("pi", 10**9), OverflowError, "would take about"),
    (lambda: zelk.pi(5).decimal(10**9), OverflowError, "would take about"),
    (lambda: zelk.pi(5).decimal(-1), ValueError, "places: a count cannot be negative"),
    (lambda: zelk.Solver().pi(5000), OverflowError, r"^pi to 5000 digits: would take about"),
    (lambda: zelk.Solver().exp(10**6, 3), OverflowError, r"^exp\(1000000\) to 3 digits: would work through"),
    (lambda: zelk.Solver().approx(third, 0), ValueError, "no terms leave no convergent"),
    (lambda: zelk.Solver().exp("pi", 3), ValueError, "not known to be a rational number"),
    (lambda: zelk.evaluate(b"1", 5), TypeError, "expected a text, not bytes"),
    (lambda: 3.14 in zelk.pi(5), TypeError, "float"),
]


@pytest.mark.parametrize("ask, error, words", REFUSED)
def test_refusals(ask, error, words):
    with pytest.raises(error, match=words):
        ask()


def test_limits():
    before = zelk.set_limits(max_digits=10, max_bits=10**6)
    try:
        for ask in (lambda: zelk.exp(1, 11), lambda: zelk.exp(10**7, 1), lambda: zelk.Solver().pi(11)):
            pytest.raises(OverflowError, ask)
        assert zelk.get_limits() == (10, 10**6) and zelk.exp(100, 10)
    finally:
        zelk.set_limits(**before._asdict())
    assert before == zelk.get_limits() == (100_000, 4 * 10**9)


def test_bounds_that_stay_wide_are_told():
    with pytest.warns(RuntimeWarning, match="farther apart than asked for"):
        wide = zelk.evaluate("sin(1)^2 + cos(1)^2 - 1", 5, relative=True)
    assert 0 in wide
