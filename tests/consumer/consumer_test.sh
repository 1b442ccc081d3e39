#!/usr/bin/env bash
# Uses the library as other projects do: installs it, static and shared, moves the installations,
# and builds and runs a program with them by CMake and by pkg-config; then the tutorial's program.
# The environment may choose the compiler, CXX, and CMAKE_GENERATOR.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/../../scripts/lib.sh"

CXX=${CXX:-c++}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# What the program prints: a calendar of 33 years, an enclosure of pi, the column of a zero.
printf '%s\n' 12053/33 true 3 >expected
right() { "$@" | diff -u --label expected --label printed expected - || die "wrong: $*"; }

for kind in static shared; do
  [[ $kind == static ]] && shared=OFF || shared=ON
  quietly cmake -S "$root" -B build -DBUILD_SHARED_LIBS="$shared" -DCMAKE_CXX_FLAGS=-O0 \
    -DCMAKE_INSTALL_PREFIX="$work/made/$kind" -DCMAKE_INSTALL_LIBDIR=lib \
    -DZELK_BUILD_CLI=OFF -DZELK_BUILD_EXAMPLES=OFF -DZELK_BUILD_TESTS=OFF
  quietly cmake --build build --parallel "$cores"
  quietly cmake --install build
  rm -rf build
done
mv made moved
! grep -rF "$work/made" moved || die 'an installation names the place where it was made'

for kind in static shared; do
  prefix=$work/moved/$kind
  export PKG_CONFIG_PATH=$prefix/lib/pkgconfig
  version=$(pkg-config --modversion zelk)
  IFS=. read -r major minor _ <<<"$version"
  soname=libzelk.so.$major.$minor
  [[ $kind == static ]] && option=(--static) || option=()

  consumer=(cmake -S "$here/program" -B "cmake-$kind" -DCMAKE_PREFIX_PATH="$prefix")
  quietly "${consumer[@]}" -DZELK_VERSION="$major.$minor"
  quietly cmake --build "cmake-$kind"
  right "cmake-$kind/consumer"

  read -ra flags < <(pkg-config "${option[@]}" --cflags --libs zelk-convert)
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
  pkg-config --atleast-version="$major.$minor" zelk-convert || die "$version is not enough"
  ! pkg-config --atleast-version="$major.$((minor + 1))" zelk-convert || die "$version is too much"
done

# What programs can link to is what the headers mark, and no helper behind it.
public='QNumber::|na::(Rational|PowerSeries)Approximator::|gcd_cache$|detail::remember_gcd\('
public+='|operator(<<|>>)\(|convert::((to|from|is|enclosing|parse)_[a-z]+|quoted)[[(]|convert::ParseError::'
helpers=$(nm -DC --defined-only moved/shared/lib/libzelk{,_convert}.so | grep -E ' [BDRT] ' |
  grep -vE " zelk::($public)" || true)
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
for shared in OFF ON; do
  quietly cmake -S first -B first/beside -DBUILD_SHARED_LIBS="$shared" -DCMAKE_CXX_FLAGS=-O0
  quietly cmake --build first/beside --parallel "$cores" --target first
  right first/beside/first
done
sed -i 's/^add_subdirectory.*/find_package(zelk REQUIRED)/' first/CMakeLists.txt
quietly cmake -S first -B first/installed -DCMAKE_PREFIX_PATH="$work/moved/static"
quietly cmake --build first/installed
right first/installed/first
