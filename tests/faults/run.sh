#!/usr/bin/env bash
# Applies the deliberate faults of faults.txt, each alone, to a copy of the tree and tells which test catches it.
#
#   tests/faults/run.sh [--all] [PATTERN]
#
# PATTERN picks the faults whose title line (file and meaning) matches it; --all lets a test program run to its end and
# names every test that fails. FAULTS_DIR is the work folder (/tmp/ombrey-faults). Ends with 1 when a fault escapes.
set -uo pipefail
cd "$(dirname "$(readlink -f "$0")")/../.."
list=$PWD/tests/faults/faults.txt
work=${FAULTS_DIR:-/tmp/ombrey-faults}
fast=--gtest_fail_fast
[ "${1:-}" = --all ] && { fast=; shift; }
pattern=${1:-.}
# Cheap ones first.
programs="common link import quotas monitor transfer core rooms loop system database host terminal serial console qt road"

mkdir -p "$work/tree" || exit 2
tree=$work/tree; build=$work/build; log=$work/log
git ls-files -z | tar --null -T - -cf - | tar -xf - -C "$tree" || exit 2

titles() { sed -n 's/^\* //p' "$list"; }

# Puts fault number $1 into the tree; the old text must stand in its file exactly once.
apply() {
  perl -e '
    my ($list, $wanted, $tree) = @ARGV;
    my ($n, $file, @old, @new) = (0);
    open my $in, "<", $list or die "$list: $!\n";
    while (<$in>) {
      chomp;
      if (/^\* (\S+): /) { ++$n; $file = $1 if $n == $wanted; }
      elsif ($n == $wanted && /^([-+]) ?(.*)/) { push @{$1 eq "-" ? \@old : \@new}, $2; }
    }
    my ($old, $new) = (join("\n", @old), join("\n", @new));
    open my $source, "+<", "$tree/$file" or die "$file: $!\n";
    my $text = do { local $/; <$source> };
    my $count = () = $text =~ /\Q$old\E/g;
    die "$file: the old text stands there $count times\n" if $old eq "" || $count != 1;
    $text =~ s/\Q$old\E/$new/;
    seek $source, 0, 0; truncate $source, 0; print $source $text; close $source or die "$file: $!\n";
  ' "$list" "$1" "$tree"
}
# A new time too, so that the build sees it.
restore() { cp "$1" "$tree/$1"; }

make() { nice -n 5 ninja -C "$build" -j2 "$@" >"$log" 2>&1; }
# Runs one test program; when it fails, prints the tests that failed, or the one that crashed or hung.
run() {
  local code names
  [ -x "$build/tests/test_$1" ] || return 0
  (cd "$build/tests" && exec timeout -k 5 150 "./test_$1" $fast) >"$log" 2>&1 </dev/null
  code=$?
  [ $code -eq 0 ] && return 0
  names=$(sed -n 's/^\[  FAILED  \] \([^ ,]*\).* ms)$/\1/p' "$log" | sort -u | paste -sd' ')
  [ $code -eq 1 ] || names+=" $(sed -n 's/^\[ RUN      \] //p' "$log" | tail -1) (code $code)"
  echo "test_$1: ${names# }"
  return 1
}
own() {  # the test programs of a file's room
  case $1 in
    host/*) echo host console ;;
    terminal/*) echo terminal ;;
    *) basename "$(dirname "$1")" ;;
  esac
}
targets() { for p in "$@"; do echo "test_$p"; [ "$p" = terminal ] && echo rg80; done; }
verdict() {  # file: the test that catches what is in the tree now, or ESCAPED
  local room p
  room=$(own "$1")
  make $(targets $room) || { echo "DOESN'T BUILD"; return; }
  for p in $room; do run "$p" && continue; return; done
  make || { echo "DOESN'T BUILD"; return; }
  for p in $programs; do [[ " $room " == *" $p "* ]] || run "$p" || return; done
  (cd "$build" && ctest -R station_xvfb) >"$log" 2>&1 || { echo station_xvfb; return; }
  echo ESCAPED
}

n=0; wrong=0
while IFS= read -r title; do
  n=$((n + 1))
  apply $n || wrong=1
  restore "${title%%:*}"
done < <(titles)
[ $wrong = 0 ] || exit 2

launcher=$(command -v ccache || true)
cmake -S "$tree" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DOMBREY_WERROR=OFF -DOMBREY_BENCH=OFF \
  -DCMAKE_CXX_COMPILER_LAUNCHER="$launcher" >"$log" 2>&1 && make || { tail -20 "$log"; exit 2; }
for p in $programs; do run "$p" || run "$p" || { echo "fails without any fault"; exit 2; }; done

n=0; caught=0; escaped=0; broken=0
while IFS= read -r title; do
  n=$((n + 1))
  grep -qE -- "$pattern" <<<"$title" || continue
  apply $n || exit 2
  result=$(verdict "${title%%:*}")
  restore "${title%%:*}"
  case $result in
    ESCAPED) escaped=$((escaped + 1)) ;;
    DOESN*) broken=$((broken + 1)) ;;
    *) caught=$((caught + 1)) ;;
  esac
  printf '%3d %s\n      -> %s\n' $n "$title" "$result"
done < <(titles)
echo "caught $caught, escaped $escaped, not built $broken"
[ $((escaped + broken)) -eq 0 ]
