#!/usr/bin/env bash
# The finished programs on Linux's own serial drivers, in a virtual machine without hardware help.
#   run.sh FOLDER [CASES...]   the folder of the programs; patterns of the cases' names, such as "*file*" (all)
# What is made for it stands under MACHINE_DIR (build/machine). Prints one line a case; fails when one is bad.
set -euo pipefail
here=$(dirname "$(readlink -f "$0")")
bin=$(readlink -f "$1")
shift
work=${MACHINE_DIR:-$here/../../build/machine}
mkdir -p "$work" && cd "$work"
rm -rf guest said carrier ./*.log ./*.link ./*.reçus && mkdir guest

fail() { printf 'machine: %s\n' "$*" >&2; exit 1; }

# The package's real name stands behind the one that always means the newest. What is fetched is unpacked, never installed.
unpack_kernel() {
  [ ! -f kernel/ready ] || return 0
  local package version fetched
  package=$(apt-cache depends linux-image-amd64 | sed -n 's/.*Depends: linux-image-\([0-9]\)/\1/p' | head -1)
  [ -n "$package" ] || fail "apt knows no kernel package"
  version=${package%%-*}
  rm -rf kernel fetched && mkdir fetched
  (cd fetched && apt-get download -q "linux-image-$package" "linux-headers-$package" "linux-headers-${package%-*}-common" \
    "linux-kbuild-${version%.*}" >../download.log 2>&1) || fail "no kernel to be had: $(tail -2 download.log)"
  for fetched in fetched/*.deb; do dpkg-deb -x "$fetched" kernel; done
  rm -rf fetched
  # The headers look for each other where they would be installed.
  sed -i "s|/usr/src/|$PWD/kernel&|" "kernel/usr/src/linux-headers-$package/Makefile"
  depmod -b kernel "$(ls kernel/lib/modules)"
  # Unpacked here, as it would take the guest half of its start.
  tail -c "+$(($(LC_ALL=C grep -abo -m1 -P '\xFD7zXZ\x00' kernel/boot/vmlinuz-* | head -1 | cut -d: -f1) + 1))" kernel/boot/vmlinuz-* |
    xz -dc >kernel/vmlinux 2>/dev/null || true # what stands behind it is no part of it
  touch kernel/ready
}

# The module that gives a driver flagged characters.
build_module() {
  mkdir -p module && cp "$here/flags.c" module/
  echo 'obj-m := flags.o' >module/Makefile
  make -s -C kernel/usr/src/linux-headers-"$1" M="$PWD/module" modules >module.log 2>&1 || fail "the module: $PWD/module.log"
}

# With all that it leans on, at the places where it looks for it.
put_program() {
  strip -o "guest/programs/$(basename "$1")" "$1" && chmod +x "guest/programs/$(basename "$1")"
  ldd "$1" | grep -o '/[^ ]*' | while read -r library; do cp -L --parents "$library" guest/; done
}

build_guest() {
  local release=$1 module octet program
  shift
  mkdir -p guest/bin guest/programs guest/etc guest/proc guest/sys guest/dev guest/tmp
  cp /bin/busybox guest/bin/busybox && ln -s busybox guest/bin/sh
  cp "$here/init" guest/init && chmod +x guest/init && cp "$here/cases.sh" "$here/drivers.sh" guest/
  printf '%s\n' "$@" >guest/wanted
  cp files.sum module/flags.ko guest/
  for octet in {0..255}; do printf '%b' "\\x$(printf %x "$octet")"; done >guest/octets
  printf 'root:x:0:0::/:/bin/sh\nnobody:x:65534:65534::/:/bin/sh\n' >guest/etc/passwd
  printf 'root:x:0:\ndialout:x:20:\nnogroup:x:65534:\n' >guest/etc/group
  for program in "$(command -v setpriv)" "$(command -v flock)" "$(command -v sqlite3)" "$bin"/{tarvel,PlgInOmbrey.so,rg80}; do
    put_program "$program"
  done
  for module in xhci-pci usbmon ftdi_sio usbserial cdc-acm dummy_hcd libcomposite configfs usb_f_acm usb_f_serial; do
    modprobe -d "$PWD/kernel" -S "$release" --show-depends "$module" | sed -n 's|^insmod .*/kernel/\(lib/modules/[^ ]*\).*|\1|p'
  done | sort -u | while read -r module; do (cd kernel && cp --parents "$module" ../guest/); done
  cp "kernel/lib/modules/$release"/modules.{builtin,builtin.modinfo,order} "guest/lib/modules/$release/"
  depmod -b guest "$release"
  cp cave.db full.db guest/
  (cd guest && find . | cpio -o -H newc --quiet) >initrd
}

build_bases() {
  rm -f {cave,full}.db*
  "$bin/tarvel" --creer-base cave.db --exemple
  # Some members more make files of some 20,000 bytes in all.
  cp cave.db full.db
  sqlite3 full.db "WITH n(i) AS (SELECT 1000 UNION ALL SELECT i + 1 FROM n WHERE i < 1270)
    INSERT INTO Coopérateur (IdCoopérateur, Nom) SELECT i, 'Membre numéro ' || i FROM n;
    INSERT INTO Métayage (IdMétayage, Propriétaire, Récoltant, Part, IdGrp) SELECT IdCoopérateur, IdCoopérateur, IdCoopérateur, 100, '1'
    FROM Coopérateur WHERE CAST(IdCoopérateur AS INTEGER) >= 1000"
}

# What a pseudo-terminal takes of the fuller base.
take_files() {
  rm -rf files* && cp full.db files.db
  printf '[Tarvel]\nBase=%s/files.db\n[PlugInOmbrey]\nPort=%s/files.link\nBauds=19200\nParité=aucune\nBitsStop=1\nTailleMots=8\n' \
    "$PWD" "$PWD" >files.ini
  "$bin/rg80" --lien files.link --f6 --sortie files.reçus >files.log &
  terminals[files]=$!
  until [ -L files.link ]; do sleep 0.05; done
  { printf 'menu\n' && await_word files.said attente && printf 'transferer\n' && await_word files.log 'observations) reçu' && printf 'fin\n'; } |
    XDG_CONFIG_HOME=$PWD "$bin/tarvel" --console --ini files.ini --dossier files.station >files.said
  end_terminal files
  cat files.reçus/fichier-*.txt | sha256sum >files.sum
  [ "$(cat files.reçus/fichier-*.txt | wc -c)" -gt 20000 ] || fail "the files are too short"
}
await_word() { timeout 60 sh -c 'until grep -q "$2" "$1"; do sleep 0.1; done' - "$@"; }

# A terminal outside: $1: line, $2: bauds, the rest: rg80's options; or what says everything again.
declare -A terminals=()
start_terminal() {
  local line=$1 bauds=$2 where=(--lien "$1.link")
  shift 2
  end_terminal "$line"
  rm -rf "$line.reçus"
  [ ! -e "$line.tty" ] || where=(--port "$line.tty")
  echo "$line $bauds" >&5
  timeout 600 "$bin/rg80" "${where[@]}" --cadence "$bauds" "$@" >"$line.log" 2>&1 &
  terminals[$line]=$!
  [ -e "$line.tty" ] || until [ -L "$line.link" ]; do sleep 0.05; done
}
start_echo() {
  echo "$1 $2" >&5
  socat "PTY,link=$1.link,raw,echo=0" EXEC:cat &
  terminals[$1]=$!
  until [ -L "$1.link" ]; do sleep 0.05; done
}
end_terminal() {
  [ -z "${terminals[$1]:-}" ] || { kill "${terminals[$1]}" 2>/dev/null || true; wait "${terminals[$1]}" 2>/dev/null || true; }
  terminals[$1]=
  rm -f "$1.link"
}
monitor() { printf '%s\n' "$1" | socat -t 0.3 - UNIX-CONNECT:monitor.socket; }
adapter=usb-serial,id=adaptateur,chardev=usb,serial=A1
# The machine's side of an adapter that was pulled out is gone a little later, and its monitor may say nothing for a while.
plug_in() { until monitor 'info usb' | grep -q adaptateur; do monitor "device_add $adapter" >/dev/null; done; }

# For those who work on the cases: MACHINE_STAY keeps the guest, and the file "again" (patterns of cases) starts them as
# they are by then.
again() {
  [ -n "${MACHINE_STAY:-}" ] || { echo fin; return; }
  printf '%s cases, bad: %s\n' "$cases" "$bad" >&2
  until [ -e again ]; do sleep 0.5; done
  mv again guest/wanted
  cp "$here/cases.sh" guest/
  { echo 'killall -9 tarvel rg80 2>/dev/null' && cat "$here/drivers.sh"; } >guest/drivers.sh
  tar cz -C guest cases.sh drivers.sh wanted | base64 -w0
  echo
}

answer() {
  local word=$1 line=${2:-} good=true
  shift
  case $word in
    rg80) start_terminal "$@" ;;
    echo) start_echo "$@" ;;
    servi) ! kill -0 "${terminals[$line]}" 2>/dev/null || good=false ;;
    dit) shift && grep -q "$*" "$line.log" || good=false ;;
    finir) end_terminal "$line" ;;
    brancher) plug_in ;;
    debrancher) monitor 'device_del adaptateur' >/dev/null ;;
    rebrancher) monitor $'device_del adaptateur\n'"device_add $adapter" >/dev/null && plug_in ;;
    pareils) [ "$(cat "$line.reçus"/fichier-*.txt | sha256sum)" = "$(cat files.sum)" ] || good=false ;;
    # The adapter that stays is the first that the machine finds.
    puce) echo "$(sed -n "s/.*:1 baud rate //p" machine.log | tail -1)" \
      "$(sed -n "s/.*:1 parity \(.\), data bits \(.\), stop bits \(.\)/\1 \2 \3/p" machine.log | tail -1)" && return ;;
    porteuse) [ "$2" = oui ] && : >carrier || rm -f carrier ;;
    rythme) echo "$*" >&5 ;; # 0 bauds: a break
  esac
  $good && echo ok || echo non
}

unpack_kernel
c++ -std=c++20 -O1 "$here/pacer.cpp" -o pacer
cc -shared -fPIC "$here/modem.c" -o modem.so
build_bases
take_files
release=$(ls kernel/lib/modules)
build_module "$release"
build_guest "$release" "${@:-*}"
mkfifo -m 600 input pace output 2>/dev/null || true
exec 4<>input 5<>pace
# A line without a pacer, whose chip finds neither carrier nor CTS; it stays when its terminal goes.
socat PTY,link=chip.tty,raw,echo=0 PTY,link=nu.tty,raw,echo=0 &
bare=$!
trap 'kill $bare; for line in "${!terminals[@]}"; do end_terminal "$line"; done; [ -z "${machine:-}" ] || kill "$machine" 2>/dev/null || true' EXIT
until [ -e nu.tty ] && [ -e chip.tty ]; do sleep 0.05; done
exec 7<>nu.tty
./pacer serie="!$PWD/serie.link" usb="$PWD/usb.link" fixe="$PWD/fixe.link" -- env LD_PRELOAD="$PWD/modem.so" qemu-system-x86_64 -accel tcg,thread=multi -cpu max -smp 2 -m 512 -nodefaults -no-reboot \
  -display none -kernel kernel/vmlinux -initrd initrd -append 'console=ttyS0 quiet no_timer_check nokaslr apparmor=0 audit=0 panic=-1 random.trust_cpu=on mitigations=off' \
  -chardev stdio,id=console,signal=off -device isa-serial,chardev=console,iobase=0x3f8,irq=4 \
  -chardev 'socket,id=serie,fd={serie},mux=on' -device isa-serial,chardev=serie,iobase=0x2f8,irq=3 \
  -chardev "serial,id=nu,path=$PWD/chip.tty" -device isa-serial,chardev=nu,iobase=0x3e8,irq=5 \
  -chardev 'socket,id=usb,fd={usb}' -chardev 'socket,id=fixe,fd={fixe}' -device qemu-xhci -device usb-serial,chardev=fixe,serial=A0 \
  -trace usb_serial_set_baud -trace usb_serial_set_data -monitor unix:monitor.socket,server=on,wait=off 3<input <pace >output 2>machine.log 5<&- &
machine=$!
exec 6<output # whose end is the machine's
bad=0 cases=0
while IFS= read -r -t "${MACHINE_PATIENCE:-300}" text <&6; do
  text=${text%$'\r'}
  printf '%s\n' "$text" >>said
  case $text in
    @fin) break ;;
    @encore) again >&4 ;;
    @*) answer ${text#@} >&4 ;;
    =*' mauvais '*) bad=$((bad + 1)) cases=$((cases + 1)); printf '%s\n' "${text#= }" ;;
    =*) cases=$((cases + 1)); printf '%s\n' "${text#= }" ;;
  esac
done
[ "${text:-}" = @fin ] || fail "the guest fell silent: $PWD/said"
printf '%s cases, bad: %s\n' "$cases" "$bad"
[ "$bad" = 0 ] && [ "$cases" -gt 0 ]
