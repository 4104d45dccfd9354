// The far side of a serial line, on a pseudo-terminal.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "platform/loop/descriptor.h"

namespace Ombrey {

struct PseudoTerminal {
  PseudoTerminal() {
    char Place[128] = "";
    EXPECT_EQ(unlockpt(Maître.Numéro()) + ptsname_r(Maître.Numéro(), Place, sizeof Place), 0);
    Nom_ = Place;
  }
  [[nodiscard]] const std::string& Nom() const { return Nom_; }
  void Envoyer(std::string_view Octets) const {
    EXPECT_EQ(write(Maître.Numéro(), Octets.data(), Octets.size()), static_cast<ssize_t>(Octets.size()));
  }
  /// What has arrived by now.
  [[nodiscard]] std::string Recevoir() const {
    std::string Reçus;
    for (char Octet = 0; read(Maître.Numéro(), &Octet, 1) == 1;) Reçus += Octet;
    return Reçus;
  }

  Descripteur Maître{posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)};
  std::string Nom_;
};

}  // namespace Ombrey
