#!/usr/bin/env bash
# The station beside a script of fifty lines (script.py) that says the same bytes to the same terminal at 9600 baud.
# bench/script.sh [FOLDER WITH THE PROGRAMS]; half a minute. Ends with 0 when the script isn't faster. Needs python3-serial
# and Google Benchmark.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
bin=$(readlink -f "${1:-build/release/bin}")
loads=50
work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-script.XXXXXX")
terminal=
trap '[ -z "$terminal" ] || kill "$terminal" 2>/dev/null || true; rm -rf "$work"' EXIT

best=
for turn in 1 2 3; do
  "$bin/rg80" --lien "$work/line" --hasard $loads --cadence 9600 >/dev/null & terminal=$!
  until [ -e "$work/line" ]; do sleep 0.1; done
  seconds=$(/usr/bin/python3 bench/script.py "$work/line" "$work/$turn.db" $loads)
  echo "script   $seconds s a load"
  best=$(printf '%s\n' $best "$seconds" | sort -g | head -1)
  kill $terminal; wait $terminal 2>/dev/null || true
done
station=$("$bin/ombrey_bench" --benchmark_filter='line pace' --benchmark_repetitions=3 --benchmark_format=csv 2>/dev/null |
  awk -F, '/real_time",/ { if (!best || $3 < best) best = $3 } END { printf "%.4f", best / 1000 }')
echo "station  $station s a load, the script at its best $best"
awk -v s="$station" -v p="$best" 'BEGIN { exit !(s <= p) }'
