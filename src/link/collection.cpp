// The collection dialogue, read from top to bottom as it runs on the line.
#include "link/collection.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "base/ansi_text.h"
#include "base/files.h"
#include "base/regional_forms.h"
#include "contracts/line_protocol.h"
#include "link/checksum.h"
#include "link/daily_error_file.h"

namespace Ombrey {
namespace {

constexpr const char* TexteÉchecLecture = "Echec de lecture de données du RG80 : ";
constexpr const char* TexteLaissé =
    "Chargement laissé sans réponse : le RG80 répondait peut-être à une demande plus ancienne.";

/// The progress counter jumps at the import: from 105 on the import failed, from 205 on it worked.
constexpr int SautImportRefusé = 101;
constexpr int SautImportFait = 201;

/// The working values of one dialogue and its steps.
class Dialogue {
 public:
  Dialogue(ÉtatPlugIn& État, Échange& LÉchange, ITraitementChargement& Traitement)
      : État_(État), Échange_(LÉchange), Traitement_(Traitement), Système_(État.Plateforme.Système()) {}

  std::string Tenir();

 private:
  void SuivreLeCours();
  void OuvrirFichierErreurs();
  bool DemanderChargement();
  bool AttendreTrame();
  bool EstPourNous();
  bool Accordé(const Attente& Demande, const std::string& Refus);
  bool EcrireFichierImport();
  void Importer();
  void RefuserImport();
  void RefuserImportAvecErreur();
  void NoterRefus();
  void RefuserAuTerminal();
  bool RépondreAuTerminal();
  void EnvoyerCumuls();
  void Finir();
  void VérifierErreurEnAttente();
  const std::filesystem::path& FichierConservé();
  bool EstRompu();
  void ConserverFichierImport();
  void Clore();

  ÉtatPlugIn& État_;
  Échange& Échange_;
  ITraitementChargement& Traitement_;
  ISystème& Système_;

  int Etape_ = 0;
  std::string Résultat_;
  std::optional<FichierErreurs> Erreurs_;
  std::filesystem::path FichierImport_;
  std::filesystem::path FichierConservé_;
  std::shared_ptr<IBaseDeD> BaseDeD_;
  Octets RéponseRG80_;
  Octets Trame_;  ///< as it came, with what stands around the record
  std::string NoChargement_;
  std::string TexteImport_;
  std::shared_ptr<IEtatBdD> EtatBdD_;
};

std::string Dialogue::Tenir() {
  try {
    SuivreLeCours();
  } catch (const std::exception& Échec) {
    État_.Erreur.Noter(Échec);
  }
  std::string Rendu = Résultat_;
  Clore();
  return Rendu;
}

void Dialogue::SuivreLeCours() {
  Exiger(État_.Retard)->Arrêter();
  OuvrirFichierErreurs();
  Etape_ = 2;
  État_.Erreur.Effacer();
  BaseDeD_ = État_.BaseDeD;
  EtatBdD_ = État_.EtatBdD;
  if (!EtatBdD_) return;

  std::string Dossier;
  std::string Nom;
  EtatBdD_->ObtenirFichierImport(Dossier, Nom);
  FichierImport_ = Chemin(Dossier + "RG80 " + Nom);

  if (!DemanderChargement() || !AttendreTrame() || EstRompu() || !EstPourNous()) return;
  Erreurs_->Ajouter("");
  TexteImport_ = Traitement_.TraiterDonnéesReçues(État_.TamponRéception, RéponseRG80_, NoChargement_);
  if (EstRompu()) return;
  if (EcrireFichierImport()) {
    Importer();
  } else {
    Résultat_ = "Aucun chargement importé";
    // An ACK stays unsent: a load that wasn't imported is never acknowledged.
    if (RéponseRG80_ == Octets(1, NAK)) Exiger(État_.PortComm)->Ecrire(RéponseRG80_);
  }
  if (!EstRompu()) Finir();
}

/// True when there is nobody left to answer for: the plug-in is ending, or works on another database now. Holding, row
/// and figures of one load come from one database, and the terminal offers the load again.
bool Dialogue::EstRompu() {
  const bool Changée = !État_.Abandon && État_.BaseDeD != BaseDeD_;
  if (Changée) Résultat_ = "La base de données a été changée pendant le dialogue.";
  return État_.Abandon || Changée;
}

void Dialogue::OuvrirFichierErreurs() {
  CréerDossier(DossierErreurs(Système_));
  Etape_ = 1;
  Erreurs_.emplace(FichierErreursDuJour(Système_));
}

bool Dialogue::DemanderChargement() {
  Échange_.FaireTaire();
  return Accordé(Requête(Octets(CodeDemande)), "Aucun chargement à récupérer.");
}

bool Dialogue::AttendreTrame() {
  Attente Trame = Requête(Octets(CodeDemande));
  Trame.Texte.Vider();
  // The answer to the request stays at the head of the buffer and counts.
  Trame.LongMin = LongTrameChargement;
  return Accordé(Trame, std::string(TexteÉchecLecture) + TextePasPrêt);
}

/// The frame is ours unless it can be the answer to an older request. Then nothing is answered: the terminal keeps the
/// load, and the next poll asks again when the line has been silent.
bool Dialogue::EstPourNous() {
  const Octets& Tampon = État_.TamponRéception;
  Trame_ = Tampon.Extrait(Tampon.Chercher(Octets(1, STX)), LongTrameChargement);
  if (Échange_.EstCopie(Trame_)) Résultat_ = TexteLaissé;
  return Résultat_.empty();
}

/// Runs one exchange; false ends the dialogue in words, Refus being those for a NAK.
bool Dialogue::Accordé(const Attente& Demande, const std::string& Refus) {
  const CodeÉchange Code = Échange_.AttendreRéponse(Demande, RéponseRG80_);
  const std::string Panne = TextePanne(Code);
  if (!Panne.empty()) Résultat_ = TexteÉchecLecture + Panne;
  if (Code == CodeÉchange::Motif4) Résultat_ = Refus;
  return Résultat_.empty();
}

bool Dialogue::EcrireFichierImport() {
  const Octets Texte = VersAnsi(TexteImport_);
  // A file that a killed station left behind isn't this load's.
  const bool EstÉcrit = Texte.Taille() > 1;
  if (EstÉcrit) EcrireFichier(FichierImport_, (Texte + Octets("\r\n")).Bruts());
  Etape_ = 3;
  return EstÉcrit && !NoChargement_.empty();
}

void Dialogue::Importer() {
  État_.DernierNoChargement = NoChargement_;
  Etape_ = 4;
  bool Drapeau = false;
  if (!EtatBdD_->TableImporter(TitreImport, TexteChemin(FichierImport_), Drapeau)) {
    Etape_ += SautImportRefusé;
    RefuserImport();
    return;
  }
  Etape_ += SautImportFait;
  if (EstRompu()) return;
  if (!EtatBdD_->DernièreErreur().empty()) {
    RefuserImportAvecErreur();
    return;
  }
  if (!RépondreAuTerminal()) return;
  État_.Erreur.Effacer();
  Système_.Pomper(std::chrono::milliseconds(0));
  if (!EstRompu()) EnvoyerCumuls();
}

/// One name for the whole dialogue: a box may stand open between the moving and the line that tells of it.
const std::filesystem::path& Dialogue::FichierConservé() {
  if (FichierConservé_.empty())
    FichierConservé_ = Système_.DossierImportsConservés() /
                       Chemin("ImportRG80 " + TexteFormaté(Système_.Maintenant(), "jj mm hh nn ss") + ".txt");
  return FichierConservé_;
}

void Dialogue::ConserverFichierImport() {
  const std::filesystem::path Vers = FichierConservé();
  CréerDossier(Vers.parent_path());
  DéplacerFichier(FichierImport_, Vers);
}

/// The engine gave up: the operator is told, keeps the file, and the terminal gets its NAK.
void Dialogue::RefuserImport() {
  constexpr const char* Échec = "Erreur d'importation des données issues du RG80.";
  ConserverFichierImport();
  État_.Avertir(Échec);
  État_.Canal.AjouterMessage(Échec, true);
  NoterRefus();
  RefuserAuTerminal();
}

/// The engine left an error text. What it has written stays in the database; the load is refused all the same.
void Dialogue::RefuserImportAvecErreur() {
  NoterRefus();
  État_.Canal.AjouterMessage(EtatBdD_->DernièreErreur(), true);
  ConserverFichierImport();
  RefuserAuTerminal();
}

void Dialogue::NoterRefus() {
  Erreurs_->Ajouter(TexteHeure(Système_.Maintenant()) + " : TableImporter = TRUE : " + EtatBdD_->DernièreErreur() +
                    " - voir " + TexteChemin(FichierConservé()));
}

void Dialogue::RefuserAuTerminal() {
  if (!EstRompu()) Exiger(État_.PortComm)->Ecrire(Octets(1, NAK));
}

bool Dialogue::RépondreAuTerminal() {
  if (RéponseRG80_.EstVide()) {
    État_.Canal.AjouterMessage("Rien à répondre au RG80 !!?", true);
  } else if (!Échange_.Acquitter(Trame_)) {
    Résultat_ = TexteLaissé;
  }
  return Résultat_.empty();
}

void Dialogue::EnvoyerCumuls() {
  ++Etape_;
  Traitement_.MettreAJourCumuls(NoChargement_);
  VérifierErreurEnAttente();
  ++Etape_;
  if (État_.Abandon) return;
  Exiger(État_.BaseDeD)->Actualiser();
  VérifierErreurEnAttente();
  ++Etape_;
  Traitement_.SignalerAuHôte("ChargementAjouté:" + NoChargement_);
  État_.Erreur.Effacer();
}

void Dialogue::Finir() {
  VérifierErreurEnAttente();
  ++Etape_;
  if (État_.Canal.EstVisible()) État_.Canal.Rafraîchir();
  VérifierErreurEnAttente();
  ++Etape_;
}

/// A called operation can leave a failure recorded without raising it. It stays recorded.
void Dialogue::VérifierErreurEnAttente() {
  if (État_.Erreur.EstPrésente() && !État_.Abandon)
    État_.Avertir(État_.Erreur.Texte(), "Erreur etape " + std::to_string(Etape_));
}

void Dialogue::Clore() {
  ErreurEnAttente Ignorée;
  // What fails because the plug-in was ended in the middle is no failure for the operator.
  if (État_.Erreur.EstPrésente() && Résultat_.empty() && !État_.Abandon) {
    Résultat_ = TexteÉchecLecture + État_.Erreur.Texte() + " - Etape " + std::to_string(Etape_) + " - " + NoChargement_;
    Ignorer(Ignorée, [this] { État_.Avertir("LireDonnéesDeRG80 : " + Résultat_); });
  }
  if (!Résultat_.empty()) Ignorer(Ignorée, [this] { État_.Canal.AjouterMessage(Résultat_, false); });
  Erreurs_.reset();
  std::error_code Code;
  if (!FichierImport_.empty()) std::filesystem::remove(FichierImport_, Code);
}

}  // namespace

std::string Collecte::LireDonnéesDeRG80() { return Dialogue(État_, Échange_, Traitement_).Tenir(); }

}  // namespace Ombrey
