"""What the functions take."""

from numbers import Rational
from typing import Tuple, Union

Number = Union[Rational, int, str]
"""A rational number: int, Fraction, any other numbers.Rational, or a text."""

Point = Union[Number, Tuple[Number, Number]]
"""A number, or an interval: an Enclosure, or a pair of numbers."""
