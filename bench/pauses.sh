#!/usr/bin/env bash
# How long the main window takes to open on a long day, and the longest pauses of the windows' loop in each view: 2,000 loads of the day, some hundreds of lines in the
# other lists, loads coming in all the while; diagnosis, CSV, slip and copy from the menu as well. A pause lasts from the end of one wait for events to the begin of the next.
# bench/pauses.sh [FOLDER WITH THE PROGRAMS]; two minutes. Exit code 0 when nothing is too long, 77 when not run for
# want of a tool. Needs Xvfb, xdotool and strace, which itself adds some microseconds to each wait.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
loads=2000
max_pause=50 # milliseconds
max_start=1000
each=7       # seconds in a view
need_screen xdotool strace

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
many() { query "WITH RECURSIVE n(i) AS (SELECT 1 UNION ALL SELECT i + 1 FROM n WHERE i < $1) $2"; }
for table in Chargement ChargementArchive; do
  many $loads "INSERT INTO $table (CodeSite, NoChargement, DateCh, Métayage, Sélection, Qualité, Degré, Masse)
    SELECT '1', 10000 + i, julianday(date('now', 'localtime')) - 2415018.5 + i / 2400.0
      - CASE '$table' WHEN 'Chargement' THEN 0 ELSE 30 END, 1 + i % 15, '05', '01', 12.5, 1000 + i % 900 FROM n"
done
many 300 "INSERT INTO Station SELECT 'S' || i, 'pc' || i, julianday('now') - 2415018.5 FROM n"
mkdir -m 700 "$work/station"
for i in $(seq 300); do
  printf '2\t22/09/2026 08:%02d:00\t22/09/2026 09:00:00\tRG80 Ombrey\tLe message %d que personne n’a lu\n' $((i % 60)) "$i"
done >"$work/station/à-lire.txt"
settings 200
printf '[Tarvel]\nDuréeBoîtes=1\n' >>"$work/tarvel.ini"
printf '!checksum 0001%s\n' "$(date +%d%m%y)074207550001010001010011000000050112514210007" >"$work/first"
starts=0
for _ in 1 2 3; do
  begin=$(date +%s%N)
  start_station
  await window '^Tarvel'
  begin=$((($(date +%s%N) - begin) / 1000000))
  echo "start: main window after $begin ms"
  starts=$((starts + (begin > max_start)))
  sleep 1
  stop station
done
start_terminal --chargements "$work/first" --hasard 1000 --cadence 9600 --f6

strace -D -f --seccomp-bpf -e trace=poll,ppoll -ttt -T -o "$work/waits" \
  "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" \
  <"$work/commands" >"$work/station.txt" 2>"$work/station.err" &
station=$!
await window '^Tarvel'
main=$station
# From now on the operator looks at this. The keys' own turns count as well.
looks() { echo "$(date +%s.%N) $*" >>"$work/looks"; }
keys() { xdotool windowfocus --sync "$(window "$1")" key --clearmodifiers "$2"; }
arrived() { query 'SELECT count(*) FROM Chargement'; }
comes() { [ "$(arrived)" -gt $loads ]; }
await comes
for view in j:La_journée r:Refusés c:Archive l:Ligne n:Stations u:Journal i:À_lire; do
  await window '^Tarvel'
  looks "${view#*:}"
  keys '^Tarvel' "alt+${view%%:*}"
  sleep $each
done
keys '^Tarvel' alt+j
# Picks an entry of the menu Station, and has the dialog that comes write a file; two windows then bear its title: it and
# the choice of the file, or the word about its end.
are() { [ "$(window "$1" | wc -l)" -eq "$2" ]; }
opens() {
  keys '^Tarvel' alt+s
  xdotool key "$1"
  for _ in 1 2 3 4 5 6; do sleep 0.1; ! window "$2" || return 0; done
  xdotool key Escape
  return 1
}
in_front() { xdotool windowfocus --sync "$(window "$1" | tail -1)" key --clearmodifiers "${@:2}"; }
beside() {
  looks "$1"
  await opens "$2" "$3"
  sleep 1
  in_front "$3" "$4"
  await are "$3" 2
  in_front "$3" ctrl+a
  xdotool type "$5"
  xdotool key Return
  await test -s "$5"
  await are "$3" 2
  sleep 1
  in_front "$3" Return
  await are "$3" 1
  in_front "$3" Escape
  await are "$3" 0
}
looks Diagnostic
await opens d '^Diagnostic$'
sleep $each
in_front '^Diagnostic$' Escape
await are '^Diagnostic$' 0
beside CSV e '^Exporter les chargements$' alt+e "$work/loads.csv"
beside Bordereau_en_PDF b '^Bordereau de la journée$' alt+p "$work/slip.pdf"
beside Copie_de_la_base s '^Sauvegarder la base$' alt+c "$work/copy.db"
list='^Liste des chargements$'
looks Liste_des_chargements
keys '^Tarvel' F5
await window "$list"
sleep $each
looks Ses_messages
xdotool mousemove --window "$(window "$list")" 15 "$(($(xdotool getwindowgeometry --shell "$(window "$list")" | sed -n 's/^HEIGHT=//p') * 3 / 4))" click 1
sleep $each
before=$(arrived)
looks Transfert
keys "$list" Escape
transfer='^Chargement des données'
sleep 1
keys '^Tarvel' alt+g
xdotool key c
await window "$transfer"
keys "$transfer" alt+t
sleep $((2 * each))
looks Fin
stop station
echo "$((before - loads)) loads came in meanwhile"
[ "$before" -ge $((loads + 50)) ] || { echo "too few loads came in" >&2; exit 1; }

# The loop waits for several descriptors at once; what waits for one alone is the screen's answer to a question.
awk -v main="$main" '
  NR == FNR { since[NR] = $1; view[NR] = $2; views = NR; next }
  $1 != main { next }
  /unfinished/ && !/fd=.*fd=/ { other = 1 }
  /resumed/ { if (!other) ended = $2; other = 0; next }
  /fd=.*fd=/ {
    while (at < views && ended > since[at + 1]) at++
    if (at && at < views && $2 > ended) print view[at], ($2 - ended) * 1000
    ended = $NF ~ /^</ ? $2 + substr($NF, 2) : 0
  }' "$work/looks" "$work/waits" >"$work/pauses"
sort -k1,1 -k2,2gr "$work/pauses" | awk -v limit=$max_pause '
  $1 != view { if (view) print line; view = $1; line = sprintf("%-22s longest pauses, ms:", view); told = 0; views++ }
  told++ < 4 { line = line sprintf(" %5.1f", $2); missed += $2 > limit }
  END { print line; exit missed > 0 || views < 14 }'
[ $starts -eq 0 ]
