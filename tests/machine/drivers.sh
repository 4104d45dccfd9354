# Which driver each case is held against. The lanes run beside each other; within a lane one case follows another.
. /cases.sh
# The kernel asks for the gadget's functions by itself.
echo /bin/modprobe >/proc/sys/kernel/modprobe
modprobe -a xhci-pci usbmon
modprobe usbserial vendor=0x0525 product=0xa4a6
[ -e /tmp/usbmon ] || cat /sys/kernel/debug/usb/usbmon/0u >/tmp/usbmon &
[ -d /sys/module/flags ] || insmod /flags.ko

# Devices made by this machine itself, whose far sides are the terminals. $1: name, $2: function, $3: product, $4: which.
gadget() {
  [ ! -d "/sys/kernel/config/usb_gadget/$1" ] || return
  mkdir "/sys/kernel/config/usb_gadget/$1" && cd "/sys/kernel/config/usb_gadget/$1" || return
  mkdir "functions/$2.$1" configs/c.1
  ln -s "functions/$2.$1" configs/c.1
  echo 0x0525 >idVendor
  echo "$3" >idProduct
  echo "dummy_udc.$4" >UDC
  cd /
}
# The numbers of adapters go by the order in which they come.
modprobe dummy_hcd num=2
modprobe -a cdc-acm libcomposite
mount -t configfs config /sys/kernel/config 2>/dev/null
gadget classe acm 0xa4a7 0
gadget brut gser 0xa4a6 1
await 20 [ -e /dev/ttyUSB0 ]
modprobe ftdi_sio
await 20 [ -e /dev/ttyUSB1 ]

# What every driver is held to. $1: bauds.
at_work() {
  try "five files to the byte, $1" whole_files "$1"
  try "SIGTERM in a file" end_in_a_file TERM
  try "ended by its operator in a file" end_in_a_file fin
  try "all 256 values both ways" all_values "$1"
  try "break, parity, framing and overrun flags" flagged
  try "SIGTERM when nothing is taken" end_in_a_file TERM takes_nothing
}

lane_16550() {
  driver=16550 line=serie port=/dev/ttyS1
  for bauds in 300 1200 9600 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  try "a break between characters" breaks
  at_work 19200
}

# A second 16550, whose far end has neither carrier nor CTS but when it is told to.
lane_bare() {
  driver="16550 without carrier and CTS" line=nu port=/dev/ttyS2
  for bauds in 4800 9600; do try "eight loads, $bauds" eight_loads $bauds; done
  while read -r row; do
    # shellcheck disable=SC2086 # it is a list
    try "set to $row" set_up 0x3e8 $row
  done <<EOT
50 aucune 5 1
75 paire 6 2
110 impaire 7 1
134 marque 8 1
150 espace 8 2
200 aucune 6 1
300 marque 7 1
600 espace 7 1
1200 paire 7 2
1800 impaire 5 1
2400 impaire 7 1
4800 aucune 8 2
9600 paire 8 1
19200 aucune 8 1
EOT
  try "carrier falling and back while open" carrier_falls outside_carrier
  try "two stations on one port" two_stations
  try "killed and started at once, 18 times" killed_and_started
  chmod 600 "$port"
  try "no right" refused 9600 'pas le droit' /programs/setpriv --reuid=65534 --regid=65534 --clear-groups
  chmod 666 "$port"
  port=/dev/ttyS3
  try "no device behind the node" refused 9600 'ne répond pas'
}

# One adapter stays where it is, another one is pulled out.
lane_ftdi() {
  driver=ftdi_sio line=fixe port=/dev/ttyUSB1
  for bauds in 300 1200 9600 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  for row in "300 paire 7 2" "600 marque 8 1" "1200 impaire 7 1" "2400 espace 7 2" "9600 impaire 8 2" "19200 aucune 8 1"; do
    try "set to $row" tell_device $row
  done
  at_work 19200
}
lane_pulled() {
  driver=ftdi_sio line=usb port=/dev/ttyUSB2 node=/dev/ttyUSB2 next=/dev/ttyUSB3
  out_and_back
  try "less than it can" refused 150 'pas moins de 200'
  try "adapter out and back, idle" pulled_out while_idle
  try "adapter out and back, in a frame" pulled_out in_a_frame 1200
  try "adapter out and back, at once" pulled_out at_once
  try "adapter out and back, in a file" whole_files 19200 in_a_file
  try "adapter out and back, twenty times at random" pulled_out twenty_times
  try "adapter back under another number" another_number
}

lane_gadget() {
  driver=cdc_acm line=dans port=/dev/ttyACM0 far=/dev/ttyGS0
  for row in "300 paire 7 2" "1200 impaire 7 1" "2400 marque 8 1" "9600 espace 6 2" "19200 aucune 5 1"; do try "set to $row" tell_device $row; done
  for bauds in 1200 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  try "carrier falling and back while open" carrier_falls gadget_carrier
  at_work 19200
}

# A device without a class, for the driver that knows no settings: it is at 9600 bauds, and says so.
lane_generic() {
  driver=usbserial_generic line=dans port=/dev/ttyUSB0 far=/dev/ttyGS1 pace=9600
  try "eight loads, 9600" eight_loads 9600
  # What is done to a device that somebody has open outlives who did it.
  chmod 666 "$port"
  sleep 999 <>"$port" &
  behind=open_to_others
  try "settings that it can't take, and nothing stays behind" refused 1200 "n'accepte pas"
  kill $!
  behind=
  at_work 9600
}

in_lane() {
  rm -rf "/tmp/$1" && mkdir "/tmp/$1" && cd "/tmp/$1" && export HOME="$PWD" XDG_CONFIG_HOME="$PWD" && "lane_$1"
  echo "# lane $1 ended $(since 0) after the start"
}
for lane in 16550 bare ftdi pulled gadget generic; do (in_lane $lane) & lanes="$lanes $!"; done
wait $lanes
