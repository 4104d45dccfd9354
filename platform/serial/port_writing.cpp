// The port on a serial device: writing at the line's pace.
#include <algorithm>
#include <string>
#include <string_view>

#include "platform/serial/serial_port.h"

namespace Ombrey {

namespace {

using namespace std::chrono_literals;

/// The loop never waits longer than this for its next pump.
constexpr std::chrono::milliseconds PauseMax = 20ms;
/// What a pseudo-terminal is given ahead of the line's pace.
constexpr std::chrono::milliseconds AvancePseudoTerminal = 100ms;
/// A far side that has taken nothing for this long takes nothing any more.
constexpr std::chrono::seconds AttenteProgrès = 5s;

}  // namespace

/// One run of Ecrire.
struct PortSérie::Envoi {
  std::string_view Reste;
  std::uint64_t Session;
  Horloge::time_point Progrès;  ///< when the device last took or sent something
  std::size_t EnAttente = 0;    ///< in the driver, as seen last
};

bool PortSérie::Ecrire(const Octets& Texte) {
  const auto Moi = shared_from_this();
  if (EnvoiEnCours_) return Échouer("Le port " + Nom_ + " est occupé par un autre envoi.");
  if (!Voulu_)
    return Échouer("Le port " + Nom_ + " est fermé : ses réglages n'ont pas permis de l'ouvrir, ou il ne sert plus.");
  if (!Appareil_ && !Ouvrir()) return false;
  const std::string Tenu(Texte.Bruts());
  Envoi Travail{Tenu, Session_, Horloge::now()};
  struct Garde {
    bool& EnCours;
    explicit Garde(bool& Drapeau) : EnCours(Drapeau) { EnCours = true; }
    ~Garde() { EnCours = false; }
  } const EnCours(EnvoiEnCours_);
  if (!Envoyer(Travail)) return false;
  Erreur_.clear();
  return true;
}

/// Hands the bytes over, then stays until the last has left. After each pump the port may be closed, lost or another.
bool PortSérie::Envoyer(Envoi& Travail) {
  for (;;) {
    Remettre(Travail);
    if (Session_ != Travail.Session) return false;
    const auto Maintenant = Horloge::now();
    const std::size_t EnAttente = Appareil_->EnAttente();
    if (EnAttente < Travail.EnAttente) Travail.Progrès = Maintenant;
    Travail.EnAttente = EnAttente;
    if (Travail.Reste.empty() && EnAttente == 0 && Maintenant >= FinDeLigne_) break;
    if (Maintenant - std::max(Travail.Progrès, FinDeLigne_) >= AttenteProgrès) {
      Appareil_->JeterEnvoi();
      return Échouer("Le port " + Nom_ + " n'envoie plus : l'appareil au bout de la ligne ne prend rien.");
    }
    if (!Céder(Travail)) return false;
  }
  if (!Appareil_->EstPseudoTerminal()) Appareil_->AttendreFinEnvoi();
  return true;
}

/// Pumps once: while bytes are left for the time of a pause, then no longer than is left of the line's time. False when
/// the port isn't the same any more.
bool PortSérie::Céder(const Envoi& Travail) {
  const auto Ligne = std::chrono::ceil<std::chrono::milliseconds>(FinDeLigne_ - Horloge::now());
  Contexte_.Boucle.Pomper(Travail.Reste.empty() ? std::clamp<std::chrono::milliseconds>(Ligne, 1ms, PauseMax)
                                                : PauseMax);
  if (Session_ == Travail.Session) return true;
  if (Erreur_.empty()) Échouer("Le port " + Nom_ + " a été fermé pendant l'envoi.");
  return false;
}

/// Gives the device what it takes for now, and keeps the line's account.
void PortSérie::Remettre(Envoi& Travail) {
  const Passage Écrit = Appareil_->Ecrire(Travail.Reste.substr(0, Permis()));
  if (Écrit.Perdu) {
    Perdre(Écrit.Erreur);
    Livrer();
    return;
  }
  if (Écrit.Nombre == 0) return;
  const auto Maintenant = Horloge::now();
  Travail.Progrès = Maintenant;
  Travail.Reste.remove_prefix(Écrit.Nombre);
  FinDeLigne_ = std::max(FinDeLigne_, Maintenant) + TempsCaractère_ * static_cast<std::int64_t>(Écrit.Nombre);
}

/// How many bytes the device may be given now.
std::size_t PortSérie::Permis() const {
  if (!Appareil_->EstPseudoTerminal()) return std::string_view::npos;
  const auto Maintenant = Horloge::now();
  const auto Avance = Maintenant + AvancePseudoTerminal - std::max(FinDeLigne_, Maintenant);
  // On the slowest lines one character takes longer than the advance.
  const std::int64_t AuMoins = FinDeLigne_ <= Maintenant ? 1 : 0;
  return static_cast<std::size_t>(std::max<std::int64_t>(Avance / TempsCaractère_, AuMoins));
}

}  // namespace Ombrey
