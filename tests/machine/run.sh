#!/usr/bin/env bash
# The finished programs on Linux's own serial drivers, in a virtual machine without hardware help. $1: folder of the
# programs; what is made for it stands under build/machine. Prints one line a case; fails when one is bad.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
bin=$(readlink -f "$1")
cd "$here/../.."
mkdir -p build/machine && cd build/machine
rm -rf guest said ./*.log ./*.link && mkdir guest

fail() { printf 'machine: %s\n' "$*" >&2; exit 1; }

# The package's real name stands behind the one that always means the newest. It is unpacked, never installed.
unpack_kernel() {
  [ ! -f kernel/ready ] || return 0
  local package
  package=$(apt-cache depends linux-image-amd64 | sed -n 's/.*Depends: \(linux-image-[0-9]\)/\1/p' | head -1)
  [ -n "$package" ] || fail "apt knows no kernel package"
  rm -rf kernel ./*.deb && apt-get download -q "$package" >download.log 2>&1 || fail "no kernel to be had: $(tail -2 download.log)"
  dpkg-deb -x "$package"_*.deb kernel && rm -f ./*.deb
  depmod -b kernel "$(ls kernel/lib/modules)"
  touch kernel/ready
}

# With all that it leans on, at the places where it looks for it.
put_program() {
  cp "$1" guest/bin/
  ldd "$1" | grep -o '/[^ ]*' | while read -r library; do cp -L --parents "$library" guest/; done
}

build_guest() {
  local release=$1 module
  mkdir -p guest/bin guest/etc guest/proc guest/sys guest/dev guest/tmp
  cp /bin/busybox guest/bin/busybox && ln -s busybox guest/bin/sh
  cp "$here/init" guest/init && chmod +x guest/init && cp "$here/cases.sh" "$here/drivers.sh" guest/
  printf 'root:x:0:0::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n' >guest/etc/passwd
  printf 'root:x:0:\ndialout:x:20:\nnogroup:x:65534:\n' >guest/etc/group
  put_program "$(command -v setpriv)" && put_program "$bin/tarvel" && put_program "$bin/PlgInOmbrey.so" && put_program "$bin/rg80"
  for module in xhci-pci ftdi_sio usbserial cdc-acm dummy_hcd g_serial usb_f_acm usb_f_serial; do
    modprobe -d "$PWD/kernel" -S "$release" --show-depends "$module" | sed -n 's|^insmod .*/kernel/\(lib/modules/[^ ]*\).*|\1|p'
  done | sort -u | while read -r module; do (cd kernel && cp --parents "$module" ../guest/); done
  cp "kernel/lib/modules/$release"/modules.{builtin,builtin.modinfo,order} "guest/lib/modules/$release/"
  depmod -b guest "$release"
  "$bin/tarvel" --creer-base guest/cave.db --exemple
  # Some members more make files of some 20,000 bytes in all.
  cp guest/cave.db guest/full.db
  sqlite3 guest/full.db "WITH n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 1270)
    INSERT INTO Coopérateur (IdCoopérateur, Nom) SELECT i, 'Membre numéro ' || i FROM n;
    INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, IdGrp) SELECT IdCoopérateur, IdCoopérateur, IdCoopérateur, 100, '1'
    FROM Coopérateur WHERE CAST(IdCoopérateur AS INTEGER) >= 1000"
  (cd guest && find . | cpio -o -H newc --quiet | gzip -1) >initrd.gz
}

# What a pseudo-terminal takes of the same base.
take_reference() {
  local station
  rm -rf reference* && cp guest/full.db reference.db
  printf '[PlugInOmbrey]\nPort=%s\nBauds=19200\nParité=aucune\nBitsStop=1\nTailleMots=8\n' "$PWD/reference.link" >reference.ini
  "$bin/rg80" --lien reference.link --f6 --cadence 19200 --sortie reference.received >reference.log &
  terminals[reference]=$!
  until [ -L reference.link ]; do sleep 0.05; done
  { printf 'menu\n' && await_word reference prêt 30 && sleep 3 && printf 'transferer\n' && await_word reference observations 120 && printf 'fermer\nfin\n'; } |
    XDG_CONFIG_HOME=$PWD "$bin/tarvel" --console --base reference.db --ini reference.ini --dossier reference.station >reference.said
  end_terminal reference
  [ "$(cat reference.received/fichier-*.txt | wc -c)" -gt 20000 ] || fail "the reference is too short"
}

# A terminal outside: $1: line, $2: bauds, the rest: rg80's options.
declare -A terminals=()
start_terminal() {
  local line=$1 bauds=$2
  shift 2
  end_terminal "$line"
  rm -rf "$line.received"
  echo "$line $bauds" >&5
  timeout 600 "$bin/rg80" --lien "$line.link" --cadence "$bauds" --sortie "$line.received" "$@" >"$line.log" 2>&1 &
  terminals[$line]=$!
  until [ -L "$line.link" ]; do sleep 0.05; done
}
end_terminal() {
  [ -z "${terminals[$1]:-}" ] || { kill "${terminals[$1]}" 2>/dev/null || true; wait "${terminals[$1]}" 2>/dev/null || true; }
  terminals[$1]=
  rm -f "$1.link"
}
await_terminal() { # $1: line, $2: seconds
  local limit=$((SECONDS + $2)) code=0
  while kill -0 "${terminals[$1]}" 2>/dev/null; do
    [ $SECONDS -lt $limit ] || return 1
    sleep 0.1
  done
  wait "${terminals[$1]}" || code=$?
  terminals[$1]=
  return $code
}
await_word() { timeout "$3" sh -c 'until grep -q "$2" "$1"; do sleep 0.1; done' - "$1.log" "$2"; }
monitor() { printf '%s\n' "$1" | socat -t 0.3 - UNIX-CONNECT:monitor.socket >/dev/null; }

answer() {
  local word=$1
  shift
  case $word in
    rg80) start_terminal "$@" ;;
    attendre) await_terminal "$@" || { echo non; return; } ;;
    dit) await_word "$@" || { echo non; return; } ;;
    finir) end_terminal "$1" ;;
    brancher) monitor 'device_add usb-serial,id=adaptateur,chardev=usb' ;;
    debrancher) monitor 'device_del adaptateur' ;;
    pareils) diff -r reference.received "$1.received" >/dev/null || { echo non; return; } ;;
    rythme) echo "$*" >&5 ;;
  esac
  echo ok
}

unpack_kernel
release=$(ls kernel/lib/modules)
build_guest "$release"
c++ -std=c++20 -O1 "$here/pacer.cpp" -o pacer
take_reference
mkfifo -m 600 input pace output 2>/dev/null || true
exec 4<>input 5<>pace
trap 'for line in "${!terminals[@]}"; do end_terminal "$line"; done; [ -z "${machine:-}" ] || kill "$machine" 2>/dev/null || true' EXIT
./pacer serie="$PWD/serie.link" usb="$PWD/usb.link" -- qemu-system-x86_64 -accel tcg,thread=multi -cpu max -smp 2 -m 512 -nodefaults -no-reboot \
  -display none -kernel kernel/boot/vmlinuz-* -initrd initrd.gz -append 'console=ttyS0 quiet no_timer_check panic=-1 random.trust_cpu=on mitigations=off' \
  -chardev stdio,id=console,signal=off -device isa-serial,chardev=console,iobase=0x3f8,irq=4 \
  -chardev 'socket,id=serie,fd={serie}' -device isa-serial,chardev=serie,iobase=0x2f8,irq=3 \
  -chardev 'socket,id=usb,fd={usb}' -device qemu-xhci \
  -monitor unix:monitor.socket,server=on,wait=off 3<input <pace >output 2>machine.log 5<&- &
machine=$!
exec 6<output # whose end is the machine's
bad=0 cases=0
while IFS= read -r -t "${MACHINE_PATIENCE:-300}" text <&6; do
  text=${text%$'\r'}
  printf '%s\n' "$text" >>said
  case $text in
    @fin) break ;;
    @*) answer ${text#@} >&4 ;;
    =*' mauvais '*) bad=$((bad + 1)) cases=$((cases + 1)); printf '%s\n' "${text#= }" ;;
    =*) cases=$((cases + 1)); printf '%s\n' "${text#= }" ;;
  esac
done
[ "${text:-}" = @fin ] || fail "the guest fell silent: build/machine/said"
printf '%s cases, bad: %s\n' "$cases" "$bad"
[ "$bad" = 0 ] && [ "$cases" -gt 0 ]
