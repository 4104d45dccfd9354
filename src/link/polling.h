// The polling loop: one tick, one dialogue, one line, and the timer armed again.
#pragma once

#include <string>

#include "common/plugin_state.h"
#include "link/collection.h"

namespace Ombrey {

class Interrogation {
 public:
  Interrogation(ÉtatPlugIn& État, Échange& LÉchange, ITraitementChargement& Traitement)
      : État_(État), Échange_(LÉchange), Traitement_(Traitement) {}

  /// The timer's event, and the operator's button. Put off while the line is taken. Raises
  /// "Variable objet non définie" without a timer, and nothing else.
  void Retard_FinTempo(const std::string& CodeRetour);

 private:
  ÉtatPlugIn& État_;
  Échange& Échange_;
  ITraitementChargement& Traitement_;
};

}  // namespace Ombrey
