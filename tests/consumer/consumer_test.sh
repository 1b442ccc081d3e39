#!/usr/bin/env bash
# Uses the library as other projects do: consumer_test.sh BUILD-FOLDER
# Installs what stands in the folder, which is static and has the command, and a shared library;
# moves the installations, and builds and runs a program with them by CMake and by pkg-config; then
# the tutorial's program.
# The environment may choose the compiler, CXX, and CMAKE_GENERATOR.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/../../scripts/lib.sh"

CXX=${CXX:-c++}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# What the program prints: a calendar of 33 years, enclosures of pi and of a half, the fifth in an
# octave, the column of a
# zero.
printf '%s\n' 12053/33 true '[3.141, 3.142]0.5' 7/12 3 >expected
right() { "$@" | diff -u --label expected --label printed expected - || die "wrong: $*"; }

quietly cmake --install "$1" --prefix "$work/made/static"
quietly cmake -S "$root" -B build -DBUILD_SHARED_LIBS=ON -DCMAKE_CXX_FLAGS=-O0 \
  -DCMAKE_INSTALL_PREFIX="$work/made/shared" -DCMAKE_INSTALL_LIBDIR=lib \
  -DZELK_BUILD_CLI=OFF -DZELK_BUILD_EXAMPLES=OFF -DZELK_BUILD_TESTS=OFF
quietly cmake --build build --parallel "$cores"
quietly cmake --install build
rm -rf build
mv made moved
! grep -rF "$work/made" moved || die 'an installation names the place where it was made'

# With the command come the checker of certificates, their manuals and its completion, and without it none.
printf 'static/%s\n' bin/zelk{,-check-certificate} \
  share/{bash-completion/completions/zelk,man/man1/zelk{,-check-certificate}.1} | sort >tools
find moved/*/{bin,share} -type f -size +0 -printf '%H/%P\n' 2>/dev/null | cut -d/ -f2- | sort |
  diff -u tools - || die 'not the command and its papers'

# So does the package for Python, where it is made.
if [[ -d moved/static/lib/python3 ]]; then
  PYTHONPATH=$work/moved/static/lib/python3/dist-packages system_python -B -c '
import importlib.metadata, zelk
assert zelk.__file__.endswith("/moved/static/lib/python3/dist-packages/zelk/__init__.py")
assert zelk.__version__ == importlib.metadata.version("zelk")
assert zelk.best("pi", 100) == zelk.simplest("311/99", "311/99")' || die 'Python cannot use it'
fi

# The checker has a verdict only on what it has read.
status=0
(ulimit -v 100000 && head -c 64M /dev/zero | moved/static/bin/zelk-check-certificate) 2>told >&2 || status=$?
[[ $status == 2 && $(<told) == 'check_certificate: -: out of memory' ]] || die "out of memory is not told: $(<told)"

# Every header is installed but those of the internal/ folders.
(cd "$root" && find zelk -name '*.h' -not -path '*/internal/*') | sort >headers
for kind in static shared; do
  find "moved/$kind/include" -type f -printf '%P\n' | sort | diff -u headers - || die 'wrong headers'
done

# An older standard is refused in one sentence, after which the compiler stops.
! "$CXX" -std=c++17 -fsyntax-only -I moved/static/include -x c++ - 2>log \
  <<<'#include "zelk/zelk.h"' || die 'C++17 is taken'
[[ $(grep -c 'error: ' log) == 2 ]] && grep -q 'error: .*zelk needs C++20: compile with' log ||
  die "C++17 is refused by $(<log)"

for kind in static shared; do
  prefix=$work/moved/$kind
  export PKG_CONFIG_PATH=$prefix/lib/pkgconfig:$prefix/lib64/pkgconfig
  version=$(pkg-config --modversion zelk)
  IFS=. read -r major minor _ <<<"$version"
  soname=libzelk.so.$major.$minor
  [[ $kind == static ]] && option=(--static) || option=()

  consumer=(cmake -S "$here/program" -B "cmake-$kind" -DCMAKE_PREFIX_PATH="$prefix")
  quietly "${consumer[@]}" -DZELK_VERSION="$major.$minor"
  quietly cmake --build "cmake-$kind"
  right "cmake-$kind/consumer"

  read -ra flags < <(pkg-config "${option[@]}" --cflags --libs zelk-real)
  "$CXX" -std=c++20 "$here/program/main.cpp" "${flags[@]}" -o "pkg-config-$kind"
  LD_LIBRARY_PATH=$prefix/lib right "./pkg-config-$kind"

  for program in "cmake-$kind/consumer" "pkg-config-$kind"; do
    readelf -d "$program" | grep -q "NEEDED.*\[$soname\]" && found=shared || found=static
    [[ $found == "$kind" ]] || die "$program should use the $kind library"
  done

  for other in 0.0 "$major.$((minor + 1))" "$((major + 1)).$minor"; do
    ! "${consumer[@]}" -DZELK_VERSION="$other" >log 2>&1 || die "$version passes for $other"
    grep -q "zelkConfig.cmake, version: $version" log || die "not refused for its version: $(<log)"
  done
  ! "${consumer[@]}" -DZELK_VERSION= -DZELK_PART=none >log 2>&1 || die 'found without a part'
  grep -q 'set zelk_FOUND to FALSE' log || die "not refused for its part: $(<log)"
  ! "${consumer[@]}" -DZELK_PART=real -DCMAKE_DISABLE_FIND_PACKAGE_GMP=ON >log 2>&1 ||
    die 'found without GMP'
  grep -q 'GMP, which zelk needs, cannot be found' log || die "not refused for GMP: $(<log)"
  for part in zelk zelk-{convert,real,verify,certify}; do
    [[ -e $(pkg-config --variable=libdir "$part")/pkgconfig/$part.pc ]] || die "$part is elsewhere"
  done
  pkg-config --atleast-version="$major.$minor" zelk-real || die "$version is not enough"
  ! pkg-config --atleast-version="$major.$((minor + 1))" zelk-real || die "$version is too much"
done

# What programs can link to is what the headers mark, and no helper behind it.
public=$(cat moved/shared/include/zelk/*/*.h | sed 's/\[\[[^]]*\]\]//g' | tr '\n' ' ' |
  grep -oE 'ZELK_EXPORT [^][;({]*' | sed 's/ : .*//; s/ final *$//' | awk '{ print $NF }' | sed 's|[*+]|\\&|g' | paste -sd '|')
helpers=$(nm -DC --defined-only moved/shared/lib/libzelk{,_convert,_real,_verify,_certify}.so | grep -E ' [BDRT] ' |
  grep -vE "[ :]($public)(\(|\[|::|$)" || true)
[[ -z $helpers ]] || die "exported, though internal: $helpers"

# The tutorial's own texts, its first program and what it prints: beside a checkout, and, as it goes
# on to say, with an installation.
tutorial=$root/docs/tutorial.md
block() { sed -n '/^```'"$1"'$/,/^```$/{//!p; /^```$/q}' "$tutorial"; }
mkdir first
block cpp >first/first.cpp
block cmake >first/CMakeLists.txt
sed -n 's/^    \(\[3\.14.*\)/\1/p' "$tutorial" >expected
ln -s "$root" zelk
for install in '' -DZELK_INSTALL=ON; do  # a project installs ours only when it says so
  quietly cmake -S first -B first/beside -DBUILD_SHARED_LIBS=ON -DCMAKE_CXX_FLAGS=-O0 $install
  quietly cmake --build first/beside --parallel "$cores"
  right first/beside/first
  quietly cmake --install first/beside --prefix "$work/within$install"
done
[[ ! -e within && -e within-DZELK_INSTALL=ON/include/zelk/zelk.h ]] || die 'ZELK_INSTALL is not obeyed'
sed -i 's/^add_subdirectory.*/find_package(zelk REQUIRED)/' first/CMakeLists.txt
quietly cmake -S first -B first/installed -DCMAKE_PREFIX_PATH="$work/moved/static"
quietly cmake --build first/installed
right first/installed/first
