// Ahead of the system's own functions in the virtual machine: a serial device of this computer, which a pseudo-terminal
// stands for, has carrier and CTS as long as there is a file "carrier".
#include <stdarg.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

int ioctl(int descriptor, unsigned long request, ...) {
  va_list rest;
  va_start(rest, request);
  void *argument = va_arg(rest, void *);
  va_end(rest);
  if (request == TIOCMGET) {
    *(int *)argument = access("carrier", F_OK) == 0 ? TIOCM_CAR | TIOCM_CTS | TIOCM_DSR : 0;
    return 0;
  }
  return request == TIOCMSET ? 0 : (int)syscall(SYS_ioctl, descriptor, request, argument);
}
