from __future__ import annotations

import re
from decimal import Decimal
from fractions import Fraction
from numbers import Rational
from typing import Any, Iterator, Optional, Tuple

from zelk import _core
from zelk._terms import fraction
from zelk._types import Exact, Number, Point


def _places_for(lower: Fraction, width: Fraction) -> int:
    """So many decimals that both ends tell what they say, and a digit more; of one number all, up to 20."""
    if not width:
        return next((places for places in range(20) if 10**places % lower.denominator == 0), 20)
    bits = width.denominator.bit_length() - width.numerator.bit_length()
    return max(0, bits * 30103 // 100000) + 2


class Enclosure:
    """Two fractions, lower and upper, with a value between them.

    >>> lower, upper = zelk.pi(digits=3)
    >>> lower, upper
    (Fraction(289, 92), Fraction(355, 113))

    Sums, differences, products, quotients and whole powers are the least intervals that hold those of
    all numbers between the ends, exactly. Of two enclosures, or an enclosure and a number, one is less
    if all of it is; where that is not decided, asking is a ValueError. Equal are those with the same
    ends, and the pair of them.

    >>> 2 * zelk.pi(digits=3) - 6
    Enclosure(lower=Fraction(13, 46), upper=Fraction(32, 113))
    >>> zelk.exp(1, digits=3) < zelk.pi(digits=3)
    True
    """

    __slots__ = ("_lower", "_upper", "_question")
    __match_args__ = ("lower", "upper")

    def __init__(self, lower: Exact, upper: Exact) -> None:
        if isinstance(lower, str) or isinstance(upper, str):
            raise TypeError("an end is a number, not a text: zelk.evaluate encloses what a text says")
        self._lower, self._upper = _core.ends((lower, upper))
        self._question: Optional[Tuple[Any, ...]] = None

    @property
    def lower(self) -> Fraction:
        """The lower end."""
        return self._lower

    @property
    def upper(self) -> Fraction:
        """The upper end."""
        return self._upper

    def __iter__(self) -> Iterator[Fraction]:
        return iter((self._lower, self._upper))

    def decimal(self, places: int) -> str:
        """The interval with so many decimals, rounded outward; an equals sign marks an exact end.

        >>> zelk.exp('1/3', digits=20).decimal(10)
        '[1.3956124250, 1.3956124251]'
        """
        return _core.decimal(self, places)

    @property
    def width(self) -> Fraction:
        """upper - lower.

        >>> zelk.pi(digits=3).width
        Fraction(3, 10396)
        """
        return self._upper - self._lower

    @property
    def certificate(self) -> str:
        """A proof that the value lies between the two, found on demand: JSON Lines for `zelk.check`.

        >>> zelk.check(zelk.exp(2, digits=3).certificate)
        'exp(2) in [133/18, 835/113]'
        """
        from zelk._certificate import certificate

        return certificate(self)

    def __contains__(self, x: Point) -> bool:
        """Whether a number, or all of an interval, lies between the two.

        >>> '22/7' in zelk.pi(digits=3), '3.1415' in zelk.pi(digits=3)
        (False, True)
        """
        lower, upper = _core.ends(x)
        return self._lower <= lower and upper <= self._upper

    def __add__(self, other: Point) -> Enclosure:
        return _combined("+", self, other)

    def __radd__(self, other: Point) -> Enclosure:
        return _combined("+", other, self)

    def __sub__(self, other: Point) -> Enclosure:
        return _combined("-", self, other)

    def __rsub__(self, other: Point) -> Enclosure:
        return _combined("-", other, self)

    def __mul__(self, other: Point) -> Enclosure:
        return _combined("*", self, other)

    def __rmul__(self, other: Point) -> Enclosure:
        return _combined("*", other, self)

    def __truediv__(self, other: Point) -> Enclosure:
        return _combined("/", self, other)

    def __rtruediv__(self, other: Point) -> Enclosure:
        return _combined("/", other, self)

    def __pow__(self, exponent: Number) -> Enclosure:
        return enclosure(_core.power(self, exponent))

    def __neg__(self) -> Enclosure:
        return enclosure((-self._upper, -self._lower))

    def __pos__(self) -> Enclosure:
        return enclosure((self._lower, self._upper))

    def __abs__(self) -> Enclosure:
        ends = abs(self._lower), abs(self._upper)
        return enclosure((min(ends) if (self._lower > 0) == (self._upper > 0) else Fraction(0), max(ends)))

    def __round__(self, places: int = 0) -> Enclosure:
        """The ends rounded outward to so many decimals, or to tens and hundreds."""
        return enclosure(_core.rounded(self, places))

    def __lt__(self, other: Point) -> bool:
        return _compared("<", self, other)

    def __le__(self, other: Point) -> bool:
        return _compared("<=", self, other)

    def __gt__(self, other: Point) -> bool:
        return _compared(">", self, other)

    def __ge__(self, other: Point) -> bool:
        return _compared(">=", self, other)

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, (Enclosure, tuple)):
            return NotImplemented
        return (self._lower, self._upper) == tuple(other)

    def __hash__(self) -> int:
        return hash((self._lower, self._upper))

    def __reduce__(self) -> Tuple[Any, ...]:
        # A pickled Fraction takes a gcd when it comes back.
        ends = (*self._lower.as_integer_ratio(), *self._upper.as_integer_ratio())
        return _restored, (*ends, self._question)

    def __str__(self) -> str:
        return self.decimal(_places_for(self._lower, self.width))

    def __format__(self, layout: str) -> str:
        """The text, or with '.6f' so many decimals, in a field as that of a text.

        >>> f"{zelk.pi(digits=9):>30.4f}"
        '              [3.1415, 3.1416]'
        """
        field, places = re.fullmatch(r"(.*?)(?:\.(\d+)f?)?", layout, re.DOTALL).groups()
        return format(str(self) if places is None else self.decimal(int(places)), field)

    def __repr__(self) -> str:
        # Python's own text of an integer is at most 4300 digits long.
        parts = (_core.digits(end).partition("/") for end in self)
        lower, upper = (f"Fraction({above}, {below or 1})" for above, _, below in parts)
        return f"Enclosure(lower={lower}, upper={upper})"

    def _repr_pretty_(self, printer: Any, cycle: bool) -> None:
        """In IPython: as decimals, and as fractions."""
        printer.text(f"{self}  {_core.text(self.lower)} .. {_core.text(self.upper)}")


_core.set_enclosure(Enclosure)

# What a point may be, and a float, so that it is told why it is none. All else is left to the other operand.
_POINTS = (Enclosure, Rational, Decimal, str, tuple, float)


def enclosure(ends: Tuple[Fraction, Fraction], question: Optional[Tuple[Any, ...]] = None) -> Enclosure:
    """Of ends that are in order: what was found, and what was asked."""
    made = Enclosure.__new__(Enclosure)
    made._lower, made._upper = ends
    made._question = question
    return made


def _combined(symbol: str, a: Point, b: Point) -> Enclosure:
    if not (isinstance(a, _POINTS) and isinstance(b, _POINTS)):
        return NotImplemented
    return enclosure(_core.combined(symbol, a, b))


def _compared(symbol: str, a: Point, b: Point) -> bool:
    return _core.compare(symbol, a, b) if isinstance(b, _POINTS) else NotImplemented


def _restored(
    n: int, d: int, upper_n: int, upper_d: int, question: Optional[Tuple[Any, ...]]
) -> Enclosure:
    return enclosure((fraction(n, d), fraction(upper_n, upper_d)), question)
