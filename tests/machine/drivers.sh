# Which driver each case is held against, in the order in which the drivers are loaded.
modprobe -a xhci-pci
ask rythme

for bauds in 300 1200 4800 9600 19200; do eight_loads "eight loads, 16550, $bauds" serie /dev/ttyS1 $bauds; done
settings_reach_the_chip
stop_in_a_file "SIGTERM in a file, 16550" serie /dev/ttyS1 1000
killed_and_started
refused "no device behind the node" /dev/ttyS3 'ne répond pas'
chmod 600 /dev/ttyS1
refused "no right" /dev/ttyS1 'pas le droit' su -s /bin/sh nobody -c 'exec "$0" "$@"'
chmod 666 /dev/ttyS1

modprobe ftdi_sio
ask brancher
while [ ! -e /dev/ttyUSB0 ]; do sleep 0.1; done
for bauds in 300 1200 9600 19200; do eight_loads "eight loads, ftdi_sio, $bauds" usb /dev/ttyUSB0 $bauds; done
stop_in_a_file "SIGTERM in a file, ftdi_sio" usb /dev/ttyUSB0 1000
pulled_out "adapter out and back, once, ftdi_sio" 1 1
pulled_out "adapter out and back, ten times, ftdi_sio" 0.7 10

ask debrancher
while [ -e /dev/ttyUSB0 ]; do sleep 0.1; done
rmmod ftdi_sio
rmmod usbserial
modprobe usbserial vendor=0x0403 product=0x6001
ask brancher
while [ ! -e /dev/ttyUSB0 ]; do sleep 0.1; done
eight_loads "eight loads, usbserial_generic, 9600" usb /dev/ttyUSB0 9600
stop_in_a_file "SIGTERM in a file, usbserial_generic" usb /dev/ttyUSB0 1000
