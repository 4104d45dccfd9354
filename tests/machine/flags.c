// A module for the guest: puts characters into an open terminal device as its driver would have received them, with the
// flags of a line's faults. /sys/module/flags/parameters/say takes "MAJOR:MINOR ", in hexadecimal, then pairs of a flag
// (b break, p parity, f framing, o overrun, n none) and a character.
#include <linux/module.h>
#include <linux/tty.h>
#include <linux/tty_flip.h>

static char flag_of(char letter) {
  switch (letter) {
    case 'b': return TTY_BREAK;
    case 'p': return TTY_PARITY;
    case 'f': return TTY_FRAME;
    case 'o': return TTY_OVERRUN;
  }
  return TTY_NORMAL;
}

static int say(const char *text, const struct kernel_param *parameter) {
  unsigned int major, minor;
  int at = 0;
  struct tty_struct *tty;
  if (sscanf(text, "%x:%x %n", &major, &minor, &at) < 2 || at == 0) return -EINVAL;
  tty = tty_kopen_shared(MKDEV(major, minor));
  if (IS_ERR_OR_NULL(tty)) return -ENODEV;
  for (text += at; text[0] && text[0] != '\n' && text[1]; text += 2)
    tty_insert_flip_char(tty->port, text[1], flag_of(text[0]));
  tty_flip_buffer_push(tty->port);
  tty_kref_put(tty);
  return 0;
}

static const struct kernel_param_ops operations = {.set = say};
module_param_cb(say, &operations, NULL, 0200);
MODULE_LICENSE("GPL");
