"""The work of scripts/mutate, which says what it does."""

import argparse
import os
import queue
import random
import re
import subprocess
import sys
import time
from collections import Counter, defaultdict
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

from places import mutants_of
from trial import Trial

ROOT = Path(__file__).resolve().parents[2]
SOURCES = ("zelk/**/*.h", "zelk/**/*.cpp", "cli/*.h", "cli/*.cpp", "python/src/*.h",
           "python/src/*.cpp", "python/zelk/*.py", "scripts/check_certificate", "zelk/CMakeLists.txt",
           "cmake/ZelkInstall.cmake", "cmake/FindGMP.cmake", "cmake/*.in")
VERDICTS = ("killed", "survived", "equivalent", "not compiled")


def say(text):
    print(f"mutate: {text}", file=sys.stderr)


def changed_since(revision):
    """The numbers of the lines that were changed since the revision, by path."""
    diff = subprocess.run(["git", "-C", ROOT, "diff", "-U0", "--no-prefix", revision],
                          check=True, text=True, stdout=subprocess.PIPE).stdout
    path, lines = "", defaultdict(set)
    for line in diff.splitlines():
        if line.startswith("+++ "):
            path = line[4:]
        elif hunk := re.match(r"@@ \S+ \+(\d+)(?:,(\d+))? @@", line):
            lines[path].update(range(int(hunk[1]), int(hunk[1]) + int(hunk[2] or 1)))
    return lines


def wanted(options):
    """The mutants asked for."""
    paths = {path.relative_to(ROOT) for pattern in SOURCES for path in ROOT.glob(pattern)}
    for wish in options.paths:
        if not any(path.is_relative_to(wish) for path in paths):
            raise SystemExit(f"mutate: no mistakes are made in {wish}")
    changed = changed_since(options.since) if options.since else None
    mutants = [mutant for path in sorted(map(str, paths))
               if not options.paths or any(map(Path(path).is_relative_to, options.paths))
               if changed is None or path in changed
               for mutant in mutants_of(ROOT, path)
               if changed is None or mutant.line in changed[path]]
    total = len(mutants)
    random.Random(options.seed).shuffle(mutants)
    del mutants[options.sample or total:]
    say(f"{len(mutants)} of {total} mutants; building and running the tests without a mistake")
    return mutants


def known_equivalents():
    """As (source, line, change)."""
    for line in (Path(__file__).parent / "equivalents").read_text().splitlines():
        if line and not line.startswith("#"):
            path, text, change, _ = line.split(" ~ ")
            if text not in map(str.strip, (ROOT / path).read_text().splitlines()):
                say(f"no line of {path} any more, though in the list of equivalents: {text}")
            yield path, text, change


def main():
    options = argparse.ArgumentParser(prog="mutate", add_help=False)
    options.add_argument("--since")
    options.add_argument("--sample", type=int, default=60)
    options.add_argument("--seed", type=int, default=1)
    options.add_argument("paths", nargs="*")
    mutants = wanted(options.parse_args())
    equivalents = set(known_equivalents())

    folder = ROOT / "build/mutate"
    trials = [Trial(folder / str(number)) for number in range(len(os.sched_getaffinity(0)))]
    idle = queue.SimpleQueue()

    def judge(mutant):
        if (mutant.path, mutant.old.strip(), mutant.change) in equivalents:
            return "equivalent"
        trial = idle.get()
        try:
            return trial.judge(mutant)
        finally:
            idle.put(trial)

    scores = defaultdict(Counter)
    with ThreadPoolExecutor(len(trials)) as pool, open(folder / "verdicts", "w") as log:
        for trial, _ in zip(trials, pool.map(lambda trial: trial.prepare(ROOT), trials)):
            idle.put(trial)
        begin = time.monotonic()
        for mutant, verdict in zip(mutants, pool.map(judge, mutants)):
            head = f"{mutant.path}:{mutant.line}: {mutant.change}"
            print(f"{head}: {verdict}", file=log, flush=True)
            scores[mutant.folder][verdict.split(" by ")[0]] += 1
            if verdict == "survived":
                lines = [f"-{line}" for line in mutant.old.split("\n")]
                lines += [f"+{line}" for line in mutant.new.split("\n")]
                print(head, *lines, sep="\n", flush=True)
    say(f"{(time.monotonic() - begin) / max(1, len(mutants)):.1f} seconds a mutant")

    rows = [(name, score.total(), *(score[verdict] for verdict in VERDICTS))
            for name, score in sorted(scores.items())]
    for row in ("", "made", *VERDICTS), *rows:
        print("".join(f"{cell:>14}" for cell in row))
    return any(score["survived"] for score in scores.values())


sys.exit(main())
