"""Exact fractions in, guaranteed fractions out.

A number is an int, a fractions.Fraction or any other numbers.Rational, a decimal.Decimal, or a text:
'3.14' and '22/7' are taken exactly, and so is 'log(3/2)/log(2)'. A float is refused, since it is rarely
the number that was meant. Answers are Fractions, or Enclosures, which are two Fractions with the value
between them.

    >>> import zelk
    >>> print(zelk.exp('1/3', digits=20))
    [1.3956124250860895286262, 1.3956124250860895286302]
    >>> zelk.best('365.24219', 100)  # days in a year, over at most 100 years
    Fraction(34698, 95)
    >>> zelk.terms('pi', 5)
    [3, 7, 15, 1, 292]

Nothing that grows is kept from one call to the next; a Solver keeps its answers. Other threads of
Python go on while a question is answered. An interrupt (Ctrl-C) is seen as soon as it has been.

Errors are Python's own. ValueError: a text that means nothing, or a function at a place where it has
no value. ZeroDivisionError: a division by 0. OverflowError: an answer would be beyond the limits, which
set_limits changes. TypeError: no rational number.
"""

from zelk._certificate import check
from zelk._enclosure import Enclosure
from zelk._functions import (
    atan,
    best,
    convergents,
    cos,
    evaluate,
    exp,
    log,
    pi,
    root,
    simplest,
    sin,
    terms,
)
from zelk._limits import Limits, get_limits, set_limits
from zelk._solver import Solver
from zelk._core import version as __version__

__all__ = [
    "Enclosure",
    "Limits",
    "Solver",
    "atan",
    "best",
    "check",
    "convergents",
    "cos",
    "evaluate",
    "exp",
    "get_limits",
    "log",
    "pi",
    "root",
    "set_limits",
    "simplest",
    "sin",
    "terms",
]

# Where people find them: in messages, in help and in pickles.
for _name in __all__:
    globals()[_name].__module__ = __name__
del _name
