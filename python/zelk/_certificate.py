"""Proofs of enclosures, and their checker."""

from __future__ import annotations

from typing import TYPE_CHECKING

from zelk import _core

if TYPE_CHECKING:
    from zelk._enclosure import Enclosure


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


def check(certificate: str) -> str:
    """What a certificate proves; ValueError if it does not.

    The certificate may come from anywhere, and the checker shares no code with what finds answers.
    (scripts/check_certificate is another one, to be read, in plain Python.)

    >>> zelk.check(zelk.log(2, digits=3).certificate)
    'log(2) in [70/101, 52/75]'
    """
    return _core.check(certificate)
