// Sums that PostgreSQL keeps by itself.
#pragma once

#include <string>
#include <vector>

#include "platform/database/kept_sums.h"

namespace Ombrey {

/// For a table of sums in the schema. The triggers work with their maker's rights: who may change a row needs no right
/// on the sums.
[[nodiscard]] ÉcrituresSommes SommesPostgresql(const SommesTenues& Sommes, const std::string& Schéma);

}  // namespace Ombrey
