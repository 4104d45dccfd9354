#!/usr/bin/env bash
# The whole station in windows, on a screen of its own, driven by keys and mouse as an operator would: eight loads, the
# printed errors, the five files, the port's dialog, the end; again, with the window's place remembered, and ended in the
# midst of a load and of a transfer; then under a window manager: a transfer that is stopped, a second start, the frames'
# buttons, a screen that becomes smaller.
# station_xvfb.sh BIN [DPI [PICTURES]]: the programs' folder, the screen's resolution, where to leave pictures.
# Exit code 77: not run, or not to its end, for want of a tool.
set -euo pipefail
bin=$(readlink -f "$1") dpi=${2:-96} pictures=${3:-}
source "$(dirname "$(readlink -f "$0")")/desk.sh"
# A picture of one window alone, once it has been drawn.
picture() { [ -z "$pictures" ] || { sleep 0.5; import -window "$(window "$1")" "$pictures/$2-$dpi.png"; }; }
same_place() { [ "$(place "$1")" = "$2" ]; }
ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }

desk_start $((1280 * dpi / 96)) $((960 * dpi / 96)) "$dpi"
desk_base 9600 500
desk_loads 5
terminal 9600 --chargements "$work/loads" --f6

replies() { [ "$(grep -c '^réponse reçue' "$work/rg80.txt")" -ge 8 ]; }

step "start, the toolbar button"
start 1
press '^Tarvel' F5
await "monitoring window" seen '^Liste des chargements$'
step "eight loads, one of them damaged on its first way"
await "box about the damaged load" seen '^RG80 Ombrey$'
picture '^RG80 Ombrey$' box
answer '^RG80 Ombrey$'
await "end of the box" gone '^RG80 Ombrey$'
await "eight replies" replies
picture '^Liste des chargements$' monitoring-errors
step "print the errors"
press '^Liste des chargements$' alt+i
await "box about the file" seen '^Impression des erreurs$'
compgen -G "$work/station/Erreurs RG80 *.pdf" >/dev/null || fail "no printed file"
[ -z "$pictures" ] || cp "$work"/station/Erreurs*.pdf "$pictures/errors-$dpi.pdf"
answer '^Impression des erreurs$'
await "end of the box" gone '^Impression des erreurs$'
step "place the window, show its messages"
list=$(window '^Liste des chargements$')
xdotool windowsize --sync "$list" $((1000 * dpi / 96)) $((640 * dpi / 96)) windowmove --sync "$list" $((90 * dpi / 96)) $((70 * dpi / 96))
xdotool mousemove --window "$list" $((15 * dpi / 96)) $((480 * dpi / 96)) click 1
picture '^Liste des chargements$' monitoring
placed=$(place '^Liste des chargements$')
step "an idle station"
before=$(ticks $station)
sleep 5
spent=$(($(ticks $station) - before))
echo "  $spent hundredths of a second of processor time in 5 s, with ten polls"
[ $spent -le 25 ] || fail "the idle station works too much"
press '^Liste des chargements$' Escape
await "hidden window" gone '^Liste des chargements$'
picture '^Tarvel' main

step "the five files"
await "transfer window" pick alt+g c '^Chargement des données vers le RG80$'
picture '^Chargement des données' transfer
press '^Chargement des données' alt+t
# Where the terminal comes too late, on a busy machine, a box of the same title offers to go on.
transferred() {
  seen '^Transmission des données$' || return 1
  [ "$(ls "$work/received" | grep -c '^fichier')" -eq 5 ] || { press '^Transmission des données$' alt+r; return 1; }
}
await "end of the transfer with its five files" transferred
press '^Transmission des données$' alt+f
await "closed transfer window" gone '^Transmission des données$'

step "the port's dialog, cancelled"
cp "$work/tarvel.ini" "$work/before.ini"
await "port dialog" pick alt+s c '^Port du RG80$'
press '^Port du RG80$' alt+e
picture '^Port du RG80$' port
# A dialog that is trying the line takes no key.
put_away() { gone '^Port du RG80$' || { press '^Port du RG80$' Escape 2>/dev/null; sleep 0.5; false; }; }
await "closed port dialog" put_away
cmp "$work/before.ini" "$work/tarvel.ini" || fail "the settings changed"
step "the same, kept: the plug-in comes anew under its old button"
await "port dialog" pick alt+s c '^Port du RG80$'
press '^Port du RG80$' alt+n
await "closed port dialog" gone '^Port du RG80$'
await "monitoring window" shown
await "hidden window" hidden

step "end"
press '^Tarvel' ctrl+q
wait $station || fail "exit code $? of the station"
[ ! -s "$work/tarvel.1" ] || fail "the station complained"

step "start again: the place is remembered"
start 2
press '^Tarvel' F5
await "monitoring window" seen '^Liste des chargements$'
await "remembered place, $placed" same_place '^Liste des chargements$' "$placed"
kill $station
wait $station || fail "exit code $? at SIGTERM"


# Another terminal on a slow line; the station is ended in the midst of what then goes over it.
anew() {
  kill $rg80 && wait $rg80 || true
  rm -rf "$work/line" "$work/received"
  terminal 300 --journal "$work/line" "$@"
  await "terminal" test -e "$work/line"
}
said() { grep -q "$1" "$work/line"; }
step "the main window is closed while a load comes in"
tail -1 "$work/loads" | sed 's/^..../0009/' >"$work/last"
anew --chargements "$work/last"
start 3
await "load on the line" said '<STX>0009'
press '^Tarvel' ctrl+q
wait $station || fail "exit code $? in the midst of a load"
[ ! -s "$work/tarvel.3" ] || fail "the station complained"
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --regarder --console --duree 4 >"$work/day" <<<"$(printf 'etat\njournee')"
for told in ' n° 8,' '^état : La ligne est libre : .* regarder. Dernier : ' '^journee : [89]$'; do
  grep -q "$told" "$work/day" || fail "the day isn't told: $told"
done
! said 'reçu <ACK>' || grep -q ' n° 9,' "$work/day" || fail "acknowledged and not in"
step "the main window is closed, and the session ended, in the midst of a transfer"
anew --f6
start 4
await "transfer window" pick alt+g c '^Chargement des données vers le RG80$'
press '^Chargement des données' alt+t
await "file on the line" grep -q 'fichier 4.*prêt' "$work/rg80.txt"
press '^Tarvel' ctrl+q
sleep 0.5
kill $station || fail "the main window was left behind the transfer's"
wait $station || fail "exit code $? in the midst of a transfer"
[ ! -s "$work/tarvel.4" ] || fail "the station complained"
await "end of what was on the line" grep -q 'fichier 4.*reçu' "$work/rg80.txt"
[ "$(grep -c 'fichier.*prêt' "$work/rg80.txt")" -eq 1 ] || fail "a file was sent behind the end"

for tool in openbox xrandr import; do
  command -v $tool >/dev/null || { echo "not run to its end, the window manager's part: $tool isn't installed"; exit 77; }
done
desk_manager
by_frame() { xdotool windowactivate --sync "$(window "$1")" key --clearmodifiers alt+F4; }
# Of a window that can't be activated: the X stands at the end of the title, which xdotool counts twice in a place.
close_frame() { eval "$(place "$1")"; xdotool mousemove $((X + WIDTH - 10)) $((Y - 31)) click 1; }
step "a transfer is stopped, and goes on where it was"
anew --f6
sed -i s/Bauds=9600/Bauds=300/ "$work/tarvel.ini"
start 5
await "transfer window" pick alt+g c '^Chargement des données vers le RG80$'
press '^Chargement des données' alt+t
await "progress" seen "^Avancement de l'envoi$"
await "a file that is long enough to be stopped" grep -q 'fichier 1.*prêt' "$work/rg80.txt"
press "^Avancement de l'envoi$" Escape
await "end of the transfer" seen '^Transmission des données$'
await "end of the progress" gone "^Avancement de l'envoi$"
[ "$(ls "$work/received" | grep -c '^fichier')" -eq 1 ] || fail "what was stopped arrived"
step "the X of the main window behind another, and a second start"
foot() { eval "$(place '^Tarvel')"; import -window root -crop "$((300 * dpi / 96))x16+$((X + 4))+$((Y - 20 + HEIGHT - 20))" rgb:- | md5sum; }
said_else() { [ "$(foot)" != "$before" ]; }
before=$(foot)
close_frame '^Tarvel'
await "word in the main window's last line" said_else
kill -0 $station || fail "the station went behind its own window"
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" >"$work/second" 2>&1 &
second=$!
pids+=($second)
await "box of the second start" seen '^Tarvel – réception$'
answer '^Tarvel – réception$'
wait $second && fail "the second start works beside the first"
grep -q 'Une autre station travaille déjà' "$work/second" || fail "the second start doesn't say why it ends"
press '^Transmission des données$' alt+f
await "closed transfer window" gone '^Transmission des données$'
step "what is told behind the choice of a file takes the keys, and gives them back"
# Windows of one title, which each names what it leads to.
exports() { [ "$(xdotool search --onlyvisible --name '^Exporter les chargements$' | wc -l)" -eq "$1" ]; }
await "export" pick alt+s e '^Exporter les chargements$'
press '^Exporter les chargements$' alt+e
await "choice of a file" exports 2
xdotool key ctrl+a type "$work/loads.csv"
xdotool key Return
await "file" test -s "$work/loads.csv"
await "word about the file" exports 2
sleep 0.7
xdotool key Return
await "end of the word" exports 1
xdotool key Escape
await "end of the export" gone '^Exporter les chargements$'
step "minimise, restore, close by the frame"
xdotool windowminimize "$(window '^Tarvel')"
await "minimised window" gone '^Tarvel'
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" >"$work/second" 2>&1 &
second=$!
pids+=($second)
await "box of the second start" seen '^Tarvel – réception$'
answer '^Tarvel – réception$'
wait $second || true
await "main window, called back by a second start" seen '^Tarvel – réception – '
await "monitoring window" shown
xdotool windowminimize "$(window '^Liste des chargements$')"
await "monitoring window, hidden and not lost" gone '^Liste des chargements$'
await "monitoring window" shown
by_frame '^Liste des chargements$'
await "monitoring window, closed by its frame" gone '^Liste des chargements$'
await "main window" seen '^Tarvel – réception – '
xdotool windowmove --sync "$(window '^Tarvel – réception – ')" $((560 * dpi / 96)) $((400 * dpi / 96))
by_frame '^Tarvel – réception – '
wait $station || fail "exit code $? when closed by the frame"
[ ! -s "$work/tarvel.5" ] || fail "the station complained"
step "a screen smaller than the one that it stood on, and one that becomes so"
xrandr --newmode small 40 $((800 * dpi / 96)) 0 0 9999 $((600 * dpi / 96)) 0 0 9999
xrandr --addmode screen small
xrandr --output screen --mode small
start 6
# xdotool counts the frame's left (1) and top (20) twice.
in_sight() { eval "$(place "$1")" && [ $X -ge 2 ] && [ $Y -ge 40 ] && [ $((X - 1 + WIDTH)) -le $((800 * dpi / 96)) ] && [ $((Y - 20 + HEIGHT)) -le $((600 * dpi / 96)) ]; }
await "main window in sight" in_sight '^Tarvel'
xrandr --output screen --mode $((1280 * dpi / 96))x$((960 * dpi / 96))
await "monitoring window" shown
for one in Tarvel Liste; do xdotool windowmove --sync "$(window "^$one")" $((400 * dpi / 96)) $((300 * dpi / 96)); done
xrandr --output screen --mode small
for one in Tarvel Liste; do await "window in sight: $one" in_sight "^$one"; done
kill $station
wait $station || fail "exit code $? at SIGTERM"
echo "done"
