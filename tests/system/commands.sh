#!/usr/bin/env bash
# The two commands where they could pass for more than they did: ./test on a machine that lacks packages and can't have
# them, or has them since, and the list that ends ./run when midnight has passed meanwhile.
# And the programs as another account: whose working folder it is.
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

# Two stations of an account that may write into a working folder's imports, and not into the folder itself; and one that
# may write nowhere in it.
account=()
post=$work/account/post
mkdir -p "$post/import" && chmod 755 "$work"
[ "$(id -u)" != 0 ] || { account=(setpriv --reuid=65534 --clear-groups); chown -R 65534 "$work/account"; }
"${account[@]}" "$bin/tarvel" --creer-base "$work/account/cave.db"
printf '[PlugInOmbrey]\nPort=/dev/absent\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\n' >"$work/tarvel.ini"
station() {
  exec env XDG_CONFIG_HOME="$work/account" "${account[@]}" "$bin/tarvel" --base "$work/account/cave.db" --ini "$work/tarvel.ini" \
    --dossier "$post" --console --sans-operateur --duree "$1" </dev/null
}
refused() {
  ! (station 1) >"$work/said" 2>&1 || fail "not refused: $1" "$(<"$work/said")"
  grep -q "$1" "$work/said" || fail "not in these words: $1" "$(<"$work/said")"
}
chmod 555 "$post/import" "$post"
refused "n'a pas le droit d'écrire dans $post/import, où passent les chargements"
chmod 755 "$post/import"
(station 600) >"$work/first" 2>&1 &
first=$!
for _ in {1..600}; do
  ! grep -q 'commande « menu »' "$work/first" || break
  sleep 0.1
done
refused "Une autre station travaille déjà dans le dossier $post (tarvel, processus "
kill $first
wait $first || fail "exit code $? of the first station" "$(<"$work/first")"
chmod 755 "$post"

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
