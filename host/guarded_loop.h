// A loop whose actions can't unwind one another.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <utility>

#include "platform/loop/loop.h"

namespace Tarvel {

/// Hands everything on to another loop. An action that raises is reported instead: pumps nest, and its failure would
/// otherwise unwind the dialogue that only happened to be waiting when the action's time came.
/// Derrière is called behind each action.
class BoucleGardée final : public Ombrey::IBoucle {
 public:
  using Rapport = std::function<void(const std::string& Description)>;
  BoucleGardée(
      Ombrey::IBoucle& Boucle, Rapport Dire, Action Derrière = [] {})
      : Boucle_(Boucle), Dire_(std::move(Dire)), Derrière_(std::move(Derrière)) {}

  [[nodiscard]] Jeton Surveiller(int Descripteur, Sens Quoi, Action Faire) override;
  [[nodiscard]] Jeton Après(std::chrono::milliseconds Délai, Action Faire) override;
  bool Pomper(std::chrono::nanoseconds AttenteMax) override { return Boucle_.Pomper(AttenteMax); }

 private:
  [[nodiscard]] Action Garder(Action Faire) const;

  Ombrey::IBoucle& Boucle_;
  Rapport Dire_;
  Action Derrière_;
};

}  // namespace Tarvel
