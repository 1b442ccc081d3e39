from __future__ import annotations

from contextlib import contextmanager
from typing import Iterator, NamedTuple, Optional

from zelk import _core


class Limits(NamedTuple):
    """What a question may ask for at most."""

    max_digits: int
    max_bits: int


@contextmanager
def limits(
    *,
    seconds: Optional[float] = None,
    work: Optional[float] = None,
    bits: Optional[float] = None,
) -> Iterator[None]:
    """What the questions asked within the block may take: so many seconds by the clock from here on, and
    so many units of work, all together: a question that goes beyond is given up with zelk.Stopped, and
    nothing is lost by it. And so many bits of memory each, in the place of max_bits: a question for more is
    refused with an OverflowError. Work is counted alike on all machines: a product of numbers with b bits is
    b^1.5 units, and a second some 10^11.

    >>> with zelk.limits(work=10**7):
    ...     zelk.evaluate('log(3/2)/log(2)', 10000)
    Traceback (most recent call last):
        ...
    zelk.Stopped: "log(3/2)/log(2)": not finished within its work: ... units of work were done

    Blocks within each other hold all; other threads, and other tasks, have their own.
    """
    token = _core.allowance.set(_core.Allowance(seconds, work, bits))
    try:
        yield
    finally:
        _core.allowance.reset(token)


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
