// The far side of a serial line, on a pseudo-terminal.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include "platform/loop/descriptor.h"

namespace Ombrey {

class PseudoTerminal {
 public:
  PseudoTerminal() : Maître_(posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
    std::array<char, 128> Place{};
    if (grantpt(Numéro()) != 0 || unlockpt(Numéro()) != 0 || ptsname_r(Numéro(), Place.data(), Place.size()) != 0)
      ADD_FAILURE() << "no pseudo-terminal";
    Nom_ = Place.data();
  }
  [[nodiscard]] int Numéro() const { return Maître_.Numéro(); }
  [[nodiscard]] const std::string& Nom() const { return Nom_; }
  void Envoyer(std::string_view Octets) const {
    EXPECT_EQ(write(Numéro(), Octets.data(), Octets.size()), static_cast<ssize_t>(Octets.size()));
  }
  /// What has arrived by now.
  [[nodiscard]] std::string Recevoir() const {
    std::string Reçus;
    std::array<char, 4096> Place{};
    for (ssize_t N = 0; (N = read(Numéro(), Place.data(), Place.size())) > 0;)
      Reçus.append(Place.data(), static_cast<std::size_t>(N));
    return Reçus;
  }
  /// Makes the terminal known under a name that stays the same when another one takes its place.
  void Lier(const std::filesystem::path& Lien) const {
    std::filesystem::remove(Lien);
    std::filesystem::create_symlink(Nom_, Lien);
  }
  void Fermer() { Maître_.Fermer(); }

 private:
  Descripteur Maître_;
  std::string Nom_;
};

}  // namespace Ombrey
