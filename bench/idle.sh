#!/usr/bin/env bash
# What the station costs while the terminal stays silent: processor time, and memory.
# bench/idle.sh [FOLDER WITH THE PROGRAMS] [SECONDS]; exit code 0 when both stay below their targets.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
seconds=${2:-60}
max_permille=10  # of one core
max_memory=25600 # KiB

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
settings 2000
start_terminal --hasard 1 --panne silence=1
start_station --console --sans-operateur
sleep 15 # the first poll comes ten seconds after the start

before=$(spent)
woken_before=$(woken)
begin=$(date +%s%N)
polls_before=$(grep -c 'Vérification de nouveaux' "$work/station.txt" || true)
sleep "$seconds"
cpu=$(($(spent) - before))
woken=$(($(woken) - woken_before))
elapsed=$(($(date +%s%N) - begin))
polls=$(($(grep -c 'Vérification de nouveaux' "$work/station.txt" || true) - polls_before))
resident=$(memory VmRSS)
peak=$(memory VmHWM)
own=$(memory RssAnon)

awk -v cpu="$cpu" -v elapsed="$elapsed" -v polls="$polls" -v resident="$resident" -v peak="$peak" \
  -v own="$own" -v woken="$woken" 'BEGIN {
  printf "idle: %d polls of a silent terminal in %.1f s: %.2f ms of processor time, %.3f %% of one core, woken %d times\n",
    polls, elapsed / 1e9, cpu / 1e6, 100 * cpu / elapsed, woken
  printf "memory: %.1f MiB resident, %.1f MiB at most, %.1f MiB of it behind no file\n", resident / 1024, peak / 1024, own / 1024
}'
[ "$polls" -gt 0 ] || { echo "no poll took place" >&2; exit 1; }
[ $((cpu * 1000)) -lt $((elapsed * max_permille)) ] && [ "$peak" -lt "$max_memory" ]
