"""Proofs of enclosures, and their checker."""

from __future__ import annotations

from typing import TYPE_CHECKING, Optional

from zelk import _core

if TYPE_CHECKING:
    from zelk._enclosure import Enclosure
    from zelk._types import Point


def certificate(enclosure: Enclosure) -> str:
    question = enclosure._question
    if question is None:
        raise ValueError("no certificate of an enclosure that is no answer of zelk")
    lower, upper = enclosure
    if question[0] == "value":
        formula, x, digits, relative = question[1:]
        return _core.prove(formula, x, digits, relative, lower, upper)
    name, x, digits = question
    return _core.certify(name, x, digits, lower, upper)


def check(
    certificate: str,
    expression: Optional[Point] = None,
    digits: Optional[int] = None,
    *,
    relative: bool = False,
) -> str:
    """What a certificate proves; ValueError if it does not.

    The certificate may come from anywhere, and the checker shares no code with what finds answers.
    (scripts/check_certificate is another one, to be read, in plain Python.)

    >>> zelk.check(zelk.log(2, digits=3).certificate)
    'log(2) in [70/101, 52/75]'

    A certificate can prove something else than was asked, or less: what it is to be about, and how
    near its bounds are to be to each other, is best said.

    >>> certificate = zelk.log('1/3', digits=3).certificate
    >>> zelk.check(certificate, 'log(1/3)', digits=3)
    'log((1/3)) in [...]'
    >>> zelk.check(certificate, 'log(3)', digits=3)
    Traceback (most recent call last):
        ...
    ValueError: rejected: claim 2: is not about what was asked
    >>> zelk.check(certificate, 'log(1/3)', digits=4)
    Traceback (most recent call last):
        ...
    ValueError: rejected: claim 2: is wider than what was asked

    With relative=True digits are those of the value. Bounds that an interval in the expression
    leaves wider are checked without digits.

    >>> zelk.check(zelk.sin((0, 1), 5).certificate, 'sin([0, 1])')
    'sin([0, 1]) in [...]'
    """
    if relative and digits is None:
        raise ValueError("relative without digits")
    return _core.check(certificate, expression, digits, relative)
