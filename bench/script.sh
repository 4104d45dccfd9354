#!/usr/bin/env bash
# The station beside a script of fifty lines (script.py) that says the same bytes to the same terminal at 9600 baud.
# bench/script.sh [FOLDER WITH THE PROGRAMS]; half a minute. Ends with 0 when the script isn't faster. Needs python3-serial
# and Google Benchmark.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
loads=50

script() {
  start_terminal --hasard $loads --cadence 9600
  /usr/bin/python3 bench/script.py "$work/rg80" "$work/$1.db" $loads
  stop terminal
}
station() {
  "$bin/ombrey_bench" --benchmark_filter='line pace' --benchmark_format=csv 2>/dev/null |
    awk -F, '/real_time",/ { printf "%.4f\n", $5 / 1000; found = 1 } END { exit !found }'
}
# In turns, and each at its best: what else the machine does hits both alike.
for turn in 1 2 3; do
  a=$(script $turn) b=$(station)
  echo "script  $a   station  $b   seconds a load"
  scripts="${scripts:-}$a\n" stations="${stations:-}$b\n"
done
best() { printf '%b' "$1" | sort -g | head -1; }
echo "at their best: script $(best "$scripts"), station $(best "$stations")"
awk -v s="$(best "$stations")" -v p="$(best "$scripts")" 'BEGIN { exit !(s <= p) }'
