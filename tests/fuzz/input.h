// What every fuzz target needs: cutting its input, frames with true checksums, and a check that ends the program.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "contracts/line_protocol.h"

namespace Ombrey::Essais {

/// Ends the program with these words when what must always hold doesn't.
inline void Exiger(bool Tient, const char* Quoi) {
  if (Tient) return;
  std::fprintf(stderr, "== broken: %s\n", Quoi);
  std::abort();
}

/// The input, eaten from its front.
struct Entrée {
  std::string_view Reste;

  Entrée(const std::uint8_t* Données, std::size_t Taille) : Reste(reinterpret_cast<const char*>(Données), Taille) {}
  /// The next byte, 0 behind the last.
  char Octet() {
    const char C = Reste.empty() ? '\0' : Reste.front();
    Reste.remove_prefix(Reste.empty() ? 0 : 1);
    return C;
  }
  /// What stands ahead of the next such byte, which goes as well.
  std::string Jusque(char Fin) {
    const std::string_view Texte = Reste.substr(0, Reste.find(Fin));
    Reste.remove_prefix(Texte.size() + (Texte.size() < Reste.size() ? 1 : 0));
    return std::string(Texte);
  }
};

/// Puts the true checksum where "##" stands behind an ETX: chance alone would find it once in 256 frames. Works it out
/// by itself, byte by byte.
class Sceau {
 public:
  char Passer(char C) {
    const int Rang = Rang_++;
    if (Rang < 2 && C == '#') return static_cast<char>('0' + (Rang == 0 ? (Somme_ >> 4U) & 15U : Somme_ & 15U));
    if (C == STX) Somme_ = 0;
    Somme_ += static_cast<unsigned char>(C);
    Rang_ = C == ETX ? 0 : 2;
    return C;
  }
  std::string PasserTout(std::string_view Texte) {
    std::string Scellé;
    for (const char C : Texte) Scellé += Passer(C);
    return Scellé;
  }

 private:
  unsigned Somme_ = 0;
  int Rang_ = 2;  ///< characters since the last ETX, 2 for many
};

/// STX, 55 bytes of record, ETX, two checksum characters.
inline constexpr std::size_t LongueurTrame = 59;

/// True when a whole frame of a load with its true checksum stands at the front of the text.
inline bool CommenceParTrame(std::string_view Texte) {
  if (Texte.size() < LongueurTrame || Texte[0] != STX) return false;
  unsigned Somme = static_cast<unsigned char>(ETX);
  for (const char C : Texte.substr(0, LongueurTrame - 3)) Somme += static_cast<unsigned char>(C);
  return Texte[LongueurTrame - 2] == static_cast<char>('0' + (Somme >> 4U & 15U)) &&
         Texte[LongueurTrame - 1] == static_cast<char>('0' + (Somme & 15U));
}

}  // namespace Ombrey::Essais
