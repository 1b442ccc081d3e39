from __future__ import annotations

from fractions import Fraction
from typing import List, Optional

from zelk import _core
from zelk._enclosure import Enclosure, enclosure
from zelk._types import Number


class Solver:
    """Answers that are kept: a question that comes again is one lookup.

    Its enclosures are sums of series, with longer ends than those of the functions of the same
    names, and its continued fractions of negative numbers are split toward zero while numerator and
    denominator fit in 64 bits. Points should be small: series are summed at the point itself. Nothing
    is ever dropped while the solver lives. One question is answered at a time; threads that ask
    others wait for it.

    >>> solver = zelk.Solver()
    >>> solver.exp('-1/2', digits=2)
    Enclosure(lower=Fraction(29, 48), upper=Fraction(233, 384))
    """

    def __init__(self) -> None:
        self._core = _core.Solver()

    def _bounds(self, name: str, x: Number, digits: int) -> Enclosure:
        return enclosure(self._core.bounds(name, x, digits), (name, x, digits))

    def exp(self, x: Number, digits: int, *, derivative: bool = False) -> Enclosure:
        """e^x, less than 10^-digits wide; with derivative=True by the sum's companion, whose width
        is what it is."""
        return self._bounds("exp'" if derivative else "exp", x, digits)

    def sin(self, x: Number, digits: int, *, derivative: bool = False) -> Enclosure:
        """The sine, less than 2 * 10^-digits wide, whose sign both ends have; with derivative=True
        its derivative, whose width is what it is."""
        return self._bounds("sin'" if derivative else "sin", x, digits)

    def cos(self, x: Number, digits: int) -> Enclosure:
        """The cosine, less than 2 * 10^-digits wide."""
        return self._bounds("cos", x, digits)

    def pi(self, digits: int) -> Enclosure:
        """Pi, at most 10^-digits wide, between two convergents; the time it takes, and the memory
        that is kept, grow with the square of the digits.

        >>> zelk.Solver().pi(digits=2)
        Enclosure(lower=Fraction(5359397032, 1706489875), upper=Fraction(100084823351, 31857700982))
        """
        return self._bounds("pi", 0, digits)

    def approx(self, x: Number, terms: int, direction: int = 0) -> Fraction:
        """The convergent of so many terms; the first one from there on that is at most x if the
        direction is negative, at least x if it is positive.

        >>> zelk.Solver().approx('365.24219', 3, direction=1)
        Fraction(12053, 33)
        """
        return self._core.approx(x, terms, direction)

    def terms(self, x: Number, count: Optional[int] = None) -> List[int]:
        """The first terms of the continued fraction, none of 0.

        >>> zelk.Solver().terms('-7/2')
        [-3, -2]
        """
        return self._core.terms(x, count)

    def convergents(self, x: Number, count: Optional[int] = None) -> List[Fraction]:
        """The values of the continued fraction cut after each of its first terms.

        >>> zelk.Solver().convergents('415/93')
        [Fraction(4, 1), Fraction(9, 2), Fraction(58, 13), Fraction(415, 93)]
        """
        return self._core.convergents(x, count)
