// From the reception text to the import text: finding, checking and taking apart the terminal's data frame.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "common/context.h"
#include "contracts/line_protocol.h"
#include "contracts/octets.h"
#include "import/holding_checks.h"
#include "import/import_staging.h"

namespace Ombrey {

class TraitementTrame {
 public:
  TraitementTrame(ÉtatPartagé& État, VérificationExploitation& Exploitations, MiseEnFormeImport& MiseEnForme)
      : État_(État), Exploitations_(Exploitations), MiseEnForme_(MiseEnForme) {}

  /// Takes the first frame out of Tampon, which must be the reception text itself: characters that arrive meanwhile
  /// are appended to it. The result is the import text, empty when there is nothing to import. Réponse becomes ACK or
  /// NAK by the checksum alone, and stays untouched without a whole frame. NoChargement becomes the load's number
  /// without leading zeros once its record has been worked through that far. An unknown holding leaves the frame
  /// where it is. Failures are shown and not raised.
  [[nodiscard]] std::string TraiterDonnéesReçues(Octets& Tampon, Octets& Réponse, std::string& NoChargement);

 private:
  [[nodiscard]] bool CouperAuSTX(Octets& Tampon);
  [[nodiscard]] bool CheckSumJuste(const Octets& Trame) const;
  /// The record's import line; none when its holding is unknown or the plug-in is ending.
  [[nodiscard]] std::optional<std::string> TraiterEnregistrement(const Octets& Enregistrement,
                                                                 std::string& NoChargement);
  [[nodiscard]] std::string TrouverExploitation(const Octets& Enregistrement);
  [[nodiscard]] std::string TexteDate(const Octets& Enregistrement, Position Heure, Position Minute) const;
  void MettreAuPropre(std::vector<std::string>& DonnéesReçues) const;

  ÉtatPartagé& État_;
  VérificationExploitation& Exploitations_;
  MiseEnFormeImport& MiseEnForme_;
};

}  // namespace Ombrey
