"""What pip calls to build the package: setuptools, and where it is not at hand that of the system.

So an isolated build needs no network where the system has setuptools, wheel and pybind11.
"""

import importlib.util
import sys
import sysconfig

SYSTEM = "/usr/lib/python3/dist-packages"
NEEDS = ["setuptools", "wheel", "pybind11"]


def _is_missing(name: str) -> bool:
    return importlib.util.find_spec(name) is None


if any(map(_is_missing, NEEDS[:2])) and sys.executable:
    sys.path.append(SYSTEM)

if not _is_missing("setuptools"):
    from setuptools.build_meta import *  # noqa: F403


def get_requires_for_build_wheel(config_settings=None):
    return [name for name in NEEDS if _is_missing(name)]
