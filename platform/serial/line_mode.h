// What a terminal driver is asked for, whether it was granted, and what helps somebody who has no right to a device.
#pragma once

#include <sys/types.h>
#include <termios.h>

#include <string>

#include "platform/serial/line_settings.h"

namespace Ombrey {

/// Raw mode: every byte passes as it is, a read never waits, and silence differs from the end of the device (VMIN 1). A
/// character of wrong parity is read as NUL, which no checksum lets pass; a break isn't read at all, on any adapter.
/// What another program left on the line doesn't matter.
[[nodiscard]] termios ModeBrut(termios Mode, const RéglagesLiaison& Réglages);

/// Whether a driver that gave Relu back has taken speed, word, parity and stop bits as Demandé has them.
[[nodiscard]] bool EstAppliqué(const termios& Demandé, const termios& Relu);

/// Who stands before a device that was refused.
struct Demandeur {
  std::string Compte;    ///< the account's name
  bool Inscrit = false;  ///< the account is a member of the device's group
  bool EnUse = false;    ///< this program already runs with it
};

/// A sentence, led by a space, that says how to get the right to a device of this mode and group; empty where the group
/// can't help.
[[nodiscard]] std::string ConseilDroit(mode_t Mode, const std::string& Groupe, const Demandeur& Qui);

}  // namespace Ombrey
