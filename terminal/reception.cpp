// The frames that the terminal receives: replies and files of reference data.
#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

#include "terminal/engine.h"
#include "terminal/faults.h"
#include "terminal/frame.h"

namespace Rg80 {

namespace {

using namespace std::chrono_literals;

constexpr std::size_t LongueurRéponse = 24;
// The largest file that can be is 32767 groups of 83 bytes; what goes beyond this isn't one.
constexpr std::size_t LongueurTrameMax = 4U << 20U;
// A frame that pauses this long is over; the plug-in gives an answer 2 s from its last byte on.
constexpr auto SilenceTrame = 1s;

}  // namespace

const FichierConnu* TrouverFichier(char Code) {
  const auto* const Trouvé = std::find_if(FichiersConnus.begin(), FichiersConnus.end(),
                                          [Code](const FichierConnu& Connu) { return Connu.Code == Code; });
  return Trouvé == FichiersConnus.end() ? nullptr : Trouvé;
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

}  // namespace Rg80
