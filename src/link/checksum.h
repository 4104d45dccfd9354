// The RG80's data frame and its checksum.
#pragma once

#include "contracts/line_characters.h"
#include "contracts/octets.h"

namespace Ombrey {

/// Characters of a data frame behind its text, ETX and two checksum characters, and all those around it.
inline constexpr std::size_t FinTrame = 1 + 2;
inline constexpr std::size_t EnrobageTrame = 1 + FinTrame;

/// Texte with its two checksum characters behind it: the low eight bits of the sum of all its codes, one half to a
/// character, offset from "0" (ten is ":", fifteen "?"; not hexadecimal digits).
[[nodiscard]] Octets CalculerCheckSum(Octets Texte);

/// True when the first characters of c1 and c2 are those computed over Texte; false when one of them is empty.
[[nodiscard]] bool VérifierCheckSum(const Octets& Texte, const Octets& c1, const Octets& c2);

}  // namespace Ombrey
