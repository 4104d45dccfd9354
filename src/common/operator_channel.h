// The channel to the operator: what every room may say, and what the windows may ask of the plug-in.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "contracts/octets.h"

namespace Ombrey {

/// What a room says to the operator. In the plug-in the monitoring window shows it, made at the first line that is
/// said; once the plug-in has ended, every call is dropped.
class ICanalOpérateur {
 public:
  virtual ~ICanalOpérateur() = default;
  /// A line in the message list, its box ticked or not.
  virtual void AjouterMessage(const std::string& Texte, bool Coché) = 0;
  /// A line in the error list and one, not ticked, in the message list; the window turns to its error list.
  virtual void AjouterErreur(const std::string& Texte) = 0;
  /// Has the list of today's loads read again. Raises nothing.
  virtual void Rafraîchir() = 0;
  [[nodiscard]] virtual bool EstVisible() const = 0;
  /// Shows the window and waits until it is hidden.
  virtual void Afficher() = 0;
};

/// The one service that the list of loads and the dialogue both ask for.
class IEnvoiCumuls {
 public:
  virtual ~IEnvoiCumuls() = default;
  /// Sends the figures of the load to the terminal; the empty text stands for the last load received.
  virtual void MettreAJourCumuls(std::string& NoChargement) = 0;
};

/// What the windows have done by the plug-in.
class IServicesLiaison : public virtual IEnvoiCumuls {
 public:
  /// One poll, now: what the timer's tick does, called by the operator's button as well. Put off while the line is
  /// taken.
  virtual void Retard_FinTempo(const std::string& CodeRetour) = 0;
  /// True when the terminal answered.
  virtual bool TesterConnexion() = 0;
  /// Sends each text that isn't empty in a frame of its own. Empty when all were acknowledged, else the reason.
  /// The elements come back in framed form.
  virtual std::string TransmettreLignes(std::int32_t NumFichier, std::vector<Octets>& Lignes) = 0;
};

}  // namespace Ombrey
