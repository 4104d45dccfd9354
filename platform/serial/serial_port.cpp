// The port on a serial device: settings, opening, receiving.
#include "platform/serial/serial_port.h"

#include <array>
#include <utility>

#include "base/failures.h"
#include "base/system_error.h"
#include "platform/serial/port_dialogue.h"

namespace Ombrey {

namespace {
/// Between two looks at a device that isn't granted yet.
constexpr std::chrono::milliseconds PasDuDroit{20};
}  // namespace

PortSérie::PortSérie(ContextePort Contexte, std::string Nom, std::shared_ptr<IClientPortComm> Client)
    : Contexte_(std::move(Contexte)), Nom_(std::move(Nom)), Client_(std::move(Client)) {}

/// Keeps the text as the last error. Always false, the result of the operation that failed.
bool PortSérie::Échouer(const std::string& Texte) {
  Erreur_ = Texte;
  return false;
}

bool PortSérie::Ouvrir() {
  Voulu_ = true;
  Signalement_.clear();
  return Prendre();
}

/// Where the port's device is now. Raises ErreurExécution when another one stands in its place.
AdressePort PortSérie::Adresse() const {
  const RacinesSystème& Racines = Contexte_.Racines;
  const std::string Chemin = CheminDuPort(Nom_);
  const dev_t Présent = IdentitéAppareil(Chemin);
  if (Signalement_.empty()) return {Nom_, Chemin};
  for (const std::string& Signe : {Signalement_, Prise_}) {
    const std::string Sien = PortSignalé(Racines.Sys / "class/tty", Signe);
    if (Sien.empty()) continue;
    const std::string Ailleurs = Racines.Dev / Sien;
    return {Nom_, IdentitéAppareil(Ailleurs) == Présent ? Chemin : Ailleurs};
  }
  if (Présent == 0) return {Nom_, Chemin};
  throw ErreurExécution("Le port " + Nom_ +
                        " est maintenant celui d'un autre appareil, qui n'a pas été ouvert : rebranchez celui du RG80, "
                        "ou choisissez l'autre en configurant le port.");
}

/// For a writing: a device that has just come back is given the time that the system takes to grant it.
bool PortSérie::Rouvrir() {
  try {
    while (Voulu_ && !Appareil_ && AttendSonDroit(Adresse().Chemin)) Contexte_.Boucle.Pomper(PasDuDroit);
  } catch (const ErreurExécution& Erreur) {
    return Échouer(Erreur.what());
  }
  if (!Voulu_) return ÉchouerFermé();
  return Appareil_ || Prendre();
}

bool PortSérie::Prendre() {
  Libérer();
  AdressePort Ici;
  try {
    Ici = Adresse();
    const RéglagesLiaison Réglages = VérifierRéglages(Nom_, Demandés_);
    Appareil_ = std::make_unique<AppareilLiaison>(Ici, Réglages, Contexte_.Racines);
    TempsCaractère_ = Réglages.TempsCaractère();
  } catch (const ErreurExécution& Erreur) {
    return Échouer(Erreur.what());
  }
  Reconnaître(EntréeDe(Contexte_.Racines, Appareil_->Identité()));
  Rafale_ = Rafale(TempsCaractère_);
  Veille_ = Contexte_.Boucle.Surveiller(Appareil_->Numéro(), IBoucle::Sens::Entrée, [Faible = weak_from_this()] {
    if (const auto Moi = Faible.lock()) Moi->Recevoir();
  });
  Erreur_.clear();
  if (std::exchange(Perdu_, false)) {
    const bool SousSonNom = Ici.Chemin == CheminDuPort(Nom_);
    Client_->ÉtatLiaison("Le port " + Nom_ + " est revenu" + (SousSonNom ? "." : " sous le nom " + Ici.Chemin + "."),
                         true);
  }
  return Appareil_ != nullptr;
}

/// Keeps what the device is known by until the next Ouvrir. One that has a copy beside it is known by its socket from
/// then on: after a power cut the copy may come back alone.
void PortSérie::Reconnaître(const std::filesystem::path& Entrée) {
  if (Signalement_.empty()) Signalement_ = SignalementDe(Entrée);
  Prise_ = SignalementDe(Entrée, true);
  if (PortSignalé(Contexte_.Racines.Sys / "class/tty", Signalement_).empty()) Signalement_ = Prise_;
}

void PortSérie::Fermer() {
  Voulu_ = Perdu_ = false;
  Libérer();
  Closes_.clear();
  Erreur_.clear();
}

void PortSérie::Libérer() {
  Veille_.reset();
  Silence_.reset();
  static_cast<void>(Rafale_.Clore());
  if (!Appareil_) return;
  if (!EnvoiEnCours_) LaisserPartir();
  Appareil_.reset();
  FinDeLigne_ = {};
  ++Session_;
}

/// The device is gone: what it gave before still goes up, and the next Ecrire opens it again.
void PortSérie::Perdre(int Numéro) {
  CloreRafale();
  Libérer();
  Échouer("Le port " + Nom_ + " a été perdu" + (Numéro == 0 ? "." : " : " + TexteErreurSystème(Numéro) + "."));
  Perdu_ = true;
  Client_->ÉtatLiaison(std::string(Erreur_), false);
}

bool PortSérie::Lire(Octets& Texte) {
  Texte.Vider();
  return Appareil_ != nullptr;
}

void PortSérie::Recevoir() {
  if (LireAppareil()) ArmerSilence();
  Livrer();
}

void PortSérie::Relever() {
  constexpr int LecturesAuPlus = 64;  // a line gone mad holds nobody here
  for (int Rang = 0; Rang < LecturesAuPlus && LireAppareil();) ++Rang;
  Silence_.reset();
  CloreRafale();
  Livrer();
}

/// Takes in what the device has. True when characters came.
bool PortSérie::LireAppareil() {
  if (!Appareil_) return false;
  std::array<char, 4096> Place;  // NOLINT(cppcoreguidelines-pro-type-member-init): filled by the read
  const Passage Lu = Appareil_->Lire(Place.data(), Place.size());
  if (Lu.Perdu) {
    Perdre(Lu.Erreur);
    return false;
  }
  for (Octets& Close : Rafale_.Ajouter({Place.data(), Lu.Nombre})) Closes_.push_back(std::move(Close));
  return Lu.Nombre > 0;
}

/// What is held back goes up as it is.
void PortSérie::CloreRafale() {
  if (Octets Reste = Rafale_.Clore(); !Reste.EstVide()) Closes_.push_back(std::move(Reste));
}

void PortSérie::ArmerSilence() {
  Silence_.reset();
  const auto Voulu = Rafale_.SilenceAttendu();
  if (!Voulu) return;
  Silence_ = Contexte_.Boucle.Après(*Voulu, [Faible = weak_from_this()] {
    if (const auto Moi = Faible.lock()) Moi->FinSilence();
  });
}

/// The time is over, but a program that was kept waiting itself may find characters that came in time.
void PortSérie::FinSilence() {
  if (LireAppareil()) {
    ArmerSilence();
  } else {
    CloreRafale();
  }
  Livrer();
}

/// Hands the closed bursts up in their order, also when the client pumps or closes the port meanwhile.
void PortSérie::Livrer() {
  const auto Client = Client_;
  while (!Closes_.empty()) {
    const Octets Texte = std::move(Closes_.front());
    Closes_.pop_front();
    Client->Lecture(Texte);
  }
}

bool PortSérie::Configurer(const std::string& FichierIni, const std::string& Section) {
  const auto Moi = shared_from_this();
  return ConfigurerPort(Contexte_, FichierIni, Section, [Moi](const std::string& Chemin) {
    if (Moi->Appareil_ && Moi->Appareil_->Identité() == IdentitéAppareil(Chemin)) Moi->Libérer();
  });
}

}  // namespace Ombrey
