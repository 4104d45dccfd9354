// What a PostgreSQL server's row says, in the values that every engine has.
#pragma once

#include <libpq-fe.h>

#include "contracts/database.h"

namespace Ombrey {

/// The value of a field: Null, a whole number (booleans as 0 and -1), a number, a day's number for dates, or text. A
/// decimal without a fraction stays a whole number as far as it can; a date that isn't one is its text.
[[nodiscard]] ValeurChamp ValeurDe(const PGresult* Lignes, int Ligne, int Colonne);

}  // namespace Ombrey
