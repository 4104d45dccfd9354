#!/usr/bin/env bash
# run.sh PROGRAM TARGET: every file of the target's corpus once, then new inputs for FUZZ_SECONDS (5). The seed is fixed, so
# that the suite always tries the same ones, unless FUZZ_SEED says otherwise (0: another one each time). The input that
# a fault was found with stays beside the program.
set -euo pipefail
program=$1
target=$2
here=$(dirname "$(readlink -f "$0")")

# The targets write many small files: into memory where there is such a place.
[ -w /dev/shm ] && export TMPDIR=/dev/shm
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
export TMPDIR=$work
mkdir "$work/new"

options=(-max_total_time="${FUZZ_SECONDS:-5}" -seed="${FUZZ_SEED:-1}" -max_len=2048 -timeout=20 -verbosity=1
  -print_final_stats=1 -artifact_prefix="$program-")
[ -f "$here/$target.dict" ] && options+=(-dict="$here/$target.dict")
ASAN_OPTIONS=malloc_context_size=3 "$program" "${options[@]}" "$work/new" "$here/corpus/$target"
