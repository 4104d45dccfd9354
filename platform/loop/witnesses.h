// Who looks at what the plug-in says and sends, in windows or on a console.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>

namespace Ombrey {

/// Each is called as the plug-in says it, and may be none.
struct TémoinsFenêtres {
  std::function<void(const std::string& Ligne)> Ligne;  ///< into its message list
  /// Shown now; what stands below the message, nothing as a rule.
  std::function<std::string(const std::string& Titre, const std::string& Message)> Boîte;
  std::function<void(const std::string& Titre, const std::string& Message)> Retirée;  ///< went unread
  std::function<void(bool Ouverte)> Transfert = nullptr;  ///< the transfer window, which stops the collection
};

/// How far a long sending is.
struct Avancement {
  std::size_t Restants;        ///< bytes that haven't left the machine
  std::size_t Total;           ///< of this text
  std::chrono::seconds Durée;  ///< that they still take at the line's speed
};
/// False: the operator wants it stopped.
using TémoinEnvoi = std::function<bool(const Avancement&)>;

}  // namespace Ombrey
