#!/usr/bin/env bash
# A base on a server that wants a password and proves who it is: the station's address as the guide writes it. The password
# stands in a file of its owner's and nowhere else.
#
#   secured.sh BIN
#
# Ends with 77 where there is no server, no openssl or no module for it.
set -euo pipefail
bin=$(readlink -f "$1")
support=$(dirname "$(readlink -f "$0")")/../support
compgen -G '/usr/lib/postgresql/*/bin/postgres' >/dev/null && command -v openssl >/dev/null && [ -e "$bin/tarvel-postgresql.so" ] || exit 77
work=$(mktemp -d "${TMPDIR:-/tmp}/ombrey-secured.XXXXXX")
chmod 755 "$work"
mkdir "$work/server"
server=
trap '[ -z "$server" ] || { kill -QUIT "$server"; wait "$server"; } 2>/dev/null || true; rm -rf "$work"' EXIT
secret=Ch4sselas-secret port=$((20000 + RANDOM % 20000))
export PGPASSFILE=$work/pgpass XDG_CONFIG_HOME=$work/config
(umask 077 && echo "localhost:$port:ombrey:tarvel:$secret" >"$PGPASSFILE")

cd "$work"
quiet() { "$@" >>"$work/openssl.log" 2>&1 || { cat "$work/openssl.log" >&2; exit 1; }; }
for ca in cave other; do
  quiet openssl req -x509 -newkey rsa:2048 -nodes -days 2 -subj "/CN=$ca" -keyout $ca.key -out $ca.crt
done
quiet openssl req -newkey rsa:2048 -nodes -subj /CN=localhost -keyout server/key -out server.csr
quiet openssl x509 -req -in server.csr -CA cave.crt -CAkey cave.key -CAcreateserial -days 2 -out server/crt
printf 'local all all trust\nhostssl all all all scram-sha-256\n' >server/hba
chmod 600 server/key
[ "$(id -u)" != 0 ] || chown "$(id -un postgres 2>/dev/null || echo nobody)" server/*
"$support/server.sh" "$work/server" "$work/cluster" listen_addresses=localhost port=$port ssl=on \
  ssl_cert_file="$work/server/crt" ssl_key_file="$work/server/key" hba_file="$work/server/hba" log_statement=none &
server=$!
ask() { psql -qAtX -h "$work/server" -p $port -U tarvel -d "$1" -c "$2"; }
until ask postgres 'SELECT 1' >/dev/null 2>&1; do kill -0 $server && sleep 0.1; done
ask postgres "ALTER ROLE tarvel PASSWORD '$secret'"
ask postgres 'CREATE DATABASE ombrey'

address() { echo "postgresql://tarvel@$1:$port/ombrey?sslmode=verify-full&sslrootcert=$work/$2.crt"; }
failed=
expect() { grep -q "$1" "$2" || { echo "not said: $1"; cat "$2"; failed=yes; }; }
"$bin/tarvel" --creer-base "$(address localhost cave)" --exemple
printf '[Tarvel]\nBase=%s\nCodeSite=2\n[PlugInOmbrey]\nPort=%s\n' "$(address localhost cave)" "$work/none" >tarvel.ini
"$bin/tarvel" --ini tarvel.ini --dossier "$work/post" --console --sans-operateur --duree 8 >station.log 2>&1 </dev/null &
station=$!
for _ in $(seq 100); do
  [ "$(ask ombrey "SELECT count(*) FROM pg_stat_ssl JOIN pg_stat_activity USING (pid) WHERE ssl AND application_name = 'tarvel'")" = 0 ] || break
  sleep 0.1
done
ask ombrey "SELECT 'ssl=' || ssl FROM pg_stat_ssl JOIN pg_stat_activity USING (pid) WHERE application_name = 'tarvel'" >ssl.log
ps axww -o args >ps.log
tr '\0' '\n' <"/proc/$station/cmdline" >>ps.log
wait $station || true
expect ssl=true ssl.log

# Not the server that was meant: its name, its guarantor; then a password that has changed.
refused() { ! "$bin/tarvel" --diagnostic --base "$1" --ini tarvel.ini >"$2" 2>&1 || { echo "taken: $1"; failed=yes; }; expect 'ne peut pas être joint' "$2"; }
sed -i 's/localhost/127.0.0.1/' "$PGPASSFILE"
refused "$(address 127.0.0.1 cave)" name.log
sed -i 's/127.0.0.1/localhost/' "$PGPASSFILE"
refused "$(address localhost other)" guarantor.log
ask postgres "ALTER ROLE tarvel PASSWORD 'another'"
refused "$(address localhost cave)" password.log
expect 'password authentication failed' password.log

for file in ps.log *.log server/log; do ! grep -q "$secret" "$file" || { echo "the password stands in $file"; failed=yes; }; done
[ -z "$failed" ]
