// A console on two pipes: the test types on one and reads the other.
#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <string>
#include <string_view>
#include <vector>

#include "platform/loop/descriptor.h"
#include "platform/loop/loop.h"

namespace Ombrey::Essais {

class Tuyau {
 public:
  Tuyau() {
    std::array<int, 2> Bouts{};
    EXPECT_EQ(pipe2(Bouts.data(), O_CLOEXEC), 0);
    Sortie = Descripteur(Bouts[0]);
    Entrée = Descripteur(Bouts[1]);
    fcntl(Sortie.Numéro(), F_SETFL, O_NONBLOCK);
  }
  Descripteur Sortie;  ///< the end to read from
  Descripteur Entrée;  ///< the end to write to
};

/// What the operator sees and types.
class Terminal {
 public:
  Tuyau Clavier;
  Tuyau Écran;

  void Taper(std::string_view Texte) const {
    EXPECT_EQ(write(Clavier.Entrée.Numéro(), Texte.data(), Texte.size()), static_cast<ssize_t>(Texte.size()));
  }
  /// All lines so far.
  const std::vector<std::string>& Lignes() {
    std::array<char, 4096> Bloc{};
    for (ssize_t Lus = 0; (Lus = read(Écran.Sortie.Numéro(), Bloc.data(), Bloc.size())) > 0;) {
      Reste_.append(Bloc.data(), static_cast<std::size_t>(Lus));
    }
    for (std::size_t Fin = 0; (Fin = Reste_.find('\n')) != std::string::npos; Reste_.erase(0, Fin + 1)) {
      Lignes_.push_back(Reste_.substr(0, Fin));
    }
    return Lignes_;
  }
  [[nodiscard]] bool AVu(std::string_view Morceau) {
    const auto& Toutes = Lignes();
    return std::any_of(Toutes.begin(), Toutes.end(),
                       [&](const auto& Ligne) { return Ligne.find(Morceau) != std::string::npos; });
  }

 private:
  std::string Reste_;
  std::vector<std::string> Lignes_;
};

/// Runs the loop until nothing is left to do.
inline void Épuiser(IBoucle& Boucle) {
  while (Boucle.Pomper(std::chrono::milliseconds(20))) {
  }
}

}  // namespace Ombrey::Essais
