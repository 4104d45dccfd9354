// What every fuzz target needs: cutting its input, and a check that ends the program.
#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace Ombrey::Essais {

/// Ends the program with these words when what must always hold doesn't.
inline void Exiger(bool Tient, const std::string& Quoi) {
  if (Tient) return;
  std::fprintf(stderr, "== broken: %s\n", Quoi.c_str());
  std::abort();
}

/// The input, eaten from its front.
struct Entrée {
  std::string_view Reste;

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

/// What a target does with one input.
void Essayer(Entrée E);

}  // namespace Ombrey::Essais
