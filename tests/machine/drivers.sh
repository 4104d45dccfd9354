# Which driver each case is held against. The lanes run beside each other; within a lane one case follows another.
. /cases.sh
# The kernel asks for the gadget's functions by itself.
echo /bin/modprobe >/proc/sys/kernel/modprobe
modprobe -a xhci-pci usbmon
[ -d /sys/module/flags ] || insmod /flags.ko

# What every driver that takes settings is held to.
at_work() {
  try "five files to the byte, 19200" whole_files
  try "SIGTERM in a file" end_in_a_file TERM
  try "ended by its operator in a file" end_in_a_file fin
  try "all 256 values both ways" all_values
  try "break, parity, framing and overrun flags" flagged
  try "SIGTERM when nothing is taken" end_in_a_file TERM takes_nothing
}

lane_16550() {
  driver=16550 line=serie port=/dev/ttyS1
  for bauds in 300 1200 4800 9600 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  try "a break between characters" breaks
  at_work
}

# A second 16550, whose far end has neither carrier nor CTS.
lane_bare() {
  driver="16550 without carrier and CTS" line=nu port=/dev/ttyS2
  try "eight loads, 9600" eight_loads 9600
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
  try "two stations on one port" two_stations
  try "killed and started at once, 18 times" killed_and_started
  chmod 600 "$port"
  try "no right" refused 9600 'pas le droit' /programs/setpriv --reuid=65534 --regid=65534 --clear-groups
  chmod 666 "$port"
  port=/dev/ttyS3
  try "no device behind the node" refused 9600 'ne répond pas'
}

lane_ftdi() {
  driver=ftdi_sio line=usb port=/dev/ttyUSB0
  modprobe ftdi_sio
  out_and_back
  for bauds in 300 1200 9600 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  at_work
  for row in "300 paire 7 2" "1200 impaire 7 1" "9600 impaire 8 2" "19200 aucune 8 1"; do try "set to $row" tell_device $row; done
  try "less than it can" refused 150 'pas moins de 200'
  try "adapter out and back, idle" pulled_out while_idle
  try "adapter out and back, in a frame" pulled_out in_a_frame 1200
  try "adapter out and back, at once" pulled_out at_once
  try "adapter out and back, in a file" whole_files in_a_file
  try "adapter out and back, twenty times at random" pulled_out twenty_times
  try "adapter back under another number" another_number
}

# A device made by this machine itself, whose far side is the terminal.
lane_gadget() {
  driver=cdc_acm line=dans port=/dev/ttyACM0
  rmmod g_serial 2>/dev/null
  modprobe -a dummy_hcd cdc-acm g_serial
  await 20 [ -e $port ]
  [ -e /tmp/usbmon ] || cat /sys/kernel/debug/usb/usbmon/0u >/tmp/usbmon &
  for row in "300 paire 7 2" "1200 impaire 7 1" "2400 marque 8 1" "9600 espace 6 2" "19200 aucune 5 1"; do try "set to $row" tell_device $row; done
  for bauds in 1200 19200; do try "eight loads, $bauds" eight_loads $bauds; done
  at_work
}

# The same device without its class, for the driver that knows no settings: it is at 9600 bauds, and says so.
lane_generic() {
  driver=usbserial_generic line=dans port=/dev/ttyUSB0
  out
  rmmod g_serial
  rmmod ftdi_sio
  rmmod usbserial
  modprobe usbserial vendor=0x0525 product=0xa4a6
  modprobe g_serial use_acm=0
  await 20 there
  try "eight loads, 9600" eight_loads 9600
  try "all 256 values both ways" all_values 9600
  try "break, parity, framing and overrun flags" flagged
  try "settings that it can't take" refused 1200 "n'accepte pas"
}

in_lane() { rm -rf "/tmp/$1" && mkdir "/tmp/$1" && cd "/tmp/$1" && export HOME="$PWD" XDG_CONFIG_HOME="$PWD" && "lane_$1"; }
for lane in 16550 bare ftdi gadget; do (in_lane $lane) & done
wait
in_lane generic
