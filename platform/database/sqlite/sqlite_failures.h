// What SQLite refuses, in an operator's French.
#pragma once

#include <string>
#include <string_view>

#include "base/failures.h"

struct sqlite3;

namespace Ombrey {

/// French sentence for a result code of SQLite, the engine's own words behind it in parentheses.
[[nodiscard]] std::string TexteÉchec(int Code, std::string_view Mots);

/// Raises the failure that the connection has just met.
[[noreturn]] void LeverÉchec(sqlite3* Base);

}  // namespace Ombrey
