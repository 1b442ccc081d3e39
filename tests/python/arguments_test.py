"""What is taken for a number, and what people are told of the rest."""

from decimal import Decimal
from fractions import Fraction
from numbers import Rational

import pytest

import zelk


@Rational.register
class Strange:
    """A rational number of somebody else, whose parts are whatever they are."""

    def __init__(self, numerator, denominator):
        self.parts = numerator, denominator

    numerator = property(lambda self: self.parts[0])
    denominator = property(lambda self: self.parts[1])


third = Fraction(1, 3)
index = type("Index", (), {"__index__": lambda self: 2**70})()


@pytest.mark.parametrize(
    "given, value",
    [(7, 7), (True, 1), (third, third), ("1/3", third), ("3.14", Fraction(314, 100)), (" +.5", Fraction(1, 2)),
     (Decimal("-0.125"), Fraction(-1, 8)), (Decimal("1.2E+2"), 120), ("-7/2", Fraction(-7, 2)), ("sqrt(4)-1", 1),
     (Strange(2, -6), -third), (Strange(index, 2**71), Fraction(1, 2)), (-2**63, -2**63)],
)  # fmt: skip
def test_numbers(given, value):
    assert zelk.simplest(given, given) == value
    if value > 0:
        assert zelk.log((given, 200), digits=9) == zelk.log((value, 200), digits=9)


REFUSED = {
    TypeError: {
        "exp(0.1, 5)": "float: a text such as '0.1' is taken exactly", "0.5 * pi(5)": "float: a text such as",
        "exp(None, 5)": "expected a number, an interval or a text, not None", "exp(1, 1.5)": "float",
        "exp((1, 2, 3), 5)": "expected a number, or the two ends of an interval", "exp(1j, 5)": "complex",
        "exp(Strange(1, 1.5), 5)": "float", "exp(Strange('1', 2), 5)": "str", "evaluate(b'1', 5)": "expected a text",
        "(1, 2, 3) in pi(5)": "the two ends of", "pi(5) + None": "unsupported operand", "None >= pi(5)": "not support",
        "Enclosure(1, '2')": "an end is a number, not a text", "Enclosure('1', 2)": "an end is a number, not a text",
    },
    ValueError: {
        "exp(Decimal('sNaN'), 5)": "expected a finite number, not .*sNaN", "exp(Decimal('-inf'), 5)": "a finite number",
        "exp(Decimal('1e999999999'), 5)": "the exponent is beyond 1000000", "evaluate('x', 5)": "x has no value",
        "exp((2, 1), 5)": r"\[2, 1\]: the lower end of an interval is above", r"exp('1/\0', 5)": r"\\x00.*column 3",
        "exp('2 3', 5)": '"2 3": column 3: expected an operator', r"exp('\udcff', 5)": "surrogates",
        "simplest('pi', 4)": '"pi": not known to be a rational number', "terms((1, 2), 2)": "only the first 0 terms",
        "simplest(2, 1)": r"simplest\(2, 1\): the lower end", "simplest(2**99, 2**99, open=True)": "interval is empty",
        "best(1, 0)": "not a positive integer", "best('sin(1)^2+cos(1)^2', 9, side='lower')": "not decided by 10000",
        "best(1, 9, side='left')": "expected one of lower, nearest, upper", "terms('pi')": "count must say how many",
        "log(-(10**5000), 5)": r"at x = -1(0){38}...: log of what is not positive", "root(-2, 2, 5)": "even root",
        "root(2, -1, 5)": "degree: a count cannot be negative", "pi(5).decimal(-1)": "places: a count cannot be",
        "exp(1, -1)": "digits: a count cannot be negative", "Solver().approx(third, 0)": "no terms leave no convergent",
        "Solver().exp('pi', 3)": "not known to be a rational number", "Enclosure(2, 1)": r"\[2, 1\]: the lower end",
        "pi(5) ** third": "only whole powers are exact", "f'{pi(5):.3e}'": "format code", "check('{}')": "certificate",
        "Solver().exp(1, 5, derivative=True).certificate": "companion", "(1 + pi(5)).certificate": "no answer of zelk",
    },
    ZeroDivisionError: {
        "exp(Strange(1, 0), 5)": "the denominator 0", "exp('1/0', 5)": 'at x = "1/0": division by 0',
        "evaluate('1/x', 5, x=0)": "at x = 0: division by 0", "evaluate('0^-1', 5)": "negative power",
    },
    KeyError: {
        "exp(type('K', (Strange,), {'numerator': property(lambda s: {}['broken'])})(1, 2), 5)": "broken",
        "exp(type('K', (), {'__class__': property(lambda s: {}['broken'])})(), 5)": "broken",
    },
    OverflowError: {
        "exp(1, 10**20)": "digits: a count is at most 4294967295", "exp(1, 2**32 - 1)": "more than max_digits, 100000",
        "exp(10**12, 5)": "at x = 1000000000000: a result of 1.4e.12 bits would take", "pi(5) ** 2**63": "beyond 64 bits",
        "Solver().exp(10**6, 3)": r"^exp\(1000000\) to 3 digits: would work through", "pi(5)**10**9": "would take",
    },
}  # fmt: skip


@pytest.mark.parametrize("error, ask, words", [(error, *row) for error in REFUSED for row in REFUSED[error].items()])
def test_refusals(error, ask, words):
    with pytest.raises(error, match=words):
        eval(ask, {**globals(), **vars(zelk)})


def test_limits():
    solver, long, found = zelk.Solver(), Fraction(3**30000, 2**47000), zelk.exp(1, 9)
    kept = solver.pi(99)
    before = zelk.set_limits(max_digits=9999, max_bits=10**6)
    try:
        assert zelk.get_limits() == (9999, 10**6) and zelk.exp(100, 10) and solver.pi(99) == kept
        for ask in (
            "terms(long)", "convergents(long)", "terms('(2/3)^30000')", "convergents('pi', 999)", "terms('pi', 9999)",
            "solver.terms(long)", "solver.convergents(long)", "solver.approx(long, 9**9)", "solver.exp(1000, 9999)",
            "best(long, 7)", "simplest(0, long)", "best('pi', long.denominator)", "'1' + '+1' * 999 in found",
            "exp(1, 9998)", "solver.pi(98)", "pi(10**4)", "solver.pi(10**4)", "found**-9999", "found * long",
            "found < long", "f'{found:.99999}'", "round(found, -99999)", "set_limits(max_bits=99) and best(third, 2)",
        ):  # fmt: skip
            told = r"10000 digits are more than max_digits, 9999;|would (take|work through) about .* \(max_bits\);"
            with pytest.raises(OverflowError, match=told):
                eval(ask, {**vars(zelk), "third": third, "solver": solver, "long": long, "found": found})
    finally:
        zelk.set_limits(**before._asdict())
    assert before == zelk.get_limits() == (100_000, 4 * 10**9)


def test_bounds_that_stay_wide_are_told():
    with pytest.warns(RuntimeWarning, match="farther apart than asked for") as told:
        assert 0 in zelk.evaluate("sin(1)^2 + cos(1)^2 - 1", 5, relative=True)
    assert told[0].filename == __file__
