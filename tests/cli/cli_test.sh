#!/usr/bin/env bash
# Puts tables of questions to the command whose path is given: cli_test.sh PATH/TO/zelk
# Prints what went wrong and fails if anything did.
set -euo pipefail

zelk=$1
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
rows=0
failures=0

plainly() { "$zelk" "$@"; }
unheard() { "$zelk" "$@" >&-; }
cramped() (ulimit -v "$memory" && exec "$zelk" "$@")

# ask QUESTION [HOW]: runs the command on the words that a shell makes of the question.
ask() {
  local words
  question=$1
  eval "words=($question)"
  status=0
  { "${2-plainly}" "${words[@]}" >"$scratch/out" 2>"$scratch/err"; } 2>/dev/null || status=$?
  rows=$((rows + 1))
}

# expect CONDITION...: notes a failure of the question last asked.
expect() {
  "$@" && return
  failures=$((failures + 1))
  printf 'FAILED: %s\n  expected: %s\n  exit status: %d\n' "$question" "$*" "$status"
  sed 's/^/  stdout: /' "$scratch/out"
  sed 's/^/  stderr: /' "$scratch/err"
}

printed() { printf '%b\n' "$1" | cmp -s - "$scratch/out"; }
mentions() { grep -qF -e "$2" "$scratch/$1"; }
silent() { [[ ! -s $scratch/$1 ]]; }
exits() { [[ $status == "$1" ]]; }

# between TRUTH WIDTH [descending]: two fractions, one per line, at most WIDTH apart, hold TRUTH.
between() {
  awk -F/ -v truth="$1" -v width="$2" -v order="${3:-ascending}" '
    /^-?[0-9]+(\/[0-9]+)?$/ { bound[++fractions] = NF == 2 ? $1 / $2 : $1 }
    END {
      low = order == "ascending" ? 1 : 2
      exit !(NR == 2 && fractions == 2 &&
             bound[low] <= truth && truth <= bound[3 - low] &&
             bound[3 - low] - bound[low] <= width)
    }' "$scratch/out"
}

# QUESTION => STDOUT
while IFS= read -r row; do
  ask "${row%% => *}"
  expect exits 0
  expect silent err
  expect printed "${row#* => }"
done <<'TABLE'
cf 415/93 => [4; 2, 6, 7]
cf 415/93 --terms 2 => [4; 2]
cf --terms 4294967295 415/93 => [4; 2, 6, 7]
cf -7/2 => [-3; -2]
cf --terms 2 -7/2 => [-3; -2]
cf -- -7/2 => [-3; -2]
cf -27670116110564327423/9223372036854775808 => [-3; 9223372036854775808]
cf -1.5e-3 --terms 2 => [0; -666]
cf 5 => [5]
cf 0 => [0]
approx 415/93 2 => 9/2
approx 415/93 2 --lower => 58/13
approx --upper 415/93 2 => 9/2
approx 415/93 4294967295 => 415/93
approx --lower -415/93 1 => -9/2
approx 5 0 => 5
exp 0 7 => 1\n1
sin 0 7 => 0\n0
TABLE

# QUESTION => TRUTH WIDTH [descending]
while IFS= read -r row; do
  ask "${row%% => *}"
  expect exits 0
  expect silent err
  # shellcheck disable=SC2086 # several words on purpose
  expect between ${row#* => }
done <<'TABLE'
exp 1 9 => 2.718281828459045 1e-9
exp -7/2 7 => 0.030197383422318501 1e-7
exp --derivative -3.5 5 => 0.030197383422318501 1e-1 descending
sin 1/2 9 => 0.47942553860420300 2e-9
sin -3 5 --derivative => -0.98999249660044545 1e-1
pi 8 => 3.1415926535897932 1e-8
TABLE

# QUESTION => STATUS FRAGMENT-OF-STDERR
while IFS= read -r row; do
  ask "${row%% => *}"
  read -r expected fragment <<<"${row#* => }"
  expect exits "$expected"
  expect silent out
  expect mentions err "zelk: "
  expect mentions err "$fragment"
done <<'TABLE'
approx 415/93 0 => 1 approx 415/93 0
 => 2 A subcommand is required
log 2 5 => 2 log
cf => 2 Q is required
cf 1 2 => 2 unexpected argument: 2
cf 1 ++ => 2 unexpected argument: ++
cf 1 --bogus => 2 --bogus
cf -.5 => 2 unexpected argument: -.5
cf '' => 2 "": column 1
cf 1/0 => 2 "1/0": column 3: the denominator is zero
cf 1 --terms 0 => 2 --terms 0
cf 1 --terms -2 => 2 "-2": a count cannot be negative
cf 1 --terms 2 --terms 3 => 2 --terms
approx 415/93 => 2 TERMS is required
approx 415/93 2 --lower --upper => 2 --lower excludes --upper
exp 1 4294967296 => 2 "4294967296": a count is at most 4294967295
exp 1 5x => 2 "5x": expected a whole number
sin 1 1/2 => 2 "1/2": expected a whole number
TABLE

# QUESTION => FRAGMENT-OF-STDOUT
while IFS= read -r row; do
  ask "${row%% => *}"
  expect exits 0
  expect silent err
  expect mentions out "${row#* => }"
done <<'TABLE'
--version => zelk 
--help => zelk cf 415/93
cf --help => --terms N
exp --help => the larger comes first if X < 0
exp abc --help => zelk exp
TABLE

for row in 'pi 5' --help --version; do
  ask "$row" unheard
  expect exits 1
  expect mentions err 'cannot write to standard output'
done

# Memory, in KiB, is scarce only where the limit is kept; and the command, unlike one that carries
# sanitizers, has to start within it.
memory=1000
ask --version cramped
if ((status != 0)); then
  memory=60000
  ask --version cramped
  if ((status == 0)); then
    ask 'exp 1e1000000 5' cramped
    expect exits 1
    expect silent out
    expect mentions err 'not enough memory'
  fi
fi

printf '%d questions, %d failures\n' "$rows" "$failures"
((failures == 0))
