#!/usr/bin/env bash
# The longest pauses of the windows' loop on a long day: 2,000 loads, the day's page and the list of loads open, and thirty
# more loads coming in. A pause lasts from the end of one wait for events to the begin of the next.
# bench/pauses.sh [FOLDER WITH THE PROGRAMS]; a minute. Exit code 0 when none is too long, 77 when not run for want of a
# tool. Needs Xvfb, xdotool and strace, which itself adds some microseconds to each wait.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
loads=2000
coming=30
max_pause=50 # milliseconds
need_screen xdotool strace

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
query "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < $loads)
  INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse)
  SELECT '1', 10000 + i, julianday(date('now', 'localtime')) - 2415018.5 + i / 2400.0, 1 + i % 15, '05', '01', 12.5, 1000 + i % 900
  FROM n"
settings 500
start_terminal --hasard $coming --cadence 9600

strace -D -f --seccomp-bpf -e trace=poll,ppoll -ttt -T -o "$work/waits" \
  "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" \
  <"$work/commands" >"$work/station.txt" 2>"$work/station.err" &
station=$!
await window '^Tarvel'
sleep 2
xdotool windowfocus "$(window '^Tarvel')"
sleep 0.5
xdotool key F5
await window '^Liste des chargements$'
begin=$(date +%s.%N)
in_base() { [ "$(query 'SELECT count(*) FROM Chargement')" -eq $((loads + coming)) ]; }
for _ in $(seq 60); do in_base && break; sleep 1; done
in_base || { echo "not every load came in" >&2; exit 1; }
sleep 5 # the day's page reads the base every few seconds
main=$station
stop station

# The loop waits for several descriptors at once; what waits for one alone is the screen's answer to a question.
awk -v main="$main" -v begin="$begin" '
  $1 != main { next }
  /unfinished/ && !/fd=.*fd=/ { other = 1 }
  /resumed/ { if (!other) ended = $2; other = 0; next }
  /fd=.*fd=/ {
    if (ended > begin) { pause = ($2 - ended) * 1000; if (pause > 0) print pause }
    ended = $NF ~ /^</ ? $2 + substr($NF, 2) : 0
  }' "$work/waits" | sort -gr >"$work/pauses"
awk -v limit=$max_pause 'NR <= 5 { longest = longest sprintf(" %.1f", $1) }
  END { printf "%d turns of the loop; the longest pauses:%s ms\n", NR, longest }' "$work/pauses"
[ -s "$work/pauses" ] && awk -v limit=$max_pause 'NR == 1 { exit $1 > limit }' "$work/pauses"
