// The line's alphabet as the terminal knows it: control characters, checksum, framing, and bytes made readable.
#pragma once

#include <array>
#include <string>
#include <string_view>

namespace Rg80 {

inline constexpr char STX = 2;
inline constexpr char ETX = 3;
inline constexpr char EOT = 4;
inline constexpr char ENQ = 5;
inline constexpr char ACK = 6;
inline constexpr char NAK = 21;
/// The code under which the reply with the figures is announced.
inline constexpr char CodeRéponse = '8';

struct NomDeContrôle {
  char Code;
  std::string_view Nom;
};
inline constexpr std::array<NomDeContrôle, 6> NomsDeContrôle{
    {{STX, "STX"}, {ETX, "ETX"}, {EOT, "EOT"}, {ENQ, "ENQ"}, {ACK, "ACK"}, {NAK, "NAK"}}};

inline constexpr std::size_t NombreCaractèresChecksum = 2;
/// What a frame adds to its text: STX, ETX and the two checksum characters.
inline constexpr std::size_t SurcoûtTrame = 1 + 1 + NombreCaractèresChecksum;

/// The two checksum characters for a sum of byte codes: the halves of its low eight bits, each counted from "0".
[[nodiscard]] std::string CaractèresChecksum(unsigned Somme);

/// STX, Texte, ETX and the two checksum characters over those three. Texte: bytes, any length, taken as they stand.
[[nodiscard]] std::string Encadrer(std::string_view Texte);

/// A request or the answer to one: a control character and the request's code.
[[nodiscard]] inline std::string Paire(char Contrôle, char Code) { return {Contrôle, Code}; }

/// Raw Windows-1252 bytes as UTF-8 for a person: control characters by name (`<STX>`), other unprintable bytes in
/// hexadecimal (`<0D>`).
[[nodiscard]] std::string Lisible(std::string_view Octets);

}  // namespace Rg80
