// A file descriptor that closes itself.
#pragma once

#include <unistd.h>

#include <utility>

namespace Ombrey {

/// Owns a file descriptor; holds none when it is negative.
class Descripteur {
 public:
  Descripteur() = default;
  explicit Descripteur(int Numéro) : Numéro_(Numéro) {}
  Descripteur(Descripteur&& Autre) noexcept : Numéro_(std::exchange(Autre.Numéro_, -1)) {}
  Descripteur& operator=(Descripteur&& Autre) noexcept {
    if (this != &Autre) {
      Fermer();
      Numéro_ = std::exchange(Autre.Numéro_, -1);
    }
    return *this;
  }
  Descripteur(const Descripteur&) = delete;
  Descripteur& operator=(const Descripteur&) = delete;
  ~Descripteur() { Fermer(); }

  [[nodiscard]] int Numéro() const { return Numéro_; }
  [[nodiscard]] bool EstOuvert() const { return Numéro_ >= 0; }
  void Fermer() {
    if (EstOuvert()) close(std::exchange(Numéro_, -1));
  }

 private:
  int Numéro_ = -1;
};

}  // namespace Ombrey
