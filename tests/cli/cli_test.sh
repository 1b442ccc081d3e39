#!/usr/bin/env bash
# Puts tables of questions to the command whose path is given: cli_test.sh PATH/TO/zelk
# Prints what went wrong and fails if anything did.
set -euo pipefail

zelk=$(realpath "$1")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
rows=0
failures=0

plainly() { "$zelk" "$@"; }
plotting() { PATH=$scratch/bin:$PATH "$zelk" "$@"; }
plotless() { PATH=/nowhere "$zelk" "$@"; }
fed() { "$zelk" "$@" <"$scratch/queries"; }
unheard() { "$zelk" "$@" <"$scratch/queries" >/dev/full; }
on_terminal() { SHELL=$BASH script -qec "$zelk $*" /dev/null; }
cramped() (ulimit -v "$memory" && exec "$zelk" "$@" <"$scratch/queries")

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
  sed 's/^/  stdout: /' "$scratch/out" | cut -c1-200
  sed 's/^/  stderr: /' "$scratch/err" | cut -c1-200
}

printed() { printf '%b\n' "$1" | cmp -s - "$scratch/out"; }
mentions() { grep -qF -e "$2" "$scratch/$1"; }
silent() { [[ ! -s $scratch/$1 ]]; }
not() { ! "$@"; }
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
convergents 415/93 => 4 < 43/93\n9/2 > 7/186\n58/13 < 1/1209\n415/93 = 0
convergents --terms 1 -7/2 --format both => -3 > 1/2 -3.00000000000000000000 0.50000000000000000000
convergents 0 => 0 = 0
exp 0 7 => 1\n1
sin 0 7 => 0\n0
cos 0 7 --derivative => 0\n0
approx 415/93 2 --digits-out 3 => 4.500
approx 415/93 2 --digits-out 3 --format fraction => 9/2
exp -1/2 2 --format both --digits-out 3 => 29/48\n233/384\n[0.604, 0.607]
exp --format decimal 0 1 => [=1.000, =1.000]
cf 415/93 --terms=2 --json => {"query":"cf 415/93 --terms 2","terms":["4","2"]}
--json cf 0 => {"query":"cf 0","terms":["0"]}
approx --upper -7/2 1 --json => {"query":"approx -7/2 1 --upper","value":{"numerator":"-3","denominator":"1"}}
exp -1/2 2 --json => {"query":"exp -1/2 2","lower":{"numerator":"29","denominator":"48"},"upper":{"numerator":"233","denominator":"384"}}
exp -1/2 2 --json --digits-out 3 => {"query":"exp -1/2 2","lower":{"numerator":"29","denominator":"48","decimal":"0.604"},"upper":{"numerator":"233","denominator":"384","decimal":"0.607"}}
exp -1 0 --derivative --json => {"query":"exp -1 0 --derivative","lower":{"numerator":"1","denominator":"3"},"upper":{"numerator":"3","denominator":"8"}}
convergents --terms 1 415/93 --json => {"query":"convergents 415/93 --terms 1","convergents":[{"value":{"numerator":"4","denominator":"1"},"side":"<","distance":{"numerator":"43","denominator":"93"}}]}
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
cos 1/2 9 => 0.87758256189037271 2e-9
cos 100 3 => 0.86231887228768393 2e-3
cos -3 5 --derivative => 0.14112000805986722 2e-5
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
exp 1 100001 => 1 100001 digits are more than --max-digits 100000
exp 1 20 --max-digits 19 => 1 20 digits are more than --max-digits 19
exp 1e9 3 => 1 would take about
sin -1e1000000 3 => 1 would take about
pi 10000 => 1 would take about
exp 1e6 3 => 1 would work through about
approx 1/3 1 --max-digits 400000000 --digits-out 400000000 => 1 would take about
plot exp -o x.svg --from -60000 --to 60000 => 1 would work through about
plot exp -o x.svg --from 709.7 --to 709.78 => 1 too large to be drawn
sin 3.14159265358979323846264338327950288419716939937510582097 3 --max-bits 60000 => 1 would take
cf 1e-9999 --max-bits 1000 => 1 would take about
 => 2 a command is required
log 2 5 => 2 log
cf => 2 Q is required
cf 1 2 => 2 unexpected argument: 2
plot convergents 5 -o x.svg => 1 "5": an integer has no convergents
cf 1 ++ => 2 unexpected argument: ++
cf 1 --bogus => 2 --bogus
cf -.5 => 2 unexpected argument: -.5
cf '' => 2 "": column 1
cf 1/0 => 2 "1/0": column 3: zero denominator
cf 1 $'a\nb' => 2 unexpected argument: a\x0ab
cf 1 --terms '' => 2 "": expected a whole number
cf 1 --terms= 2 => 2 --terms= lacks its value
cf 1 --max-bits '' => 2 "": expected a whole number
cf 1 --format roman => 2 "roman": expected fraction, decimal or both
cf 1 --digits-out 100001 => 2 --digits-out 100001 is more than --max-digits 100000
cf 1 --max-bits many => 2 "many": expected a whole number
plot exp => 2 --output is required
plot exp -o x.svg --from 2 --to 1 => 2 the range from 2 to 1 is empty
plot exp -o x.svg --points 1 => 2 --points 1
plot exp -o x.svg --digits '' => 2 "": expected a whole number
plot exp -o x.svg --from -1e-400 --to 2e-400 => 2 too narrow to be drawn
plot sin -o x.svg --from 3.14159265358979 --to 3.14159265358980 => 2 too narrow to be drawn
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
--version => , GMP 
--help => zelk cf 415/93
cf --help => --terms N
plot convergents --help => --max-bits N
exp --help => the larger comes first if X < 0
exp abc --help => zelk exp
sin 3.24159265358979323846264338327950288419716939937510582097 3 --max-bits 60000 => /
TABLE

# What cannot be written is told, also when something else was to be told before.
printf '%s\n' 'cf 5' 'cf 1/0' 'cf 6' >"$scratch/queries"
for row in 'pi 5' --help --version '--json cf 1/0' 'batch -' 'batch --json --fail-fast -'; do
  ask "$row" unheard
  expect exits 3
  expect mentions err 'cannot write to standard output'
done

# Everything that --help tells stands in the manual page too.
ask --man-page
expect exits 0
tr -d '\\' <"$scratch/out" >"$scratch/manual"
for command in '' cf approx convergents exp sin cos pi batch plot 'plot exp' 'plot convergents'; do
  ask "$command --help"
  for option in $(grep -o -e '--[a-z-]*' "$scratch/out" | grep -vxF -e --help); do
    expect grep -qF -e "$option" "$scratch/manual"
  done
done

# What the completion offers at the end of a line, as bash cuts it into words, for a beginning.
ask --bash-completion
cp "$scratch/out" "$scratch/completion"
while IFS= read -r row; do
  question="completion of ${row%% => *}"
  read -ra words <<<"${row%% => *}"
  # shellcheck disable=SC2016 # for the other shell
  bash -c 'compopt() { :; }; source "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zelk
    [[ ! ${COMPREPLY[*]} ]] || echo "${COMPREPLY[*]}"' "$scratch/completion" "${words[@]/#./}" >"$scratch/out" 2>"$scratch/err"
  expect silent err
  expect printed "${row#* => }"
done <<'TABLE'
zelk co => convergents cos
zelk exp -1/2 3 --d => --derivative --digits-out
zelk --format = decimal exp 1 3 --der => --derivative
zelk --format = => fraction decimal both
zelk cf 2 --format d => decimal
zelk plot . => --digits-out --format --help --json --max-bits --max-digits convergents cos exp sin
zelk plot sin -o - --fr => --from
zelk plot convergents --max-digits 5 2 --o => --output
zelk cf 5 --terms . => \c
TABLE

cat >"$scratch/queries" <<'QUERIES'
exp 0 3
# a comment, and a blank line

  cf 415/93   # [4; 2, 6, 7]
cf 1/0
approx 415/93 --lower -- 2
exp 0 3
log 3
  sin 1 2 3
exp 1
cf 1 --terms
cf 1 --terms 1 --terms 2
approx 1 2 --lower --upper
cf -- --5
pi 99999999999
exp 1e9 3
convergents 415/93 --terms=2
QUERIES
sed -i $'1s/^/\xef\xbb\xbf/; 6s/$/\\r/' "$scratch/queries"
batch="batch '$scratch/queries'"
complaints() { sed "s|^zelk: $scratch/queries:||" "$scratch/err" | cmp -s - <(printf '%b\n' "$1"); }

ask "$batch"
expect exits 1
expect printed '1 1\n[4; 2, 6, 7]\n58/13\n1 1\n4 < 43/93; 9/2 > 7/186'
expect complaints "5:6: zero denominator
8:1: not a function; there are cf, approx, convergents, exp, sin, cos, pi
9:11: unexpected argument
10:6: DIGITS is missing
11:13: --terms needs a value
12:16: given twice
13:20: --lower excludes --upper
14:8: expected a digit
15:4: a count is at most 4294967295
16:1: would take about 7.6e+11 bits, more than --max-bits 4000000000"
ask "$batch --fail-fast"
expect exits 1
expect printed '1 1\n[4; 2, 6, 7]'
ask "$batch --json --fail-fast"
expect printed '{"line":1,"query":"exp 0 3","lower":{"numerator":"1","denominator":"1"},"upper":{"numerator":"1","denominator":"1"}}
{"line":4,"query":"cf 415/93","terms":["4","2","6","7"]}
{"line":5,"query":"cf 1/0","error":{"column":6,"message":"zero denominator"}}'
ask 'batch --stats -' fed
expect exits 1
expect mentions err '15 queries, 1 of them repeated, 10 refused'
# A line is bounded, unless it is long by a comment; the next is read all the same.
many() { head -c "$2" /dev/zero | tr '\0' "$1"; }
{
  printf 'cf 3' && many ' ' 16777212 && printf '\ncf 2#' && many 1 17000000 && echo
  many 1 16777217 && printf '\ncf 3/2'
} >"$scratch/long"
ask "batch '$scratch/long'"
expect exits 1
expect printed '[3]\n[2]\n[1; 2]'
expect mentions err 'long:3:1: the line is longer than 16777216 bytes'
ask '--json cf 1/0'
expect exits 2
expect printed '{"query":"cf 1/0","error":{"column":6,"message":"zero denominator"}}'
ask "--json cf $'1\\xff'"
expect mentions out '"cf 1�"'
ask 'batch /nowhere/at/all'
expect exits 3
expect mentions err 'cannot read /nowhere/at/all: No such file'
ask "batch '$scratch'"
expect exits 3
expect mentions err 'Is a directory'

# Whoever stops reading is told nothing; whoever asks line by line is answered line by line, also
# when the next line has begun already.
yes 'cf 415/93' | "$zelk" batch 2>"$scratch/err" | head -1 >"$scratch/out" || true
question='a pipe that closes'
expect printed '[4; 2, 6, 7]'
expect silent err
coproc "$zelk" batch
for digits in 1 2; do
  printf 'exp 0 %s\n# un' "$digits" >&"${COPROC[1]}"
  read -r -t 20 line <&"${COPROC[0]}"
  expect test "$line" = '1 1'
  echo finished >&"${COPROC[1]}"
done
exec {COPROC[1]}>&-
wait

# On a terminal diagnostics have colour, and a run longer than a second tells how far it has got.
# (A bare root without /dev/pts has no terminals to try it on.)
if script -qec true /dev/null >/dev/null 2>&1; then
  red=$'\e[1;31m'
  ask 'cf 1/0' on_terminal
  expect exits 2
  expect mentions out "${red}zelk:"
  NO_COLOR=1 ask 'cf 1/0' on_terminal
  expect mentions out 'zelk: "1/0"'
  expect not mentions out "$red"
  for pause in 0 1.1; do
    printf 'echo cf 1; sleep %s; echo cf 1' "$pause" >"$scratch/slow"
    ask "batch '< <(bash $scratch/slow) >$scratch/answers'" on_terminal
    expect exits 0
    if [[ $pause == 0 ]]; then
      expect silent out
    else
      expect mentions out '2 lines, 0 answered before'
    fi
  done
else
  echo 'no pseudo-terminal: colour and progress were not tried'
fi

# What gnuplot would be told: three points, each with the truth between its bounds.
mkdir "$scratch/bin"
printf '#!/bin/sh\ncp "$2" "%s/script"; echo "<svg>"; echo Warning >&2; echo "</svg>"\n' "$scratch" >"$scratch/bin/gnuplot"
chmod +x "$scratch/bin/gnuplot"
ask "plot exp --from -1 --to 1/2 --points 3 --digits 3 -o '$scratch/x.svg'" plotting
expect exits 0
expect awk '/^END/ { data = 0 }
  data { ++points; bad += !($2 <= exp($1) && exp($1) <= $3 && $3 - $2 < 0.001) }
  /^\$bounds/ { data = 1 }
  END { exit points != 3 || bad }' "$scratch/script"
ask "plot convergents 415/93 -o '$scratch/x.svg'" plotting
expect exits 0
expect not mentions x.svg Warning
expect grep -q '^3 4.461538461538462 -3.08.* "<"$' "$scratch/script"
echo precious >"$scratch/kept"
ask "plot sin -o '$scratch/kept'" plotless
expect exits 3
expect mentions kept precious
# No name is anything but the name of a file.
for name in "|touch $scratch/piped" $'x\nsystem "touch piped"\n'; do
  (cd "$scratch" && plotting plot sin -o "${name//\//_}")
  expect test -s "$scratch/${name//\//_}"
done
ask 'plot sin -o -' plotting
expect mentions out '</svg>'
ask 'plot sin -o /dev/full' plotting
expect exits 3
expect mentions err 'cannot write /dev/full'
ask "plot sin -o '$scratch/y.svg'" plotless
expect exits 3
expect mentions err 'plots need gnuplot'
expect test ! -e "$scratch/y.svg"
ask 'plot sin -o /nowhere/x.svg' plotting
expect exits 3
expect mentions err 'cannot write /nowhere/x.svg'

# Memory, in KiB, is scarce only where the limit is kept; and the command, unlike one that carries
# sanitizers, has to start within it.
memory=1000
ask --version cramped
if ((status != 0)); then
  memory=60000
  ask --version cramped
  if ((status == 0)); then
    ask 'pi 1400' cramped
    expect exits 1
    expect silent out
    expect mentions err 'not enough memory'
    # What a batch has found is let go before all of it is too much.
    seq -f 'pi %.0f' 150 199 >"$scratch/queries"
    ask '--max-bits 40000000 batch --stats -' cramped
    expect exits 0
  fi
fi

printf '%d questions, %d failures\n' "$rows" "$failures"
((failures == 0))
