#!/usr/bin/env bash
# A night without an operator, in a minute: a frame with a wrong checksum, a port that goes away, a load that the base
# refuses until the office mends it, a base that another program locks. Every good load is in by morning, and what was
# said stands in a row for each trouble, however often it came.
# night_xvfb.sh BIN [PICTURES]. Exit code 77: not run, for want of a tool. NIGHT=long: boxes step aside after their own
# half minute, the port is away for a minute and the base locked for half of one, which takes four minutes.
set -euo pipefail
bin=$(readlink -f "$1") dpi=96 pictures=${2:-}
source "$(dirname "$(readlink -f "$0")")/desk.sh"
for tool in sqlite3 openbox; do
  command -v $tool >/dev/null || { echo "not run: $tool isn't installed"; exit 77; }
done
desk_start 1366 768 96
desk_manager
desk_base 9600 500
refused=6 away=8 locked=12
if [ "${NIGHT:-}" = long ]; then
  refused=70 away=60 locked=30 patience=200
else
  printf '[Tarvel]\nDuréeBoîtes=2\n' >>"$work/tarvel.ini"
fi
sql() { sqlite3 -cmd '.timeout 20000' "$work/cave.db" "$1"; }
day=$(date +%d%m%y)
offer() { for n in "$@"; do printf '%s%04d%s01000115000101000101001100000005011251%04d007\n' "$([ "$n" = 2 ] && echo '!checksum ')" "$n" "$day" $((1000 + n)); done; }
arrived() { [ "$(sql 'SELECT count(*) FROM Chargement')" -ge "$1" ]; }
sql "CREATE TRIGGER Refus BEFORE INSERT ON Chargement WHEN NEW.NoChargement = 4 BEGIN SELECT RAISE(ABORT, 'refusé'); END"

step "evening: the station runs, and nobody is there any more"
offer 1 2 3 4 5 6 >"$work/first"
terminal 9600 --chargements "$work/first"
start 1
await "the loads ahead of the refused one" arrived 3
step "a load is refused, over and over"
sleep $refused
arrived 4 && fail "the refused load came in"
[ "$(ls "$work/station/imports-refusés" | wc -l)" -eq 1 ] || fail "the refused load is kept more than once"
sql "DROP TRIGGER Refus"
await "the refused load and those behind it" arrived 6
step "the port goes away"
kill $rg80
wait $rg80 || true
rm -f "$work/rg80"
sleep $away
step "it is back, and the base is locked"
offer 7 8 9 10 >"$work/second"
mkfifo "$work/lock"
sqlite3 "$work/cave.db" <"$work/lock" >/dev/null 2>&1 &
pids+=($!)
exec 6>"$work/lock"
echo "BEGIN IMMEDIATE;" >&6
terminal 9600 --chargements "$work/second"
sleep $locked
echo "ROLLBACK;" >&6
exec 6>&-
step "morning"
await "all ten loads" arrived 10
numbers=$(sql 'SELECT group_concat(NoChargement) FROM (SELECT NoChargement FROM Chargement ORDER BY NoChargement)')
[ "$numbers" = 1,2,3,4,5,6,7,8,9,10 ] || fail "in the base stand the loads $numbers"
[ "$(sql 'SELECT count(*) FROM ChargementArchive')" -eq 0 ] || fail "a load took another's number"
# A port that goes in the midst of a request is told as lost as well.
told=$(wc -l <"$work/station/à-lire.txt")
{ [ "$told" -ge 3 ] && [ "$told" -le 4 ]; } || fail "the night is told in $told rows"
# Which load was refused, and that the base was locked, stand in the list of refused loads and in the window's lines.
cut -f 4- "$work/station/à-lire.txt" | tr '\037' ' ' | sed 's/ a été perdu\.$/ est absent de cette machine./' | sort -u |
  diff <(printf '%s\t%s\n' 'Erreur du port' "Le port $work/rg80 est absent de cette machine." \
    'RG80 Ombrey' "Erreur d'importation des données issues du RG80." \
    'RG80 Ombrey' 'Erreur de check-sum (chargement n° 2, tel que reçu)' | sort) - || fail "the night is told otherwise"
press '^Tarvel' alt+i
sleep 1
shot night
kill $station
wait $station || fail "exit code $? at SIGTERM"
step "an onlooker's base is locked, and he is asked to end: nobody waits for the lock"
kill $rg80
await "a base that nobody else has" sqlite3 "$work/cave.db" 'PRAGMA journal_mode = DELETE'
start 2 --regarder
sqlite3 "$work/cave.db" '.timeout 20000' 'BEGIN EXCLUSIVE' '.shell sleep 20' &
pids+=($!)
sleep 4 # he looks every two seconds, and would wait for eight
kill $station
asked=$SECONDS
wait $station || fail "exit code $? of the onlooker"
[ $((SECONDS - asked)) -le 3 ] || fail "the onlooker has waited for the lock"
echo "done"
