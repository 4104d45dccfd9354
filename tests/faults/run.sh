#!/usr/bin/env bash
# Applies the deliberate faults of faults.txt, each alone, to a copy of the tree and tells which test catches it.
#
#   tests/faults/run.sh [--all] [--on] [PATTERN]
#   tests/faults/run.sh --fits
#
# PATTERN picks faults by their title line; --all names every test that fails in the program that catches a fault; --on goes
# on behind a run that was broken off, with what it left to do and what escaped it; --fits only looks whether each fault's
# old text still stands in the code.
# FAULTS_DIR is the work folder; its file "results" has a line for each fault. Ends with 1 when a fault escapes or doesn't compile, with 2 when it can't work.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
list=$PWD/tests/faults/faults.txt
work=${FAULTS_DIR:-/tmp/ombrey-faults} tree=$work/tree build=$work/tree/build/faults log=$work/log
fast=--gtest_fail_fast fits="" on=""
while [[ ${1:-} == --* ]]; do
  case $1 in
    --all) fast= ;;
    --on) on=yes ;;
    --fits) fits=yes work=$(mktemp -d) tree=$work/tree && trap 'rm -rf "$work"' EXIT ;;
    *) sed -n '/^#$/,/^set /s/^# \{0,1\}//p' "$0" >&2; exit 2 ;;
  esac
  shift
done
results=$work/results
pattern=${1:-.}
# Cheap ones first.
programs="base link import quotas monitor transfer core loop system database host terminal serial console qt road"

die() { echo "$*" >&2; exit 2; }
# Puts fault number $1 into the tree; the old text must stand in its file exactly once. $2: "look" changes nothing.
apply() {
  perl -e '
    my ($list, $wanted, $tree, $look) = @ARGV;
    my ($n, $file, %text) = (0);
    open my $in, "<", $list or die "$list: $!\n";
    while (<$in>) {
      if (/^\* (\S+): /) { $file = $1 if ++$n == $wanted; }
      elsif ($n == $wanted && /^([-+]) ?(.*)/) { push @{$text{$1}}, $2; }
    }
    my ($old, $new) = map { join "\n", @{$text{$_} || []} } "-", "+";
    open my $source, "+<", "$tree/$file" or die "$file: $!\n";
    my $content = do { local $/; <$source> };
    my $count = () = $content =~ /\Q$old\E/g;
    die "fault $wanted: the old text stands $count times in $file\n" if $old eq "" || $count != 1;
    exit if $look;
    $content =~ s/\Q$old\E/$new/;
    seek $source, 0, 0;
    truncate $source, 0;
    print $source $content;
    close $source or die "$file: $!\n";
  ' "$list" "$1" "$tree" "${2:-}"
}
restore() { cp "$work/whole" "$tree/$1"; }  # with a new time, so that the build sees it
make() { ninja -C "$build" -j2 "$@" >"$log" 2>&1; }
# Runs one test program; when it fails, prints the tests that failed, or the one that crashed or took too long.
run() {
  local code names
  [ -x "$build/tests/test_$1" ] || return 0
  (cd "$build/tests" && exec timeout -k 5 400 "./test_$1" $fast) >"$log" 2>&1 </dev/null
  code=$?
  [ $code -eq 0 ] && return 0
  names=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).* ms)$/\1/p' "$log" | sort -u | paste -sd' ')
  [ $code -eq 1 ] || names+=" $(sed -n 's/^\[ RUN      \] //p' "$log" | tail -1) (code $code)"
  echo "test_$1: ${names# }"
  return 1
}
# The test that catches what is in the tree now, the file's own room first; or ESCAPED.
verdict() {
  local p room targets=
  case $1 in
    host/windows/*) room=qt ;;
    host/*) room="host console" ;;
    platform/database/*) room=database ;;
    terminal/*) room=terminal targets=rg80 ;;
    src/contracts/*) room="link import quotas transfer" ;;
    src/common/*) room="core link monitor" ;;
    *) room=$(basename "$(dirname "$1")") ;;
  esac
  for p in $room; do targets+=" test_$p"; done
  make $targets || { echo "DOESN'T COMPILE"; return; }
  for p in $room; do run "$p" || return; done
  make || { echo "DOESN'T COMPILE"; return; }
  for p in $programs; do [[ " $room " == *" $p "* ]] || run "$p" || return; done
  (cd "$build" && ctest -R _xvfb) >"$log" 2>&1 || { sed -n 's/.* - \(.*_xvfb\) (.*/\1/p' "$log" | paste -sd' '; return; }
  echo ESCAPED
}

# What stands in the tree of the last run keeps its time there, so that it isn't built again.
rm -rf "$tree.new"
mkdir -p "$tree.new" && git ls-files -z | tar --null -T - -cf - | tar -xmf - -C "$tree.new" && cp "$list" "$work/list" ||
  die "No copy of the tree in $work"
if [ -d "$tree" ]; then
  (cd "$tree.new" && find . -type f -exec sh -c 'for f; do cmp -s "$f" "$0/$f" && touch -r "$0/$f" "$f"; done' "$tree" {} +)
  [ ! -d "$tree/build" ] || mv "$tree/build" "$tree.new/"
fi
rm -rf "$tree"
mv "$tree.new" "$tree"
list=$work/list  # who edits the list meanwhile doesn't move what runs
mapfile -t titles < <(sed -n 's/^\* //p' "$list")
sound=yes
for i in "${!titles[@]}"; do apply $((i + 1)) look || sound=no; done
[ $sound = yes ] || die "The list no longer fits the code"
[ -z "$fits" ] || { echo "${#titles[@]} faults fit the code"; exit; }
cmake -S "$tree" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG= -DOMBREY_WERROR=OFF -DOMBREY_BENCH=OFF \
  -DCMAKE_CXX_COMPILER_LAUNCHER="$(command -v ccache || true)" >"$log" 2>&1 && make || die "$(tail -20 "$log")"
[ -n "$on" ] || : >"$results"
[ -s "$results" ] || for p in $programs; do run "$p" || die "A test fails without any fault"; done

caught=0 wrong=0
for i in "${!titles[@]}"; do
  grep -qE -- "$pattern" <<<"${titles[i]}" || continue
  result=$(T="${titles[i]}" awk -F' -> ' '$1 == ENVIRON["T"] && $2 !~ /^(ESCAPED|DOESN)/ { print $2; exit }' "$results")
  if [ -z "$result" ]; then
    cp "$tree/${titles[i]%%:*}" "$work/whole" && apply $((i + 1)) || exit 2
    result=$(verdict "${titles[i]%%:*}")
    restore "${titles[i]%%:*}"
    printf '%s -> %s\n' "${titles[i]}" "$result" >>"$results"
  fi
  case $result in ESCAPED | DOESN*) wrong=$((wrong + 1)) ;; *) caught=$((caught + 1)) ;; esac
  printf '%3d %s\n    -> %s\n' $((i + 1)) "${titles[i]}" "$result"
done
echo "caught: $caught, escaped or not compiled: $wrong"
[ $wrong -eq 0 ]
