// From the fields of one load to one line of the host's import text.
#pragma once

#include <string>
#include <vector>

#include "common/context.h"

namespace Ombrey {

/// Composes the import line by the host's layout of the title TitreImport, which it reads at each call.
class MiseEnFormeImport {
 public:
  explicit MiseEnFormeImport(ÉtatPartagé& État) : État_(État) {}

  /// The values of DonnéesReçues (in the order of ChampsChargement) in the layout's order, the layout's separator
  /// behind each, without a line end. Empty when there is no layout or a value can't be had. Raises when the layout
  /// itself can't be read.
  [[nodiscard]] std::string MiseEnFormePourImport(const std::vector<std::string>& DonnéesReçues);

 private:
  struct Définition {
    std::string Colonnes;    ///< one line a column, lines separated by CR, a line's items by TAB, its name in front
    std::string Séparateur;  ///< follows each value
  };

  [[nodiscard]] bool LireDéfinition(Définition& Lue);
  [[nodiscard]] std::string ComposerLigne(const Définition& D, const std::vector<std::string>& DonnéesReçues);
  void Compléter(const std::vector<std::string>& Noms, std::vector<std::string>& Valeurs);
  void CompléterCépage(const std::vector<std::string>& Noms, std::vector<std::string>& Valeurs, std::string& Sélection);

  ÉtatPartagé& État_;
};

}  // namespace Ombrey
