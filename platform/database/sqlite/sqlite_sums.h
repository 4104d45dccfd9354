// Sums that SQLite keeps by itself.
#pragma once

#include <string>

#include "platform/database/kept_sums.h"

namespace Ombrey {

/// The script that makes the table of sums, fills it, and makes the triggers. It needs no function of ours, so that any
/// other tool may change rows.
[[nodiscard]] std::string SommesSqlite(const SommesTenues& Sommes);

}  // namespace Ombrey
