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
  std::string Heure;      ///< as it stands there
  std::size_t Ligne = 0;  ///< counted from 1
};

/// All messages that consist of bytes, in their order. A line that was cut off because its writer was is passed over.
/// Raises ErreurDemande, which names Nom and the line, for what is no trace.
[[nodiscard]] std::vector<MessageTracé> LireTrace(std::istream& Flux, const std::string& Nom);

}  // namespace Rg80
