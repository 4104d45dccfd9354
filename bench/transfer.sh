#!/usr/bin/env bash
# The cooperators' file of a large cooperative on its way to the terminal at 9600 baud: right to the byte, and in
# hardly more than the line's own time.
# bench/transfer.sh [FOLDER WITH THE PROGRAMS] [MEMBERS, at most 32767]; a bit more than two minutes for 3,000. Exit
# code 0 when it arrived as it should, in time. Needs the program sqlite3, or python3, to fill and read the database.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
members=${2:-3000}
record=41        # bytes: code 6, name 35
max_permille=1020 # of the wire time

"$bin/tarvel" --creer-base "$work/cave.db"
numbers="WITH RECURSIVE Numéros(n) AS (SELECT 1 UNION ALL SELECT n + 1 FROM Numéros WHERE n < $members)"
query "$numbers INSERT INTO Coopérateur (IdCoopérateur, Nom)
  SELECT n, CASE n % 3 WHEN 0 THEN 'Été ' || n WHEN 1 THEN 'Domaine de l''Œillet n° ' || n
    ELSE 'Société civile d''exploitation agricole du Château n° ' || n END FROM Numéros"
# Owners are the first two thirds, harvesters the last two: each member is there, some of them twice.
query "$numbers INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, CodeBadge, IdGrp)
  SELECT n, n, $members + 1 - n, 100, n, 1 FROM Numéros WHERE n <= ($members * 2 + 2) / 3"
blanks=$(printf '%35s' '')
query "SELECT printf('%06d', IdCoopérateur) || substr(Nom || '$blanks', 1, 35) FROM Coopérateur
  ORDER BY CAST(IdCoopérateur AS TEXT)" | tr -d '\n' | iconv -f UTF-8 -t CP1252 >"$work/expected"

settings 2000
start_terminal --cadence 9600 --f6 --sortie "$work/recu" --journal "$work/journal"
printf '%s\n' menu 'decocher ChkAppelations' 'decocher ChkBadges' 'decocher ChkGroupnts' 'decocher ChkObserv' \
  transferer fermer fin >"$work/commands"
start_station --console
code=0
wait "$station" || code=$?
station=
stop terminal || true

size=$(stat -c %s "$work/recu/fichier-1.txt" 2>/dev/null || echo 0)
same=no
! cmp "$work/expected" "$work/recu/fichier-1.txt" || same=yes
[ "$same $size" = "yes $((members * record))" ] && [ "$code" -eq 0 ] && ! grep '^boîte' "$work/station.txt" ||
  { echo "size $size, as expected: $same, exit code $code" >&2; tail -20 "$work/station.txt" "$work/rg80.txt" >&2; exit 1; }

# From the announcement, just received, to the acknowledgement, about to leave: the answer to the announcement and the frame.
cut -c1-60 "$work/journal" | awk -v size="$size" -v bauds=9600 -v max="$max_permille" '
  function seconds(stamp, parts) { split(stamp, parts, ":"); return parts[1] * 3600 + parts[2] * 60 + parts[3] }
  $2 == "reçu" && $3 == "<ENQ>1" { begin = seconds($1); ends = 0; begun = 1 }
  $2 == "émis" && $3 == "<ACK>" && begun && !ends { measured = seconds($1) - begin; ends = 1 }
  END {
    if (measured < 0) measured += 86400
    wire = (size + 4 + 2) * 10 / bauds
    printf "transfer: a file of %d bytes, right to the byte; %.3f s on the wire, %.3f s measured: %.4f times\n",
      size, wire, measured, measured / wire
    exit !ends || measured * 1000 > wire * max
  }'
