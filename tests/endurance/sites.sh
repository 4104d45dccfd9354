#!/usr/bin/env bash
# Stations of several sites on one base of a PostgreSQL server: each load of each site must be in it once, and the group
# that delivers at all of them must have the sum of their weights.
#
#   sites.sh BIN SITES LOADS [SEED]
#
# With SEED there is a standby as well, and all may happen: the server is killed, frozen or cuts its links, a station is
# killed, and when a third of the loads are in, the server is lost and the standby takes over. In a run of 300 loads or more
# each of them happens. PACE=BAUDS gives the terminals a line's pace. Ends with 77 where there is no server or no module for it.
set -euo pipefail
bin=$(readlink -f "$1") sites=$2 loads=$3 seed=${4:-}
support=$(dirname "$(readlink -f "$0")")/../support
compgen -G '/usr/lib/postgresql/*/bin/postgres' >/dev/null && [ -e "$bin/tarvel-postgresql.so" ] || exit 77

work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-sites.XXXXXX")
chmod 755 "$work"
mkdir "$work/server"
export XDG_CONFIG_HOME=$work/config
home=$work/server
address="postgresql://tarvel@/cave?host=$work/server${seed:+,$work/standby&target_session_attrs=read-write}"
server= standby= ; declare -a station terminal
say() { printf '== %s\n' "$*"; }
ask() { psql -qAtX -h "$home" -U tarvel -d "${2:-cave}" -c "$1"; }
# The server with all that it has started: $1 is the signal.
signal_server() { kill "-$1" "$server" $(cat "/proc/$server/task/$server/children" 2>/dev/null) 2>/dev/null || true; }
start_server() {
  "$support/server.sh" "$home" "$work/cluster" fsync=on &
  server=$!
  for _ in $(seq 600); do
    ask 'SELECT 1' postgres >/dev/null 2>&1 && return
    kill -0 "$server" 2>/dev/null || { sleep 0.5; "$support/server.sh" "$home" "$work/cluster" fsync=on & server=$!; }
    sleep 0.1
  done
  echo "The server doesn't start" >&2
  exit 1
}
# Each commit is on its disk, too, before the server says so.
start_standby() {
  mkdir "$work/standby"
  pg_basebackup -h "$home" -U tarvel -D "$work/standby/data" -R -c fast
  chown -R --reference="$home/data" "$work/standby/data"
  "$support/server.sh" "$work/standby" "$work/cluster" fsync=on &
  standby=$!
  ask "ALTER SYSTEM SET synchronous_standby_names = '*'"
  ask 'SELECT pg_reload_conf()' >/dev/null
  until [ "$(ask "SELECT count(*) FROM pg_stat_replication WHERE sync_state = 'sync'")" = 1 ]; do sleep 0.1; done
}
fail_over() {
  say "the server is lost, the standby takes over"
  signal_server KILL
  wait "$server" 2>/dev/null || true
  home=$work/standby server=$standby standby=
  ask 'SELECT pg_promote()' postgres >/dev/null
}
start_terminal() { # SITE FILE [OPTION…]
  local s=$1 loads=$2
  shift 2
  "$bin/rg80" --lien "$work/line$s" --chargements "$loads" --sortie "$work/replies$s" --jusqu-a-vide \
    ${PACE:+--cadence "$PACE"} "$@" >>"$work/terminal$s.log" 2>&1 &
  terminal[$s]=$!
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
  kill -QUIT "$server" $standby 2>/dev/null || true
  wait 2>/dev/null || true
  rm -rf "$work"
}
trap finish EXIT
trap 'exit 130' INT TERM

say "A server of its own, a sample cooperative"
start_server
ask 'CREATE DATABASE cave' postgres
[ -z "$seed" ] || start_standby
"$bin/tarvel" --creer-base "$address" --exemple

say "$sites sites with $loads loads each"
pairs=(123000456 123000123 511000511) # three holdings of the group 7
weighed=0 day=$(date +%d%m%y)
RANDOM=${seed:-1}
load() { printf '%04d%s%02d%02d2359000%s007100000005011252%04d007\n' "$1" "$day" $(($1 / 60 % 24)) $(($1 % 60)) "$2" "$3"; }
SECONDS=0 period=$([ -n "${PACE:-}" ] && echo 1 || echo 300)
for ((s = 1; s <= sites; ++s)); do
  printf '[PlugInOmbrey]\nPort=%s\nBauds=9600\nParité=aucune\nBitsStop=1\nTailleMots=8\nPériode interrogation=%s\n' \
    "$work/line$s" "$period" >"$work/$s.ini"
  for ((n = 1; n <= loads; ++n)); do
    weight=$((10 + RANDOM % 900)) weighed=$((weighed + weight))
    load "$n" "${pairs[RANDOM % 3]}" "$weight"
  done >"$work/loads$s"
  start_terminal "$s" "$work/loads$s" ${seed:+--graine $((seed + s)) --panne nak=0.03,checksum=0.03,ack-perdu=0.03}
  start_station "$s"
done

running() { for t in "${terminal[@]}"; do kill -0 "$t" 2>/dev/null && return 0; done; return 1; }
declare -A befallen=([killed]=0 [frozen]=0 [cut]=0 [station]=0 [lost]=0)
kinds=(killed frozen cut cut station)
befall() {
  local kind=${kinds[RANDOM % 5]}
  ((++befallen[$kind]))
  case $kind in
    killed) say "the server is killed"; signal_server KILL; wait "$server" 2>/dev/null || true; start_server ;;
    frozen)
      local seconds=$((1 + RANDOM % 12))
      [ "${befallen[frozen]}" != 1 ] || [ $((sites * loads)) -lt 300 ] || seconds=20
      say "the server stands still for $seconds s"
      signal_server STOP
      sleep $seconds
      signal_server CONT
      ;;
    cut) say "links are cut"; ask "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE backend_type = 'client backend' AND pid <> pg_backend_pid()" >/dev/null || true ;;
    station)
      s=$((1 + RANDOM % sites))
      say "station $s is killed"
      kill -9 "${station[$s]}" 2>/dev/null || true
      wait "${station[$s]}" 2>/dev/null || true
      start_station "$s"
      ;;
  esac
}
# A station that the server's absence has kept from starting is started again, as its service would do.
stand_by_stations() { for ((s = 1; s <= sites; ++s)); do kill -0 "${station[$s]}" 2>/dev/null || start_station "$s"; done; }
for ((second = 0; second < 600; ++second)); do
  running || break
  [ -z "$seed" ] || [ $((RANDOM % 3)) != 0 ] || befall
  if [ -n "$standby" ] && [ "$(ask 'SELECT count(*) FROM "Chargement"' 2>/dev/null || echo 0)" -ge $((sites * loads / 3)) ]; then
    ((++befallen[lost]))
    fail_over
  fi
  stand_by_stations
  sleep 1
done
took=$SECONDS

# One more load, undisturbed: its answer bears the figure of them all.
load $((loads + 1)) "${pairs[0]}" 10 >"$work/last"
weighed=$((weighed + 10))
start_terminal 1 "$work/last"
for ((second = 0; second < 60; ++second)); do
  kill -0 "${terminal[1]}" 2>/dev/null || break
  stand_by_stations
  sleep 1
done

found=$(ask 'SELECT count(*), count(DISTINCT ("CodeSite", "NoChargement")), sum("Masse") FROM "Chargement"')
archived=$(ask 'SELECT count(*) FROM "ChargementArchive"')
wanted="$((sites * loads + 1))|$((sites * loads + 1))|$weighed"
group=$(sed -n 's/^réponse reçue : .\{12\}\(.\{6\}\).*/\1/p' "$work"/terminal1.log | tail -1)
say "rows, different loads, weight: $found; archived: $archived; the group's figure at last: ${group:-none}; $took s"
missing=
if [ -n "$seed" ]; then
  for kind in "${!befallen[@]}"; do
    say "$kind: ${befallen[$kind]}"
    [ "${befallen[$kind]}" != 0 ] || [ $((sites * loads)) -lt 300 ] || missing+=" $kind"
  done
fi
if [ "$found" != "$wanted" ] || [ "$archived" != 0 ] || [ "$((10#${group:-0}))" != "$weighed" ] || [ -n "$missing" ]; then
  tail -n 20 "$work"/station*.log "$work"/terminal*.log >&2
  echo "wanted: $wanted, nothing archived, and all to happen;$missing didn't" >&2
  exit 1
fi
say "Each load once, and the group has them all"
