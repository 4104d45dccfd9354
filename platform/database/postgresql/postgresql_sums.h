// Sums that PostgreSQL keeps by itself.
#pragma once

#include <string>
#include <vector>

#include "platform/database/kept_sums.h"

namespace Ombrey {

/// The statements that make the table of sums in the schema, fill it, and make the triggers. They work with their
/// maker's rights: who may change a row needs no right on the sums.
[[nodiscard]] std::vector<std::string> SommesPostgresql(const SommesTenues& Sommes, const std::string& Schéma);

}  // namespace Ombrey
