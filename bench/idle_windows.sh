#!/usr/bin/env bash
# What the station in windows costs while nothing comes in, its list of loads open: processor time, memory, and how long it
# takes to show its main window. On a screen of its own.
# bench/idle_windows.sh [FOLDER WITH THE PROGRAMS] [SECONDS for each of two terminals]; exit code 0 when all stays below
# the targets, 77 when not run for want of a tool.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
seconds=${2:-60}
max_permille=2  # of one core
max_start=1500  # milliseconds
need_screen xdotool

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
settings 2000

slowest=0
start() {
  local begin
  begin=$(date +%s%N)
  start_station
  await window '^Tarvel'
  begin=$((($(date +%s%N) - begin) / 1000000))
  echo "start: main window after $begin ms"
  [ "$begin" -le "$slowest" ] || slowest=$begin
}
polls() { grep -c '^interrogation' "$work/rg80.txt" || true; }

# Leaves a terminal and an open list alone for a while.
idle() {
  local name=$1
  shift
  start_terminal "$@"
  start
  stop station
  start
  xdotool windowfocus "$(window '^Tarvel')"
  sleep 0.5
  xdotool key F5
  await window '^Liste des chargements$'
  sleep 15 # the first poll comes ten seconds after the start
  local before woken_before begin polls_before cpu elapsed
  before=$(spent)
  woken_before=$(woken)
  begin=$(date +%s%N)
  polls_before=$(polls)
  sleep "$seconds"
  cpu=$(($(spent) - before))
  elapsed=$(($(date +%s%N) - begin))
  awk -v name="$name" -v cpu="$cpu" -v elapsed="$elapsed" -v polls=$(($(polls) - polls_before)) \
    -v resident="$(memory VmRSS)" -v peak="$(memory VmHWM)" -v woken=$(($(woken) - woken_before)) 'BEGIN {
      printf "%s terminal: %d polls in %.1f s: %.1f ms of processor time, %.3f %% of one core, woken %d times; %.1f MiB resident, %.1f at most\n",
        name, polls, elapsed / 1e9, cpu / 1e6, 100 * cpu / elapsed, woken, resident / 1024, peak / 1024 }'
  window '^Liste des chargements$' >/dev/null || { echo "the list has closed" >&2; exit 1; }
  [ "$(polls)" -gt "$polls_before" ] || { echo "no poll took place" >&2; exit 1; }
  [ $((cpu * 1000)) -lt $((elapsed * max_permille)) ] || missed=1
  stop station
  stop terminal
}

missed=0
idle empty
idle silent --panne silence=1
[ "$slowest" -lt "$max_start" ] && [ "$missed" -eq 0 ]
