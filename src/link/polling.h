// The polling loop: one tick, one dialogue, one line, and the timer armed again.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "common/context.h"
#include "contracts/system.h"
#include "link/collection.h"
#include "link/exchange.h"

namespace Ombrey {

class Interrogation {
 public:
  Interrogation(ÉtatPartagé& État, Échange& LÉchange, ITraitementChargement& Traitement)
      : État_(État), Échange_(LÉchange), Traitement_(Traitement) {}
  Interrogation(const Interrogation&) = delete;
  Interrogation& operator=(const Interrogation&) = delete;

  /// From the end of a poll to the next, in milliseconds.
  [[nodiscard]] std::int32_t Période() const { return PériodeInterrogation_; }
  void FixerPériode(std::int32_t Période) { PériodeInterrogation_ = Période; }

  /// Makes the timer when there is none. The first poll comes ten seconds later, whatever the period.
  void Commencer();
  /// The next poll comes a period from now. This and the two below raise "Variable objet non définie" without a timer.
  void Armer();
  /// Runs Faire without polls in between. They go on behind it, also when it raises, unless the plug-in has ended.
  void Suspendre(const std::function<void()>& Faire);
  /// One poll: the timer's event, which the operator's button calls as well. Put off while the line is taken.
  void Retard_FinTempo(const std::string& CodeRetour);
  /// No poll comes any more.
  void Terminer();

 private:
  ÉtatPartagé& État_;
  Échange& Échange_;
  ITraitementChargement& Traitement_;
  std::int32_t PériodeInterrogation_ = 2000;
  std::shared_ptr<IRetard> Retard_;
};

}  // namespace Ombrey
