// The day on paper: the slip of a day's loads with their sums, and the ticket of one load.
#pragma once

#include <string>
#include <vector>

#include "contracts/database.h"
#include "host/load_report.h"

namespace Tarvel {

/// The cooperative's name as the base has it (the parameter « Coopérative »); empty when it has none.
[[nodiscard]] std::string NomCoopérative(Ombrey::IDatabase& Base);

/// The loads in their order, then sums by appellation, holding and group, as a page of HTML. Jour counts from
/// 1899-12-30.
[[nodiscard]] std::string TexteBordereau(const std::vector<ChargementRelaté>& Chargements,
                                         const std::string& Coopérative, int Jour);

[[nodiscard]] std::string TexteTicket(const ChargementRelaté& Chargement, const std::string& Coopérative);

/// Which load of a day; a site and a time that are empty are any.
struct ChargementVoulu {
  std::string Numéro;
  std::string Site{};
  std::string Heure{};  ///< of its arrival, HH:MM
};

/// The day's slip, or (where a number is given) the ticket of its latest load of this kind; where a time is given as
/// well, those of all that came in this minute, a page for each. Raises ErreurExécution when there is none.
[[nodiscard]] std::string TextePapier(Ombrey::IDatabase& Base, int Jour, const ChargementVoulu& Lequel);

}  // namespace Tarvel
