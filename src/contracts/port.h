// The serial line as the plug-in sees it: a server that hands out ports, the port, and the client object of its event.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "contracts/octets.h"

namespace Ombrey {

/// What can be configured by the operator: the port, and the client port object of a port not yet obtained.
class IConfigurablePort {
 public:
  virtual ~IConfigurablePort() = default;
  /// Lets the operator choose the port's settings and leaves them in the section of the settings file under the keys
  /// Port, Bauds, Parité, BitsStop and TailleMots. Cancelled: the file stays as it was. The result isn't relied on.
  /// Runs the loop while it waits. Needs no open port.
  virtual bool Configurer(const std::string& FichierIni, const std::string& Section) = 0;
};

/// The plug-in's own end of a port: received characters reach the handler that it was made with.
class IClientPortComm : public IConfigurablePort {
 public:
  virtual void FixerNomPort(const std::string& Nom) = 0;
  /// Hands a run of received characters to the handler; called by the port, on the one thread, within a pump or a
  /// call on the port.
  virtual void Lecture(const Octets& Texte) = 0;
  /// Hands a French sentence on: the line was lost, or it is back (Présente). Each is told once, called as Lecture is.
  virtual void ÉtatLiaison(const std::string& Texte, bool Présente) = 0;
};

/// A port. Settings first, then Ouvrir, then Ecrire and Lire at will, Fermer at the end. A port that was lost or
/// couldn't be opened is opened again at the next Ecrire: once opened it keeps to its device, under whatever name that
/// comes back.
class IPortComm : public IConfigurablePort {
 public:
  virtual void FixerNomPort(const std::string& Nom) = 0;
  virtual void FixerBauds(std::int16_t Bauds) = 0;
  virtual void FixerTailleMots(std::int16_t Bits) = 0;
  /// The settings file's text as it stands: a letter or a French word; refused at Ouvrir when it means nothing.
  virtual void FixerParité(const std::string& Parité) = 0;
  virtual void FixerBitsStop(std::int16_t Bits) = 0;
  /// Mode, activity and the two folders are laid down for every port. Those of this machine have one mode, are always
  /// active and need no folder: there these four calls change nothing.
  virtual void FixerMode(std::int16_t Mode) = 0;
  virtual void Activer(bool Actif) = 0;
  virtual void FixerDossierA(const std::string& Dossier) = 0;
  virtual void FixerDossierB(const std::string& Dossier) = 0;
  /// Why the last operation failed, as a French sentence that names the port; empty when none did.
  [[nodiscard]] virtual std::string DernièreErreurPort() const = 0;
  /// True when the port is open with all its settings applied.
  virtual bool Ouvrir() = 0;
  /// True when all bytes have left the machine; a single character, which asks for nothing, may be on its way out
  /// still, ahead of the next text. Runs the loop while they leave: anything can happen meanwhile, Fermer included,
  /// which ends the call at once with false.
  virtual bool Ecrire(const Octets& Texte) = 0;
  /// Puts what has arrived and wasn't handed to the client object into Texte, or empties it; never waits.
  virtual bool Lire(Octets& Texte) = 0;
  /// Hands what has arrived by now to the client object, also what is held back until it is whole. Never waits.
  virtual void Relever() = 0;
  /// How long the line stays silent behind a message that is over: 3.5 characters at the present settings, and no less
  /// than an adapter may take between two characters.
  [[nodiscard]] virtual std::chrono::milliseconds SilenceFinMessage() const = 0;
  virtual void Fermer() = 0;
};

class IServeurPortComm {
 public:
  virtual ~IServeurPortComm() = default;
  /// The port of this name ("COM1:" to "COM16:", or a device's path), which reports to Client; nullptr when it can't
  /// be had, and ErreurServeur then says why. Opens nothing.
  [[nodiscard]] virtual std::shared_ptr<IPortComm> ObtenirPort(const std::string& Nom,
                                                               std::shared_ptr<IClientPortComm> Client) = 0;
  [[nodiscard]] virtual std::string ErreurServeur() const = 0;
};

}  // namespace Ombrey
