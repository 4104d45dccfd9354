#!/usr/bin/env bash
# Load after load at 9600 baud, with no rest between two polls: none may be lost, doubled or read short.
# bench/soak.sh [FOLDER WITH THE PROGRAMS] [LOADS, at most 9999]; exit code 0 when all are in, each once. Needs the
# program sqlite3 or python3 to look into the database.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
loads=${2:-300}

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
settings 1
start_terminal --hasard "$loads" --graine 1 --cadence 9600 --sortie "$work/recu"
begin=$(date +%s%N)
start_station --console --sans-operateur
# The terminal stays when its queue is empty: a station that polls without rest would report its port gone.
replies() { wc -l 2>/dev/null <"$work/recu/reponses.txt" || echo 0; }
deadline=$((SECONDS + 60 + loads))
while [ "$(replies)" -lt "$loads" ] && [ "$SECONDS" -lt "$deadline" ]; do sleep 0.1; done
elapsed=$((($(date +%s%N) - begin) / 1000000 - 10000)) # without the ten seconds ahead of the first poll
peak=$(memory VmHWM)
sleep 0.5
code=0
stop station || code=$?
stop terminal || true

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
