// From the codes that a load names to a holding of the database, creating what the database lacks.
#pragma once

#include <string>

#include "common/context.h"
#include "contracts/database.h"

namespace Ombrey {

/// Looks up and creates cooperators and holdings. Every creation leaves a line in the error list.
class VérificationExploitation {
 public:
  explicit VérificationExploitation(ÉtatPartagé& État) : État_(État) {}

  /// The IdMétayage of the pair's holding; among several, the first with the share, else the first with the group, else
  /// the first. A holding that has to be created gives its new code, or "0" when it couldn't be created. Empty when a
  /// code is no number, or after a failure, which is shown. The codes come back as the database writes them, the share
  /// with the locale's decimal separator; a Propriétaire of zeros becomes the Récoltant. Raises nothing.
  [[nodiscard]] std::string VérifierExploitation(std::string& Propriétaire, std::string& Récoltant, std::string& Part,
                                                 const std::string& Groupe);

 private:
  /// Has the cooperator exist; Code comes back as the database writes it unless he was just created.
  void VérifierCoopérateur(std::string& Code);
  [[nodiscard]] bool ChercherCoopérateur(const std::string& Numéro, std::string& Code);
  [[nodiscard]] bool ChercherExploitation(const std::string& Propriétaire, const std::string& Récoltant,
                                          std::string& Part, const std::string& Groupe, std::string& Code);
  void ChoisirRangée(IRecordset& Rangées, std::string& Part, const std::string& Groupe);
  [[nodiscard]] bool MêmePart(const IRecordset& Rangées, std::string& Part);
  [[nodiscard]] bool MêmeGroupe(const IRecordset& Rangées, const std::string& Groupe);
  [[nodiscard]] std::string CréerExploitation(const std::string& Propriétaire, const std::string& Récoltant,
                                              const std::string& Part, const std::string& Groupe);
  /// The code as a whole number: the one form in which a code of the line gets into an SQL text.
  [[nodiscard]] std::string Nombre(const std::string& Code) const;

  ÉtatPartagé& État_;
};

}  // namespace Ombrey
