"""What the functions take."""

from __future__ import annotations

from decimal import Decimal
from numbers import Rational
from typing import TYPE_CHECKING, Tuple, Union

if TYPE_CHECKING:
    from zelk._enclosure import Enclosure

# int, Fraction, any other numbers.Rational, Decimal.
Exact = Union[Rational, int, Decimal]

# A text too, of a rational number.
Number = Union[Exact, str]

# A number, or an interval: an Enclosure, or a pair of numbers.
Point = Union[Number, Tuple[Number, Number], "Enclosure"]
