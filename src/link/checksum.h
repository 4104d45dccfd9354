// The RG80's control characters and its frame: the one place where a byte of the line is written down.
#pragma once

#include "contracts/octets.h"

namespace Ombrey {

inline constexpr char STX = 2;   ///< first character of a data frame
inline constexpr char ETX = 3;   ///< ends the text of a data frame; two checksum characters follow
inline constexpr char EOT = 4;   ///< closes a data frame that the terminal answered
inline constexpr char ENQ = 5;   ///< opens a request, with the request code behind it
inline constexpr char ACK = 6;   ///< yes
inline constexpr char NAK = 21;  ///< no

/// Characters of a data frame around its text: STX, ETX and two checksum characters.
inline constexpr std::size_t EnrobageTrame = 1 + 1 + 2;

/// Texte with its two checksum characters behind it: the low eight bits of the sum of all its codes, one half to a
/// character, offset from "0" (ten is ":", fifteen "?"; not hexadecimal digits).
[[nodiscard]] Octets CalculerCheckSum(Octets Texte);

/// True when the first characters of c1 and c2 are those computed over Texte; false when one of them is empty.
[[nodiscard]] bool VérifierCheckSum(const Octets& Texte, const Octets& c1, const Octets& c2);

}  // namespace Ombrey
