"""A copy of the tree with a build of its own, where the tests judge one mutant after the other."""

import os
import subprocess
import sys
import sysconfig
import time
from pathlib import Path
from typing import NamedTuple

from places import is_python

BUILD = ["-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release", "-DCMAKE_CXX_FLAGS_RELEASE=-O1 -DNDEBUG -w",
         "-DZELK_BUILD_EXAMPLES=OFF", "-DZELK_BUILD_PYTHON=ON",
         "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST"]
CORE = "_core" + sysconfig.get_config_var("EXT_SUFFIX")  # of the package for Python, what is compiled
# The suite that asks the sources in Python, which are not built.
PYTHON_IN = {"python": "python", "scripts": "certify"}
LIMITS = ["prlimit", "--core=0", f"--as={4 << 30}"]  # an endless loop may allocate, too


def run(command, seconds=600):
    """Whether a command succeeds in that time."""
    return subprocess.run(["timeout", "-s", "KILL", str(seconds), *LIMITS, *command],
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL,
                          env=os.environ | {"GTEST_FAIL_FAST": "1"}).returncode == 0


def mirror(source, copy, *options):
    copy.mkdir(parents=True, exist_ok=True)
    subprocess.run(["rsync", "--recursive", "--links", "--perms", "--delete", *options,
                    f"{source}/", f"{copy}/"], check=True)


class Suite(NamedTuple):
    target: str  # to build
    command: list
    program: Path  # what is asked
    seconds: float = 0  # that it takes


class Trial:
    def __init__(self, folder):
        self.folder, self.kept = folder / "work", folder / "kept"
        self.tree, self.build = self.folder / "tree", self.folder / "build"
        self.suites = {}  # by name

    def restore(self):
        """Everything as it was without a mistake, times included, so that nothing is built anew."""
        mirror(self.kept, self.folder, "--times", "--modify-window=-1")

    def prepare(self, root):
        """Builds and asks everything without a mistake, and keeps what that made."""
        if self.kept.is_dir():
            self.restore()
        # Only what differs gets a new time.
        mirror(root, self.tree, "--checksum", "--exclude=/.git", "--exclude=/build")
        programs = self.build / "programs"
        if not run(["cmake", "-S", self.tree, "-B", self.build, *BUILD,
                    f"-DCMAKE_RUNTIME_OUTPUT_DIRECTORY={programs}",
                    f"-DCMAKE_PROJECT_zelk_INCLUDE={self.tree}/scripts/mutation/precompile.cmake"]):
            raise SystemExit("mutate: the build cannot be configured")
        for folder in sorted((self.tree / "tests").iterdir()):
            name = f"{folder.name}_test"
            if (script := folder / f"{name}.sh").is_file() and folder.name != "consumer":
                suite = Suite("zelk_cli", ["bash", script, programs / "zelk"], programs / "zelk")
            elif any(folder.glob("*_test.cpp")):
                suite = Suite(name, [programs / name], programs / name)
            elif any(folder.glob("*_test.py")):
                package = self.build / "python"
                suite = Suite("zelk_python", [
                    "env", f"PYTHONPATH={package}", "PYTHONDONTWRITEBYTECODE=1", sys.executable, "-m",
                    "pytest", "-q", "-x", "-p", "no:cacheprovider", folder,
                    # It asks many processes what the others ask one.
                    f"--ignore={folder / 'cluster_test.py'}"], package / "zelk" / CORE)
            else:
                continue
            if not self.make(suite.target):
                raise SystemExit(f"mutate: {suite.target} does not build; see scripts/test")
            begin = time.monotonic()
            if not run(suite.command):
                raise SystemExit(f"mutate: the tests in {folder.name} fail without a mistake")
            self.suites[folder.name] = suite._replace(seconds=time.monotonic() - begin)
        if not self.make("all") or not self.is_consumed():
            raise SystemExit("mutate: the tests in consumer fail without a mistake")
        mirror(self.folder, self.kept, "--times", "--modify-window=-1")

    def make(self, target):
        return run(["cmake", "--build", self.build, "-j", "1", "--target", target])

    def is_consumed(self):
        """Whether other projects can use what was built."""
        return run(["bash", self.tree / "tests/consumer/consumer_test.sh", self.build])

    def is_as_before(self, file):
        return file.read_bytes() == (self.kept / file.relative_to(self.folder)).read_bytes()

    def judge(self, mutant):
        """`killed by ...`, `survived`, `equivalent` or `not compiled`."""
        (self.tree / mutant.path).write_bytes(mutant.text)
        try:
            return self.verdict(Path(mutant.path), mutant.folder)
        finally:
            self.restore()

    def verdict(self, path, folder):
        layer = path.parts[0]
        if path.suffix == ".cpp":
            unit = next((self.build / layer).glob(f"CMakeFiles/*.dir/{path.relative_to(layer)}.o"))
            if not self.make(unit.relative_to(self.build)):
                return "not compiled"
            if self.is_as_before(unit):
                return "equivalent"
        in_python = is_python(path)
        differs = in_python or folder == "packaging"
        # The source's own suite first, then the cheapest; what takes long to build comes last.
        order = sorted(self.suites.items(), key=lambda suite: (
            suite[0] != folder, suite[1].target in ("zelk_cli", "zelk_python"), suite[1].seconds))
        if in_python:
            order = [(name, self.suites[name]) for name in (PYTHON_IN[layer],)]
        for name, suite in order if folder != "packaging" else ():
            if not self.make(suite.target):
                return "not compiled"
            if in_python or not self.is_as_before(suite.program):
                differs = True
                if not run(suite.command, 10 * suite.seconds + 2):
                    return f"killed by {name}"
        if not differs:
            return "equivalent"
        is_public = layer == "zelk" and path.suffix == ".h" and "internal" not in path.parts
        if folder == "packaging" or is_public:
            if not self.make("all"):
                return "not compiled"
            if not self.is_consumed():
                return "killed by consumer"
        return "survived"
