# shellcheck shell=bash disable=SC2034
# Shared by the scripts; sourced, never run. The callers have set -euo pipefail.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
# Where the build folders stand: ZELK_BUILD, or build/ beside the sources.
builds=$(realpath -m "${ZELK_BUILD:-$root/build}")
cores=$(nproc 2>/dev/null || getconf _NPROCESSORS_ONLN 2>/dev/null || echo 2)

# Everything that is not an answer goes to standard error.
say() { printf '%s: %s\n' "${0##*/}" "$*" >&2; }
die() {
  say "$*"
  exit 1
}

# usage: prints the comment at the head of the calling script, which is its help.
usage() { sed -n '2,/^[^#]/{s/^# \{0,1\}//p;}' "$0"; }

# What a task needs, as DEBIAN-PACKAGE:HEADER, DEBIAN-PACKAGE:COMMAND or, of a package python3-...,
# :MODULE, or of a package libcoq-..., :LIBRARY.MODULE. A need is recognised by the thing itself rather than by its package, so that other systems
# and own installations serve as well.
needs_command=(g++:"${CXX:-c++}" cmake:cmake ninja-build:ninja libgmp-dev:gmp.h
  libcli11-dev:CLI/CLI.hpp)
needs_python=(python3:python3 libpython3-dev:Python.h pybind11-dev:pybind11/pybind11.h)
needs_test=("${needs_command[@]}" libgmp-dev:gmpxx.h libmpfr-dev:mpfr.h
  libmpfi-dev:mpfi.h libgtest-dev:gtest/gtest.h pkg-config:pkg-config
  "${needs_python[@]}" python3-pytest:pytest python3-hypothesis:hypothesis python3-mpmath:mpmath)
needs_wheel=(g++:"${CXX:-c++}" libgmp-dev:gmp.h "${needs_python[@]}" python3-pybind11:pybind11
  python3-setuptools:setuptools python3-wheel:wheel python3-venv:ensurepip)
# With what its sanitizers need: the header comes with their runtime library.
needs_clang=(clang:clang++ libclang-rt-dev:fuzzer/FuzzedDataProvider.h)

# system_python ARGUMENT...: the interpreter that Debian's modules are installed for, where there is one.
system_python() { "$(PATH=/usr/bin:$PATH command -v python3)" "$@"; }

# coq_knows LIBRARY.MODULE: whether Coq finds that.
coq_knows() {
  local folder status=0
  command -v coqc >/dev/null || return 1
  folder=$(mktemp -d)
  echo "Require $1." >"$folder/probe.v"
  coqc "$folder/probe.v" >/dev/null 2>&1 || status=$?
  rm -r "$folder"
  return "$status"
}

# missing NEED...: prints the needs that are not met, one a line.
missing() {
  local need probe='' absent headers
  for need in "$@"; do
    case $need in
      *.h | *.hpp) probe+="#if !__has_include(<${need#*:}>)"$'\n'"$need"$'\n#endif\n' ;;
      libcoq-*) coq_knows "${need#*:}" || echo "$need" ;;
      python3-*) system_python -c "import ${need#*:}" 2>/dev/null || echo "$need" ;;
      *) command -v "${need#*:}" >/dev/null || echo "$need" ;;
    esac
  done
  [[ $probe ]] || return 0
  # One run of the preprocessor answers for all headers; without a compiler all count as missing.
  headers=$(system_python -c 'import sysconfig; print(sysconfig.get_path("include"))' 2>/dev/null || true)
  if absent=$("${CXX:-c++}" ${headers:+-isystem "$headers"} -x c++ -E -P - <<<"$probe" 2>/dev/null); then
    [[ -z $absent ]] || echo "$absent"
  else
    printf '%s\n' "$@" | grep -E '\.h(pp)?$'
  fi
}

# require NEED...: installs what is missing where apt-get is at hand, and stops where it is not or
# where it did not help.
require() {
  local needs packages
  needs=$(missing "$@")
  [[ $needs ]] || return 0
  mapfile -t packages < <(cut -d: -f1 <<<"$needs" | sort -u)
  if command -v apt-get >/dev/null; then
    local as_root=(env DEBIAN_FRONTEND=noninteractive)
    if ((EUID != 0)); then
      command -v sudo >/dev/null ||
        die "missing, and there is no sudo; type as root: apt-get install ${packages[*]}"
      as_root=(sudo "${as_root[@]}")
    fi
    say "installing ${packages[*]}"
    # An unreachable repository of somebody else's need not keep ours from answering.
    quietly "${as_root[@]}" apt-get update -q || say 'apt-get update failed; trying all the same'
    quietly "${as_root[@]}" apt-get install -q -y --no-install-recommends "${packages[@]}" ||
      die "could not install ${packages[*]}"
    needs=$(missing "$@")
  fi
  [[ -z $needs ]] || die "missing: ${needs//$'\n'/, }" \
    "(as package on Debian : header or command); install them and try again"
}

# quietly COMMAND...: runs it without input, and shows its output, on standard error, if it fails.
quietly() {
  local log status=0
  log=$(mktemp)
  "$@" </dev/null >"$log" 2>&1 || status=$?
  ((status == 0)) || cat "$log" >&2
  rm -f "$log"
  return "$status"
}

# configure PRESET: unless the build folder is configured already and the presets are no newer (the
# build itself watches its other inputs).
configure() {
  local preset=$1 ninja=$builds/$1/build.ninja version
  [[ ! $ninja -nt $root/CMakePresets.json ]] || return 0
  version=$(cmake --version | sed -n '1s/[^0-9]*\([0-9.]*\).*/\1/p')
  printf '3.25\n%s\n' "$version" | sort -C -V || die "CMake 3.25 or later is needed, not $version"
  say "configuring $builds/$preset"
  quietly cmake -S "$root" --preset "$preset" -B "$builds/$preset" ||
    die "$builds/$preset could not be configured"
  touch "$ninja"
}

# lock_builds, unlock_builds: the ends of a pipe start at once, and only one of them may build.
lock_builds() {
  { mkdir -p "$builds" && : >>"$builds/.lock"; } 2>/dev/null ||
    die "cannot write $builds; ZELK_BUILD=FOLDER names another place to build in"
  exec {lock}>>"$builds/.lock"
  ! command -v flock >/dev/null || flock "$lock"
}
unlock_builds() { exec {lock}>&-; }

# build PRESET [CMAKE-BUILD-OPTION...]: configures if need be, and builds.
build() {
  local preset=$1
  shift
  lock_builds
  configure "$preset"
  # Nothing is said where there is hardly anything to build.
  { sleep 1 2>/dev/null && say "building $builds/$preset"; } </dev/null >/dev/null {lock}>&- &
  local notice=$! status=0
  quietly cmake --build "$builds/$preset" -j "$cores" "$@" -- --quiet || status=$?
  kill "$notice" 2>/dev/null || true
  wait "$notice" 2>/dev/null || true
  ((status == 0)) || die "$builds/$preset did not build"
  unlock_builds
}
