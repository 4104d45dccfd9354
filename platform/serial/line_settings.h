// A port's name and settings, checked, and what follows from them: device path and character time.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace Ombrey {

/// The device behind a port's name: "COM1:" to "COM16:", the colon optional and in either case, are the machine's own
/// serial ports; a name that starts with "/" is a path. Raises ErreurExécution on any other name.
[[nodiscard]] std::string CheminDuPort(const std::string& Nom);

enum class Parité { Aucune, Paire, Impaire, Marque, Espace };

/// Settings that a line can have. Made only by VérifierRéglages.
struct RéglagesLiaison {
  int Bauds = 0;
  int Bits = 0;  ///< of a word, 5 to 8
  Parité LaParité = Parité::Aucune;
  int BitsStop = 0;

  /// Start bit, word, parity and stop bits at the line's speed.
  [[nodiscard]] std::chrono::nanoseconds TempsCaractère() const;
};

/// The settings' names in what a refusal says.
inline constexpr const char* MotVitesse = "la vitesse";
inline constexpr const char* MotTaille = "la taille des mots";
inline constexpr const char* MotBitsStop = "le nombre de bits de stop";

/// The settings as the port was given them.
struct RéglagesDemandés {
  std::int16_t Bauds = 0;
  std::int16_t Bits = 0;
  std::string Parité;  ///< "N", "E", "O", "M", "S", or "aucune", "paire", … in either case
  std::int16_t BitsStop = 0;
};

/// Raises ErreurExécution with a sentence that names the port and the value that means nothing.
[[nodiscard]] RéglagesLiaison VérifierRéglages(const std::string& NomPort, const RéglagesDemandés& Demandés);

}  // namespace Ombrey
