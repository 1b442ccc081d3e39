from __future__ import annotations

from fractions import Fraction
from typing import List, Optional

from zelk import _core
from zelk._enclosure import Enclosure, enclosure
from zelk._types import Number, Point


def _ask(formula: str, x: Optional[Point], digits: int, relative: bool) -> Enclosure:
    ends = _core.enclose(formula, x, digits, relative)
    return enclosure(ends, ("value", formula, x, digits, relative))


def _given(x: Point) -> Point:
    if x is None:
        raise TypeError("expected a number, an interval or a text, not None")
    return x


def evaluate(
    expression: str, digits: int, *, x: Optional[Point] = None, relative: bool = False
) -> Enclosure:
    """The value of an expression between two fractions at most 10^-digits apart.

    An expression is made of numbers, pi, e, intervals such as [0.1, 0.2], the variable x, + - * / ^,
    parentheses, and exp log sqrt root(y, n) sin cos tan asin acos atan sinh cosh tanh.

    >>> zelk.evaluate('log(3/2)/log(2)', digits=10)
    Enclosure(lower=Fraction(176506, 301739), upper=Fraction(111457, 190537))
    >>> print(zelk.evaluate('x^2 - 2', 5, x='sqrt(2)'))
    [-0.0000034, 0.0000034]

    Over an interval both ends are within 10^-digits of the least and the greatest value, if each
    step is taken over all that the one before may be.

    >>> print(zelk.evaluate('exp(-x^2)', 4, x=('-1/2', 1)))
    [0.36, =1.00]

    With relative=True digits are those of the value, and not decimals.

    >>> zelk.evaluate('exp(-1000)', 2, relative=True).lower > 0
    True
    """
    return _ask(expression, x, digits, relative)


def exp(x: Point, digits: int, *, relative: bool = False) -> Enclosure:
    """e^x between two fractions at most 10^-digits apart, or 10^-digits times the value.

    >>> zelk.exp('1/3', digits=5)
    Enclosure(lower=Fraction(1972, 1413), upper=Fraction(1464, 1049))
    """
    return _ask("exp(x)", _given(x), digits, relative)


def log(x: Point, digits: int, *, relative: bool = False) -> Enclosure:
    """The natural logarithm of x > 0.

    >>> zelk.log(2, digits=5)
    Enclosure(lower=Fraction(445, 642), upper=Fraction(698, 1007))
    >>> zelk.log(0, digits=5)
    Traceback (most recent call last):
        ...
    ValueError: "log(x)" at x = 0: log of what is not positive
    """
    return _ask("log(x)", _given(x), digits, relative)


def sin(x: Point, digits: int, *, relative: bool = False) -> Enclosure:
    """The sine, of an angle in radians.

    >>> zelk.sin('pi/6', digits=5)
    Enclosure(lower=Fraction(74997, 149995), upper=Fraction(74997, 149993))
    """
    return _ask("sin(x)", _given(x), digits, relative)


def cos(x: Point, digits: int, *, relative: bool = False) -> Enclosure:
    """The cosine, of an angle in radians; here of all angles from 3 to 4.

    >>> print(zelk.cos((3, 4), digits=5))
    [=-1.00, -0.65]
    """
    return _ask("cos(x)", _given(x), digits, relative)


def atan(x: Point, digits: int, *, relative: bool = False) -> Enclosure:
    """The arctangent, an angle in radians.

    >>> zelk.atan(1, digits=5)
    Enclosure(lower=Fraction(527, 671), upper=Fraction(355, 452))
    """
    return _ask("atan(x)", _given(x), digits, relative)


def root(x: Point, degree: int, digits: int, *, relative: bool = False) -> Enclosure:
    """The root of a positive degree: of an even one for x >= 0, of an odd one for all x.

    >>> zelk.root(2, 2, digits=5)
    Enclosure(lower=Fraction(816, 577), upper=Fraction(577, 408))
    >>> zelk.root(-8, 3, digits=5)
    Enclosure(lower=Fraction(-2, 1), upper=Fraction(-2, 1))
    """
    return _ask(f"root(x, {_core.count(degree, 'degree')})", _given(x), digits, relative)


def pi(digits: int) -> Enclosure:
    """The ratio of a circle's circumference to its diameter.

    >>> zelk.pi(digits=5)
    Enclosure(lower=Fraction(7788, 2479), upper=Fraction(355, 113))
    """
    return _ask("pi", None, digits, False)


def simplest(lower: Number, upper: Number, *, open: bool = False) -> Fraction:
    """The fraction of least denominator from lower to upper, which count unless open is true.

    Of several integers it is the one nearest to 0.

    >>> zelk.simplest('3.14', '3.15'), zelk.simplest(0, '1/3', open=True)
    (Fraction(22, 7), Fraction(1, 4))
    """
    return _core.simplest(lower, upper, open)


_SIDES = {"lower": -1, "nearest": 0, "upper": 1}


def best(x: Point, limit: Number, *, side: str = "nearest") -> Fraction:
    """The fraction nearest to x with a denominator up to limit.

    With side='lower' it is the nearest that is at most x, with side='upper' at least x.

    >>> zelk.best('pi', 100), zelk.best('pi', 100, side='upper')
    (Fraction(311, 99), Fraction(22, 7))
    """
    if side not in _SIDES:
        raise ValueError(f"side: expected one of {', '.join(_SIDES)}, not {side!r}")
    return _core.best(x, limit, _SIDES[side])


def terms(x: Point, count: Optional[int] = None) -> List[int]:
    """The first terms of the continued fraction of x: floors, those after the first positive.

    If x is not known to be rational, count says how many. All of them are certain.

    >>> zelk.terms('415/93'), zelk.terms('-7/2'), zelk.terms('log(3/2)/log(2)', 8)
    ([4, 2, 6, 7], [-4, 2], [0, 1, 1, 2, 2, 3, 1, 5])
    """
    return _core.terms(x, count)


def convergents(x: Point, count: Optional[int] = None) -> List[Fraction]:
    """The values of the continued fraction of x, cut after each of its first terms.

    >>> zelk.convergents('365.24219', 3)
    [Fraction(365, 1), Fraction(1461, 4), Fraction(10592, 29)]
    """
    return _core.convergents(x, count)
