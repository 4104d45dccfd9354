#!/bin/sh
# The service ombrey@chai under the systemd that runs here, with a terminal behind its one device. try-packages.sh runs
# it in a container where the packages are installed and the site "chai" is set up. $1: loads that the terminal offers,
# $2: the station's package.
set -eu
loads=$1
package=$2
service=ombrey@chai.service

fail() { journalctl -b --no-pager -u $service | tail -30 >&2; echo "try-service: $*" >&2; exit 1; }
await() { # seconds, command: until it succeeds
  tries=$(($1 * 10)) && shift
  until "$@"; do tries=$((tries - 1)); [ $tries -gt 0 ] || fail "never: $*"; sleep 0.1; done
}
is() { [ "$(systemctl show -p "$1" --value $service)" = "$2" ]; }
process() { systemctl show -p MainPID --value $service; }
another_process_than() { ! is MainPID "$1" && is SubState running; }
in_journal() { journalctl -b -q --no-pager -u $service | grep -c -e "$1" || true; }
# What the host is told stands above what merely happens.
told() { [ "$(journalctl -b -q --no-pager -u $service -p notice -o cat | grep -c '^hôte')" -ge "$1" ]; }

systemd-run -q --unit=terminal rg80 --lien /dev/ombrey-chai --chargements /debs/loads --cadence 9600
await 20 test -L /dev/ombrey-chai
line=$(readlink -f /dev/ombrey-chai)
chgrp dialout "$line" && chmod 0660 "$line"

systemctl start $service
is SubState running || fail "started, but not running"
await 60 told "$loads"
[ "$(in_journal 'Aucun chargement')" = 0 ] || fail "idle polls fill the journal"
echo "ready, $loads loads fetched"

mkdir -p /run/systemd/system/$service.d
printf '[Service]\nWatchdogSec=3\nRestartSec=0\n' >/run/systemd/system/$service.d/trial.conf
systemctl daemon-reload
systemctl restart $service
former=$(process)
sleep 8
is MainPID "$former" || fail "killed by its watchdog, although it is well"
kill -STOP "$former"
await 30 another_process_than "$former"
echo "a station that hangs is killed and started again"
former=$(process)
kill -KILL "$former"
await 20 another_process_than "$former"
echo "one that was killed is started again"

former=$(process)
DEBIAN_FRONTEND=noninteractive apt-get -qq -y --reinstall --no-install-recommends install "$package" >/tmp/apt 2>&1 || fail "$(cat /tmp/apt)"
await 20 another_process_than "$former"
echo "an upgrade starts it again"

start=$(date +%s%N)
systemctl stop $service
took=$((($(date +%s%N) - start) / 1000000))
[ $took -lt 2000 ] || fail "the stop took $took ms"
is Result success || fail "stopped, but $(systemctl show -p Result $service)"
echo "stopped in $took ms"
systemctl start $service
apt-get -qq -y remove ombrey >/tmp/apt 2>&1 || fail "$(cat /tmp/apt)"
! pgrep -x tarvel >/dev/null 2>&1 || fail "a removed station works on"
echo "a removal stops it"
