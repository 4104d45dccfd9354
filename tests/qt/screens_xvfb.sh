#!/usr/bin/env bash
# Each window of the station opens whole in sight on the screens that weighbridges have: small, with large letters, large.
# screens_xvfb.sh BIN. Exit code 77: not run, for want of a tool.
set -euo pipefail
bin=$(readlink -f "$1") dpi=96
source "$(dirname "$(readlink -f "$0")")/desk.sh"
command -v openbox >/dev/null || { echo "not run: openbox isn't installed"; exit 77; }
# xdotool counts the frame's left (1) and top (20) twice.
whole() { eval "$(place "$1")" && [ $X -ge 2 ] && [ $Y -ge 40 ] && [ $((X - 1 + WIDTH)) -le $width ] && [ $((Y - 20 + HEIGHT)) -le $height ]; }
leave() { gone "$1" || { press "$1" Escape 2>/dev/null; sleep 0.3; false; }; }
seen_then_left() { await "$1 whole in sight" whole "$1"; await "closed $1" leave "$1"; }

desk_base 9600 500
desk_loads
terminal 9600 --chargements "$work/loads"
while read -r width height letters; do
  step "$width x $height at $letters dpi"
  rm -rf "$work/home"
  desk_start "$width" "$height" "$letters"
  desk_manager
  start "$width"
  await "main window whole in sight" whole '^Tarvel'
  await "monitoring window" shown
  seen_then_left '^Liste des chargements$'
  for entry in 'alt+g c ^Chargement des données vers le RG80$' 'alt+s c ^Port du RG80$' 'alt+s b ^Bordereau de la journée$' \
    'alt+s e ^Exporter les chargements$'; do
    read -r menu letter title <<<"$entry"
    await "$title" pick "$menu" "$letter" "$title"
    seen_then_left "$title"
  done
  kill $station
  wait $station || fail "exit code $? at SIGTERM"
  [ ! -s "$work/tarvel.$width" ] || fail "the station complained"
  kill $screen
done <<'SCREENS'
1024 600 96
1366 768 120
1920 1080 192
3840 2160 192
SCREENS
echo "done"
