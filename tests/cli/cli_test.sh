#!/usr/bin/env bash
# Puts the questions beside this file, and some that need more than a line, to the command whose
# path is given: cli_test.sh PATH/TO/zelk
# Prints what went wrong and fails if anything did.
set -euo pipefail
export LC_ALL=C
ulimit -c 0

zelk=$(realpath "$1")
questions=$(dirname "${BASH_SOURCE[0]}")/questions
export scratch
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
export TMPDIR="$scratch/for gnuplot" # a name that a shell would take apart
mkdir "$scratch/bin" "$TMPDIR"
rows=0
failures=0

# The ways to run the command.
plainly() { "$zelk" "$@"; }
feeding() { printf '%b' "$1" | "$zelk" "${@:2}"; }
merging() { feeding "$@" 2>&1; }
on_full_disk() { "$zelk" "$@" >/dev/full; }
unread() (
  trap '' PIPE # or the command would be killed before it can see that nobody reads
  [[ -p $scratch/pipe ]] || mkfifo "$scratch/pipe"
  exec 3<>"$scratch/pipe" 4>"$scratch/pipe" 3>&-
  exec "$zelk" "$@" >&4
)
stopping() (
  [[ -p $scratch/open ]] || mkfifo "$scratch/open"
  exec 3<>"$scratch/open" # a pipe without an end, from which reading does not wait
  dd iflag=nonblock count=0 <&3 2>/dev/null
  { sleep "$1" && echo cf 1/0 >&3; } &
  ulimit -t 1
  exec timeout 20 "$zelk" "${@:2}" <&3
)
appending() { cp "$scratch/refused" "$scratch/both" && "$zelk" "$@" "$scratch/both" >>"$scratch/both"; }
completing() {
  # shellcheck disable=SC2016 # for the other shell
  bash -c 'compopt() { :; }; source <("$0" --bash-completion)
    COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _zelk
    [[ ! ${COMPREPLY[*]} ]] || echo "${COMPREPLY[*]}"' "$zelk" "$@"
}
closed() { "$zelk" "$@" >&-; }
bounded() (ulimit -f 8 && picture=long plotting "$@")
plotting() { PATH=$scratch/bin:$PATH "$zelk" "$@"; }
plotting_below() { echo above && plotting "$@"; }
plotting_in_tmp() { rm "$scratch/script" && TMPDIR='' plotting "$@"; }
without_gnuplot() { PATH=/nowhere "$zelk" "$@"; }
with_failing_gnuplot() { picture=failing plotting "$@"; }
with_gnuplot_cut_short() { picture='cut' plotting "$@"; }
on_terminal() { SHELL=$BASH script -qec "$(printf '%q ' "$zelk" "$@") $redirection" /dev/null; }
cramped() (ulimit -v "$1" && exec "$zelk" "${@:2}") # to so many KiB
cramped_on_full_disk() { cramped "$@" >/dev/full; }
cramped_unread() (ulimit -v "$1" && unread "${@:2}")

# ask HOW QUESTION: runs the command on the words that a shell makes of the question.
ask() {
  local words
  question=$2
  eval "words=($question)"
  status=0
  { "$1" "${words[@]}" >"$scratch/out" 2>"$scratch/err"; } 2>/dev/null || status=$?
  rows=$((rows + 1))
}

# expect CONDITION...: notes a failure of the question last asked.
expect() {
  "$@" && return
  failures=$((failures + 1))
  printf 'FAILED: %s\n  expected: %s\n  exit status: %d\n' "$question" "$*" "$status"
  sed 's/^/  stdout: /;20q' "$scratch/out" | cut -c1-200
  sed 's/^/  stderr: /' "$scratch/err" | cut -c1-200
}

exits() { [[ $status == "$1" ]]; }
mentions() { [[ $(<"$scratch/$1") == *"$2"* ]]; }

# holds OUTPUT CONTENT: as the questions say it.
holds() {
  local text
  printf -v text %b "${2#\~ }"
  case $2 in
    '') [[ ! -s $scratch/$1 ]] ;;
    '~ '*) mentions "$1" "$text" ;;
    '@ '*) eval "${2#@ }" ;;
    *) printf '%s\n' "$text" | cmp -s - "$scratch/$1" ;;
  esac
}

# answers_to FILE OPTION...: what a batch prints that has all memory.
answers_to() { "$zelk" "${@:2}" batch "$scratch/$1" | cmp -s - "$scratch/out"; }

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

# encloses FUNCTION POINTS FROM TO WIDTH: what gnuplot was told.
encloses() {
  awk -v name="$1" -v points="$2" -v from="$3" -v to="$4" -v width="$5" '
    /^END/ { data = 0 }
    data {
      if (++found == 1) bad += $1 != from
      last = $1
      truth = name == "exp" ? exp($1) : sin($1)
      bad += !($2 <= truth + 1e-14 && truth <= $3 + 1e-14 && $3 - $2 <= width)
    }
    /^\$bounds/ { data = 1 }
    END { exit bad || found != points || last != to }' "$scratch/script"
}

# What the questions name: a gnuplot that notes its script, and files.
cat >"$scratch/bin/gnuplot" <<'SCRIPT'
#!/bin/sh
[ "$*" != -d ] || cat >"$scratch/script"
printf '%s\n' 'the first reason' 'the last reason' '  ' >&2
echo '<svg>'
[ "$picture" != long ] || head -c 20000 /dev/zero
[ "$picture" = cut ] || echo '</svg>'
[ "$picture" != failing ]
SCRIPT
chmod +x "$scratch/bin/gnuplot"
export picture=
echo precious >"$scratch/kept"
umask 022 && ln -s drawn "$scratch/link"
# Visible characters next to invisible ones, and a mark that turns the direction of the text.
deceptive=$'\xc2\xa9\xc2\xad\xe2\x80\x90\xe2\x80\x8f\xe2\x80\xae\xe2\x80\xaf\xe2\x81\xa6\xef\xbb\xbf\xf3\xa0\x81\x81'
printf '%s\n' 'cf 5' 'cf 1/0' 'cf 6' >"$scratch/refused"
many() { head -c "$2" /dev/zero | tr '\0' "$1"; }
{
  printf 'cf 3' && many ' ' 16777212 && printf '\ncf 2#' && many 1 17000000 && echo
  many 1 16777217 && echo && many ' ' 17000000 && printf '\ncf 3/2' && many ' ' 17000000
} >"$scratch/long"
seq -f 'exp %.0f/1009 200' 1 300 >"$scratch/slowly"
seq -f 'cf %.0f/1000003' 1 20000 >"$scratch/quick"
printf 'cf 5\ncompare "3^(10^7)" 5\n' >"$scratch/product"
seq -f "convergents 0.%.0f$(seq -s '' 1 400)" 1 200 >"$scratch/texts"
{ head -n 100 "$scratch/texts" && echo "compare '3^(4*10^6)' 5"; } >"$scratch/heavy"
{ echo 'pi 600000 --short' && cat "$scratch/texts"; } >"$scratch/waiting"
seq -f 'pi %.0f' 150 199 >"$scratch/records"

# Memory is scarce only where the limit is kept; and the command, unlike one that carries
# sanitizers, has to start within it.
is_scarce=
if ! cramped 1000 --version >"$scratch/out" 2>&1 && cramped 60000 --version >"$scratch/out" 2>&1; then
  is_scarce=yes
fi

how=plainly
while IFS='|' read -r expected question stdout stderr; do
  case $expected in
    '' | '#'*) continue ;;
    '['*']') how=${expected:1:-1} && continue ;;
  esac
  [[ $is_scarce || $how != cramped* ]] || continue
  stdout=${stdout# } stderr=${stderr# }
  ask "$how" "$question"
  expect exits "${expected% }"
  expect holds out "${stdout% }"
  expect holds err "$stderr"
done <"$questions"

# The plots have left nothing in their temporary folder.
expect rmdir "$TMPDIR"

# Everything that --help tells stands in the manual page too: names, descriptions and examples.
ask plainly --man-page
expect exits 0
expect eval '! grep -qE -e "--|[ &,]-[a-z]" "$scratch/out"' # which would be shown as hyphens
expect test "$(grep -c '^\.SH ' "$scratch/out")" = 9
manual=$(sed 's/\\&//g; s/\\-/-/g; s/\\e/\\/g' "$scratch/out")
functions=$("$zelk" --help | sed -n '/^Commands:/,/^$/s/^  \([a-z]\+\) .*/\1/p')
for command in '' $functions 'plot exp' 'plot convergents'; do
  ask plainly "$command --help"
  while IFS= read -r text; do
    expect eval '[[ $manual == *"$text"* ]]'
  done < <(sed '/^[A-Z].*:$/d; /^Usage: zelk \[/d; s/   */\n/g' "$scratch/out")
done

# Whoever asks line by line is answered line by line, also when the next line has begun already, and
# however long it takes is not told in a file.
question='a batch through pipes'
coproc "$zelk" batch 2>"$scratch/err"
for digits in 1 2; do
  printf 'exp 0 %s\n# un' "$digits" >&"${COPROC[1]}"
  read -r -t 20 line <&"${COPROC[0]}"
  expect test "$line" = '1 1'
  sleep 1.1
  echo finished >&"${COPROC[1]}"
done
exec {COPROC[1]}>&-
wait
expect holds err ''

# Any number of jobs prints the same bytes in the same order, diagnostics among the answers.
for ((i = 0; i < 5000; i++)); do
  echo "exp $((i % 700 - 300))/7 $((i % 13))"
  ((i % 41)) || echo "convergents $i/97"
  ((i % 1009)) || echo "cf $i/0"
done >"$scratch/mixed"
for options in '' --json --fail-fast '--max-bits 300000'; do
  "$zelk" batch $options "$scratch/mixed" >"$scratch/expected" 2>&1 || true
  ask merging "'' batch $options --jobs 3 \"\$scratch/mixed\""
  expect exits 1
  expect cmp -s "$scratch/expected" "$scratch/out"
done

# Whatever ends the command, the output ends with a whole line.
"$zelk" batch --json "$scratch/slowly" >"$scratch/expected"
is_beginning() { cmp -s <(head -c "$(stat -c %s "$scratch/out")" "$scratch/expected") "$scratch/out"; }
ends_whole() { [[ ! -s $scratch/out || ! $(tail -c 1 "$scratch/out") ]] && is_beginning; }
interrupted() (
  set -m # or a shell would have the command ignore SIGINT
  "$zelk" batch --json --jobs "$2" "$scratch/slowly" >"$scratch/pipe" &
  { head -c "$3" && only_one_takes_signals && kill "-$1" $! && cat; } <"$scratch/pipe"
  wait $!
)
only_one_takes_signals() { [[ $(grep -L 'SigBlk:.*[1-9a-f]' "/proc/$!/task/"*/status | wc -l) = 1 ]]; }
export ASAN_OPTIONS="${ASAN_OPTIONS:+$ASAN_OPTIONS:}handle_segv=0" # which that would take for a fault
for signal in {1..6} {10..15} 24 29 64; do
  # At most a fifth of all, so that the rest waits in a full pipe.
  ask interrupted "$signal $((1 + signal % 2)) $((RANDOM * 3))"
  expect exits $((128 + signal))
  expect ends_whole
done
ask bounded 'batch --json "$scratch/slowly"'
expect exits 3
expect eval 'mentions err "File too large" && [[ -s $scratch/out ]] && ends_whole'

# On a terminal diagnostics have colour, and a run longer than a second tells how far it has got, on
# a line that goes before anything else is written. Its queries come until it has told.
# (A bare root without /dev/pts has no terminals to try it on.)
until_output_ends() {
  for ((i = 0; i < 400; i++)); do
    [[ $(<"$scratch/out") != *$1 ]] || return 0
    echo cf 1
    sleep 0.05
  done
}
if script -qec true /dev/null >/dev/null 2>&1; then
  redirection=
  erased=$'answered before\r\e[K'
  coloured=$'\e[1;31mzelk:\e[0m'
  NO_COLOR=1 ask on_terminal 'cf 1/0'
  expect holds out 'zelk: "1/0": column 3: zero denominator\r'
  begin=$SECONDS
  ask on_terminal 'pi 700 --format decimal'
  expect eval '((SECONDS != begin)) || ! mentions out $'"'\r\e[K'"
  redirection='>"$scratch/answers"'
  ask on_terminal 'batch "$scratch/long"'
  expect mentions out "$coloured $scratch/long:3:1: the line is longer than 16777216 bytes"
  mkfifo "$scratch/slow"
  redirection='<"$scratch/slow" >"$scratch/answers"'
  : >"$scratch/out"
  {
    until_output_ends 'answered before'
    echo cf 1/0
    until_output_ends 'denominator*answered before'
  } >"$scratch/slow" &
  ask on_terminal batch
  expect exits 1
  expect mentions out "$erased$coloured"
  expect eval '[[ $(<"$scratch/out") == *"$erased" ]]'
  wait
else
  echo 'no pseudo-terminal: colour and progress were not tried'
fi

# From too little memory to enough, each line is right, and what is not answered is told.
if [[ $is_scarce ]]; then
  for memory in $(seq 15000 4000 51000); do
    for format in '' --json; do
      "$zelk" batch $format "$scratch/slowly" >"$scratch/expected"
      ask cramped "$memory batch $format \"\$scratch/slowly\""
      expect eval '((status == 0)) || { ((status == 1)) && mentions err "not enough memory"; } ||
        ((status == 127))' # the loader's
      expect ends_whole
    done
  done
  expect exits 0
fi

printf '%d questions, %d failures\n' "$rows" "$failures"
((failures == 0))
