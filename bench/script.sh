#!/usr/bin/env bash
# The station beside a script of fifty lines (script.py) that says the same bytes to the same terminal at 9600 baud: with
# sqlite3's own durable commit, and with a write-ahead log set up by hand.
# bench/script.sh [FOLDER WITH THE PROGRAMS]; a minute. Ends with 0 when neither script is faster.
# Needs python3-serial and Google Benchmark.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
loads=50

script() { # the base's name, the script's journal
  start_terminal --hasard $loads --cadence 9600
  /usr/bin/python3 bench/script.py "$work/rg80" "$work/$1.db" $loads ${2:+"$2"}
  stop terminal
}
station() {
  "$bin/ombrey_bench" --benchmark_filter='line pace' --benchmark_format=csv 2>/dev/null |
    awk -F, '/real_time",/ { printf "%.4f\n", $5 / 1000; found = 1 } END { exit !found }'
}
# In turns, and each at its best: what else the machine does hits all alike.
for turn in 1 2 3; do
  echo "$(script own$turn) $(script wal$turn wal) $(station)"
done | tee "$work/turns" | sed -u 's/\(.*\) \(.*\) \(.*\)/script \1   with a log \2   station \3   seconds a load/'
best() { cut -d ' ' -f "$1" "$work/turns" | sort -g | head -1; }
echo "at their best: script $(best 1), with a log $(best 2), station $(best 3)"
awk -v s="$(best 3)" -v p="$(best 1)" -v l="$(best 2)" 'BEGIN { exit !(s > 0 && s <= p && s <= l) }'
