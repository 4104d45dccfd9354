// The collection dialogue, read from top to bottom as it runs on the line.
#include "link/collection.h"

#include <chrono>
#include <cstddef>
#include <exception>
#include <filesystem>
#include <system_error>

#include "base/ansi_text.h"
#include "base/files.h"
#include "base/kept_files.h"
#include "base/regional_forms.h"
#include "contracts/line_protocol.h"
#include "contracts/phrases.h"
#include "link/daily_error_file.h"

namespace Ombrey {
namespace {

constexpr const char* TexteÉchecLecture = "Echec de lecture de données du RG80 : ";
constexpr const char* TexteÉchecImport = "Erreur d'importation des données issues du RG80.";
constexpr std::size_t ImportsConservésAuPlus = 1000;
constexpr const char* TexteLaissé =
    "Chargement laissé sans réponse : le RG80 répondait peut-être à une demande plus ancienne.";

/// The progress counter, as it stands in « Erreur etape 206 » and « Etape 4 ». What ends early counts two on from its
/// last step: 4 and 5 without an import, 106 and 107 behind a refused one, 206 and 207 behind an error text.
enum Etape {
  EtapeDossierErreurs = 0,
  EtapeFichierErreurs = 1,
  EtapeÉchanges = 2,
  EtapeFichierImport = 3,
  EtapeImport = 4,
  EtapeImportRefusé = 105,
  EtapeImportFait = 205,
  EtapeCumuls = 206,
  EtapeActualisation = 207,
  EtapeAnnonce = 208,
};

}  // namespace

std::string Collecte::LireDonnéesDeRG80() {
  try {
    SuivreLeCours();
  } catch (const std::exception& Échec) {
    État_.Erreur.Noter(Échec);
  }
  std::string Rendu = Résultat_;
  Clore();
  return Rendu;
}

void Collecte::SuivreLeCours() {
  OuvrirFichierErreurs();
  Etape_ = EtapeÉchanges;
  État_.Erreur.Effacer();
  BaseDeD_ = État_.BaseDeD;
  EtatBdD_ = État_.EtatBdD;
  if (!EtatBdD_) return;

  std::string Dossier;
  std::string Nom;
  EtatBdD_->ObtenirFichierImport(Dossier, Nom);
  FichierImport_ = Chemin(Dossier + "RG80 " + Nom);

  if (!DemanderChargement() || !AttendreTrame() || ConstaterRupture() || !EstPourNous()) return;
  Erreurs_->Ajouter("");
  TexteImport_ = Traitement_.TraiterDonnéesReçues(Échange_.Tampon(), RéponseRG80_, NoChargement_);
  if (ConstaterRupture()) return;
  if (EcrireFichierImport()) {
    Importer();
  } else {
    Résultat_ = "Aucun chargement importé";
    // An ACK stays unsent: a load that wasn't imported is never acknowledged.
    if (RéponseRG80_ == Octets(1, NAK)) Échange_.Ecrire(NAK);
  }
  if (!ConstaterRupture()) Conclure();
}

/// True when nobody is left to answer for; the result then says why. A load that wasn't acknowledged is offered again.
bool Collecte::ConstaterRupture() {
  const bool Rompu = État_.EstRompu(BaseDeD_);
  if (Rompu && !État_.Abandon) Résultat_ = "La base de données a été changée pendant le dialogue.";
  return Rompu;
}

void Collecte::OuvrirFichierErreurs() {
  CréerDossier(DossierErreurs(Système_));
  Etape_ = EtapeFichierErreurs;
  Erreurs_.emplace(FichierErreursDuJour(Système_));
}

bool Collecte::DemanderChargement() {
  Échange_.FaireTaire(Doute::Rang::Première);
  return Accordé(Requête(Octets(CodeDemande)), Phrase::RienÀRécupérer);
}

bool Collecte::AttendreTrame() {
  Attente Trame = Requête(Octets(CodeDemande));
  Trame.Texte.Vider();
  // The answer to the request stays at the head of the buffer and counts.
  Trame.LongMin = LongTrameChargement;
  return Accordé(Trame, std::string(TexteÉchecLecture) + Phrase::PasPrêt);
}

/// The frame is ours unless it can be the answer to an older request. Then nothing is answered: the terminal keeps the
/// load, and the next poll asks again when the line has been silent.
bool Collecte::EstPourNous() {
  const Octets& Tampon = Échange_.Tampon();
  Trame_ = Tampon.Extrait(Tampon.Chercher(Octets(1, STX)), LongTrameChargement);
  if (Échange_.EstCopie(Trame_)) Résultat_ = TexteLaissé;
  return Résultat_.empty();
}

/// Runs one exchange; false ends the dialogue in words, Refus being those for a NAK.
bool Collecte::Accordé(const Attente& Demande, const std::string& Refus) {
  const CodeÉchange Code = Échange_.AttendreRéponse(Demande, RéponseRG80_);
  const std::string Panne = TextePanne(Code);
  if (!Panne.empty()) Résultat_ = TexteÉchecLecture + Panne;
  if (Code == CodeÉchange::Motif4) Résultat_ = Refus;
  return Résultat_.empty();
}

bool Collecte::EcrireFichierImport() {
  const Octets Texte = VersAnsi(TexteImport_);
  // A file that a killed station left behind isn't this load's.
  const bool EstÉcrit = Texte.Taille() > 1;
  if (EstÉcrit) EcrireFichier(FichierImport_, (Texte + Octets("\r\n")).Bruts());
  Etape_ = EtapeFichierImport;
  return EstÉcrit && !NoChargement_.empty();
}

void Collecte::Importer() {
  État_.DernierNoChargement = NoChargement_;
  Etape_ = EtapeImport;
  bool Drapeau = false;
  if (!EtatBdD_->TableImporter(TitreImport, TexteChemin(FichierImport_), Drapeau)) {
    Etape_ = EtapeImportRefusé;
    RefuserImport();
    return;
  }
  Etape_ = EtapeImportFait;
  if (ConstaterRupture()) return;
  if (!EtatBdD_->DernièreErreur().empty()) {
    RefuserImportAvecErreur();
    return;
  }
  if (!RépondreAuTerminal()) return;
  État_.Erreur.Effacer();
  Système_.Pomper(std::chrono::milliseconds(0));
  if (!ConstaterRupture()) EnvoyerCumuls();
}

/// One name for the whole dialogue: a box may stand open between the moving and the line that tells of it. A load that
/// comes again and again is kept once.
const std::filesystem::path& Collecte::FichierConservé() {
  if (!FichierConservé_.empty()) return FichierConservé_;
  const std::filesystem::path Dossier = Système_.DossierImportsConservés();
  const auto Pareil = FichierDeContenu(Dossier, ContenuOuVide(FichierImport_));
  FichierConservé_ =
      Pareil.value_or(Dossier / Chemin("ImportRG80 " + TexteFormaté(Système_.Maintenant(), "jj mm hh nn ss") + ".txt"));
  return FichierConservé_;
}

void Collecte::ConserverFichierImport() {
  const std::filesystem::path Vers = FichierConservé();
  std::error_code Code;
  if (std::filesystem::exists(Vers, Code) && ContenuOuVide(Vers) == ContenuOuVide(FichierImport_)) return;
  CréerDossier(Vers.parent_path());
  DéplacerFichier(FichierImport_, Vers);
  LimiterFichiers(Vers.parent_path(), ImportsConservésAuPlus);
}

/// The engine gave up: the operator is told, keeps the file, and the terminal gets its NAK.
void Collecte::RefuserImport() {
  ConserverFichierImport();
  État_.Avertir(TexteÉchecImport);
  État_.Canal.AjouterMessage(TexteÉchecImport, true);
  NoterRefus();
  RefuserAuTerminal();
}

/// The engine left an error text. What it has written stays in the database; the load is refused all the same.
void Collecte::RefuserImportAvecErreur() {
  NoterRefus();
  État_.Canal.AjouterMessage(EtatBdD_->DernièreErreur(), true);
  ConserverFichierImport();
  RefuserAuTerminal();
}

void Collecte::NoterRefus() {
  Erreurs_->Ajouter(TexteHeure(Système_.Maintenant()) + " : TableImporter = TRUE : " + EtatBdD_->DernièreErreur() +
                    " - voir " + TexteChemin(FichierConservé()));
}

void Collecte::RefuserAuTerminal() {
  if (!ConstaterRupture()) Échange_.Ecrire(NAK);
}

bool Collecte::RépondreAuTerminal() {
  if (RéponseRG80_.EstVide()) {
    État_.Canal.AjouterMessage("Rien à répondre au RG80 !!?", true);
  } else if (!Échange_.Acquitter(Trame_)) {
    Résultat_ = TexteLaissé;
  }
  return Résultat_.empty();
}

void Collecte::EnvoyerCumuls() {
  Etape_ = EtapeCumuls;
  Traitement_.MettreAJourCumuls(NoChargement_);
  VérifierErreurEnAttente();
  Etape_ = EtapeActualisation;
  if (ConstaterRupture()) return;
  Exiger(BaseDeD_)->Actualiser();
  VérifierErreurEnAttente();
  Etape_ = EtapeAnnonce;
  Ignorer([this] { Exiger(État_.EventPlugin)->Signaler(Phrase::ChargementAjouté + NoChargement_); });
  État_.Erreur.Effacer();
}

void Collecte::Conclure() {
  VérifierErreurEnAttente();
  ++Etape_;
  if (État_.Canal.EstVisible()) État_.Canal.Rafraîchir();
  VérifierErreurEnAttente();
  ++Etape_;
}

/// A called operation can leave a failure recorded without raising it. It stays recorded.
void Collecte::VérifierErreurEnAttente() {
  if (État_.Erreur.EstPrésente() && !État_.Abandon)
    État_.Avertir(État_.Erreur.Texte(), "Erreur etape " + std::to_string(Etape_));
}

void Collecte::Clore() {
  // What fails because the plug-in was ended in the middle is no failure for the operator.
  if (État_.Erreur.EstPrésente() && Résultat_.empty() && !État_.Abandon) {
    Résultat_ = TexteÉchecLecture + État_.Erreur.Texte() + " - Etape " + std::to_string(Etape_) + " - " + NoChargement_;
    Ignorer([this] { État_.Avertir("LireDonnéesDeRG80 : " + Résultat_); });
  }
  if (!Résultat_.empty()) Ignorer([this] { État_.Canal.AjouterMessage(Résultat_, false); });
  Erreurs_.reset();
  std::error_code Code;
  if (!FichierImport_.empty()) std::filesystem::remove(FichierImport_, Code);
}

}  // namespace Ombrey
