// The error list on paper.
#pragma once

#include <deque>
#include <string>

#include "contracts/system.h"
#include "contracts/toolkit.h"

namespace Ombrey {

/// Prints Lignes, whose newest stands first, from the oldest to the newest and ends the document. The heading, with
/// the date and time of Moment, stands on the first page only. Raises ErreurExécution when it can't be printed.
void ImprimerErreurs(IImprimante& Imprimante, const DateHeure& Moment, const std::deque<std::string>& Lignes);

}  // namespace Ombrey
