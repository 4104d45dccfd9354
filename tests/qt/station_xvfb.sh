#!/usr/bin/env bash
# The whole station in windows, on a screen of its own, driven by keys and mouse as an operator would: eight loads, the
# printed errors, the five files, the port's dialog, the end; then again, with the window's place remembered.
# station_xvfb.sh BIN [DPI [PICTURES]]: the programs' folder, the screen's resolution, where to leave pictures.
# Exit code 77: not run, for want of a tool.
set -euo pipefail
bin=$(readlink -f "$1") dpi=${2:-96} pictures=${3:-}
for tool in Xvfb xdotool; do
  command -v "$tool" >/dev/null || { echo "not run: $tool isn't installed"; exit 77; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-x.XXXXXX")
pids=()
finish() {
  local code=$?
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  [ $code -eq 0 ] || { echo "--- tarvel"; cat "$work"/tarvel.* ; echo "--- rg80"; tail -20 "$work/rg80.txt"; } 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
fail() { echo "FAILED: $*"; [ -z "$pictures" ] || shot failed; exit 1; }
step() { echo "· $*"; }

# Waits for a condition, for a minute and a half at most.
await() {
  local what=$1 end=$((SECONDS + 90)); shift
  until "$@" >/dev/null 2>&1; do
    [ $SECONDS -lt $end ] || fail "no $what"
    sleep 0.1
  done
}
window() { xdotool search --onlyvisible --name "$1" | tail -1; }
seen() { [ -n "$(window "$1")" ]; }
gone() { ! seen "$1"; }
place() { xdotool getwindowgeometry --shell "$(window "$1")" | grep -E '^(X|Y|WIDTH|HEIGHT)='; }
shot() { [ -z "$pictures" ] || import -window root "$pictures/$1-$dpi.png"; }
# A picture of one window alone, once it has been drawn.
picture() { [ -z "$pictures" ] || { sleep 0.5; import -window "$(window "$1")" "$pictures/$2-$dpi.png"; }; }
# There is no window manager: who gets the keys must be said.
press() { xdotool windowfocus --sync "$(window "$1")" key --clearmodifiers "$2"; }
# Opens a menu of the main window by its letter and picks an entry by its own, until the window that it leads to is there.
pick() { press '^Tarvel' "$1" && xdotool key "$2"; for _ in 1 2 3 4 5; do ! seen "$3" || return 0; sleep 0.1; done; xdotool key Escape; return 1; }
# A new box takes no key in its first half second.
answer() { sleep 0.7; press "$1" Return; }
# While the plug-in starts anew, a window may go under the keys: they are said again.
shown() { seen '^Liste des chargements$' || { press '^Tarvel' F5 2>/dev/null; sleep 0.5; false; }; }
hidden() { gone '^Liste des chargements$' || { press '^Liste des chargements$' Escape 2>/dev/null; sleep 0.5; false; }; }
same_place() { [ "$(place "$1")" = "$2" ]; }
ticks() { awk '{print $14 + $15}' "/proc/$1/stat"; }

export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" LC_ALL=C.UTF-8
printf "leak:libfontconfig\nleak:libdbus\n" >"$work/not-ours"
export LSAN_OPTIONS=suppressions=$work/not-ours:print_suppressions=0
unset WAYLAND_DISPLAY QT_QPA_PLATFORM
mkdir -p "$HOME"
exec 5>"$work/display"
Xvfb -displayfd 5 -screen 0 $((1280 * dpi / 96))x$((960 * dpi / 96))x24 -noreset -nolisten tcp >/dev/null 2>&1 &
pids+=($!)
await "screen" test -s "$work/display"
export DISPLAY=:$(cat "$work/display")
export QT_FONT_DPI=$dpi # what a desktop tells its programs by its own settings

"$bin/tarvel" --creer-base "$work/cave.db" --exemple
printf '[PlugInOmbrey]\nPort=%s\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=500\n' \
  "$work/rg80" >"$work/tarvel.ini"
day=$(date +%d%m%y)
cat >"$work/loads" <<LOADS
0001${day}074207550001010001010011000000050112514210007
0002${day}075108060001020001020011000000200111813885003
0003${day}080308190002100003050050333333050113112960007
0004${day}081608300007770007770021000000300210911745011
!checksum 0005${day}082908410001230004560071000000050112725120008
0006${day}083808500004020005110050500000200112212230003
0007${day}084708580003050003050021000000050112624575007
0008${day}085509090007300006240050500000050310411310012
LOADS
"$bin/rg80" --lien "$work/rg80" --chargements "$work/loads" --cadence 9600 --f6 --sortie "$work/received" \
  >"$work/rg80.txt" 2>&1 &
rg80=$!
pids+=($rg80)
await "terminal" test -e "$work/rg80"

start() {
  "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" >"$work/tarvel.$1" 2>&1 &
  station=$!
  pids+=($station)
  await "main window" seen '^Tarvel'
}
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
await "box about the file" seen '^Liste des erreurs$'
compgen -G "$work/station/Erreurs RG80 *.pdf" >/dev/null || fail "no printed file"
[ -z "$pictures" ] || cp "$work"/station/Erreurs*.pdf "$pictures/errors-$dpi.pdf"
answer '^Liste des erreurs$'
await "end of the box" gone '^Liste des erreurs$'
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
press '^Port du RG80$' Escape
await "closed port dialog" gone '^Port du RG80$'
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
  "$bin/rg80" --lien "$work/rg80" --cadence 300 --sortie "$work/received" --journal "$work/line" "$@" >"$work/rg80.txt" 2>&1 &
  rg80=$!
  pids+=($rg80)
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
"$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --regarder --console --duree 1 >"$work/day" </dev/null
grep -q ' n° 8,' "$work/day" || fail "the day isn't told"
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
echo "done"
