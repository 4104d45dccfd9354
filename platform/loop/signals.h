// The signals that ask the program to end, as events of the loop.
#pragma once

#include <array>
#include <csignal>
#include <functional>

#include "platform/loop/descriptor.h"
#include "platform/loop/loop.h"

namespace Ombrey {

/// From its making to its end, SIGINT, SIGTERM and SIGHUP call Demandée from within a pump, once for each signal,
/// instead of killing the program. One at a time. Raises ErreurExécution when the system refuses.
class SignauxFin {
 public:
  SignauxFin(IBoucle& Boucle, std::function<void()> Demandée);
  SignauxFin(const SignauxFin&) = delete;
  SignauxFin& operator=(const SignauxFin&) = delete;
  ~SignauxFin();
  /// Whether one has come, also while nothing is pumped.
  [[nodiscard]] static bool EstDemandée() noexcept;

 private:
  Descripteur Sortie_;
  Descripteur Entrée_;
  static constexpr std::array Signaux{SIGINT, SIGTERM, SIGHUP};
  std::array<struct sigaction, Signaux.size()> Anciens_{};
  IBoucle::Jeton Veille_;
};

}  // namespace Ombrey
