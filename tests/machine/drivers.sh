# Which driver each case is held against, in the order in which the drivers are loaded.
modprobe -a xhci-pci

for bauds in 300 1200 4800 9600 19200; do eight_loads "eight loads, 16550, $bauds" serie /dev/ttyS1 $bauds; done
settings_reach_the_chip
stop_in_a_file "SIGTERM in a file, 16550" serie /dev/ttyS1 1000
nothing_taken "SIGTERM when nothing is taken, 16550" serie /dev/ttyS1 1000
whole_files "five files to the byte, 16550, 19200" serie /dev/ttyS1 true
two_stations
killed_and_started
refused "no device behind the node" /dev/ttyS3 'ne répond pas'
chmod 600 /dev/ttyS1
refused "no right" /dev/ttyS1 'pas le droit' setpriv --reuid=65534 --regid=65534 --clear-groups
chmod 666 /dev/ttyS1

modprobe ftdi_sio
ask brancher
while [ ! -e /dev/ttyUSB0 ]; do sleep 0.1; done
for bauds in 300 1200 9600 19200; do eight_loads "eight loads, ftdi_sio, $bauds" usb /dev/ttyUSB0 $bauds; done
stop_in_a_file "SIGTERM in a file, ftdi_sio" usb /dev/ttyUSB0 1000
nothing_taken "SIGTERM when nothing is taken, ftdi_sio" usb /dev/ttyUSB0 1000
whole_files "five files to the byte, ftdi_sio, 19200" usb /dev/ttyUSB0 true
another_number "adapter back under another number, ftdi_sio"
pulled_out "adapter out and back, once, ftdi_sio" 1 1
pulled_out "adapter out and back, ten times, ftdi_sio" 0.7 10

ask debrancher
while [ -e /dev/ttyUSB0 ]; do sleep 0.1; done
rmmod ftdi_sio
rmmod usbserial
modprobe -a dummy_hcd cdc-acm
gadget cdc_acm /dev/ttyACM0
modprobe usbserial vendor=0x0525 product=0xa4a6
gadget usbserial_generic /dev/ttyUSB0 use_acm=0
