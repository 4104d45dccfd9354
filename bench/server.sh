#!/usr/bin/env bash
# What a base on a server costs beside one in a file: dialogues with an empty season and one of 300,000 loads, a day's list
# of 2,000, on a PostgreSQL of its own over a local socket, with fsync; then one station alone and six at once.
# bench/server.sh [FOLDER WITH THE PROGRAMS]; some three minutes. Needs PostgreSQL and Google Benchmark.
. "$(dirname "$(readlink -f "$0")")/setup.sh"
mkdir "$work/server"
chmod 755 "$work"
tests/support/server.sh "$work/server" "$work/cluster" fsync=on shared_buffers=256MB &
server=$!
trap 'kill -QUIT $server; wait $server 2>/dev/null || true; rm -rf "$work"' EXIT
await psql -qh "$work/server" -U tarvel -d postgres -c 'SELECT 1'
OMBREY_BENCH_SERVER=$work/server "$bin/ombrey_bench" --benchmark_filter='season|read, on' --benchmark_counters_tabular=true
for sites in 1 6; do
  PACE=9600 tests/endurance/sites.sh "$bin" $sites 100 | grep -E 'sites with|rows'
done
