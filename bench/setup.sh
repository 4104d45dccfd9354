# For the measurements to source: the programs' folder, a work folder of its own, a terminal, a station, and their ends.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
bin=$(readlink -f "${1:-build/release/bin}")

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-bench.XXXXXX")
: >"$work/commands" # what a console reads
terminal='' station='' screen=''
finish() {
  local code=$?
  [ $code -eq 0 ] || cat "$work/station.err" >&2 2>/dev/null || true
  for process in $station $terminal $screen; do kill "$process" 2>/dev/null || true; done
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM

# Waits for a condition, for half a minute at most.
await() {
  local end=$((SECONDS + 30))
  until "$@" >/dev/null 2>&1; do
    [ "$SECONDS" -lt "$end" ] || { echo "not there after half a minute: $*" >&2; exit 1; }
    sleep 0.02
  done
}
# Ends the program kept under this name, as its operator would; its exit code.
stop() {
  local process=${!1} code=0
  printf -v "$1" ''
  kill "$process"
  wait "$process" || code=$?
  return "$code"
}

# The station's settings, with so many milliseconds from poll to poll.
settings() {
  printf '%s\n' '[PlugInOmbrey]' "Port=$work/rg80" Bauds=9600 Parité=aucune BitsStop=1 TailleMots=8 \
    "Période interrogation=$1" >"$work/tarvel.ini"
}
start_terminal() {
  "$bin/rg80" --lien "$work/rg80" "$@" >"$work/rg80.txt" &
  terminal=$!
  await test -e "$work/rg80"
}
start_station() {
  "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --dossier "$work/station" "$@" \
    <"$work/commands" >"$work/station.txt" 2>"$work/station.err" &
  station=$!
}

# Runs one statement; prints what it gives, one value a line. By the program sqlite3, or python3.
query() {
  if command -v sqlite3 >/dev/null; then
    sqlite3 "$work/cave.db" "$1"
  else
    python3 -c 'import sqlite3, sys
base = sqlite3.connect(sys.argv[1])
sys.stdout.reconfigure(encoding="utf-8")
for row in base.execute(sys.argv[2]): print(row[0])
base.commit()' "$work/cave.db" "$1"
  fi
}

memory() { awk -v name="$1:" '$1 == name {print $2}' "/proc/$station/status"; }         # KiB
spent() { awk '{sum += $1} END {print sum}' "/proc/$station/task/"*/schedstat; } # nanoseconds on a processor
# How often the station was woken: unlike its time, whatever else the machine does.
woken() { awk '$1 == "voluntary_ctxt_switches:" {sum += $2} END {print sum}' "/proc/$station/task/"*/status; }

# A screen of its own, for the station in windows. Exit code 77 for want of that, or of one of these tools.
need_screen() {
  for tool in Xvfb "$@"; do
    command -v "$tool" >/dev/null || { echo "not run: $tool isn't installed"; exit 77; }
  done
  [ -e "$bin/tarvel-qt.so" ] || { echo "not run: built without windows"; exit 77; }
  export HOME="$work/home" XDG_CONFIG_HOME="$work/home/.config" LC_ALL=C.UTF-8
  unset WAYLAND_DISPLAY QT_QPA_PLATFORM
  mkdir -p "$HOME"
  exec 5>"$work/display"
  Xvfb -displayfd 5 -screen 0 1280x960x24 -noreset -nolisten tcp >/dev/null 2>&1 &
  screen=$!
  await test -s "$work/display"
  DISPLAY=:$(cat "$work/display")
  export DISPLAY
}
window() { xdotool search --onlyvisible --name "$1" | grep .; }
