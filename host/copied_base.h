// A cooperative goes from one engine to the other.
#pragma once

#include <string>

#include "platform/database/connection.h"

namespace Tarvel {

/// Copies the tables of a cooperative, with the columns that it has added to them, into a new file or into a server's
/// database that has none of them, in one transaction; no station writes meanwhile. Each table is read again and
/// compared. A number that was typed as a text becomes one. Raises ErreurExécution, and leaves the target as it was,
/// when it can't. The result says in French what was done.
std::string CopierBase(const std::string& De, const std::string& Vers, const Ombrey::Progrès& Dire = {});

}  // namespace Tarvel
