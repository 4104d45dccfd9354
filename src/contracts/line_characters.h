// The RG80's control characters: the one place where they are written down.
#pragma once

namespace Ombrey {

inline constexpr char STX = 2;   ///< first character of a data frame
inline constexpr char ETX = 3;   ///< ends the text of a data frame; two checksum characters follow
inline constexpr char EOT = 4;   ///< closes a data frame that the terminal answered
inline constexpr char ENQ = 5;   ///< opens a request, with the request code behind it
inline constexpr char ACK = 6;   ///< yes
inline constexpr char NAK = 21;  ///< no

}  // namespace Ombrey
