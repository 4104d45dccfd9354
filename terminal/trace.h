// The trace of a line, read back.
#pragma once

#include <chrono>
#include <cstddef>
#include <istream>
#include <string>
#include <vector>

namespace Rg80 {

/// One message of a trace. Quand counts from the midnight ahead of the first.
struct MessageTracé {
  bool EstDeStation = false;  ///< otherwise the terminal's
  std::string Octets;
  std::chrono::milliseconds Quand{};
  std::string Heure;       ///< as it stands there
  std::size_t Ligne = 0;   ///< counted from 1
  bool EstDuPort = false;  ///< an event, said by nobody
  /// The terminal's, to a station that had been stopped by then: the one that heard it had asked for nothing.
  bool EstÀUnAutre = false;
  /// Ahead of it the line was broken, or messages are missing; at Arrêt another start of the station begins.
  enum class Rupture { Aucune, DeLaLiaison, Arrêt } Avant = Rupture::Aucune;
};

/// All messages that consist of bytes, in their order. A line that was cut off because its writer was is passed over,
/// and so is what the station had begun when it was stopped, while nothing can have come of it. Raises ErreurDemande,
/// which names Nom and the line, for what is no trace.
[[nodiscard]] std::vector<MessageTracé> LireTrace(std::istream& Flux, const std::string& Nom);

}  // namespace Rg80
