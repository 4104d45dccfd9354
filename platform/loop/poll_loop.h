// The event loop on ppoll(2): for a station without windows, and for every test.
#pragma once

#include <poll.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/loop/loop.h"

namespace Ombrey {

/// Serves due delays and ready descriptors in turn, and among the descriptors the one that has waited longest, so that
/// none of them can starve another.
class BouclePoll final : public IBoucle {
 public:
  [[nodiscard]] Jeton Surveiller(int Descripteur, Sens Quoi, Action Faire) override;
  [[nodiscard]] Jeton Après(std::chrono::milliseconds Délai, Action Faire) override;
  bool Pomper(std::chrono::nanoseconds AttenteMax) override;

 private:
  using Temps = std::chrono::steady_clock;
  /// What runs holds the action, so that it outlives its own entry.
  using ActionTenue = std::shared_ptr<const Action>;

  /// A watch or a delay. Its token empties Faire, which marks the entry as dead.
  struct Entrée {
    ActionTenue Faire;
    Temps::time_point Échéance{};  ///< of a delay
    int Descripteur = -1;          ///< of a watch
    short Événements = 0;
    std::uint64_t Tour = 0;  ///< when the watch was served last
  };
  using Entrées = std::vector<std::shared_ptr<Entrée>>;

  static Jeton Inscrire(Entrées& Liste, Entrée Nouvelle);
  void Sonder(Temps::time_point Limite);
  [[nodiscard]] ActionTenue Choisir();
  [[nodiscard]] std::shared_ptr<Entrée> PremierDélai() const;
  [[nodiscard]] std::shared_ptr<Entrée> VeillePrête() const;

  Entrées Délais_;
  Entrées Veilles_;
  std::vector<pollfd> Sondes_;  ///< one for each watch, in the same order, between Sonder and Choisir
  std::uint64_t Tour_ = 0;
  bool DélaiServi_ = false;  ///< the event served last was a delay
};

}  // namespace Ombrey
