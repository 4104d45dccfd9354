// An open serial device: opened for one program, set, read and written without waiting.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <string>
#include <string_view>

#include "contracts/octets.h"
#include "platform/loop/descriptor.h"
#include "platform/serial/device_tree.h"
#include "platform/serial/line_settings.h"

namespace Ombrey {

/// What a read or a write came to. Nombre is 0 when the device has nothing, or takes nothing, for now.
struct Passage {
  std::size_t Nombre = 0;
  bool Perdu = false;  ///< the device is gone
  int Erreur = 0;      ///< errno that goes with it, 0 at the end of the device
};

/// A port by the name that it has in the settings, and its device file.
struct AdressePort {
  std::string Nom;
  std::string Chemin;
};

/// Taken for this program alone from its making to its end, which waits for nothing.
class AppareilLiaison {
 public:
  /// Opens the device raw, without flow control. Raises ErreurExécution with a sentence that names the port and says
  /// why it can't be had: absent, in use, no right and the group to join, no serial port, settings refused.
  AppareilLiaison(const AdressePort& Adresse, const RéglagesLiaison& Réglages, const RacinesSystème& Racines = {});
  AppareilLiaison(const AppareilLiaison&) = delete;
  AppareilLiaison& operator=(const AppareilLiaison&) = delete;
  ~AppareilLiaison();

  [[nodiscard]] int Numéro() const { return Descripteur_.Numéro(); }
  /// Number of the device: the same under every name that it has.
  [[nodiscard]] dev_t Identité() const { return Identité_; }
  /// A pseudo-terminal has no line behind it: it takes bytes at any pace and knows of none that wait to leave.
  [[nodiscard]] bool EstPseudoTerminal() const { return PseudoTerminal_; }
  [[nodiscard]] Passage Lire(char* Place, std::size_t Taille) const;
  [[nodiscard]] Passage Ecrire(std::string_view Octets) const;
  /// Bytes that the driver still holds.
  [[nodiscard]] std::size_t EnAttente() const;
  /// Drops what hasn't left yet.
  void JeterEnvoi() const;

 private:
  void Prendre(const AdressePort& Adresse, const RéglagesLiaison& Réglages) const;

  Descripteur Descripteur_;
  dev_t Identité_ = 0;
  bool PseudoTerminal_ = false;
};

/// Whether a device that may not be used has come so short a time ago that the system may still be about to grant it.
[[nodiscard]] bool AttendSonDroit(const std::string& Chemin);

}  // namespace Ombrey
