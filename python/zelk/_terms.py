"""What a Fraction is made of."""

import numbers
from typing import NamedTuple


class LowestTerms(NamedTuple):
    """The parts of a Fraction, which takes those of another rational number without a gcd."""

    numerator: int
    denominator: int


numbers.Rational.register(LowestTerms)
