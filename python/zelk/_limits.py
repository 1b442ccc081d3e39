from __future__ import annotations

from typing import NamedTuple, Optional

from zelk import _core


class Limits(NamedTuple):
    """What a question may ask for at most."""

    max_digits: int
    max_bits: int


def get_limits() -> Limits:
    """The limits in force.

    >>> zelk.get_limits()
    Limits(max_digits=100000, max_bits=4000000000)
    """
    return Limits(*_core.limits())


def set_limits(*, max_digits: Optional[int] = None, max_bits: Optional[int] = None) -> Limits:
    """Changes limits, for all threads, and returns those that were in force.

    A question is refused with an OverflowError before it takes more bits of memory by a rough
    estimate, or works through more than a thousand times as many. Where GMP gets no memory in spite
    of that, it ends the process.

    >>> before = zelk.set_limits(max_digits=100)
    >>> zelk.pi(digits=101)
    Traceback (most recent call last):
        ...
    OverflowError: "pi": 101 digits are more than max_digits, 100; zelk.set_limits allows more
    >>> zelk.set_limits(**before._asdict())
    Limits(max_digits=100, max_bits=4000000000)
    """
    before = get_limits()
    _core.set_limits(max_digits, max_bits)
    return before
