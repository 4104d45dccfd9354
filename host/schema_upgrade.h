// The schema's number, and what brings an older base up to it.
#pragma once

#include <string>

#include "platform/database/connection.h"

namespace Tarvel {

/// The schema that came before schemas had a number, and the one that this program works with.
inline constexpr int PremierSchéma = 1;
inline constexpr int NuméroSchéma = 6;

/// The number of the base's schema.
[[nodiscard]] int NuméroSchémaDe(Ombrey::IConnexion& Connexion);

/// The season's weights, which the engine keeps.
[[nodiscard]] Ombrey::SommesTenues CumulsDeSaison();

/// Works the season's weights out anew from the loads; what the operator is told about it.
[[nodiscard]] std::string RefaireCumuls(Ombrey::IConnexion& Connexion);

/// From one number to the next, inside a transaction of the caller's.
void PasserAuSchémaSuivant(Ombrey::IConnexion& Connexion, int Numéro);

/// Brings an older base up to date, in one transaction and, where it is a file, behind a whole copy of it that stays
/// beside it; several
/// stations may do so at once. A base that can only be read is left as it is. Raises ErreurExécution when the base is a
/// newer program's, and when the copy or the change can't be made, which leaves the base as it was.
void MettreAJourSchéma(Ombrey::IConnexion& Connexion);

}  // namespace Tarvel
