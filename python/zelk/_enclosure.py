from __future__ import annotations

from fractions import Fraction
from typing import Any, NamedTuple, Optional, Tuple

from zelk import _core
from zelk._terms import fraction


class _Bounds(NamedTuple):
    lower: Fraction
    upper: Fraction


def _places_for(width: Fraction) -> int:
    """So many decimals that both ends tell what they say, and a digit more."""
    if width == 0:
        return 20
    bits = width.denominator.bit_length() - width.numerator.bit_length()
    return max(0, bits * 30103 // 100000) + 2


class Enclosure(_Bounds):
    """Two fractions, lower and upper, with a value between them.

    >>> lower, upper = zelk.pi(digits=3)
    >>> lower, upper
    (Fraction(289, 92), Fraction(355, 113))
    """

    # What was asked, of what.
    _question: Optional[Tuple[Any, ...]] = None

    def decimal(self, places: int) -> str:
        """The interval with so many decimals, rounded outward; an equals sign marks an exact end.

        >>> zelk.exp('1/3', digits=20).decimal(10)
        '[1.3956124250, 1.3956124251]'
        """
        return _core.decimal(self.lower, self.upper, places)

    @property
    def width(self) -> Fraction:
        """upper - lower.

        >>> zelk.pi(digits=3).width
        Fraction(3, 10396)
        """
        return self.upper - self.lower

    @property
    def certificate(self) -> str:
        """A proof that the value lies between the two, found on demand: JSON Lines for `zelk.check`.

        >>> zelk.check(zelk.exp(2, digits=3).certificate)
        'exp(2) in [133/18, 702/95]'
        """
        from zelk._certificate import certificate

        return certificate(self)

    def __contains__(self, x: object) -> bool:
        """Whether a number, or all of an interval, lies between the two.

        >>> '22/7' in zelk.pi(digits=3), '3.1415' in zelk.pi(digits=3)
        (False, True)
        """
        lower, upper = x if isinstance(x, tuple) else (x, x)
        return self.lower <= _core.to_rational(lower) and _core.to_rational(upper) <= self.upper

    def __reduce__(self) -> Tuple[Any, ...]:
        # A pickled Fraction takes a gcd when it comes back.
        ends = (*self.lower.as_integer_ratio(), *self.upper.as_integer_ratio())
        return _restored, (*ends, self._question)

    def __str__(self) -> str:
        return self.decimal(_places_for(self.width))

    def _repr_pretty_(self, printer: Any, cycle: bool) -> None:
        """In IPython: as decimals, and as fractions."""
        printer.text(f"{self}  {_core.text(self.lower)} .. {_core.text(self.upper)}")


def _restored(
    n: int, d: int, upper_n: int, upper_d: int, question: Optional[Tuple[Any, ...]]
) -> Enclosure:
    enclosure = Enclosure(fraction(n, d), fraction(upper_n, upper_d))
    enclosure._question = question
    return enclosure
