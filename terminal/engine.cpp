// The dialogue as the terminal runs it: requests, offers of loads, answers, time limits.
#include "terminal/engine.h"

#include <algorithm>
#include <utility>

#include "terminal/frame.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr char CodeChargement = 'A';
constexpr std::size_t IgnorésMontrésMax = 80;

constexpr auto DélaiCode = 2s;
constexpr auto DélaiAccord = 10s;
constexpr auto DélaiTrame = 10s;
constexpr auto SilenceIgnorés = 1s;
constexpr auto RetardDePanne = 2500ms;
// A terminal whose driver is typing, for more than two minutes at the longest that was seen: what the line says
// meanwhile stands in a buffer of 64 requests.
constexpr unsigned OccupationMin = 10;
constexpr unsigned OccupationMax = 130;
constexpr std::size_t EmpilésMax = std::size_t{64} * 2;
constexpr auto AttenteDernièreRéponse = 5s;

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
  for (const char Octet : Octets) {
    if (!OccupéJusquÀ_) {
      RecevoirOctet(Octet, Maintenant);
    } else if (Empilés_.size() < EmpilésMax) {
      Empilés_ += Octet;
    }
  }
}

bool Terminal::PeutParler() const { return !OccupéJusquÀ_ && État_ != État::AttendCode && État_ != État::EnTrame; }

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
  if (!File_.empty() && File_.front().Essais == 0) Actives.Ajouter(File_.front().PannesDuPremierEnvoi);
  if (Actives.A(Panne::Occupé) && !SertLaPile_) {
    Suite_.Annoncer("occupé" + Actives.Mention());
    if (!File_.empty()) ++File_.front().Essais;
    OccupéJusquÀ_ = Maintenant + std::chrono::seconds(Dés_.Entre(OccupationMin, OccupationMax));
    Empilés_ = Paire(ENQ, CodeChargement);
    return;
  }
  if (File_.empty()) {
    Suite_.Annoncer("interrogation : aucun chargement" + Actives.Mention());
    const std::string Parasites = Actives.A(Panne::Bruit) ? Dés_.Bruit() : "";
    Répondre(Parasites + Paire(NAK, CodeChargement), Actives, État::Repos, Maintenant);
    return;
  }
  Chargement& Offert = File_.front();
  ++Offert.Essais;
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

void Terminal::Répondre(std::string Octets, const Pannes& Actives, État Ensuite, Instant Maintenant) {
  if (Actives.A(Panne::Silence)) return;
  if (Actives.A(Panne::Retard)) {
    Tardives_.push_back({std::move(Octets), Maintenant + RetardDePanne, Ensuite});
    return;
  }
  Partir(Octets, Ensuite, Maintenant);
}

void Terminal::Partir(const std::string& Octets, État Ensuite, Instant Maintenant) {
  Suite_.Consigner(Sens::Émis, Octets);
  Suite_.Émettre(Octets);
  if (Ensuite == État::AttendAccord) ++Bilan_.Envoyés;
  // A late offer may find that its load, the last one, was acknowledged meanwhile.
  Passer(Ensuite == État::AttendAccord && File_.empty() ? État::Repos : Ensuite, Maintenant);
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
  if (OccupéJusquÀ_ && Maintenant >= *OccupéJusquÀ_) {
    OccupéJusquÀ_.reset();
    SertLaPile_ = true;
    Recevoir(std::exchange(Empilés_, {}), Maintenant);
    SertLaPile_ = false;
  }
  while (!Tardives_.empty() && Maintenant >= Tardives_.front().Départ && PeutParler()) {
    const RéponseTardive Partante = std::move(Tardives_.front());
    Tardives_.pop_front();
    if (État_ == État::AttendAccord) NoterSansRéponse("réponse tardive");
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
  std::optional<Instant> Première = Échéance_;
  const auto Retenir = [&Première](Instant Autre) { Première = std::min(Première.value_or(Autre), Autre); };
  if (OccupéJusquÀ_) Retenir(*OccupéJusquÀ_);
  if (!Tardives_.empty() && PeutParler()) Retenir(Tardives_.front().Départ);
  return Première;
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
