#!/usr/bin/env bash
# Builds the packages twice, looks at them with Debian's own tools, and lets them live in a clean root: installed, at
# work, brought up from the release before, removed, purged. Needs root. Run by ./test --packages.
set -euo pipefail
cd "$(dirname "$(readlink -f "$0")")/.."
work=$PWD/build/packages
version=$(dpkg-parsechangelog -S Version)
source_dir=$PWD
root=$work/root

say() { printf '\033[1m== %s\033[0m\n' "$*"; }
fail() { printf 'try-packages: %s\n' "$*" >&2; exit 1; }

# $1: folder that gets the packages of the tree in its folder "ombrey"; what stands in the environment is the build's.
build_packages() {
  (cd "$1/ombrey" && DEB_BUILD_OPTIONS="nocheck parallel=$(nproc)" dpkg-buildpackage -b -us -uc) >"$1/log" 2>&1 ||
    { tail -40 "$1/log" | cut -c -300 >&2; fail "dpkg-buildpackage failed: $1/log"; }
}
# The tree as it stands here, without what was built.
copy_tree() { mkdir -p "$1/ombrey" && tar c --exclude=./build --exclude=./.git . | tar x -C "$1/ombrey"; }
packages_of() { find "$work/$1" -maxdepth 1 -name "${2:-*}_*.deb" ! -name '*-dbgsym_*' | sort; }

build_this_release() {
  say "Packages of this tree, twice: in another folder, zone, language and mask"
  copy_tree "$work/one"
  build_packages "$work/one"
  copy_tree "$work/another/folder"
  (umask 027 && TZ=Pacific/Kiritimati LC_ALL=C HOME=/nowhere build_packages "$work/another/folder")
  local deb
  for deb in "$work"/one/*.deb; do
    cmp "$deb" "$work/another/folder/${deb##*/}" || fail "not the same bytes twice: ${deb##*/}"
  done
}

# 2.0 in its console edition, the last tree whose bases have no schema number: what stood ahead of the file that brings a
# base from one number to the next.
build_former_release() {
  local step
  step=$(git log --diff-filter=A --format=%H -1 -- host/schema_upgrade.cpp 2>/dev/null || true)
  [ -n "$step" ] || { say "Without the history there is no release to upgrade from"; return; }
  say "Package of the release before"
  local tree=$work/former/ombrey
  mkdir -p "$tree" && git archive "$step^" | tar x -C "$tree"
  # Its own entry stands second: the first one announced what was to come.
  sed -i '0,/^ -- /{d}' "$tree/debian/changelog" && sed -i '1{/^$/d}' "$tree/debian/changelog"
  sed -i 's|-DOMBREY_BENCH=OFF|& -DOMBREY_WINDOWS=OFF -DCMAKE_INSTALL_DOCDIR=share/doc/ombrey|' "$tree/debian/rules"
  DH_OPTIONS='-Nombrey-qt -Nombrey-postgresql' build_packages "$work/former"
}

# $1: a command whose every word on its outputs is a fault.
silent() {
  local said
  said=$("$@" 2>&1) || true
  [ -z "$said" ] || fail "$* says: $said"
}

look_at_packages() {
  say "lintian, the desktop's and the catalogue's entries, manual pages, libraries"
  silent lintian --allow-root --fail-on none --display-level '>=warning' "$work"/one/*.changes
  local unpacked=$work/unpacked deb page program
  for deb in $(packages_of one); do dpkg-deb -x "$deb" "$unpacked"; done
  [ -f "$unpacked/usr/share/doc/ombrey/docs/guide-operateur.md" ] || fail "the guide isn't where F1 looks for it"
  silent desktop-file-validate "$unpacked"/usr/share/applications/*.desktop
  appstreamcli validate --no-net "$unpacked"/usr/share/metainfo/*.xml >"$work/appstream" 2>&1 || fail "$(cat "$work/appstream")"
  while read -r page; do
    silent env LC_ALL=C.UTF-8 MANROFFSEQ= MANWIDTH=80 sh -c 'man --warnings -E UTF-8 -l -Tutf8 -Z "$1" >/dev/null' - "$page"
  done < <(find "$unpacked/usr/share/man" -name '*.gz')
  for program in "$unpacked"/usr/bin/* "$unpacked"/usr/lib/*/ombrey/PlgInOmbrey.so; do
    ldd "$program" >"$work/libraries" || fail "$program wants what isn't here"
    ! grep -e Qt -e libpq "$work/libraries" || fail "$program wants a library that a console has no need of"
    ! grep -aq "$work" "$program" || fail "$program names the folder that it was built in"
  done
}

in_root() { chroot "$root" env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 DEBIAN_FRONTEND=noninteractive "$@"; }
as_service() { in_root runuser -u ombrey -- env HOME=/var/lib/ombrey/chai "$@"; }
install_in_root() { in_root sh -c "apt-get -qq -y --no-install-recommends --allow-downgrades install $*" >"$work/apt" 2>&1 || { cat "$work/apt" >&2; fail "not to be installed: $*"; }; }
# Ends the program of this name space that bears the name.
end() {
  local process name
  for process in /proc/[0-9]*; do
    name=
    { read -r name <"$process/comm"; } 2>/dev/null || true
    [ "$name" != "$1" ] || kill -TERM "${process#/proc/}"
  done
}
# Every file of the root that isn't the package manager's own business.
files_of_root() {
  (cd "$root" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./sys -o -path ./run -o -path ./tmp -o -path ./debs \
    -o -path ./var/cache -o -path ./var/log -o -path ./var/lib/apt -o -path ./var/lib/dpkg -o -path ./root \) -prune -o -print | sort)
}

make_root() {
  say "A clean root"
  [ -f "$work/../root.tar" ] || mmdebstrap --quiet --variant=minbase --include=systemd-sysv,dbus,procps "$(. /etc/os-release && echo "$VERSION_CODENAME")" "$work/../root.tar"
  mkdir "$root" && tar x -C "$root" -f "$work/../root.tar"
  mount -t proc proc "$root/proc"
  mount --rbind /dev "$root/dev"
  cp /etc/resolv.conf "$root/etc/resolv.conf"
  [ ! -f /etc/apt/apt.conf ] || cp /etc/apt/apt.conf "$root/etc/apt/"
  printf '#!/bin/sh\nexit 101\n' >"$root/usr/sbin/policy-rc.d" && chmod +x "$root/usr/sbin/policy-rc.d"
  echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/trial"
  mkdir "$root/debs" && cp $(packages_of one) "$root/debs/"
  [ ! -d "$work/former" ] || cp $(packages_of former) "$root/debs/"
  in_root apt-get -qq update
  # Installed once and purged, so that what the packages lean on is there ahead of the list of files.
  install_in_root "/debs/ombrey_${version}_*.deb" "/debs/ombrey-rg80_${version}_*.deb"
  in_root apt-get -qq -y purge ombrey ombrey-rg80 >/dev/null 2>&1
  files_of_root >"$work/files.before"
}

# The terminal has made its line.
await_line() {
  timeout 30 sh -c 'until [ -L "$1" ]; do sleep 0.1; done' - "$root/tmp/rg80" || fail "no terminal: $(cat "$work/rg80.log")"
}

# The terminal with so many loads from a number on, and the service's own command line; $3: what rg80 is told besides.
collect() {
  local loads=$1 first=$2 command terminal station
  command=$(in_root sed -n 's/^ExecStart=//p' "/lib/systemd/system/ombrey@.service")
  awk -v first="$first" -v loads="$loads" -v day="$(date +%d%m%y)" 'BEGIN { for (n = first; n < first + loads; n++)
    printf "%04d%s0742%s%06d%06d001100000005011251%04d007\n", n, day, "0755", 101, 101, 4000 + n }' >"$root/tmp/loads"
  as_service timeout 120 rg80 --lien /tmp/rg80 --chargements /tmp/loads --cadence 9600 --jusqu-a-vide >"$work/rg80.log" 2>&1 &
  terminal=$!
  await_line
  as_service timeout 120 ${command//%i/chai} </dev/null >"$work/station.log" 2>&1 &
  station=$!
  wait $terminal || { cat "$work/station.log" "$work/rg80.log" >&2; fail "the terminal keeps loads"; }
  end tarvel
  wait $station || { cat "$work/station.log" >&2; fail "the station ended with $?"; }
  rm -f "$root/tmp/rg80"
}

# Numbers of today's loads in the base, in their order.
loads_in_base() {
  printf 'liste\nfin\n' | as_service tarvel --console --sans-operateur --ini /etc/ombrey/chai.ini |
    awk -F ' *[|] *' '/^ *Chai / {on = 1; next} on && NF > 5 {print $2 + 0; next} {on = 0}' | sort -n | tr '\n' ' '
}
expect_loads() { [ "$(loads_in_base)" = "$(seq -s ' ' "$1") " ] || fail "loads in the base: $(loads_in_base), not 1 to $1"; }

make_site() {
  in_root sh -ec 'install -m 0640 -g ombrey /usr/share/doc/ombrey/examples/site.ini /etc/ombrey/chai.ini
    sed -i -e s/SITE/chai/ -e s,^Port=.*,Port=/tmp/rg80, -e "s/^Période.*/Période interrogation=200/" /etc/ombrey/chai.ini
    install -d -o ombrey -g ombrey -m 0750 /var/lib/ombrey/chai'
  as_service tarvel --creer-base /var/lib/ombrey/chai/cave.db --exemple
}

# A stop in the midst of a load, on a line so slow that it is one for sure.
stop_in_a_load() {
  say "Stopped in the midst of a load"
  local start station
  as_service timeout 60 rg80 --lien /tmp/rg80 --chargements /tmp/loads --cadence 300 >"$work/rg80.log" 2>&1 &
  await_line
  as_service tarvel --console --sans-operateur --ini /etc/ombrey/chai.ini </dev/null >"$work/station.log" 2>&1 &
  station=$!
  timeout 60 sh -c 'until grep -q offert "$1"; do sleep 0.05; done' - "$work/rg80.log" || fail "no load was offered"
  sleep 0.5
  start=$(date +%s%N)
  end tarvel
  wait $station || fail "stopped with $?"
  local took=$((($(date +%s%N) - start) / 1000000))
  end rg80
  wait || true
  rm -f "$root/tmp/rg80"
  [ $took -lt 2000 ] || fail "the end took $took ms"
  ! grep 'acquitté,' "$work/rg80.log" || fail "a load was acknowledged that the stop had cut off"
  echo "ended after $took ms"
}

live() {
  local done=0
  if [ -d "$work/former" ]; then
    say "The release before at work"
    local former
    former=$(dpkg-parsechangelog -l "$work/former/ombrey/debian/changelog" -S Version)
    install_in_root "/debs/ombrey_${former}_*.deb" "/debs/ombrey-rg80_${former}_*.deb"
    make_site && collect 3 1 && done=3
    say "Upgrade to this release, with its base"
    install_in_root "/debs/ombrey_${version}_*.deb" "/debs/ombrey-rg80_${version}_*.deb"
    as_service tarvel --diagnostic --ini /etc/ombrey/chai.ini >"$work/diagnostic" || true
    grep '^à voir  schéma' "$work/diagnostic" || fail "$(cat "$work/diagnostic")"
  else
    install_in_root "/debs/ombrey_${version}_*.deb" "/debs/ombrey-rg80_${version}_*.deb"
    make_site
  fi
  say "The service's command line as its user, eight loads"
  collect 8 $((done + 1))
  expect_loads $((done + 8))
  [ $done = 0 ] || [ -n "$(ls "$root"/var/lib/ombrey/chai/cave.db.schéma-*)" ] || fail "no copy of the former base"
  stop_in_a_load

  say "Diagnosis, unit, copy and way back"
  as_service rg80 --lien /tmp/rg80 >"$work/rg80.log" 2>&1 &
  await_line
  as_service tarvel --diagnostic --ini /etc/ombrey/chai.ini || fail "the diagnosis finds something bad"
  end rg80 && wait || true
  silent in_root systemd-analyze verify --man=no ombrey@chai.service ombrey-port@chai.service
  in_root systemd-analyze security --offline=true --threshold=20 ombrey@chai.service | tail -1
  ! in_root udevadm verify --help >/dev/null 2>&1 || silent in_root udevadm verify
  as_service tarvel --ini /etc/ombrey/chai.ini --sauvegarder /var/lib/ombrey/chai/copie.db
  as_service rm /var/lib/ombrey/chai/cave.db
  as_service tarvel --ini /etc/ombrey/chai.ini --restaurer /var/lib/ombrey/chai/copie.db
  expect_loads $((done + 8))
  in_root sh -c "apt-get -qq -y --no-install-recommends --simulate install /debs/ombrey-qt_*.deb /debs/ombrey-doc_${version}_*.deb" >/dev/null || fail "ombrey-qt or -doc can't be installed"
}

leave() {
  say "Removed, then purged: the bases stay, and where they are is said"
  in_root apt-get -qq -y remove ombrey ombrey-rg80 >"$work/apt" 2>&1 || fail "$(cat "$work/apt")"
  [ -f "$root/etc/ombrey/chai.ini" ] || fail "removal took the settings"
  in_root dpkg --purge ombrey ombrey-rg80 >"$work/apt" 2>&1 || fail "$(cat "$work/apt")"
  grep /var/lib/ombrey "$work/apt" || fail "purging doesn't say where the bases are"
  files_of_root >"$work/files.after"
  comm -13 "$work/files.before" "$work/files.after" | tee "$work/files.left"
  ! grep -v -x -e ./var/lib/ombrey -e ./var/lib/ombrey/chai -e './var/lib/ombrey/chai/[^/]*\.db[^/]*' "$work/files.left" ||
    fail "more than the bases is left"
  [ -f "$root/var/lib/ombrey/chai/cave.db" ] || fail "the base is gone"
  comm -23 "$work/files.before" "$work/files.after" | grep . && fail "purging took what it hadn't brought" || true
}

# The packages once more, for a systemd that runs.
prepare_service() {
  install_in_root "/debs/ombrey_${version}_*.deb" "/debs/ombrey-rg80_${version}_*.deb"
  rm -r "$root/var/lib/ombrey"
  make_site
  in_root sed -i 's,^Port=.*,Port=/dev/ombrey-chai,' /etc/ombrey/chai.ini
  rm "$root/usr/sbin/policy-rc.d"
  cp packaging/try-service.sh "$root/tmp/loads" "$root/debs/"
}

under_systemd() {
  say "Under a running systemd"
  SYSTEMD_NSPAWN_UNIFIED_HIERARCHY=1 timeout 600 systemd-nspawn --quiet -D "$root" --boot --register=no --keep-unit \
    --console=pipe </dev/null >"$work/systemd.log" 2>&1 &
  local container=$! manager= code
  for _ in $(seq 300); do
    manager=$(pgrep -P "$(pgrep -P $container -x systemd-nspawn || echo 1)" -x systemd || true)
    [ -z "$manager" ] || break
    sleep 0.2
  done
  [ -n "$manager" ] || fail "no systemd can be run here: $(cat "$work/systemd.log")"
  nsenter -t "$manager" -a env PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 timeout 300 sh -c '
    until systemctl is-active --quiet basic.target 2>/dev/null; do sleep 0.2; done
    sh /debs/try-service.sh 8 "/debs/ombrey_$1"_*.deb' - "$version" && code=0 || code=$?
  kill "$container"
  wait $container || true
  [ $code = 0 ] || fail "the service isn't sound"
}

if [ "${1:-}" != --inside ]; then
  [ "$(id -u)" = 0 ] || fail "root has to run this"
  rm -rf --one-file-system "$work"
  mkdir -p "$work"
  build_this_release
  build_former_release
  look_at_packages
  # The mounts go with the name space.
  unshare --mount-proc --pid --fork --kill-child "$0" --inside
  under_systemd
  say "The packages are sound"
else
  make_root
  live
  leave
  prepare_service
fi
