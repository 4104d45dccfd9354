#!/usr/bin/env bash
# Stations of several sites on one base of a PostgreSQL server: each load of each site must be in it once, and the group
# that delivers at all of them must have the sum of their weights.
#
#   sites.sh BIN SITES LOADS [SEED]
#
# With SEED all may happen meanwhile: the server is killed, frozen or cuts its links, a station is killed. Ends with 77
# where there is no server or no module for it.
set -euo pipefail
bin=$(readlink -f "$1") sites=$2 loads=$3 seed=${4:-}
support=$(dirname "$(readlink -f "$0")")/../support
compgen -G '/usr/lib/postgresql/*/bin/postgres' >/dev/null && [ -e "$bin/tarvel-postgresql.so" ] || exit 77

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-sites.XXXXXX")
chmod 755 "$work"
mkdir "$work/server"
export XDG_CONFIG_HOME=$work/config
address="postgresql://tarvel@/cave?host=$work/server"
server= ; declare -a station terminal
say() { printf '== %s\n' "$*"; }
ask() { psql -qAtX -h "$work/server" -U tarvel -d "${2:-cave}" -c "$1"; }
# The server with all that it has started: $1 is the signal.
signal_server() { kill "-$1" "$server" $(cat "/proc/$server/task/$server/children" 2>/dev/null) 2>/dev/null || true; }
start_server() {
  "$support/server.sh" "$work/server" "$work/cluster" fsync=on &
  server=$!
  for _ in $(seq 600); do
    ask 'SELECT 1' postgres >/dev/null 2>&1 && return
    kill -0 "$server" 2>/dev/null || { sleep 0.5; "$support/server.sh" "$work/server" "$work/cluster" fsync=on & server=$!; }
    sleep 0.1
  done
  echo "The server doesn't start" >&2
  exit 1
}
start_station() {
  "$bin/tarvel" --base "$address" --ini "$work/$1.ini" --site "$1" --dossier "$work/post$1" --console --sans-operateur \
    </dev/null >>"$work/station$1.log" 2>&1 &
  station[$1]=$!
}
finish() {
  trap '' INT TERM
  signal_server CONT
  kill "${station[@]}" "${terminal[@]}" 2>/dev/null || true
  kill -QUIT "$server" 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM

say "A server of its own, a sample cooperative"
start_server
ask 'CREATE DATABASE cave' postgres
"$bin/tarvel" --creer-base "$address" --exemple

say "$sites sites with $loads loads each"
pairs=(123000456 123000123 511000511) # three holdings of the group 7
weighed=0 day=$(date +%d%m%y)
RANDOM=${seed:-1}
for ((s = 1; s <= sites; ++s)); do
  printf '[PlugInOmbrey]\nPort=%s\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=300\n' \
    "$work/line$s" >"$work/$s.ini"
  for ((n = 1; n <= loads; ++n)); do
    weight=$((10 + RANDOM % 900)) weighed=$((weighed + weight))
    printf '%04d%s%02d%02d2359000%s007100000005011252%04d007\n' "$n" "$day" $((n / 60 % 24)) $((n % 60)) \
      "${pairs[RANDOM % 3]}" "$weight"
  done >"$work/loads$s"
  "$bin/rg80" --lien "$work/line$s" --chargements "$work/loads$s" --sortie "$work/replies$s" --jusqu-a-vide \
    ${seed:+--graine $((seed + s)) --panne nak=0.03,checksum=0.03,ack-perdu=0.03} >"$work/terminal$s.log" 2>&1 &
  terminal[$s]=$!
  start_station "$s"
done

running() { for t in "${terminal[@]}"; do kill -0 "$t" 2>/dev/null && return 0; done; return 1; }
befall() {
  case $((RANDOM % 5)) in
    0) say "the server is killed"; signal_server KILL; wait "$server" 2>/dev/null || true; start_server ;;
    1) say "the server stands still"; signal_server STOP; sleep $((1 + RANDOM % 12)); signal_server CONT ;;
    2 | 3) say "links are cut"; ask "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE backend_type = 'client backend' AND pid <> pg_backend_pid()" >/dev/null || true ;;
    4)
      s=$((1 + RANDOM % sites))
      say "station $s is killed"
      kill -9 "${station[$s]}" 2>/dev/null || true
      wait "${station[$s]}" 2>/dev/null || true
      start_station "$s"
      ;;
  esac
}
for ((second = 0; second < 600; ++second)); do
  running || break
  [ -z "$seed" ] || [ $((RANDOM % 3)) != 0 ] || befall
  # A station that the server's absence has kept from starting is started again, as its service would do.
  for ((s = 1; s <= sites; ++s)); do kill -0 "${station[$s]}" 2>/dev/null || start_station "$s"; done
  sleep 1
done

found=$(ask 'SELECT count(*), count(DISTINCT ("CodeSite", "NoChargement")), sum("Masse") FROM "Chargement"')
archived=$(ask 'SELECT count(*) FROM "ChargementArchive"')
wanted="$((sites * loads))|$((sites * loads))|$weighed"
group=$(sed -n 's/^réponse reçue : .\{12\}\(.\{6\}\).*/\1/p' "$work"/terminal*.log | sort | tail -1)
say "rows, different loads, weight: $found; archived: $archived; the group's figure at last: ${group:-none}"
if [ "$found" != "$wanted" ] || [ "$archived" != 0 ] || { [ -z "$seed" ] && [ "$((10#$group))" != "$weighed" ]; }; then
  tail -n 20 "$work"/station*.log "$work"/terminal*.log >&2
  echo "wanted: $wanted, and nothing archived" >&2
  exit 1
fi
say "Each load once, and the group has them all"
