// The poll around one dialogue: every way out, what the terminal gets, which files stay.
#include "base/files.h"
#include "base/kept_files.h"
#include "base/regional_forms.h"
#include "tests/link/link_bench.h"

namespace Ombrey::Essais {

struct Relevé : Banc {
  Relevé() {
    UneInterrogation.Commencer();
    UnÉchange.Tampon() = Ligne("!A");  // an answer that came too late
  }
};

struct Issue {
  const char* Nom;
  void (*Préparer)(Banc&);
  const char* Ecrit;
  std::string Résultat;  ///< words of the poll's line
  Mots Boîtes;
  std::ptrdiff_t Gardés, Importés;  ///< files kept for the operator, calls of the import engine
};
const std::string Titre = "RG80 Ombrey | ", Echec = "Echec de lecture de données du RG80 : ";
const std::string Bloqué = "Impossible d'écrire le fichier /proc/absent/RG80 import.txt : introuvable - ";
const std::string Rien = "Aucun chargement importé";
const std::string Refus = Titre + "Erreur d'importation des données issues du RG80.";
const std::string Changée = "La base de données a été changée pendant le dialogue.";
// clang-format off
const Issue Issues[] = {
    {"imported", [](Banc&) {}, "?A^", "", {}, 0, 1},
    {"no load", [](Banc& d) { d.Répondre("!A"); }, "?A", "Aucun chargement à récupérer.", {}, 0, 0},
    {"silence", [](Banc& d) { d.Répondre(""); }, "?A", Echec + Muet, {}, 0, 0},
    {"frame too late", [](Banc& d) { d.Répondre("^A" + std::string(56, 'x')); }, "?A", Echec + Muet, {}, 0, 0},
    {"port", [](Banc& d) { d.Port->EcritureRefusée = !(d.Port->Erreur = "absent").empty(); },
     "", Echec + "Erreur du port de communication au RG80.", {"Erreur du port | absent"}, 0, 0},
    {"no state object", [](Banc& d) { d.État.EtatBdD.reset(); }, "", "", {}, 0, 0},
    {"refused frame", [](Banc& d) { d.Accusé = Ligne("!"); d.Import = d.Numéro = ""; }, "?A!", Rien, {}, 0, 0},
    {"good frame, unknown holding: no answer, and none for what a killed station left behind", [](Banc& d) {
       d.Import = d.Numéro = "";
       EcrireFichier(d.Hôte->Dossier + "RG80 import.txt", "12;Aligoté;");
     }, "?A", Rien, {}, 0, 0},
    {"load number 0000: no answer", [](Banc& d) { d.Numéro = ""; }, "?A", Rien, {}, 0, 0},
    {"engine gives up", [](Banc& d) { d.Refuser(); }, "?A!", "", {Refus}, 1, 1},
    {"engine leaves an error text", [](Banc& d) { d.Hôte->Erreur = "Masse : « x »"; }, "?A!", "", {}, 1, 1},
    {"engine raises", [](Banc& d) { d.Hôte->Lève = true; }, "?A", "Erreur la base ne répond pas - ",
     {Titre + "LireDonnéesDeRG80 : " + Echec + "la base ne répond pas - Etape 4 - 12"}, 0, 1},
    {"import file can't be written", [](Banc& d) { d.Hôte->Dossier = "/proc/absent/"; }, "?A",
     "Erreur " + Bloqué, {Titre + "LireDonnéesDeRG80 : " + Echec + Bloqué + "Etape 2 - 12"}, 0, 0},
    {"failure left behind by the figures", [](Banc& d) { d.PendantCumuls = d.Panne; }, "?A^",
     "", {"Erreur etape 206 | panne", "Erreur etape 207 | panne"}, 0, 1},
    {"box that stands open for a while: the line and the file bear one name",
     [](Banc& d) { d.Refuser([&d] { ++d.Système.Mur.Minute; }); }, "?A!", "", {Refus}, 1, 1},
    {"another base in a wait", [](Banc& d) { d.Système.Après(milliseconds(2), d.AutreBase); }, "?A", Changée, {}, 0, 0},
    {"another base in the frame", [](Banc& d) { d.PendantTrame = d.AutreBase; }, "?A", Changée, {}, 0, 0},
    {"another base in the import", [](Banc& d) { d.Hôte->PendantImport = d.AutreBase; }, "?A", Changée, {}, 0, 1},
    {"another base in the box", [](Banc& d) { d.Refuser(d.AutreBase); }, "?A", Changée, {Refus}, 1, 1},
    {"another base behind the ACK", [](Banc& d) {
       d.Port->SurEcriture = [&d, Avant = d.Port->SurEcriture](const Octets& Ecrit) {
         Ecrit == Ligne("^") ? d.AutreBase() : Avant(Ecrit);
       };
     }, "?A^", Changée, {}, 0, 1},
    {"another base in the figures", [](Banc& d) { d.PendantCumuls = d.AutreBase; }, "?A^", Changée, {}, 0, 1},
    {"end in the frame", [](Banc& d) { d.PendantTrame = d.Fin; }, "?A", "", {}, 0, 0},
    {"end in the box", [](Banc& d) { d.Refuser(d.Fin); }, "?A", "", {Refus}, 1, 1},
    {"end in the figures", [](Banc& d) {
       d.PendantCumuls = [&d] {
         d.Panne();
         d.Fin();
       };
     }, "?A^",
     "Erreur panne - ", {}, 0, 1}};
// clang-format on

struct IssueDuDialogue : Relevé, testing::WithParamInterface<Issue> {};
INSTANTIATE_TEST_SUITE_P(Table, IssueDuDialogue, testing::ValuesIn(Issues));

TEST_P(IssueDuDialogue, LeavesLineFilesAndListsAsTold) {
  const Issue& Cas = GetParam();
  SCOPED_TRACE(Cas.Nom);
  Cas.Préparer(*this);
  UneInterrogation.Retard_FinTempo("");
  EXPECT_EQ(Canal.Messages.back(),
            std::pair("Vérification de nouveaux chargements sur le RG80. " + Cas.Résultat, Cas.Résultat.empty()));
  EXPECT_EQ(Ecrit(), Ligne(Cas.Ecrit));
  EXPECT_EQ(Fenêtres.Dites(), Cas.Boîtes);
  EXPECT_FALSE(État.Erreur.EstPrésente());
  EXPECT_EQ(Fichiers(Système.DossierImportsConservés()), Cas.Gardés);
  EXPECT_EQ(Fichiers(Système.Dossier / "import"), 0) << "the import file is never left behind";
  EXPECT_EQ(Hôte->Importés, Mots(static_cast<std::size_t>(Cas.Importés), "12;Aligot\xE9;\r\n"));
  EXPECT_EQ(État.DernierNoChargement, Cas.Importés ? "12" : "");
  const bool Signalé = Ecrit() == Ligne("?A^") && !État.Abandon && Cas.Résultat != Changée;
  EXPECT_EQ(Événements->Signalés, Mots(Signalé, "ChargementAjouté:12"));
  EXPECT_EQ(Hôte->Actualisations, Signalé);
  EXPECT_GE(Canal.Rafraîchissements, Signalé);
  EXPECT_LT(État.Abandon ? Système.Horloge : 0, Début + 100) << "the end waits for nothing";
  const std::string Noté = Contenu(Système.Dossier / "données/RG80 Err Import 0922.txt");
  const std::string Attendu = "\r\n" + TexteHeure(Système.Mur) + " : TableImporter = TRUE : " + Hôte->Erreur +
                              " - voir " + Système.Dossier.string() +
                              "/imports-refusés/ImportRG80 22 09 08 30 00.txt\r\n";
  EXPECT_EQ(Noté.size() < 3 ? "" : Noté, Cas.Gardés ? Attendu : "");
}

TEST_F(Relevé, ARefusalIsSaidAndNotedEvenWhenItsFileCannotBeKept) {
  Hôte->Erreur = "Masse : « x »";
  EcrireFichier(Système.DossierImportsConservés(), "");
  UneInterrogation.Retard_FinTempo("");
  EXPECT_EQ(Canal.Messages.at(0), std::pair(Hôte->Erreur, true));
  EXPECT_GT(std::filesystem::file_size(FichierErreursDuJour(Système)), Hôte->Erreur.size());
  EXPECT_EQ(Fenêtres.Dites().size(), 1U);
}

TEST_F(Relevé, KeptFilesAreOneForEachContentAndNoMoreThanAThousand) {
  CréerDossier(Système.DossierImportsConservés());
  for (int Rang = 0; Rang < 1000; ++Rang)
    EcrireFichier(Système.DossierImportsConservés() / std::to_string(Rang), std::to_string(Rang));
  Refuser();
  for (const int Seconde : {1, 2}) {
    Système.Mur.Seconde = Seconde;
    Répondre("L");
    UneInterrogation.Retard_FinTempo("");
    EXPECT_EQ(Hôte->Importés.size(), static_cast<std::size_t>(Seconde));
  }
  EXPECT_EQ(Fichiers(Système.DossierImportsConservés()), 1000);
  EXPECT_FALSE(FichierDeContenu(Système.DossierImportsConservés(), "0")) << "the oldest goes";
  EXPECT_TRUE(FichierDeContenu(Système.DossierImportsConservés(), "1")) << "and no other: one file was kept";
}

TEST_F(Relevé, RequestsDuringAPollRunOnceWhenTheLineIsFreeAndTheTimerCountsFromTheEnd) {
  UneInterrogation.FixerPériode(500);
  std::vector<std::uint64_t> Départs;
  Port->SurEcriture = [&](const Octets&) {
    Départs.push_back(Système.Horloge - Début);
    Port->Envoyer(Ligne("!A"), milliseconds(2000));
  };
  for (const int Quand : {0, 100, 101})
    Système.Après(milliseconds(Quand), [this] { UneInterrogation.Retard_FinTempo(""); });
  Système.Laisser(milliseconds(4600));
  UneInterrogation.Suspendre([this] { Système.Laisser(milliseconds(2000)); });
  Système.Laisser(milliseconds(501));
  EXPECT_EQ(Départs, (std::vector<std::uint64_t>{0, 2000, 4500, 9000}));
}

TEST_F(Relevé, AFileThatMovesWritesOverNoOther) {
  for (const char* Nom : {"a", "b"}) EcrireFichier(Dossier.Chemin() / Nom, "");
  EXPECT_THROW(DéplacerFichier(Dossier.Chemin() / "a", Dossier.Chemin() / "b"), ErreurExécution);
}

TEST_F(Relevé, DailyFileGoesWhenItHoldsOnlyBlanks) {
  for (const auto& [Contenu, Reste] : {std::pair{"\r\n \r\n", false}, {"", false}, {"\r\nx", true}, {"\t", true}}) {
    EcrireFichier(FichierErreursDuJour(Système), Contenu);
    NettoyerFichierErreurs(Système);
    EXPECT_EQ(std::filesystem::exists(FichierErreursDuJour(Système)), Reste);
  }
}

}  // namespace Ombrey::Essais
