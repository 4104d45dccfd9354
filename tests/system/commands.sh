#!/usr/bin/env bash
# The two commands where they could pass for more than they did: ./test on a machine that lacks packages and can't have
# them, or has them since, and the list that ends ./run when midnight has passed meanwhile.
#
#   commands.sh BIN. Exit code 77: midnight wasn't tried, for want of a tool.
set -euo pipefail
bin=$(readlink -f "$1")
cd "$(dirname "$(readlink -f "$0")")/../.."
work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-commands.XXXXXX")
trap 'rm -rf "$work"' EXIT
fail() { printf 'FAILED: %s\n' "$@"; exit 1; }

# A machine with the compiler and what ./test can't do without, whose packages can't be had: $@ is missing as well.
machine() {
  rm -rf "$work/bin" && mkdir "$work/bin"
  local tool
  for tool in bash cat cut dirname env grep head id mktemp nproc printf readlink rm sed sort tail tee tr; do
    ln -s "$(command -v "$tool")" "$work/bin/"
  done
  for tool in "cmake echo \"\$@\" >>'$work/configured'" ninja ctest 'apt-get exit 1' 'c++ text=$(cat); for lacking in '"$*"'; do [[ $text != *"$lacking"* ]] || exit 1; done'; do
    printf '#!%s\n%s\n' "$(command -v bash)" "${tool#"${tool%% *}"}" >"$work/bin/${tool%% *}"
    chmod +x "$work/bin/${tool%% *}"
  done
}
tried() {
  code=0
  PATH=$work/bin ./test >"$work/said" 2>&1 || code=$?
  sed -i 's/\x1b\[[0-9]*m//g' "$work/said"
}

machine
tried
[ $code -eq 0 ] || fail "without windows' tools, exit code $code" "$(<"$work/said")"
for left_out in 'the station in windows' 'fuzzing' 'the tests in other years'; do
  sed -n '/^.*All passed, but these were left out:/,$p' "$work/said" | grep -q "$left_out\$" || fail "doesn't end with what was left out: $left_out" "$(<"$work/said")"
done
machine gtest
tried
[ $code -ne 0 ] && grep -q 'Missing and not to be installed here: libgtest-dev' "$work/said" || fail "passes without GoogleTest" "$(<"$work/said")"
machine int
tried
[ $code -ne 0 ] && grep -q 'Missing and not to be installed here: g++' "$work/said" || fail "passes without a compiler" "$(<"$work/said")"
# A build without any test, with the tool itself.
mkdir -p "$work/tree/build/dev" && cp CMakePresets.json "$work/tree/" && : >"$work/tree/build/dev/CTestTestfile.cmake"
! (cd "$work/tree" && ctest --preset dev) >"$work/said" 2>&1 || fail "no test at all passes for a success" "$(<"$work/said")"
! grep -qi 'no such preset\|could not read' "$work/said" || fail "$(<"$work/said")"
# What was configured ahead of a package is configured again behind it.
machine
: >"$work/tree/build/dev/CMakeCache.txt"
for windows in OFF ON; do
  : >"$work/configured"
  (cd "$work/tree" && PATH=$work/bin bash -c "source '$OLDPWD/packaging/prepare.sh'; have_file() { [ $windows = ON ]; }; build dev")
  grep -q -e "^--preset dev -DOMBREY_WINDOWS=$windows\$" "$work/configured" || fail "isn't configured with windows $windows" "$(<"$work/configured")"
done

command -v faketime >/dev/null && command -v sqlite3 >/dev/null || { echo "midnight isn't tried: faketime or sqlite3 isn't installed"; exit 77; }
! ldd "$bin/tarvel" | grep -q libasan || { echo "midnight isn't tried: the sanitizer wants to be loaded first"; exit 77; }
"$bin/tarvel" --creer-base "$work/cave.db" --exemple
sqlite3 "$work/cave.db" "INSERT INTO Chargement (CodeSite, NoChargement, DateCh, Métayage) VALUES ('1', 77, 46349.99, '4')"
printf '[PlugInOmbrey]\nPort=%s\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=500\n' "$work/absent" >"$work/tarvel.ini"
export work bin TZ
for TZ in UTC Europe/Paris Pacific/Kiritimati; do
  faketime '2026-11-24 00:00:20' bash -c '
    source packaging/prepare.sh
    clock_of 231126
    printf "liste\nfin\n" | "${clock[@]}" "$bin/tarvel" --base "$work/cave.db" --ini "$work/tarvel.ini" --console --sans-operateur' >"$work/said" 2>&1 ||
    fail "$TZ" "$(<"$work/said")"
  grep -q '^ *1 *| *77 ' "$work/said" || fail "$TZ: yesterday's load isn't in the list" "$(<"$work/said")"
done
