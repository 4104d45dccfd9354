// The polling loop: one tick, one dialogue, one line, and the timer armed again.
#pragma once

#include <string>

#include "common/plugin_state.h"
#include "link/collection.h"

namespace Ombrey {

class Interrogation {
 public:
  Interrogation(ÉtatPlugIn& État, Collecte& LaCollecte) : État_(État), Collecte_(LaCollecte) {}

  /// The timer's event, and the operator's button. Put off while the line is taken. Raises
  /// "Variable objet non définie" without a timer, and nothing else.
  void Retard_FinTempo(const std::string& CodeRetour);

  /// Tells the host; a failure of the host is its own affair.
  void SignalerAuHôte(const std::string& Texte);

 private:
  ÉtatPlugIn& État_;
  Collecte& Collecte_;
};

}  // namespace Ombrey
