# Runs in the guest. A line that begins with "@" asks the outside for something, which answers with a line; one that
# begins with "=" is a case: its name, "bon" or "mauvais", its figure. Each lane of cases works in a folder of its own:
#   driver  its name          port  the device          line  where the terminal stands: a line outside, "dans" (on
#   this machine's own gadget, whose far side is "far") or "pty"     pace  at which a long file goes
ask() {
  exec 9>/tmp/asking
  flock 9
  echo "@$*" >/dev/ttyS0
  read -r answer </dev/ttyS0
  exec 9>&-
  [ "$answer" = ok ]
}
now() { read -r now _ </proc/uptime; now=${now%.*}${now#*.}0; } # milliseconds
# $1: seconds; the rest: what is repeated until it is true.
await() {
  now
  limit=$((now + $1 * 1000))
  shift
  until "$@"; do
    now
    [ "$now" -lt $limit ] || return 1
    sleep 0.1
  done
}
since() { now; echo "$(((now - $1) / 1000)),$(((now - $1) / 100 % 10)) s"; }

# $1: case; the rest: what plays it, which ends with a verdict.
try() {
  name="$1, $driver"
  shift
  ! wanted || "$@"
}
wanted() {
  while read -r pattern; do
    # shellcheck disable=SC2254 # it is a pattern
    case $name in $pattern) return 0 ;; esac
  done </wanted
  return 1
}
# $1: 0 when all is well; $2: figure.
verdict() {
  [ "$1" = 0 ] && echo "= $name | bon | $2" && return
  { echo "= $name | mauvais | $2"; tail -n 15 said rg80.log 2>/dev/null | sed "s/^/# $driver: /"; } >report
  cat report
}

# $1: bauds, $2: parity, $3: bits, $4: stop bits.
settings() {
  bauds=$1
  printf '[Tarvel]\nBase=%s/cave.db\n[PlugInOmbrey]\nPort=%s\nBauds=%s\nParité=%s\nTailleMots=%s\nBitsStop=%s\n%s\n' \
    "$PWD" "$port" "$1" "${2:-aucune}" "${3:-8}" "${4:-1}" 'Période interrogation=200' >poste.ini
}
fresh_base() { # $1: bauds, $2: the base it is copied from
  rm -rf cave.db* cave.* import données said
  cp "${2:-/cave.db}" cave.db
  settings "$1"
}
loads() { loads=$(sqlite3 cave.db 'SELECT count(*), count(DISTINCT NoChargement) FROM Chargement'); }
all_in() { loads && [ "$loads" = '8|8' ]; }

# The terminal of the lane's line; $@: rg80's options.
terminal() {
  rm -rf reçus
  case $line in
    dans) rg80 --port "$far" --cadence "$bauds" --sortie reçus "$@" >rg80.log 2>&1 & terminal=$! ;;
    pty) rg80 --lien "$port" --cadence "$bauds" --sortie reçus "$@" >rg80.log 2>&1 & terminal=$!; await 20 [ -L "$port" ] ;;
    *) ask rg80 "$line" "$bauds" --sortie "$line.reçus" "$@" ;;
  esac
}
heard() { case $line in dans | pty) grep -q "$1" rg80.log ;; *) ask dit "$line" "$1" ;; esac; }
served() { case $line in dans | pty) ! kill -0 $terminal 2>/dev/null ;; *) ask servi "$line" ;; esac; }
dismiss() {
  case $line in
    dans | pty) kill "${1:--TERM}" $terminal 2>/dev/null; wait $terminal 2>/dev/null ;;
    *) ask finir "$line" ;;
  esac
}
# Whether the terminal has the five files as a pseudo-terminal gets them.
files_alike() {
  case $line in dans | pty) [ "$(cat reçus/fichier-*.txt | sha256sum)" = "$(cat /files.sum)" ] ;; *) ask pareils "$line" ;; esac
}

# A station with the commands of fifo 7 and its words in "said"; $@: what runs it.
start() {
  rm -f commands && mkfifo commands
  "$@" tarvel --console $alone --ini poste.ini <commands >said 2>&1 &
  station=$!
  exec 7>commands
}
alone=--sans-operateur
said() { grep -q "$1" said; }
tell() { echo "$1" >&7; }
# The station's end, by a signal or by a command, in "took" milliseconds.
stop() {
  now
  begun=$now
  case ${1:-TERM} in fin) tell fin ;; *) kill -"${1:-TERM}" $station ;; esac
  wait $station 2>/dev/null
  code=$?
  now
  took=$((now - begun))
  exec 7>&-
  return $code
}
opened() { said 'commande « menu »' || ! kill -0 $station 2>/dev/null; }
idle_station() { start && await 60 opened && said 'commande « menu »'; }
# A station that has begun to send a file of some 11,000 bytes. $1: bauds.
into_a_file() {
  fresh_base "$1" /full.db
  terminal --f6
  idle_station
  tell menu
  await 60 said 'en attente de fichiers' || return
  tell 'decocher ChkAppelations'
  tell transferer
  await 60 heard 'coopérateurs) : prêt'
}

eight_loads() { # $1: bauds
  fresh_base "$1"
  terminal --hasard 8 --jusqu-a-vide
  now
  begun=$now
  start
  await 200 served
  full=$?
  figure=$(since "$begun")
  stop
  all_in && [ $full = 0 ]
  verdict $? "$figure, $loads"
}

whole_files() { # $1: bauds, $2: what happens on the way
  fresh_base "$1" /full.db
  terminal --f6
  [ -z "$2" ] || alone=
  idle_station
  alone=--sans-operateur
  tell menu
  await 60 said 'en attente de fichiers'
  now
  begun=$now
  tell transferer
  await 60 heard 'coopérateurs) : prêt'
  $2
  await 120 heard 'observations) reçu'
  figure=$(since "$begun")
  files_alike
  alike=$?
  stop
  verdict $alike "$figure"
  dismiss
}

# The end in the midst of a file takes no longer than on a pseudo-terminal. A busy machine only adds to either: of up to
# three tries the best of each counts. $1: how it is ended, $2: what the terminal does before, if anything.
end_in_a_file() {
  best=60000 best_pty=60000
  for turn in 1 2 3; do
    (line=pty port=$PWD/pty.link && into_a_file "${pace:-1200}" && sleep 1 && stop "$1"; echo $took >pty.took; dismiss)
    least best_pty "$(cat pty.took)"
    into_a_file "${pace:-1200}" && sleep 1
    code=$?
    ${2:-true}
    stop "$1" && [ $code = 0 ]
    code=$?
    dismiss
    least best $took
    beside=$((best - best_pty))
    [ $code = 0 ] && [ $beside -lt 100 ] && [ $beside -gt -100 ] && break
  done
  [ $code = 0 ] && [ $beside -lt 100 ]
  verdict $? "$best ms, beside a pseudo-terminal $beside ms"
}
least() { [ "${2:-60000}" -ge "$(eval echo "\$$1")" ] || eval "$1=$2"; }
takes_nothing() {
  case $line in dans) dismiss -KILL ;; *) ask rythme "$line" 1 ;; esac
  sleep 2
}

# What passes while the port is set up as a station leaves it: the far side says everything again. $1: what is done in
# between, $2: bauds.
both_ways() {
  fresh_base "${2:-19200}"
  idle_station
  [ -c "$port" ] && exec 8<>"$port" || { stop; return 1; }
  stop
  case $line in
    dans) stty -F "$far" raw -echo; cat <"$far" >"$far" & terminal=$! ;;
    *) ask echo "$line" "$bauds" ;;
  esac
  sleep 0.5
  cat <&8 >echoed &
  reader=$!
  cat /octets >&8
  await 20 same_size
  ${1:-true}
  cat /octets >&8
  await 20 same_size 2
  sleep 0.5
  kill $reader
  exec 8>&-
  dismiss
  cat /octets /octets | cmp - echoed
}
same_size() { [ "$(wc -c <echoed)" -ge $((256 * ${1:-1})) ]; }
all_values() {
  both_ways true "$1"
  verdict $? "$(wc -c <echoed) octets"
}

# A break that the chip sees: the driver counts it, and nothing is read.
breaks() {
  before=$(counted brk)
  both_ways 'ask rythme serie 0'
  alike=$?
  after=$(counted brk)
  [ $alike = 0 ] && [ "${after:-0}" -gt "${before:-0}" ]
  verdict $? "breaks : ${before:-0}, ${after:-0}"
}
counted() { sed -n "/port:000002F8/s/.*$1:\([0-9]*\).*/\1/p" /proc/tty/driver/serial; }
# Characters with the flags of a line's faults: a wrong one is a NUL, a break and an overrun are nothing.
flagged() {
  fresh_base 9600
  idle_station
  [ -c "$port" ] && exec 8<>"$port" || { stop; return 1; }
  stop
  cat <&8 >read &
  reader=$!
  sleep 0.3
  echo "$(stat -L -c %t:%T "$port") nabxpbfcoxnz" >/sys/module/flags/parameters/say
  sleep 0.5
  kill $reader
  exec 8>&-
  seen=$(hexdump -v -e '/1 "%02x "' read)
  [ "$seen" = '61 00 00 7a ' ]
  verdict $? "$(echo "$seen" | cut -c1-40)"
}

# The registers of a 16550. $1: base, $2: which, $3: value.
chip() { dd if=/dev/port bs=1 skip=$(($1 + $2)) count=1 2>/dev/null | hexdump -e '1/1 "%02x"'; }
poke() { printf "\\x$3" | dd of=/dev/port bs=1 seek=$(($1 + $2)) conv=notrunc 2>/dev/null; }
# What the driver says it does, and the chip itself. $1: base; the rest as for settings.
set_up() {
  base=$1
  shift
  fresh_base "$1"
  settings "$@"
  idle_station
  seen=" $(stty -F "$port" -a 2>/dev/null | tr '\n;' '  ') "
  line_control=$(chip "$base" 3)
  poke "$base" 3 $(printf %x $((0x$line_control | 0x80)))
  divisor=$((0x$(chip "$base" 1)$(chip "$base" 0)))
  poke "$base" 3 "$line_control"
  stop
  # Without parity the driver leaves it even.
  parity=$(case $2 in impaire) echo 1 ;; paire) echo 3 ;; marque) echo 5 ;; espace) echo 7 ;; *) echo 2 ;; esac)
  [ "$((0x$line_control))" = $(($3 - 5 | ($4 - 1) << 2 | parity << 3)) ] && [ "$divisor" = $(((115200 + $1 / 2) / $1)) ] &&
    case $seen in *" speed $1 baud "*" cs$3 "*) true ;; *) false ;; esac
  verdict $? "LCR $line_control, diviseur $divisor"
}

# What an adapter was told, as "9600 N 8 1". QEMU's chip refuses mark and space: then the word of the request itself, in
# which they stand as such.
device_told() {
  answer=
  if [ "$line" = dans ]; then
    word=$(grep ' s 21 20 ' /tmp/usbmon | tail -n 1 | sed 's/.*= //; s/ //g')
    [ -n "$word" ] || return
    answer="$((0x$(echo "$word" | sed 's/^\(..\)\(..\)\(..\)\(..\).*/\4\3\2\1/'))) $(echo "$word" | cut -c11-12 | sed 's/00/N/; s/01/O/; s/02/E/; s/03/M/; s/04/S/') $((0x$(echo "$word" | cut -c13-14))) $(echo "$word" | cut -c9-10 | sed 's/00/1/; s/02/2/')"
    return
  fi
  device=$(cat "$(readlink -f "/sys/class/tty/${port##*/}/device")/../../devnum")
  ask puce
  word=$(grep "Co:[0-9]*:$(printf %03d "$device"):.* s 40 04 " /tmp/usbmon | tail -n 1 | sed 's/.* s 40 04 \(....\).*/\1/')
  case $word in ?[34]*) answer="${answer%% *} $(echo "$word" | sed 's/.\(.\).*/\1/; y/34/MS/') $((0x$word & 255)) $((1 + (0x$word >> 12)))" ;; esac
}
tell_device() { # as for settings
  fresh_base "$1"
  settings "$@"
  idle_station
  seen=" $(stty -F "$port" -a 2>/dev/null | tr '\n;' '  ') "
  device_told
  stop
  letter=$(echo "$2" | cut -c1 | tr aipme NOEMS)
  [ "$answer" = "$1 $letter $3 $4" ] && case $seen in *" speed $1 baud "*" cs$3 "*) true ;; *) false ;; esac
  verdict $? "$answer"
}

# Anybody who has the right to may open the port.
open_to_others() { /programs/setpriv --reuid=65534 --regid=65534 --clear-groups sh -c ': <>"$1"' - "$port"; }

refused() { # $1: bauds, $2: what is said; the rest: who runs it. What "behind" names must hold then.
  place=/tmp/refused-${port##*/}
  rm -rf "$place" && mkdir "$place" && cd "$place" || return
  fresh_base "$1"
  words=$2
  shift 2
  chmod 666 cave.db poste.ini && chmod 777 .
  start "$@"
  await 40 said "$words" && ${behind:-true}
  good=$?
  stop
  cd "$HOME" || return
  verdict $good "$(grep -m1 -o 'Le port.*\|Vous n.*' "$place/said" | cut -c1-150)"
}

two_stations() {
  fresh_base 9600
  idle_station
  echo interroger | timeout 30 tarvel --console --duree 3 --sans-operateur --ini poste.ini --dossier autre --site 2 >second 2>&1
  grep -q 'déjà utilisé' second
  verdict $? "$(grep -m1 -o 'Le port.*' second || tail -n 1 second)"
  stop
}

killed_and_started() {
  fresh_base 9600
  terminal --hasard 8 --jusqu-a-vide
  for death in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18; do
    start
    sleep 0.$((RANDOM % 5 + 5))
    stop KILL
  done
  start
  await 120 served
  full=$?
  stop
  all_in && [ $full = 0 ]
  verdict $? "$loads"
}

# The carrier of an open port falls and rises three times, once more while loads come where that can be done: nothing is
# lost, and nobody is told of a lost port. $1: what lets it.
carrier_falls() {
  fresh_base 9600
  seen=
  idle_station
  $1
  terminal --hasard 8 --jusqu-a-vide
  [ "$line" = dans ] || $1
  await 120 served
  full=$?
  lost=$(grep -c 'Erreur du port\|perdu' said)
  stop
  all_in && [ $full = 0 ] && [ "$lost" = 0 ] && [ "$(echo "$seen" | tr -d ' ' | sed 's/nonoui//g')" = '' ] && [ -n "$seen" ]
  verdict $? "$loads, porteuse :$seen"
}
outside_carrier() {
  ask porteuse "$line" oui
  for turn in 1 2 3; do
    for state in non oui; do
      ask porteuse "$line" $state
      sleep 0.3
      grep '3E8' /proc/tty/driver/serial | grep -q '|CD' && seen="$seen oui" || seen="$seen non"
    done
  done
}
# The gadget has one as long as its far side is open.
gadget_carrier() {
  exec 8<>"$far"
  for turn in 1 2 3; do
    for state in non oui; do
      before=$(told_carrier)
      case $state in non) exec 8>&- ;; *) exec 8<>"$far" ;; esac
      sleep 0.3
      after=$(told_carrier)
      [ "$after" -gt "$before" ] && seen="$seen $state"
    done
  done
  exec 8>&-
}
told_carrier() { grep -c ' C Ii:.* = a1200000' /tmp/usbmon; }

# The adapter, whose chip stands outside.
there() { [ -e "$node" ]; }
gone() { [ ! -e "$node" ]; }
out() { ask debrancher && await 10 gone; }
back() { ask brancher && await 10 there; }
out_and_back() { out; ${1:-true}; back; }
# Whatever was done to the adapter, the loads came once and no descriptor stayed open. $1: loads, $2: what is done, $3:
# bauds.
pulled_out() {
  fresh_base "${3:-9600}"
  terminal --hasard 8 --jusqu-a-vide
  start
  await 60 opened
  before=$(ls /proc/$station/fd | wc -l)
  $1
  await 120 served
  full=$?
  after=$(ls /proc/$station/fd | wc -l)
  stop
  all_in && [ $full = 0 ] && [ "$after" -le $((before + 1)) ]
  verdict $? "$loads, descripteurs : $before, $after"
}
while_idle() { sleep 1; out; sleep 2; back; }
in_a_frame() {
  for offer in 'essai 1' 'essai 2' 'essai 1'; do
    await 30 heard "offert, $offer"
    sleep 0.2
    out_and_back
  done
}
at_once() { for turn in 1 2 3; do sleep 1; ask rebrancher; done; await 10 there; }
twenty_times() { for turn in 1 2 3 4 5 6 7 8 9 10 11 12 13 14 15 16 17 18 19 20; do sleep 0.$((RANDOM % 10)); out_and_back; done; }
in_a_file() {
  sleep 1.5
  out
  await 60 said 'boîte «Erreur du port»'
  back
  tell ok
  await 60 said 'boîte «Transmission'
  tell recommencer
}

# The name that udev would give moves on to the adapter's new number, as the former one is held by somebody.
another_number() {
  ln -sf "${node##*/}" /dev/ombrey-chai
  port=/dev/ombrey-chai
  pulled_out moved_on
  port=$node
  out_and_back
}
moved_on() {
  await 60 heard acquitté
  sleep 100 <"$node" &
  holder=$!
  sleep 0.5
  ask debrancher
  sleep 1
  ask brancher
  await 10 [ -e "$next" ]
  ln -sf "${next##*/}" /dev/ombrey-chai
  kill $holder
}
