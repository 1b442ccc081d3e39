#!/usr/bin/env bash
# Holds the documents to what they say: docs_test.sh PATH/TO/zelk
# The command prints what it prints in them, examples and what they print are shown as they are, and
# every link leads somewhere. (The tutorial's first program is built by the consumer test.)
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/../../scripts/lib.sh"
export LC_ALL=C # small letters of headings are those of their links, also in Turkey

zelk=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
failures=0
checks=0

# expect WHAT CONDITION...
expect() {
  checks=$((checks + 1))
  "${@:2}" && return
  failures=$((failures + 1))
  echo "FAILED: $1"
}

cd "$root"
documents=(README.md CONTRIBUTING.md docs/*.md)

# Transcripts: `$ COMMAND` and what it prints, in a block of four blanks or between fences.
mkdir "$scratch/scripts"
ln -s "$zelk" "$scratch/zelk"
ln -s "$zelk" "$scratch/scripts/run"
ln -s "$root/scripts/check_certificate" "$scratch/zelk-check-certificate"
answers() (cd "$scratch" && PATH=$scratch:$PATH bash -c "$1" 2>&1 || true)
for document in "${documents[@]}"; do
  awk '/^(    )?\$ / { open = 1 } /^$|^```/ { open = 0 } open { sub(/^    /, ""); print }' "$document"
done >"$scratch/transcripts"
while IFS= read -r line; do
  answers "$line"
done < <(sed -n 's/^\$ //p' "$scratch/transcripts") >"$scratch/printed"
grep -v '^\$ ' "$scratch/transcripts" >"$scratch/shown"
expect 'transcripts' diff -u "$scratch/shown" "$scratch/printed"

# What the examples print, and pieces of their sources; `...` stands for what is left out.
shown() { [[ $(<docs/tutorial.md)$(<README.md) == *"$1"* ]]; }
for example in examples/*.cpp; do
  expect "what $example prints" shown "$(sed 's/^/    /' "${example%.cpp}.expected")"
done
expect 'the program of the README' shown "$(<examples/enclose.cpp)"
awk '/^```/ { block += /^```cpp/; open = /^```cpp/ && block > 1; next } open && !/^ *\.\.\.$/' \
  docs/tutorial.md >"$scratch/excerpts"
while IFS= read -r line; do
  expect "the tutorial's line: $line" grep -qxF -e "$line" examples/*.cpp
done <"$scratch/excerpts"

# The pages on the command name no option that there is not, and defaults as --help does.
for option in $(grep -ohe '--[a-z][a-z-]*' docs/command.md docs/scaling.md | sort -u); do
  [[ ' --pipe --keep-order --block ' != *" $option "* ]] || continue # of GNU parallel
  expect "the option $option" grep -qwF -e "$option" <("$zelk" --bash-completion)
done
help=$("$zelk" --help | tr -s '\n ' ' ')
while IFS= read -r fact; do
  told=${help#* "${fact%%\`*}" *by default }
  told=${told%% --*} && told=${told%% Commands:*}
  expect "$fact" test "${fact#*by default }" = "${told%%;*}"
done < <(grep -ohe '--[a-z-]*` [a-z ]*(by default [^;)]*' docs/*.md README.md)

# Links, with the headings that they name.
for document in "${documents[@]}"; do
  for link in $(grep -o '](\([^)]*\))' "$document" | sed 's/^](//; s/)$//'); do
    [[ $link != http*:* ]] || continue
    file=$(dirname "$document")/${link%%#*}
    [[ $link != '#'* ]] || file=$document
    expect "$document: $link" test -e "$file"
    [[ $link == *'#'* ]] || continue
    headings=$(sed -n 's/^##* //p' "$file" | tr '[:upper:] ' '[:lower:]-' | tr -cd '[:alnum:]\n_-')
    expect "$document: $link" grep -qxF -e "${link#*#}" <<<"$headings"
  done
done

printf '%d checks, %d failures\n' "$checks" "$failures"
((failures == 0))
