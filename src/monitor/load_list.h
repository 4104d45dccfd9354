// Today's loads: the query and its rows as texts.
#pragma once

#include <string>
#include <vector>

#include "contracts/database.h"
#include "contracts/system.h"

namespace Ombrey {

/// Each row has as many texts as there are headings; a Null is the empty text.
struct ListeChargements {
  std::vector<std::string> Entêtes;
  std::vector<std::vector<std::string>> Rangées;
};

/// Newest load first. Raises ErreurExécution when the query can't be run or read.
[[nodiscard]] ListeChargements LireChargementsDuJour(IDatabase& Base, const Régional& Formes);

}  // namespace Ombrey
