// What a PostgreSQL server refuses, in an operator's French.
#pragma once

#include <string>
#include <string_view>

#include "base/failures.h"

namespace Ombrey {

inline constexpr const char* LiaisonPerdue = "La liaison avec le serveur de la base est perdue";

/// Raises the failure for the server's five-letter code and its own words. ÉchecPassager for what a second try may
/// bring through.
[[noreturn]] void LeverÉchecServeur(std::string_view Code, std::string_view Mots);

}  // namespace Ombrey
