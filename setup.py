"""The wheel of the Python package: the library's sources compiled in, GMP linked."""

import os
import re
from pathlib import Path

from pybind11.setup_helpers import ParallelCompile, Pybind11Extension
from setuptools import setup

folders = ["zelk/*", "zelk/*/internal", "python/src"]
sources = [str(path) for folder in folders for path in Path().glob(folder + "/*.cpp")]
version = re.search(r'ZELK_VERSION_STRING "(.*)"', Path("zelk/version.h").read_text())
builds = Path(os.environ.get("ZELK_BUILD", "build"), "wheel")
builds.mkdir(parents=True, exist_ok=True)


def changed(path):
    return path.stat().st_mtime


# What all objects are made of.
common = max(map(changed, [Path("setup.py"), *Path().glob("[cpz]*/**/*.h")]))


def is_out_of_date(compiled, source):
    path = Path(compiled)
    return not path.exists() or changed(path) < max(common, changed(Path(source)))


ParallelCompile("ZELK_JOBS", default=0, needs_recompile=is_out_of_date).install()
setup(
    version=version[1],
    ext_modules=[
        Pybind11Extension(
            "zelk._core",
            sorted({*sources, "cli/demand.cpp"}),
            include_dirs=["."],
            define_macros=[("ZELK_STATIC", None), ("NDEBUG", None)],
            libraries=["gmp"],
            extra_compile_args=["-O2", "-fvisibility-inlines-hidden"],
            cxx_std=20,
        )
    ],
    options={"build": {"build_base": str(builds)}, "egg_info": {"egg_base": str(builds)}},
)
