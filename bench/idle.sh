#!/usr/bin/env bash
# What the station costs while the terminal stays silent: processor time, and memory.
# bench/idle.sh [FOLDER WITH THE PROGRAMS] [SECONDS]; exit code 0 when both stay below their targets.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
bin=$(readlink -f "${1:-build/release/bin}")
seconds=${2:-60}
max_permille=10  # of one core
max_memory=25600 # KiB

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-idle.XXXXXX")
terminal= station=
finish() {
  [ -z "$terminal" ] || kill "$terminal" 2>/dev/null || true
  [ -z "$station" ] || kill "$station" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
printf '%s\n' '[PlugInOmbrey]' "Port=$work/rg80" Bauds=9600 Parité=aucune BitsStop=1 TailleMots=8 \
  'Période interrogation=2000' >"$work/tarvel.ini"
"$bin/rg80" --lien "$work/rg80" --hasard 1 --panne silence=1 >"$work/rg80.txt" &
terminal=$!
for _ in $(seq 50); do [ -e "$work/rg80" ] && break || sleep 0.1; done
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" --console --sans-operateur \
  >"$work/station.txt" &
station=$!
sleep 15 # the first poll comes ten seconds after the start

spent() { cut -d' ' -f1 "/proc/$station/schedstat"; } # nanoseconds on a processor
memory() { awk -v name="$1:" '$1 == name {print $2}' "/proc/$station/status"; }
before=$(spent)
begin=$(date +%s%N)
polls_before=$(grep -c 'Vérification de nouveaux' "$work/station.txt" || true)
sleep "$seconds"
cpu=$(($(spent) - before))
elapsed=$(($(date +%s%N) - begin))
polls=$(($(grep -c 'Vérification de nouveaux' "$work/station.txt" || true) - polls_before))
resident=$(memory VmRSS)
peak=$(memory VmHWM)

awk -v cpu="$cpu" -v elapsed="$elapsed" -v polls="$polls" -v resident="$resident" -v peak="$peak" 'BEGIN {
  printf "idle: %d polls of a silent terminal in %.1f s: %.2f ms of processor time, %.3f %% of one core\n",
    polls, elapsed / 1e9, cpu / 1e6, 100 * cpu / elapsed
  printf "memory: %.1f MiB resident, %.1f MiB at most\n", resident / 1024, peak / 1024
}'
[ "$polls" -gt 0 ] || { echo "no poll took place" >&2; exit 1; }
[ $((cpu * 1000)) -lt $((elapsed * max_permille)) ] && [ "$peak" -lt "$max_memory" ]
