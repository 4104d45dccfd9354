// Sums that SQLite keeps by itself.
#pragma once

#include <string>

#include "platform/database/kept_sums.h"

namespace Ombrey {

/// What stands in a column of numbers, as a number; Null for what is none.
[[nodiscard]] std::string NombreSqlite(const std::string& Colonne);

/// No trigger needs a function of ours, so that any other tool may change rows.
[[nodiscard]] ÉcrituresSommes SommesSqlite(const SommesTenues& Sommes);

}  // namespace Ombrey
