# Runs in the guest. A line that begins with "@" asks the outside for something, which answers with a line; one that
# begins with "=" is a case: its name, "bon" or "mauvais", its figure.
ask() { echo "@$*"; read -r answer; }
verdict() {
  [ "$2" = 0 ] && echo "= $1 | bon | $3" && return
  echo "= $1 | mauvais | $3"
  tail -n 12 /tmp/said | sed 's/^/# /'
}
now() { read -r up _ </proc/uptime; echo "${up%.*}${up#*.}0"; } # milliseconds

# $1: port; $2: bauds; the rest: lines that win over the usual ones.
settings() {
  printf '[Tarvel]\nBase=/tmp/cave.db\n[PlugInOmbrey]\nPort=%s\nBauds=%s\n' "$1" "$2" >/tmp/poste.ini
  shift 2
  printf '%s\n' "${@:-Parité=aucune}" 'BitsStop=1' 'TailleMots=8' 'Période interrogation=200' >>/tmp/poste.ini
}
fresh_base() { rm -rf /tmp/cave.db* /tmp/import; cp /cave.db /tmp/cave.db; }

# A station with the commands of fifo 7 and its words in /tmp/said; $@: what runs it.
start() {
  rm -f /tmp/commands && mkfifo /tmp/commands
  "$@" /bin/tarvel --console --sans-operateur --ini /tmp/poste.ini </tmp/commands >/tmp/said 2>&1 &
  station=$!
  exec 7>/tmp/commands
  echo interroger >&7
}
said() { # $1: text, $2: seconds
  limit=$(($(now) + $2 * 1000))
  until grep -q "$1" /tmp/said; do
    [ "$(now)" -lt $limit ] || return 1
    sleep 0.1
  done
}
# Milliseconds from SIGTERM to the station's end.
stop() {
  t0=$(now)
  kill -TERM $station
  wait $station
  code=$?
  took=$(($(now) - t0))
  exec 7>&-
  return $code
}
# Rows and distinct numbers in today's list, as "8 8".
rows() {
  printf 'liste\nfin\n' | tarvel --console --sans-operateur --ini /tmp/poste.ini 2>/dev/null |
    awk -F ' *[|] *' '/^ *Chai / {on = 1; next} on && NF > 5 {n++; d += !s[$2]++; next} {on = 0} END {print n + 0, d + 0}'
}
# Waits until the terminal of the line has nothing left; $1: line, $2: seconds.
emptied() {
  ask "attendre $1 $2"
  [ "$answer" = ok ]
}

# $1: case, $2: line, $3: port, $4: bauds
eight_loads() {
  fresh_base
  settings "$3" "$4"
  ask "rg80 $2 $4 --hasard 8 --jusqu-a-vide"
  t0=$(now)
  start
  emptied "$2" 240
  full=$?
  figure="$((($(now) - t0) / 1000)) s"
  stop
  [ $full = 0 ] && [ "$(rows)" = "8 8" ]
  verdict "$1" $? "$figure, lignes et numéros : $(rows)"
}

# The end in the midst of a file; the same on a pseudo-terminal is what it is measured against. $3: port.
stop_in_a_file() {
  fresh_base
  settings "$3" 1200
  ask "rg80 $2 1200 --f6"
  start
  said 'commande « menu »' 60
  sleep 1
  echo menu >&7
  said 'en attente de fichiers' 60
  echo transferer >&7
  ask "dit $2 fichier 60"
  sleep 1.5
  stop && [ "$answer" = ok ]
  code=$?
  [ $code = 0 ] && [ $took -lt "$4" ]
  verdict "$1" $? "$took ms"
  ask "finir $2"
}

# The five files, some 20,000 bytes, beside those that a pseudo-terminal took. $4: what happens on the way.
whole_files() {
  fresh_base
  cp /full.db /tmp/cave.db
  settings "$3" 19200
  ask "rg80 $2 19200 --f6"
  start
  said 'commande « menu »' 60
  sleep 1
  echo menu >&7
  said 'en attente de fichiers' 60
  t0=$(now)
  echo transferer >&7
  ask "dit $2 coopérateurs 60"
  $4
  ask "dit $2 observations 120"
  figure="$((($(now) - t0) / 1000)) s"
  sleep 0.5
  ask "pareils $2"
  same=$answer
  stop
  [ "$same" = ok ]
  verdict "$1" $? "$figure, octets pareils : $same"
  ask "finir $2"
}

# What the driver says it does, and the chip itself, whose registers stand at 2f8.
chip() { dd if=/dev/port bs=1 skip=$((0x2f8 + $1)) count=1 2>/dev/null | hexdump -e '1/1 "%02x"'; }
settings_reach_the_chip() {
  for row in '9600:Parité=aucune:13:cs8 -parenb' '1200:Parité=paire:1b:parenb -parodd' '19200:Parité=impaire:0b:parodd' \
    '300:Parité=marque:2b:cmspar' '2400:Parité=espace:3b:cmspar'; do
    IFS=: read -r bauds parity lcr flags <<EOF
$row
EOF
    fresh_base
    settings /dev/ttyS1 "$bauds" "$parity"
    start
    said 'Vérification' 30
    seen=$(stty -F /dev/ttyS1 -a 2>/dev/null | tr '\n' ' ')
    found=$(chip 3)
    printf "\\x$(printf %x $((0x$found | 0x80)))" | dd of=/dev/port bs=1 seek=$((0x2fb)) conv=notrunc 2>/dev/null
    divisor=$((0x$(chip 1)$(chip 0)))
    printf "\\x$found" | dd of=/dev/port bs=1 seek=$((0x2fb)) conv=notrunc 2>/dev/null
    stop
    [ "$found" = "$lcr" ] && [ $((115200 / divisor)) = "$bauds" ] && case $seen in *"speed $bauds baud"*) true ;; *) false ;; esac
    verdict "settings, 16550: $bauds ${parity#*=}" $? "LCR $found, diviseur $divisor"
  done
}

# $1: case, $2: seconds between, $3: how often, $4: settled before. The adapter goes and comes while eight loads come in.
pulled_out() {
  fresh_base
  settings /dev/ttyUSB0 9600
  ask "rg80 usb 9600 --hasard 8 --jusqu-a-vide"
  start
  pulls=0
  while [ $pulls -lt "$3" ]; do
    sleep "$2"
    ask debrancher
    while [ -e /dev/ttyUSB0 ]; do sleep 0.1; done
    sleep 0.$((pulls % 9 + 1))
    ask brancher
    while [ ! -e /dev/ttyUSB0 ]; do sleep 0.1; done
    pulls=$((pulls + 1))
  done
  emptied usb 120
  full=$?
  open=$(ls -l /proc/$station/fd | grep -c ttyUSB)
  all=$(ls /proc/$station/fd | wc -l)
  stop
  [ $full = 0 ] && [ "$(rows)" = "8 8" ] && [ "$open" -le 1 ]
  verdict "$1" $? "lignes et numéros : $(rows) ; descripteurs : $all"
}

refused() { # $1: case, $2: port, $3: what is said, $4...: who runs it
  name=$1 port=$2 words=$3
  shift 3
  fresh_base
  chmod 666 /tmp/cave.db && chmod 777 /tmp
  settings "$port" 9600
  start "$@"
  said "$words" 30
  good=$?
  stop
  verdict "$name" $good "$(grep -m1 -o 'Le port.*\|Vous n.*' /tmp/said | cut -c1-120)"
}

# The name that udev would give moves on to the adapter's new number, as the former one is held by somebody.
another_number() {
  fresh_base
  ln -sf ttyUSB0 /dev/ombrey-chai
  settings /dev/ombrey-chai 9600
  ask "rg80 usb 9600 --hasard 8 --jusqu-a-vide"
  start
  said 'reçu\|chargement' 60
  sleep 100 </dev/ttyUSB0 3<&0 &
  holder=$!
  sleep 0.5
  ask debrancher
  sleep 1
  ask brancher
  limit=$(($(now) + 10000))
  until [ -e /dev/ttyUSB1 ] || [ "$(now)" -gt $limit ]; do sleep 0.1; done
  ln -sf ttyUSB1 /dev/ombrey-chai
  emptied usb 120
  full=$?
  stop
  kill $holder
  [ $full = 0 ] && [ "$(rows)" = "8 8" ]
  verdict "$1" $? "lignes et numéros : $(rows)"
  ask debrancher
  sleep 1
  ask brancher
  while [ ! -e /dev/ttyUSB0 ]; do sleep 0.1; done
}

two_stations() {
  fresh_base
  settings /dev/ttyS1 9600
  start
  said 'Vérification' 30
  cp /tmp/poste.ini /tmp/autre.ini
  printf 'interroger\n' | timeout 5 tarvel --console --duree 2 --sans-operateur --ini /tmp/autre.ini --dossier /tmp/autre >/tmp/second 2>&1
  grep -q 'déjà utilisé' /tmp/second
  verdict "two stations on one port, 16550" $? "$(grep -m1 -o 'Le port.*' /tmp/second)"
  stop
}

# The far end answers and then takes nothing more; the station is ended with a driver full of bytes.
nothing_taken() {
  fresh_base
  cp /full.db /tmp/cave.db
  settings "$3" 9600
  ask "rg80 $2 9600 --f6"
  start
  said 'commande « menu »' 60
  sleep 1
  echo menu >&7
  said 'en attente de fichiers' 60
  echo transferer >&7
  ask "dit $2 coopérateurs 60"
  begun=$answer
  ask "rythme $2 1"
  sleep 2
  stop && [ "$begun" = ok ]
  code=$?
  [ $code = 0 ] && [ $took -lt "$4" ]
  verdict "$1" $? "$took ms"
  ask "finir $2"
}

# A device made by the guest itself, whose far side is the terminal; that one stops in the midst of a file, as one that
# hangs does. $1: driver, $2: port, $3: what the device is made with.
gadget() {
  modprobe g_serial $3
  limit=$(($(now) + 20000))
  until [ -e "$2" ] || [ "$(now)" -gt $limit ]; do sleep 0.1; done
  for bauds in 1200 19200; do
    fresh_base
    settings "$2" $bauds
    rg80 --port /dev/ttyGS0 --hasard 8 --jusqu-a-vide --cadence $bauds >/tmp/rg80 2>&1 &
    terminal=$!
    t0=$(now)
    start
    limit=$(($(now) + 60000))
    while kill -0 $terminal 2>/dev/null && [ "$(now)" -lt $limit ]; do sleep 0.2; done
    figure="$((($(now) - t0) / 1000)) s"
    kill $terminal 2>/dev/null
    wait $terminal
    full=$?
    stop
    [ $full = 0 ] && [ "$(rows)" = "8 8" ]
    verdict "eight loads, $1, $bauds" $? "$figure, lignes et numéros : $(rows)"
  done
  fresh_base
  cp /full.db /tmp/cave.db
  settings "$2" 1200
  rg80 --port /dev/ttyGS0 --f6 --cadence 1200 >/tmp/rg80 2>&1 &
  terminal=$!
  start
  said 'commande « menu »' 60
  sleep 1
  echo menu >&7
  said 'en attente de fichiers' 60
  echo transferer >&7
  limit=$(($(now) + 60000))
  until grep -q 'coopérateurs) : prêt' /tmp/rg80 || [ "$(now)" -gt $limit ]; do sleep 0.1; done
  kill -STOP $terminal
  sleep 2
  stop
  code=$?
  kill -KILL $terminal
  [ $code = 0 ] && [ $took -lt 1000 ]
  verdict "SIGTERM in a file that nobody takes, $1" $? "$took ms"
  rmmod g_serial
}

killed_and_started() {
  fresh_base
  settings /dev/ttyS1 9600
  ask "rg80 serie 9600 --hasard 8 --jusqu-a-vide"
  deaths=0
  while [ $deaths -lt 18 ]; do
    start
    sleep 0.$((deaths % 8 + 1))
    sleep 0.5
    kill -KILL $station
    wait $station
    exec 7>&-
    deaths=$((deaths + 1))
  done 2>/dev/null
  start
  emptied serie 120
  full=$?
  stop
  [ $full = 0 ] && [ "$(rows)" = "8 8" ]
  verdict "killed and started at once, 18 times, 16550" $? "lignes et numéros : $(rows)"
}

. /drivers.sh
