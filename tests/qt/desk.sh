# Sourced by what drives the station in windows: a screen of its own, a terminal, an operator's keys and eyes.
# desk_start WIDTH HEIGHT DPI opens the screen; "desk_manager" puts a window manager on it.
for tool in Xvfb xdotool; do
  command -v "$tool" >/dev/null || { echo "not run: $tool isn't installed"; exit 77; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-x.XXXXXX")
pids=()
finish() {
  local code=$?
  for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done
  wait 2>/dev/null || true
  [ $code -eq 0 ] || [ $code -eq 77 ] || { echo "--- tarvel"; cat "$work"/tarvel.* ; echo "--- rg80"; tail -20 "$work/rg80.txt"; } 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
fail() { echo "FAILED: $*"; [ -z "${pictures:-}" ] || shot failed; exit 1; }
step() { echo "· $*"; }

# Waits for a condition, for a minute and a half at most.
await() {
  local what=$1 end=$((SECONDS + ${patience:-90})); shift
  until "$@" >/dev/null 2>"$work/why"; do
    [ $SECONDS -lt $end ] || fail "no $what: $(tail -1 "$work/why")"
    sleep 0.1
  done
}
# A window that goes in the midst of the search breaks it off.
window() {
  until xdotool search --onlyvisible --name "$1" >"$work/found" 2>"$work/unfound" || ! grep -q 'X Error' "$work/unfound"; do :; done
  tail -1 "$work/found"
}
seen() { [ -n "$(window "$1")" ]; }
gone() { ! seen "$1"; }
place() { xdotool getwindowgeometry --shell "$(window "$1")" | grep -E '^(X|Y|WIDTH|HEIGHT)='; }
shot() { [ -z "${pictures:-}" ] || import -window root "$pictures/$1-$dpi.png"; }
# Who gets the keys must be said.
press() { xdotool windowfocus --sync "$(window "$1")" key --clearmodifiers "$2"; }
# Opens a menu of the main window by its letter and picks an entry by its own, until the window that it leads to is there.
pick() { press '^Tarvel' "$1" && xdotool key "$2"; for _ in 1 2 3 4 5; do ! seen "$3" || return 0; sleep 0.1; done; xdotool key Escape; return 1; }
# A new box takes no key in its first half second.
answer() { sleep 0.7; press "$1" Return; }
# While the plug-in starts anew, a window may go under the keys: they are said again.
shown() { seen '^Liste des chargements$' || { press '^Tarvel' F5 2>/dev/null; sleep 0.5; false; }; }
hidden() { gone '^Liste des chargements$' || { press '^Liste des chargements$' Escape 2>/dev/null; sleep 0.5; false; }; }

desk_start() {
  export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" LC_ALL=C.UTF-8
  printf "leak:libfontconfig\nleak:libdbus\n" >"$work/not-ours"
  export LSAN_OPTIONS=suppressions=$work/not-ours:print_suppressions=0
  unset WAYLAND_DISPLAY QT_QPA_PLATFORM
  mkdir -p "$HOME"
  rm -f "$work/display"
  exec 5>"$work/display"
  Xvfb -displayfd 5 -screen 0 "$1x$2x24" -noreset -nolisten tcp >/dev/null 2>&1 &
  screen=$!
  pids+=($screen)
  await "screen" test -s "$work/display"
  export DISPLAY=:$(cat "$work/display")
  export QT_FONT_DPI=$3 # what a desktop tells its programs by its own settings
}
desk_manager() {
  openbox >/dev/null 2>&1 &
  pids+=($!)
  await "window manager" xdotool get_desktop
}
# A cooperative, and settings for a line at $1 baud, polled every $2 ms.
desk_base() {
  "$bin/tarvel" --creer-base "$work/cave.db" --exemple
  printf '[PlugInOmbrey]\nPort=%s\nBauds=%s\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=%s\n' \
    "$work/rg80" "$1" "$2" >"$work/tarvel.ini"
}
# A morning's eight loads of the sample cooperative, in $work/loads. $1: a number that has a wrong checksum at first.
desk_loads() {
  local day; day=$(date +%d%m%y)
  sed "s/^000${1:-none}/!checksum &/" >"$work/loads" <<LOADS
0001${day}074207550001010001010011000000050112514210007
0002${day}075108060001020001020011000000200111813885003
0003${day}080308190002100003050050333333050113112960007
0004${day}081608300007770007770021000000300210911745011
0005${day}082908410001230004560071000000050112725120008
0006${day}083808500004020005110050500000200112212230003
0007${day}084708580003050003050021000000050112624575007
0008${day}085509090007300006240050500000050310411310012
LOADS
}
# The terminal at $1 baud, with the options behind it.
terminal() {
  local pace=$1; shift
  "$bin/rg80" --lien "$work/rg80" --cadence "$pace" --sortie "$work/received" "$@" >"$work/rg80.txt" 2>&1 &
  rg80=$!
  pids+=($rg80)
  await "terminal" test -e "$work/rg80"
}
# Under what stands in "under", if anything; its further options stand behind the number of the start.
under=()
start() {
  "${under[@]}" "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" "${@:2}" >"$work/tarvel.$1" 2>&1 &
  station=$!
  pids+=($station)
  await "main window" seen '^Tarvel'
}
