"""Enclosures, solvers and certificates."""

import pickle
from fractions import Fraction
from threading import Thread

import pytest

import zelk

half = Fraction(1, 2)


def test_an_enclosure_is_two_fractions():
    found = zelk.exp("1/3", digits=5)
    lower, upper = found
    assert (lower, upper) == (found.lower, found.upper) == found and found.width == upper - lower
    assert repr(found) == f"Enclosure(lower={lower!r}, upper={upper!r})"
    assert lower in found and upper in found and str(upper) in found and found in found
    assert upper + found.width not in found and (lower - 1, upper) not in found and 1 not in found
    assert zelk.Enclosure(half, Fraction(2, 3)).decimal(3) == "[=0.500, 0.667]"
    assert zelk.Enclosure(Fraction(-1, 3), Fraction(-1, 3)).decimal(0) == "[-1, 0]"


def test_shown_by_ipython():
    shown = []
    printer = type("Printer", (), {"text": lambda self, text: shown.append(text)})()
    zelk.pi(3)._repr_pretty_(printer, False)
    zelk.exp(1, 9000)._repr_pretty_(printer, False)  # longer than Python prints integers
    assert shown[0] == "[3.14130, 3.14160]  289/92 .. 355/113" and "..." in shown[1]


CERTIFIED = [
    lambda: zelk.exp("1/3", 20),
    lambda: zelk.log("pi", 20, relative=True),
    lambda: zelk.root(2, 3, 20),
    lambda: zelk.cos((1, 2), 9),
    lambda: zelk.pi(30),
    lambda: zelk.evaluate("log(3/2)/x", 20, x="log(2)"),
    lambda: zelk.Solver().exp("-7/2", 10),
    lambda: zelk.Solver().sin(1, 10),
    lambda: zelk.Solver().cos("1/3", 10),
    lambda: zelk.Solver().pi(10),
]


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


def test_what_has_no_certificate():
    with pytest.raises(ValueError, match="companion"):
        zelk.Solver().exp(1, 5, derivative=True).certificate
    with pytest.raises(ValueError, match="no answer of zelk"):
        zelk.Enclosure(half, half).certificate
    for found in zelk.exp(1, 5), zelk.Solver().cos(1, 5):  # from elsewhere, and tampered with
        moved = zelk.Enclosure(found.lower + 9, found.upper + 9)
        moved.__dict__.update(found.__dict__)
        with pytest.raises(ValueError, match="these bounds are not those found now"):
            moved.certificate
    with pytest.raises(ValueError, match="certificate: "):
        zelk.check("{}")


def test_a_solver_answers_as_its_approximators():
    solver = zelk.Solver()
    for _ in range(2):  # a repeated question is the same
        assert solver.exp("-1/2", 2) == (Fraction(29, 48), Fraction(233, 384))
        assert solver.exp("-1/2", 2, derivative=True) == (Fraction(29, 48), Fraction(5, 8))
        assert solver.pi(2) == (Fraction(22, 7), Fraction(22, 7)) or solver.pi(2).width <= Fraction(1, 100)
        assert solver.terms("-7/2") == [-3, -2] and solver.terms(0) == [] and solver.convergents(0) == [0]
        assert solver.terms("415/93", 2) == [4, 2]
        assert solver.convergents("415/93") == [4, Fraction(9, 2), Fraction(58, 13), Fraction(415, 93)]
        assert solver.approx("365.24219", 3, 1) == Fraction(12053, 33)
        assert solver.approx("365.24219", 2, -1) == Fraction(10592, 29)
        assert solver.sin(3, 1).lower > 0 > solver.cos(3, 1).upper
        assert solver.sin(3, 1, derivative=True).upper < 0
    with pytest.raises(TypeError, match="cannot pickle"):
        pickle.dumps(solver)


def test_threads_share_a_solver():
    solver, found = zelk.Solver(), {}

    def ask(number):
        found[number] = [solver.exp(Fraction(i % 50, 7), 30) for i in range(300)] + [solver.pi(i) for i in range(40)]

    threads = [Thread(target=ask, args=(number,)) for number in range(4)]
    [thread.start() for thread in threads]
    [thread.join() for thread in threads]
    ask("alone")
    assert len(found) == 5 and all(answers == found["alone"] for answers in found.values())
