#!/usr/bin/env bash
# Load after load at 9600 baud, with no rest between two polls: none may be lost, doubled or read short.
# bench/soak.sh [FOLDER WITH THE PROGRAMS] [LOADS, at most 9999]; exit code 0 when all are in, each once. Needs the
# program sqlite3 or python3 to look into the database.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
bin=$(readlink -f "${1:-build/release/bin}")
loads=${2:-300}

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-soak.XXXXXX")
terminal= station=
finish() {
  for process in $terminal $station; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM

query() {
  if command -v sqlite3 >/dev/null; then
    sqlite3 "$work/cave.db" "$1"
  else
    python3 -c 'import sqlite3, sys; print(sqlite3.connect(sys.argv[1]).execute(sys.argv[2]).fetchone()[0])' \
      "$work/cave.db" "$1"
  fi
}

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
printf '%s\n' '[PlugInOmbrey]' "Port=$work/rg80" Bauds=9600 Parité=aucune BitsStop=1 TailleMots=8 \
  'Période interrogation=1' >"$work/tarvel.ini"
"$bin/rg80" --lien "$work/rg80" --hasard "$loads" --graine 1 --cadence 9600 --sortie "$work/recu" \
  >"$work/rg80.txt" &
terminal=$!
for _ in $(seq 50); do [ -e "$work/rg80" ] && break || sleep 0.1; done
begin=$(date +%s%N)
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" --console --sans-operateur \
  >"$work/station.txt" &
station=$!
# The terminal stays when its queue is empty: a station that polls without rest would report its port gone.
replies() { wc -l 2>/dev/null <"$work/recu/reponses.txt" || echo 0; }
deadline=$((SECONDS + 60 + loads))
while [ "$(replies)" -lt "$loads" ] && [ "$SECONDS" -lt "$deadline" ]; do sleep 0.1; done
elapsed=$((($(date +%s%N) - begin) / 1000000 - 10000)) # without the ten seconds ahead of the first poll
peak=$(awk '$1 == "VmHWM:" {print $2}' "/proc/$station/status")
sleep 0.5
kill "$station"
code=0
wait "$station" || code=$?
station=
kill "$terminal"
wait "$terminal" || true
terminal=

rows=$(query 'SELECT COUNT(*) FROM Chargement')
numbers=$(query 'SELECT COUNT(DISTINCT NoChargement) FROM Chargement')
archived=$(query 'SELECT COUNT(*) FROM ChargementArchive')
short=$(grep -c 'Données trop courtes' "$work/station.txt" || true)
boxes=$(grep -c '^boîte' "$work/station.txt" || true)
errors=$(grep -c '^erreur' "$work/station.txt" || true)
tail -1 "$work/rg80.txt"
printf 'soak: %d loads offered in %d.%03d s; rows %d, numbers %d, archived %d, replies %d; read short %d, boxes %d, errors %d; peak memory %d KiB; exit code %d\n' \
  "$loads" $((elapsed / 1000)) $((elapsed % 1000)) "$rows" "$numbers" "$archived" "$(replies)" "$short" "$boxes" "$errors" "$peak" "$code"
if [ "$rows $numbers $archived $(replies) $short $boxes $errors $code" = "$loads $loads 0 $loads 0 0 0 0" ]; then
  echo "all in, each once"
else
  grep -e '^boîte' -e '^erreur' -e '^message \[ \]' "$work/station.txt" | sort | uniq -c | sort -rn | head -20
  exit 1
fi
