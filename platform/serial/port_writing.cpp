// The port on a serial device: writing at the line's pace.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <thread>

#include "contracts/octets.h"
#include "platform/serial/line_device.h"
#include "platform/serial/serial_port.h"

namespace Ombrey {

namespace {

using namespace std::chrono_literals;

/// The loop never waits longer than this for its next pump.
constexpr std::chrono::milliseconds PauseMax = 20ms;
/// What a device is given ahead of the line's pace: closing it waits for what it still holds. On the slowest lines it
/// is two characters, so that one is always there when the other has left.
constexpr std::chrono::nanoseconds AvanceMin = 100ms;
constexpr int CaractèresAvance = 2;
/// A far side that has taken nothing for this long takes nothing any more.
constexpr std::chrono::seconds AttenteProgrès = 5s;
/// A closing waits no longer for characters to leave.
constexpr std::chrono::milliseconds DernierDépart = 250ms;
/// A shorter text is gone before anybody could read how far it is.
constexpr std::size_t TexteLong = 256;

}  // namespace

/// One run of Ecrire.
struct PortSérie::Envoi {
  std::string_view Reste;
  std::uint64_t Session;
  Temps::time_point Progrès;  ///< when the last of what the device took should have left, or one of them did
  std::size_t EnAttente = 0;  ///< in the driver, as seen last
  std::size_t Total = Reste.size();
};

bool PortSérie::Ecrire(const Octets& Texte) {
  const auto Moi = shared_from_this();
  if (EnvoiEnCours_) return Échouer("Le port " + Nom_ + " est occupé par un autre envoi.");
  if (!Voulu_)
    return Échouer("Le port " + Nom_ + " est fermé : ses réglages n'ont pas permis de l'ouvrir, ou il ne sert plus.");
  struct Garde {
    bool& EnCours;
    explicit Garde(bool& Drapeau) : EnCours(Drapeau) { EnCours = true; }
    ~Garde() { EnCours = false; }
  } const EnCours(EnvoiEnCours_);
  if (!Appareil_ && !Rouvrir()) return false;
  const std::string Tenu(Texte.Bruts());
  FinDeLigne_ = std::max(FinDeLigne_, Temps::now());
  Envoi Travail{Tenu, Session_, FinDeLigne_};
  if (!Envoyer(Travail)) return false;
  Erreur_.clear();
  return true;
}

/// Hands the bytes over, then stays until the last has left: a single character goes out while its sender works on.
/// After each pump the port may be closed, lost or another.
bool PortSérie::Envoyer(Envoi& Travail) {
  for (;;) {
    Remettre(Travail);
    if (Session_ != Travail.Session) return false;
    const auto Maintenant = Temps::now();
    const std::size_t EnAttente = Appareil_->EnAttente();
    if (EnAttente < Travail.EnAttente) Travail.Progrès = std::max(Travail.Progrès, Maintenant);
    Travail.EnAttente = EnAttente;
    const bool EstPartie = Travail.Total == 1 || (EnAttente == 0 && Maintenant >= FinDeLigne_);
    if (Travail.Reste.empty() && EstPartie) return true;
    if (Maintenant - Travail.Progrès >= AttenteProgrès) {
      Appareil_->JeterEnvoi();
      return Échouer("Le port " + Nom_ + " n'envoie plus : l'appareil au bout de la ligne ne prend rien.");
    }
    if (EstArrêté(Travail)) {
      Appareil_->JeterEnvoi();
      return Échouer("L'envoi a été arrêté par l'opérateur.");
    }
    if (!Céder(Travail)) return false;
  }
}

bool PortSérie::EstArrêté(const Envoi& Travail) const {
  if (!Contexte_.Envoi || Travail.Total < TexteLong) return false;
  const std::size_t Restants = Travail.Reste.size() + Travail.EnAttente;
  const auto Durée = TempsCaractère_ * static_cast<std::int64_t>(Restants);
  return !Contexte_.Envoi({Restants, Travail.Total, std::chrono::ceil<std::chrono::seconds>(Durée)});
}

/// Pumps once: while bytes are left for the time of a pause, then no longer than is left of the line's time. False when
/// the port isn't the same any more.
bool PortSérie::Céder(const Envoi& Travail) {
  const std::chrono::nanoseconds Ligne = FinDeLigne_ - Temps::now();
  const auto EnRoute = Ligne > 0ns ? std::min<std::chrono::nanoseconds>(Ligne, PauseMax) : 1ms;
  Contexte_.Boucle.Pomper(Travail.Reste.empty() ? EnRoute : PauseMax);
  if (Session_ == Travail.Session) return true;
  if (Erreur_.empty()) ÉchouerFermé();
  return false;
}

/// What nobody has waited for leaves ahead of a closing, which would drop it.
void PortSérie::LaisserPartir() const {
  const auto Limite = Temps::now() + DernierDépart;
  for (auto Ici = Temps::now(); Ici < Limite && (Ici < FinDeLigne_ || Appareil_->EnAttente() > 0); Ici = Temps::now())
    std::this_thread::sleep_for(1ms);
}

/// Gives the device what it takes for now, and keeps the line's account.
void PortSérie::Remettre(Envoi& Travail) {
  const auto Maintenant = Temps::now();
  // A line that stood idle has lost the time. Behind a pseudo-terminal there is none: a program that was woken late
  // catches up with the clock there.
  if (!Appareil_->EstPseudoTerminal()) FinDeLigne_ = std::max(FinDeLigne_, Maintenant);
  const auto Avance = std::max(AvanceMin, TempsCaractère_ * CaractèresAvance);
  const auto Permis = std::max((Maintenant + Avance - FinDeLigne_) / TempsCaractère_, std::int64_t{0});
  const Passage Écrit = Appareil_->Ecrire(Travail.Reste.substr(0, static_cast<std::size_t>(Permis)));
  if (Écrit.Perdu) {
    Perdre(Écrit.Erreur);
    Livrer();
    return;
  }
  if (Écrit.Nombre == 0) {  // by the account or by the device, which doesn't catch up
    FinDeLigne_ = std::max(FinDeLigne_, Maintenant);
    return;
  }
  Travail.Reste.remove_prefix(Écrit.Nombre);
  FinDeLigne_ += TempsCaractère_ * static_cast<std::int64_t>(Écrit.Nombre);
  Travail.Progrès = std::max(FinDeLigne_, Maintenant);
}

}  // namespace Ombrey
