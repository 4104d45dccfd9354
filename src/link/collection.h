// The collection dialogue: asks the terminal for one load, receives it, has it imported and answers.
#pragma once

#include <string>

#include "common/plugin_state.h"
#include "link/exchange.h"

namespace Ombrey {

/// What the dialogue needs done with a load.
class ITraitementChargement {
 public:
  virtual ~ITraitementChargement() = default;
  /// Takes the frame out of Tampon and turns its record into one line of import text; empty when there is nothing to
  /// import, and the operator has been told why. Réponse: ACK or NAK for the terminal once a frame could be checked,
  /// untouched otherwise. NoChargement: the load's number, once known.
  virtual std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement) = 0;
  /// Sends the figures of the load to the terminal.
  virtual void MettreAJourCumuls(std::string& NoChargement) = 0;
  /// Tells the host. Raises nothing.
  virtual void SignalerAuHôte(const std::string& Texte) = 0;
};

class Collecte {
 public:
  Collecte(ÉtatPlugIn& État, Échange& LÉchange, ITraitementChargement& Traitement)
      : État_(État), Échange_(LÉchange), Traitement_(Traitement) {}

  /// One dialogue, one load at most. The result says how it ended, empty when there is nothing to report; a run-time
  /// failure isn't in it, but has been shown, and stays the pending failure. Leaves the polling timer stopped.
  /// Raises nothing.
  std::string LireDonnéesDeRG80();

 private:
  ÉtatPlugIn& État_;
  Échange& Échange_;
  ITraitementChargement& Traitement_;
};

}  // namespace Ombrey
