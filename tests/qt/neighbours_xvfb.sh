#!/usr/bin/env bash
# The station beside another program, which has the keys while a box comes up and while a transfer window stands
# forgotten; and the second screen, on which its windows stood, goes and comes back.
# neighbours_xvfb.sh BIN. Exit code 77: not run, or not in all its parts, for want of a tool.
set -euo pipefail
bin=$(readlink -f "$1") dpi=96 pictures=${2:-}
source "$(dirname "$(readlink -f "$0")")/desk.sh"
for tool in openbox xrandr xprop xev; do
  command -v $tool >/dev/null || { echo "not run: $tool isn't installed"; exit 77; }
done
calls() { xprop -id "$(window "$1")" _NET_WM_STATE | grep -q DEMANDS_ATTENTION; }
turn_to() { xdotool windowactivate --sync "$(window "$1")"; }
end() {
  kill $station
  wait $station || fail "exit code $? at SIGTERM"
  [ ! -s "$work/tarvel.$1" ] || fail "the station complained"
}
desk_start 2400 768 96
desk_manager
desk_base 9600 500
printf '[Tarvel]\nDuréeBoîtes=0\n' >>"$work/tarvel.ini"
desk_loads 1
stdbuf -oL xev -event keyboard -name Voisin >"$work/typed" &
pids+=($!)
await "other program" seen '^Voisin$'
terminal 9600

step "a box comes up beside a program that is typed into"
start 1
turn_to '^Voisin$'
kill $rg80 && wait $rg80 || true
terminal 9600 --chargements "$work/loads"
await "box" seen '^RG80 Ombrey$'
await "call for attention by the box" calls '^RG80 Ombrey$'
typed() { xdotool key x Return; [ "$(grep -c KeyPress "$work/typed")" -ge 20 ]; }
await "letters typed into the other program" typed
seen '^RG80 Ombrey$' || fail "what was typed elsewhere answered the box"
turn_to '^RG80 Ombrey$' && xdotool key Return
await "end of the box, once the operator has turned to it" gone '^RG80 Ombrey$'

end 1

left_out=
# A minute of the station's clock is a second of this one's.
under=(env FAKETIME_DONT_FAKE_MONOTONIC=1 faketime -f '+1h x60')
if "${under[@]}" "$bin/tarvel" --version >/dev/null 2>&1; then
  step "a transfer window stands forgotten"
  start 2
  opened=$SECONDS
  await "transfer window" pick alt+g c '^Chargement des données vers le RG80$'
  turn_to '^Voisin$'
  await "call for attention by the main window" calls '^Tarvel'
  [ $((SECONDS - opened)) -ge 4 ] || fail "the main window called for attention at once"
  shot suspended
  press '^Chargement des données' Escape
  await "closed transfer window" gone '^Chargement des données'
  press '^Tarvel' ctrl+q
  wait $station || fail "exit code $? of the station"
else
  left_out="a forgotten transfer window, as no program runs under faketime here"
fi
under=()

step "the second screen goes, and comes back, between two starts"
xrandr --setmonitor left 1200/317x768/203+0+0 screen 2>/dev/null >&2
second_screen() { xrandr --setmonitor right 1200/317x768/203+1200+0 none; }
whole_on_the_first() { eval "$(place "$1")" && [ $((X - 1 + WIDTH)) -le 1200 ]; }
same_place() { echo "$1: $(place "$1" | xargs) for $(echo ${placed[$1]})" >&2; [ "$(place "$1")" = "${placed[$1]}" ]; }
each() { for one in '^Tarvel' '^Liste des chargements$'; do await "$one: $1" "$1" "$one"; done; }
open() { start "$1" && await "monitoring window" shown; }
declare -A placed
second_screen
open 3
for one in '^Tarvel' '^Liste des chargements$'; do
  xdotool windowsize --sync "$(window "$one")" 800 500 windowmove --sync "$(window "$one")" 1500 90
  placed[$one]=$(place "$one")
done
end 3
xrandr --delmonitor right
open 4
each whole_on_the_first
end 4
second_screen
open 5
each same_place
step "the second screen goes under the running station"
xrandr --delmonitor right
each whole_on_the_first
second_screen
each same_place
xrandr --delmonitor right
each whole_on_the_first
end 5
step "it is back at the next start"
second_screen
open 6
each same_place
end 6
[ -z "$left_out" ] || { echo "not tried: $left_out"; exit 77; }
echo "done"
