"""The example that asks many processes: the same answers, also when one of them is killed."""

import os
import subprocess
import sys
from pathlib import Path

import pytest

grid = Path(__file__).parents[2] / "examples" / "grid.py"


def run(*arguments):
    command = [sys.executable, grid, "--steps", "12", "--digits", "40", *arguments]
    run = subprocess.run(command, capture_output=True, text=True, timeout=120)
    assert run.returncode == 0, run.stderr
    told, digest = run.stdout.splitlines()
    assert told.startswith("625 points, 83 questions, ")
    return digest


def test_workers_answer_as_one_process_does():
    pytest.importorskip("distributed")
    if "asan" in os.environ.get("LD_PRELOAD", ""):
        pytest.skip("nothing but the example is new here")
    alone = run("--workers", "0")
    assert run("--workers", "2") == run("--workers", "2", "--lose-one") == alone
