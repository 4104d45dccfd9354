// The dialogue as the terminal runs it: requests, offers of loads, frames received, time limits.
#include "terminal/engine.h"

#include <algorithm>
#include <utility>

#include "terminal/frame.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr char CodeChargement = 'A';
constexpr char CodeRéponse = '8';
constexpr std::size_t LongueurRéponse = 24;
// The largest file that can be is 32767 groups of 83 bytes; what goes beyond this isn't one.
constexpr std::size_t LongueurTrameMax = 4U << 20U;
constexpr std::size_t IgnorésMontrésMax = 80;

constexpr auto DélaiCode = 2s;
constexpr auto DélaiAccord = 10s;
constexpr auto DélaiTrame = 10s;
// A frame that pauses this long is over; the plug-in gives an answer 2 s from its last byte on.
constexpr auto SilenceTrame = 1s;
constexpr auto SilenceIgnorés = 1s;
constexpr auto RetardDePanne = 2500ms;
constexpr auto AttenteDernièreRéponse = 5s;

const FichierConnu* TrouverFichier(char Code) {
  const auto* const Trouvé = std::find_if(FichiersConnus.begin(), FichiersConnus.end(),
                                          [Code](const FichierConnu& Connu) { return Connu.Code == Code; });
  return Trouvé == FichiersConnus.end() ? nullptr : Trouvé;
}

std::string Paire(char Contrôle, char Code) { return {Contrôle, Code}; }

}  // namespace

std::string Bilan::Texte() const {
  const auto Article = [](const char* Nom, unsigned Nombre) { return std::string(Nom) + ' ' + std::to_string(Nombre); };
  return "bilan : " + Article("envoyés", Envoyés) + ", " + Article("acquittés", Acquittés) + ", " +
         Article("refusés", Refusés) + ", " + Article("sans réponse", SansRéponse) + ", " +
         Article("réponses reçues", Réponses) + ", " + Article("fichiers reçus", Fichiers);
}

Terminal::Terminal(std::vector<Chargement> Chargements, bool EnFichiers, Hasard& Dés, ISuite& Suite)
    : File_(std::make_move_iterator(Chargements.begin()), std::make_move_iterator(Chargements.end())),
      EnFichiers_(EnFichiers),
      Dés_(Dés),
      Suite_(Suite) {}

void Terminal::Recevoir(std::string_view Octets, Instant Maintenant) {
  for (const char Octet : Octets) RecevoirOctet(Octet, Maintenant);
}

void Terminal::RecevoirOctet(char Octet, Instant Maintenant) {
  if (État_ == État::EnTrame) {
    RecevoirDansTrame(Octet, Maintenant);
  } else if (Octet == ENQ) {
    OuvrirDemande(Maintenant);
  } else if (État_ == État::AttendCode) {
    ServirDemande(Octet, Maintenant);
  } else if (État_ == État::AttendAccord && (Octet == ACK || Octet == NAK)) {
    RecevoirAccord(Octet == ACK, Maintenant);
  } else if (État_ == État::AttendTrame && Octet == STX) {
    SignalerIgnorés();
    Passer(État::EnTrame, Maintenant);
    RecevoirDansTrame(Octet, Maintenant);
  } else if (Octet == EOT) {
    SignalerIgnorés();
    Suite_.Consigner(Sens::Reçu, {&Octet, 1});
    if (RéponseGardée_ && État_ == État::Repos) RéponseClose_ = Maintenant;
  } else {
    Ignorer(Octet, Maintenant);
  }
}

void Terminal::Ignorer(char Octet, Instant Maintenant) {
  ++NombreIgnorés_;
  if (Ignorés_.size() < IgnorésMontrésMax) Ignorés_ += Octet;
  if (État_ == État::Repos) Échéance_ = Maintenant + SilenceIgnorés;
}

void Terminal::SignalerIgnorés() {
  if (NombreIgnorés_ == 0) return;
  Suite_.Consigner(Sens::Reçu, Ignorés_);
  Suite_.Annoncer("octets inattendus ignorés : " + std::to_string(NombreIgnorés_));
  Ignorés_.clear();
  NombreIgnorés_ = 0;
}

void Terminal::OuvrirDemande(Instant Maintenant) {
  SignalerIgnorés();
  if (État_ == État::AttendAccord) NoterSansRéponse("nouvelle demande");
  if (État_ == État::AttendTrame) Suite_.Annoncer(std::string("demande ") + CodeAnnoncé_ + " : sans trame");
  // An answer that comes behind the next request would be taken for the answer to that one.
  if (std::exchange(Tardive_, std::nullopt)) Suite_.Annoncer("réponse tardive abandonnée : nouvelle demande");
  Passer(État::AttendCode, Maintenant);
}

void Terminal::ServirDemande(char Code, Instant Maintenant) {
  Suite_.Consigner(Sens::Reçu, Paire(ENQ, Code));
  Passer(État::Repos, Maintenant);
  if (Code == CodeChargement) {
    OffrirChargement(Maintenant);
  } else if (Code == CodeRéponse || TrouverFichier(Code) != nullptr) {
    AnnoncerTrame(Code, Maintenant);
  } else {
    Suite_.Annoncer("demande inconnue " + Lisible({&Code, 1}) + " : refusée");
    Répondre(Paire(NAK, Code), {}, État::Repos, Maintenant);
  }
}

void Terminal::OffrirChargement(Instant Maintenant) {
  Pannes Actives = Dés_.Tirer();
  if (File_.empty()) {
    Suite_.Annoncer("interrogation : aucun chargement" + Actives.Mention());
    const std::string Parasites = Actives.A(Panne::Bruit) ? Dés_.Bruit() : "";
    Répondre(Parasites + Paire(NAK, CodeChargement), Actives, État::Repos, Maintenant);
    return;
  }
  Chargement& Offert = File_.front();
  if (Offert.Essais++ == 0) Actives.Ajouter(Offert.PannesDuPremierEnvoi);
  PannesDuChargement_ = Actives;
  Suite_.Annoncer("chargement " + Offert.Numéro() + " offert, essai " + std::to_string(Offert.Essais) +
                  Actives.Mention());
  if (Actives.A(Panne::Nak)) {
    Répondre(Paire(NAK, CodeChargement), Actives, État::Repos, Maintenant);
  } else {
    Répondre(Paire(ACK, CodeChargement) + TrameDeChargement(Offert, Actives), Actives, État::AttendAccord, Maintenant);
  }
}

std::string Terminal::TrameDeChargement(const Chargement& Offert, const Pannes& Actives) {
  std::string Trame = Encadrer(Offert.Enregistrement);
  if (Actives.A(Panne::Checksum)) Trame.back() = Trame.back() == '0' ? '1' : '0';
  if (Actives.A(Panne::Coupe)) Trame.resize(Dés_.Entre(1, static_cast<unsigned>(Trame.size()) - 1));
  if (Actives.A(Panne::Bruit)) Trame.insert(0, Dés_.Bruit());
  return Trame;
}

void Terminal::RecevoirAccord(bool Accepté, Instant Maintenant) {
  SignalerIgnorés();
  const char Octet = Accepté ? ACK : NAK;
  Suite_.Consigner(Sens::Reçu, {&Octet, 1});
  if (PannesDuChargement_.A(Panne::AckPerdu) && Accepté) {
    NoterSansRéponse("acquittement perdu");
    Passer(État::Repos, Maintenant);
    return;
  }
  Passer(État::Repos, Maintenant);
  const std::string Numéro = File_.front().Numéro();
  if (!Accepté) {
    ++Bilan_.Refusés;
    Suite_.Annoncer("chargement " + Numéro + " refusé, reste en attente");
    return;
  }
  ++Bilan_.Acquittés;
  File_.pop_front();
  DernierAcquittement_ = Maintenant;
  RéponseGardée_ = false;
  RéponseClose_.reset();
  Suite_.Annoncer("chargement " + Numéro + " acquitté, en attente : " + std::to_string(File_.size()));
}

void Terminal::NoterSansRéponse(const std::string& Raison) {
  ++Bilan_.SansRéponse;
  Suite_.Annoncer("chargement " + File_.front().Numéro() + " sans réponse (" + Raison + "), reste en attente");
}

void Terminal::AnnoncerTrame(char Code, Instant Maintenant) {
  const FichierConnu* const Fichier = TrouverFichier(Code);
  const std::string Objet =
      Fichier == nullptr ? "demande 8" : std::string("fichier ") + Code + " (" + std::string(Fichier->Nom) + ")";
  if (Fichier != nullptr && !EnFichiers_) {
    Suite_.Annoncer(Objet + " refusé : pas en attente de fichiers (F6)");
    Répondre(Paire(NAK, Code), {}, État::Repos, Maintenant);
    return;
  }
  const Pannes Actives = Dés_.Tirer();
  const bool Prêt = !Actives.A(Panne::Nak);
  Suite_.Annoncer(Objet + (Prêt ? " : prêt" : " : pas prêt") + Actives.Mention());
  CodeAnnoncé_ = Code;
  const std::string Parasites = Actives.A(Panne::Bruit) ? Dés_.Bruit() : "";
  Répondre(Parasites + Paire(Prêt ? ACK : NAK, Code), Actives, Prêt ? État::AttendTrame : État::Repos, Maintenant);
}

void Terminal::RecevoirDansTrame(char Octet, Instant Maintenant) {
  Échéance_ = Maintenant + SilenceTrame;
  if (Trame_.size() >= LongueurTrameMax) {
    TrameTropLongue_ = true;
    return;
  }
  // The sum runs two characters behind, so that it covers all but what may be the checksum.
  if (Trame_.size() >= NombreCaractèresChecksum) {
    SommeTrame_ += static_cast<unsigned char>(Trame_[Trame_.size() - NombreCaractèresChecksum]);
  }
  Trame_ += Octet;
  if (Trame_.size() < SurcoûtTrame || Trame_[Trame_.size() - NombreCaractèresChecksum - 1] != ETX) return;
  const std::string_view Reçus = std::string_view(Trame_).substr(Trame_.size() - NombreCaractèresChecksum);
  if (Reçus == CaractèresChecksum(SommeTrame_)) FinirTrame(true, Maintenant);
}

void Terminal::FinirTrame(bool Juste, Instant Maintenant) {
  Suite_.Consigner(Sens::Reçu, Trame_);
  const Pannes Actives = Dés_.Tirer();
  const std::string Trame = std::exchange(Trame_, {});
  Passer(État::Repos, Maintenant);
  if (Actives.A(Panne::Silence)) {
    Suite_.Annoncer("trame reçue, laissée sans réponse" + Actives.Mention());
    return;
  }
  bool Accepté = false;
  if (!Juste || Actives.A(Panne::Checksum)) {
    Suite_.Annoncer(std::string("trame ") + CodeAnnoncé_ + " refusée : " +
                    (TrameTropLongue_ ? "trop longue" : "contrôle faux ou trame incomplète") + Actives.Mention());
  } else if (Actives.A(Panne::Nak)) {
    Suite_.Annoncer(std::string("trame ") + CodeAnnoncé_ + " refusée" + Actives.Mention());
  } else {
    Accepté = GarderTexte(std::string_view(Trame).substr(1, Trame.size() - SurcoûtTrame));
    if (Accepté && Actives.A(Panne::AckPerdu)) {
      Suite_.Annoncer("acquittement de la trame perdu" + Actives.Mention());
      return;
    }
  }
  const std::string Parasites = Actives.A(Panne::Bruit) ? Dés_.Bruit() : "";
  Répondre(Parasites + (Accepté ? ACK : NAK), Actives, État::Repos, Maintenant);
}

bool Terminal::GarderTexte(std::string_view Texte) {
  const FichierConnu* const Fichier = TrouverFichier(CodeAnnoncé_);
  if (Fichier == nullptr) {
    const bool Gardée = Suite_.GarderRéponse(Texte);
    if (!Gardée) return false;
    ++Bilan_.Réponses;
    RéponseGardée_ = true;
    const bool Mesurée = Texte.size() == LongueurRéponse;
    Suite_.Annoncer("réponse reçue : " + Lisible(Texte) +
                    (Mesurée ? "" : " (" + std::to_string(Texte.size()) + " caractères au lieu de 24)"));
    return true;
  }
  const std::string Objet = std::string("fichier ") + CodeAnnoncé_ + " (" + std::string(Fichier->Nom) + ")";
  if (Texte.size() % Fichier->LongueurEnregistrement != 0) {
    Suite_.Annoncer(Objet + " refusé : " + std::to_string(Texte.size()) + " octets, pas un multiple de " +
                    std::to_string(Fichier->LongueurEnregistrement));
    return false;
  }
  if (!Suite_.GarderFichier(CodeAnnoncé_, Texte)) return false;
  ++Bilan_.Fichiers;
  Suite_.Annoncer(Objet + " reçu, enregistrements : " + std::to_string(Texte.size() / Fichier->LongueurEnregistrement));
  return true;
}

void Terminal::Répondre(std::string Octets, const Pannes& Actives, État Ensuite, Instant Maintenant) {
  if (Actives.A(Panne::Silence)) return;
  if (Actives.A(Panne::Retard)) {
    Tardive_ = RéponseTardive{std::move(Octets), Maintenant + RetardDePanne, Ensuite};
    return;
  }
  Partir(Octets, Ensuite, Maintenant);
}

void Terminal::Partir(const std::string& Octets, État Ensuite, Instant Maintenant) {
  Suite_.Consigner(Sens::Émis, Octets);
  Suite_.Émettre(Octets);
  if (Ensuite == État::AttendAccord) ++Bilan_.Envoyés;
  Passer(Ensuite, Maintenant);
}

void Terminal::Passer(État Nouveau, Instant Maintenant) {
  État_ = Nouveau;
  Échéance_.reset();
  switch (Nouveau) {
    case État::Repos:
      break;
    case État::AttendCode:
      Échéance_ = Maintenant + DélaiCode;
      break;
    case État::AttendAccord:
      Échéance_ = Maintenant + DélaiAccord;
      break;
    case État::AttendTrame:
      Échéance_ = Maintenant + DélaiTrame;
      break;
    case État::EnTrame:
      Trame_.clear();
      SommeTrame_ = 0;
      TrameTropLongue_ = false;
      break;
  }
}

void Terminal::Avancer(Instant Maintenant) {
  if (Tardive_ && Maintenant >= Tardive_->Départ) {
    const RéponseTardive Partante = *std::exchange(Tardive_, std::nullopt);
    Partir(Partante.Octets, Partante.Ensuite, Maintenant);
  }
  if (!Échéance_ || Maintenant < *Échéance_) return;
  Échéance_.reset();
  SignalerIgnorés();
  if (État_ == État::EnTrame) {
    FinirTrame(false, Maintenant);
    return;
  }
  if (État_ == État::AttendCode) Suite_.Annoncer("demande sans code abandonnée");
  if (État_ == État::AttendAccord) NoterSansRéponse("délai dépassé");
  Passer(État::Repos, Maintenant);
}

std::optional<Instant> Terminal::ProchaineÉchéance() const {
  if (!Tardive_) return Échéance_;
  return Échéance_ ? std::min(*Échéance_, Tardive_->Départ) : Tardive_->Départ;
}

std::optional<Instant> Terminal::MomentDeFin() const {
  if (!File_.empty()) return std::nullopt;
  if (RéponseClose_) return RéponseClose_;
  return DernierAcquittement_ ? *DernierAcquittement_ + AttenteDernièreRéponse : Instant::min();
}

Bilan Terminal::Terminer() {
  SignalerIgnorés();
  if (État_ == État::AttendAccord) {
    NoterSansRéponse("fin du terminal");
    État_ = État::Repos;
  }
  return Bilan_;
}

}  // namespace Rg80
