"""What a Fraction is made of."""

import numbers
from fractions import Fraction
from typing import NamedTuple, cast


class LowestTerms(NamedTuple):
    """The parts of a Fraction, which takes those of another rational number without a gcd."""

    numerator: int
    denominator: int


numbers.Rational.register(LowestTerms)


def fraction(numerator: int, denominator: int) -> Fraction:
    """Of coprime parts, the denominator positive."""
    return Fraction(cast(numbers.Rational, LowestTerms(numerator, denominator)))
