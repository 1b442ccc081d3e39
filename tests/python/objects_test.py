"""Enclosures, solvers and certificates."""

import pickle
import re
from decimal import Decimal
from fractions import Fraction

import pytest

import zelk

half = Fraction(1, 2)


def test_an_enclosure_is_two_fractions():
    found = zelk.exp("1/3", digits=5)
    lower, upper = found
    assert (lower, upper) == (found.lower, found.upper) == found == zelk.Enclosure(lower, upper)
    assert found != upper != found != (lower, lower) and hash(found) == hash((lower, upper))
    assert found.width == upper - lower and not isinstance(found, tuple)
    assert lower in found and upper in found and zelk._core.digits(upper) in found and found in found
    assert upper + found.width not in found and (lower - 1, upper) not in found and 1 not in found
    assert zelk.Enclosure(half, Fraction(2, 3)).decimal(3) == "[=0.500, 0.667]"
    assert zelk.Enclosure(Fraction(-1, 3), Fraction(-1, 3)).decimal(0) == "[-1, 0]"


def test_enclosures_are_shown_at_any_length():
    shown = []
    printer = type("Printer", (), {"text": lambda self, text: shown.append(text)})()
    short, long = zelk.pi(3), zelk.exp(1, 10_000)  # longer than Python prints integers
    short._repr_pretty_(printer, False)
    long._repr_pretty_(printer, False)
    assert shown[0] == "[3.14130, 3.14160]  289/92 .. 355/113" and "..." in shown[1]
    assert str(short) == f"{short}" == f"{short:.5}" == shown[0][:18] and f"{short:_>9.0f}" == "___[3, 4]"
    assert str(zelk.Enclosure(-1, 0)) == "[=-1.00, =0.00]" and str(zelk.root(4, 2, 9)) == "[=2, =2]"
    assert str(zelk.log(1, 5) + "1/8") == "[=0.125, =0.125]" and len(str(zelk.Enclosure(half, half) / 3)) == 48
    assert str(long)[:10_003] == f"{long:.10000f}"[:10_003] and str(long).index(",") == 10_005
    assert repr(short) == "Enclosure(lower=Fraction(289, 92), upper=Fraction(355, 113))"
    parts = [part for end in long for part in end.as_integer_ratio()]
    assert [Decimal(part) for part in re.findall(r"\d+", repr(long))] == [Decimal(part) for part in parts]
    below = long.lower * 10**9000 // 1
    assert round(long, 9000) == (Fraction(below, 10**9000), Fraction(below + 1, 10**9000))
    assert round(short) == (3, 4) and round(-short, -1) == (-10, 0) and round(short, 1).upper == Fraction("3.2")


CERTIFIED = [
    lambda: zelk.exp("1/3", 20), lambda: zelk.log("pi", 20, relative=True), lambda: zelk.root(2, 3, 20),
    lambda: zelk.cos((1, 2), 9), lambda: zelk.pi(30), lambda: zelk.evaluate("log(3/2)/x", 20, x="log(2)"),
    lambda: zelk.Solver().exp("-7/2", 10), lambda: zelk.Solver().sin(1, 10), lambda: zelk.Solver().cos("1/3", 10),
    lambda: zelk.Solver().pi(10), lambda: zelk.sin(zelk.Enclosure(Fraction(1, 3), 1), 4),
]  # fmt: skip


def test_checks_know_numbers_however_they_are_typed():
    for typed in ("exp(-0.25)", "exp(-1/4)", "exp(1/-4)"):
        assert zelk.check(zelk.exp("-0.25", 5).certificate, typed, 5).startswith("exp((-1/4)) in ")


@pytest.mark.parametrize("ask", CERTIFIED)
def test_certificates_prove_the_answer(ask):
    found = pickle.loads(pickle.dumps(ask()))
    assert type(found) is zelk.Enclosure and found == ask()
    proof = found.certificate
    assert zelk.check(proof).endswith(f" in [{found.lower}, {found.upper}]")
    end = f'"upper":"{found.upper}"}}\n'
    assert proof.endswith(end)
    with pytest.raises(ValueError, match="^rejected: claim"):
        zelk.check(proof[: -len(end)] + f'"upper":"{found.lower}"}}\n')


def test_an_answer_from_elsewhere_has_no_certificate():
    for found in zelk.exp(1, 5), zelk.Solver().cos(1, 5):
        moved = found + 9
        moved._question = found._question
        with pytest.raises(ValueError, match="these bounds are not those found now"):
            moved.certificate


def test_a_solver_answers_as_its_approximators():
    solver = zelk.Solver()
    for _ in range(2):  # a repeated question is the same
        assert solver.exp("-1/2", 2, derivative=True) == (Fraction(29, 48), Fraction(5, 8))
        assert solver.terms("-7/2") == [-3, -2] and solver.terms(0) == [] and solver.convergents(0) == [0]
        assert solver.convergents("415/93", 3) == [4, Fraction(9, 2), Fraction(58, 13)]
        assert solver.approx("365.24219", 3, 1) == Fraction(12053, 33) and solver.sin(3, 1) > 0
        assert solver.approx("365.24219", 2, -1) == solver.approx("365.24219", 3) == Fraction(10592, 29)
    with pytest.raises(TypeError, match="cannot pickle"):
        pickle.dumps(solver)
