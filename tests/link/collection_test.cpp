// The collection dialogue and the poll around it: every way out, what the terminal gets, which files stay.
#include "link/collection.h"

#include <fstream>
#include <iterator>

#include "common/files.h"
#include "link/daily_error_file.h"
#include "link/polling.h"
#include "tests/link/link_fixture.h"

namespace Ombrey::Essais {
namespace {

/// Frame processing and figures as a script.
class FauxTraitement : public ITraitementChargement {
 public:
  std::string Import = "12;1;";
  std::string Numéro = "12";
  Octets Réponse = Ligne("^");
  std::function<void()> PendantTrame;
  std::function<void()> PendantCumuls;
  std::vector<std::string> Cumuls;
  std::vector<std::string> Signalés;

  std::string TraiterDonnéesReçues(Octets&, Octets& LaRéponse, std::string& NoChargement) override {
    if (PendantTrame) PendantTrame();
    if (!Réponse.EstVide()) LaRéponse = Réponse;
    NoChargement = Numéro;
    return Import;
  }
  void MettreAJourCumuls(std::string& NoChargement) override {
    Cumuls.push_back(NoChargement);
    if (PendantCumuls) PendantCumuls();
  }
  void SignalerAuHôte(const std::string& Texte) override { Signalés.push_back(Texte); }
};

class Dialogue : public Liaison {
 protected:
  Dialogue() {
    Plateforme.LeSystème.Dossier = Dossier.Chemin();
    std::filesystem::create_directories(Dossier.Chemin() / "import");
    Base->Etat->Dossier = (Dossier.Chemin() / "import").string() + "/";
    État.BaseDeD = Base;
    État.EtatBdD = Base->Etat;
    État.EventPlugin = Événements;
    État.Retard = Plateforme.CréerRetard([this](const std::string& Code) { UneInterrogation.Retard_FinTempo(Code); });
  }

  void OffrirChargement() { Plateforme.Port->RépondreDansLOrdre({Ligne("^A") + Octets(59, 'x')}); }
  std::size_t FichiersImport() const { return Compter(Dossier.Chemin() / "import"); }
  std::size_t FichiersGardés() const { return Compter(Dossier.Chemin() / "imports-refusés"); }
  std::string FichierDuJour() const {
    std::ifstream Flux(FichierErreursDuJour(Plateforme.LeSystème), std::ios::binary);
    return {std::istreambuf_iterator<char>(Flux), {}};
  }
  static std::size_t Compter(const std::filesystem::path& Où) {
    std::error_code Code;
    const std::filesystem::directory_iterator Entrées(Où, Code);
    return Code ? 0 : static_cast<std::size_t>(std::distance(begin(Entrées), end(Entrées)));
  }

  DossierEssai Dossier;
  std::shared_ptr<FausseBaseDeD> Base = std::make_shared<FausseBaseDeD>();
  std::shared_ptr<FauxÉvénements> Événements = std::make_shared<FauxÉvénements>();
  FauxTraitement Traitement;
  Collecte UneCollecte{État, UnÉchange, Traitement};
  Interrogation UneInterrogation{État, UneCollecte};
};

struct Issue {
  const char* Nom;
  std::function<void(FauxTraitement&, FauxEtatBdD&, PortScripté&)> Préparer;
  const char* Résultat;  ///< of the dialogue; its message, when not empty
  const char* Ecrit;     ///< behind ENQ "A"
  const char* Boîte;     ///< text of the one box, "" for none
  std::size_t Gardés;    ///< files kept for the operator
  std::size_t Importés;  ///< calls of the import engine
  std::size_t Cumuls;
};

class IssueDuDialogue : public Dialogue, public ::testing::WithParamInterface<Issue> {};

TEST_P(IssueDuDialogue, LeavesLineFilesAndListsAsTold) {
  const Issue& Cas = GetParam();
  OffrirChargement();
  Cas.Préparer(Traitement, *Base->Etat, *Plateforme.Port);
  EXPECT_EQ(UneCollecte.LireDonnéesDeRG80(), Cas.Résultat);
  EXPECT_EQ(Ecrit(), Ligne("?A") + Ligne(Cas.Ecrit));
  const auto& Boîtes = Plateforme.LesFenêtres.Boîtes;
  EXPECT_EQ(Boîtes.empty() ? "" : Boîtes[0].Texte, Cas.Boîte);
  EXPECT_EQ(FichiersGardés(), Cas.Gardés);
  EXPECT_EQ(FichiersImport(), 0U) << "the import file is never left behind";
  EXPECT_EQ(Base->Etat->Importés.size(), Cas.Importés);
  EXPECT_EQ(Traitement.Cumuls.size(), Cas.Cumuls);
  EXPECT_EQ(Événements->Signalés.size() + Traitement.Signalés.size(), Cas.Cumuls);
}

constexpr const char* ImportRefusé = "Erreur d'importation des données issues du RG80.";
using Tr = FauxTraitement;
using Et = FauxEtatBdD;
using Po = PortScripté;

INSTANTIATE_TEST_SUITE_P(
    Table, IssueDuDialogue,
    ::testing::Values(
        Issue{"imported", [](Tr&, Et&, Po&) {}, "", "^", "", 0, 1, 1},
        Issue{"no load", [](Tr&, Et&, Po& po) { po.RépondreDansLOrdre({Ligne("!A")}); },
              "Aucun chargement à récupérer.", "", "", 0, 0, 0},
        Issue{"silence", [](Tr&, Et&, Po& po) { po.RépondreDansLOrdre({}); },
              "Echec de lecture de données du RG80 : Aucune réponse du RG80.", "", "", 0, 0, 0},
        Issue{"frame too late", [](Tr&, Et&, Po& po) { po.RépondreDansLOrdre({Ligne("^A<00")}); },
              "Echec de lecture de données du RG80 : Aucune réponse du RG80.", "", "", 0, 0, 0},
        Issue{"refused frame",
              [](Tr& tr, Et&, Po&) {
                tr.Réponse = Ligne("!");
                tr.Import = "";
                tr.Numéro = "";
              },
              "Aucun chargement importé", "!", "", 0, 0, 0},
        Issue{"good frame, unknown holding: no answer",
              [](Tr& tr, Et&, Po&) {
                tr.Import = "";
                tr.Numéro = "";
              },
              "Aucun chargement importé", "", "", 0, 0, 0},
        Issue{"load number 0000: no answer", [](Tr& tr, Et&, Po&) { tr.Numéro = ""; }, "Aucun chargement importé", "",
              "", 0, 0, 0},
        Issue{"engine gives up", [](Tr&, Et& et, Po&) { et.Importe = false; }, "", "!", ImportRefusé, 1, 1, 0},
        Issue{"engine leaves an error text", [](Tr&, Et& et, Po&) { et.Erreur = "Masse : « x »"; }, "", "!", "", 1, 1,
              0},
        Issue{"engine raises", [](Tr&, Et& et, Po&) { et.Lève = true; }, "", "",
              "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : la base ne répond pas - Etape 4 - 12", 0, 1,
              0},
        Issue{"import file can't be written", [](Tr&, Et& et, Po&) { et.Dossier = "/nonexistent/"; }, "", "",
              "LireDonnéesDeRG80 : Echec de lecture de données du RG80 : Impossible d'écrire le fichier "
              "/nonexistent/RG80 import.txt : introuvable - Etape 2 - 12",
              0, 0, 0}));

TEST_F(Dialogue, ImportFileIsOneAnsiLineAndTheStepsFollowIt) {
  OffrirChargement();
  Traitement.Import = "12;Aligoté;";
  Canal.Visible = true;
  EXPECT_EQ(UneCollecte.LireDonnéesDeRG80(), "");
  ASSERT_EQ(Base->Etat->Importés.size(), 1U);
  EXPECT_EQ(Base->Etat->Importés[0], "12;Aligot\xE9;\r\n");
  EXPECT_EQ(État.DernierNoChargement, "12");
  EXPECT_EQ(Traitement.Signalés, std::vector<std::string>{"ChargementAjouté:12"});
  EXPECT_EQ(Base->Actualisations, 1);
  EXPECT_EQ(Canal.Rafraîchissements, 1);
  EXPECT_EQ(FichierDuJour(), "\r\n");
}

TEST_F(Dialogue, RefusedImportLeavesItsLineInTheErrorFile) {
  OffrirChargement();
  Base->Etat->Importe = false;
  Base->Etat->Erreur = "colonne Masse";
  UneCollecte.LireDonnéesDeRG80();
  EXPECT_EQ(FichierDuJour(), "\r\n08:30:00 : TableImporter = TRUE : colonne Masse - voir " +
                                 (Dossier.Chemin() / "imports-refusés").string() +
                                 "/ImportRG80 22 09 08 30 00.txt\r\n");
}

TEST_F(Dialogue, SecondRefusalInTheSameSecondIsReportedAndNotAcknowledged) {
  Base->Etat->Erreur = "colonne Masse";
  for (int i = 0; i < 2; ++i) {
    OffrirChargement();
    UneCollecte.LireDonnéesDeRG80();
  }
  EXPECT_EQ(FichiersGardés(), 1U);
  EXPECT_EQ(Ecrit(), Ligne("?A!?A"));
  ASSERT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 1U);
  EXPECT_NE(Plateforme.LesFenêtres.Boîtes[0].Texte.find("Etape 205 - 12"), std::string::npos);
}

TEST_F(Dialogue, FailureLeftBehindIsShownWithItsStepAndInThePollsLine) {
  OffrirChargement();
  Traitement.PendantCumuls = [this] { État.Erreur.Noter(ErreurExécution("panne")); };
  UneInterrogation.Retard_FinTempo("");
  ASSERT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 2U);
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[0].Titre, "Erreur etape 206");
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[1].Titre, "Erreur etape 207");
  EXPECT_EQ(Ecrit(), Ligne("?A^"));
  EXPECT_FALSE(État.Erreur.EstPrésente());
}

TEST_F(Dialogue, EndOfThePlugInAtAnyPumpTouchesNothingReleased) {
  // One end for each step that lets events run: request, frame, box of the engine's failure, figures.
  for (const int Quand : {0, 1, 2, 3}) {
    État.Abandon = false;
    État.PortComm = Plateforme.Port;
    Plateforme.Port->EcritureRefusée = false;
    Canal.Messages.clear();
    Plateforme.LesFenêtres.Boîtes.clear();
    OffrirChargement();
    const auto Finir = [this] {
      Terminer();
      État.BaseDeD.reset();
      État.EtatBdD.reset();
      État.Retard.reset();
    };
    if (Quand == 0) Plateforme.LeSystème.Après(milliseconds(2), Finir);
    Traitement.PendantTrame = Quand == 1 ? std::function<void()>(Finir) : nullptr;
    Base->Etat->Importe = Quand != 2;
    Plateforme.LesFenêtres.PendantBoîte = [&](const BoîteMontrée&) { Finir(); };
    Traitement.PendantCumuls = Quand == 3 ? std::function<void()>(Finir) : nullptr;
    UneInterrogation.Retard_FinTempo("");
    EXPECT_EQ(Plateforme.LesFenêtres.Boîtes.size(), Quand == 2 ? 1U : 0U) << Quand;
    EXPECT_EQ(FichiersImport(), 0U) << Quand;
    État.BaseDeD = Base;
    État.EtatBdD = Base->Etat;
    État.Retard = Plateforme.CréerRetard([](const std::string&) {});
  }
}

TEST_F(Dialogue, PollLeavesOneLineAndArmsTheTimerFromItsEnd) {
  État.PériodeInterrogation = 500;
  UneInterrogation.Retard_FinTempo("");
  ASSERT_EQ(Canal.Messages.size(), 2U);
  EXPECT_EQ(Canal.Messages[1], (std::pair<std::string, bool>{
                                   "Vérification de nouveaux chargements sur le RG80. Echec de lecture de données du "
                                   "RG80 : Aucune réponse du RG80.",
                                   false}));
  const auto Fin = Plateforme.LeSystème.Horloge;
  std::uint64_t Suivante = 0;
  Plateforme.Port->SurEcriture = [&](const Octets&) { Suivante = Plateforme.LeSystème.Horloge; };
  Plateforme.LeSystème.Laisser(milliseconds(600));
  EXPECT_EQ(Suivante, Fin + 500);
}

TEST_F(Dialogue, RequestsDuringAPollRunOnceWhenTheLineIsFree) {
  for (int i = 0; i < 3; ++i) {
    Plateforme.LeSystème.Après(milliseconds(100 + i), [this] { UneInterrogation.Retard_FinTempo(""); });
  }
  UneInterrogation.Retard_FinTempo("");
  EXPECT_EQ(Plateforme.Port->Ecrits.size(), 1U) << "no second exchange under the first";
  Plateforme.LeSystème.Laisser(milliseconds(1));
  EXPECT_EQ(Plateforme.Port->Ecrits.size(), 2U);
}

TEST_F(Dialogue, WithoutTheStateObjectNothingGoesOnTheLine) {
  État.EtatBdD.reset();
  EXPECT_EQ(UneCollecte.LireDonnéesDeRG80(), "");
  EXPECT_TRUE(Plateforme.Port->Ecrits.empty());
  EXPECT_TRUE(Canal.Messages.empty());
}

TEST_F(Dialogue, DailyFileGoesWhenItHoldsOnlyBlanks) {
  for (const auto& [Contenu, Reste] :
       {std::pair{"\r\n \r\n\r\n", false}, std::pair{"", false}, std::pair{"\r\nx", true}, std::pair{"\t", true}}) {
    std::filesystem::create_directories(DossierErreurs(Plateforme.LeSystème));
    EcrireFichier(FichierErreursDuJour(Plateforme.LeSystème), Contenu);
    NettoyerFichierErreurs(Plateforme.LeSystème);
    EXPECT_EQ(std::filesystem::exists(FichierErreursDuJour(Plateforme.LeSystème)), Reste);
  }
}

}  // namespace
}  // namespace Ombrey::Essais
