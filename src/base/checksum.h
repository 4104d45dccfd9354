// The checksum of the RG80's data frame.
#pragma once

#include "contracts/octets.h"

namespace Ombrey {

/// Texte with its two checksum characters behind it: the low eight bits of the sum of all its codes, one half to a
/// character, offset from "0" (ten is ":", fifteen "?"; not hexadecimal digits).
[[nodiscard]] Octets CalculerCheckSum(Octets Texte);

/// True when the first characters of c1 and c2 are those computed over Texte; false when one of them is empty.
[[nodiscard]] bool VérifierCheckSum(const Octets& Texte, const Octets& c1, const Octets& c2);

}  // namespace Ombrey
