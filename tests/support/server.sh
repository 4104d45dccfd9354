#!/usr/bin/env bash
# A PostgreSQL server of one's own in a folder: no TCP, the role "tarvel" without a password, gone with whoever started it.
#
#   server.sh FOLDER TEMPLATE [SETTING=VALUE…]
#
# TEMPLATE keeps a fresh cluster for the next time. Becomes the server; ends with 77 where PostgreSQL isn't installed.
set -euo pipefail
folder=$1 template=$2
shift 2
bin=$(ls -d /usr/lib/postgresql/*/bin 2>/dev/null | sort -V | tail -1)
[ -x "$bin/postgres" ] || exit 77
as=(setpriv --pdeathsig QUIT)
if [ "$(id -u)" = 0 ]; then
  user=$(id -un postgres 2>/dev/null || echo nobody)
  as+=(--reuid="$user" --regid="$(id -g "$user")" --clear-groups)
  chown "$user" "$folder"
  chmod 755 "$folder"
fi
cd "$folder"
if [ ! -d data ]; then
  if [ -d "$template" ]; then
    cp -r "$template" data
    [ "$(id -u)" != 0 ] || chown -R "$user" data
    chmod 700 data
  else
    "${as[@]}" "$bin/initdb" -N -A trust -U tarvel -E UTF8 --locale=C -D "$folder/data" >initdb.log 2>&1
    cp -r data "$template.$$" && mv -T "$template.$$" "$template" 2>/dev/null || rm -rf "$template.$$"
  fi
fi
settings=()
for setting in fsync=off shared_buffers=16MB max_connections=40 "$@"; do settings+=(-c "$setting"); done
exec "${as[@]}" "$bin/postgres" -D data -k "$folder" -c listen_addresses= "${settings[@]}" >>"$folder/log" 2>&1
