// The monitoring window: its lists, grid, printout and placement, and its end in the midst of a call.
#include "monitor/monitoring_window.h"

#include <gtest/gtest.h>

#include "tests/support/fake_host.h"
#include "tests/support/fake_platform.h"
#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;
using enum ContrôleSuivi;

class ServicesActifs : public FauxServices {
 public:
  std::function<void()> SurInterrogation = [] {};
  std::function<void()> SurCumuls = [] {};
  void Retard_FinTempo(const std::string&) override { SurInterrogation(); }
  void MettreAJourCumuls(std::string& NoChargement) override {
    FauxServices::MettreAJourCumuls(NoChargement);
    SurCumuls();
  }
};

class Suivi : public testing::Test {
 protected:
  FaussePlateforme Plateforme;
  FauxCanal Canal;
  ÉtatPlugIn État{Plateforme, Canal};
  ServicesActifs Services;
  std::shared_ptr<FSuiviChargnt> Fenêtre = std::make_shared<FSuiviChargnt>(État, Services);

  FausseVueSuivi& Vue() { return *Plateforme.LesFenêtres.VueSuivi; }
  std::map<std::string, std::string>& Réglages() { return Plateforme.LesRéglages.Contenu; }
  std::vector<FausseVueSuivi::Ligne>& Lignes(Onglet Liste) { return Vue().Lignes[static_cast<std::size_t>(Liste)]; }
  /// The texts of the message list without their stamps, newest first.
  std::string Messages() {
    std::string Textes;
    for (const auto& Ligne : Lignes(Onglet::Suivis)) Textes += Ligne.Texte.substr(std::string("08:30:00 : ").size());
    return Textes;
  }
};

TEST_F(Suivi, ReplacesATextAmongTheTwoNewestLines) {
  const std::pair<const char*, const char*> Cas[] = {
      {"AAA", "A"},
      {"ABAB", "BA"},
      {"ABCA", "ACBA"},
      {"ABCACB", "BCABA"},
  };
  for (const auto& [Suite, Attendu] : Cas) {
    Fenêtre.reset();
    Fenêtre = std::make_shared<FSuiviChargnt>(État, Services);
    Plateforme.LeSystème.Mur.Seconde = 0;
    for (const char Texte : std::string(Suite)) {
      ++Plateforme.LeSystème.Mur.Seconde;
      Fenêtre->AjouterMessage(std::string(1, Texte), true);
    }
    EXPECT_EQ(Messages(), Attendu) << Suite;
    EXPECT_EQ(Lignes(Onglet::Suivis)[0].Texte.substr(0, 8), "08:30:0" + std::to_string(std::string(Suite).size()));
  }
}

TEST_F(Suivi, KeepsSixtyFourMessagesAndEveryError) {
  for (int Rang = 1; Rang <= 65; ++Rang) Fenêtre->AjouterMessage("message " + std::to_string(Rang), Rang % 2 == 0);
  ASSERT_EQ(Lignes(Onglet::Suivis).size(), 64U);
  EXPECT_EQ(Lignes(Onglet::Suivis).front().Texte, "08:30:00 : message 65");
  EXPECT_FALSE(Lignes(Onglet::Suivis).front().Coché);
  EXPECT_TRUE(Lignes(Onglet::Suivis)[1].Coché);
  EXPECT_EQ(Lignes(Onglet::Suivis).back().Texte, "08:30:00 : message 2");
  for (int Rang = 0; Rang < 500; ++Rang) Fenêtre->AjouterErreur("toujours la même");
  EXPECT_EQ(Lignes(Onglet::Erreurs).size(), 500U);
}

TEST_F(Suivi, TurnsToTheErrorListAtAnError) {
  EXPECT_FALSE(Vue().Offert[1]);
  Fenêtre->AjouterErreur("panne");
  EXPECT_TRUE(Vue().Offert[1]);
  EXPECT_EQ(Vue().OngletChoisi, Onglet::Erreurs);
  EXPECT_TRUE(Vue().Visibles[BtnImprimer]);
  EXPECT_FALSE(Vue().Visibles[BtnInterroger]);
  EXPECT_EQ(Messages(), "panne");
  EXPECT_FALSE(Lignes(Onglet::Suivis)[0].Coché);
  Vue().OngletChoisi = Onglet::Suivis;
  Fenêtre->Onglets_Click();
  EXPECT_FALSE(Vue().Visibles[BtnImprimer]);
  EXPECT_TRUE(Vue().Visibles[BtnForcerCumulsRG80]);
}

TEST_F(Suivi, ShowsALineInFullAndNothingForAnEmptyList) {
  Fenêtre->ListeMessages_DblClick(Onglet::Erreurs);
  EXPECT_TRUE(Plateforme.LesFenêtres.Boîtes.empty());
  Fenêtre->AjouterMessage("première", true);
  Fenêtre->AjouterMessage("seconde", true);
  Vue().Courante[0] = 1;
  Fenêtre->ListeMessages_DblClick(Onglet::Suivis);
  ASSERT_EQ(Plateforme.LesFenêtres.Boîtes.size(), 1U);
  EXPECT_EQ(Plateforme.LesFenêtres.Boîtes[0].Texte, "08:30:00 : première");
}

TEST_F(Suivi, PrintsOldestFirstAndBreaksBehindNineTenthsOfAPage) {
  Fenêtre->BtnImprimer_Click();
  EXPECT_EQ(Plateforme.LesFenêtres.DocumentsTerminés, 0);
  for (int Rang = 1; Rang <= 20; ++Rang) Fenêtre->AjouterErreur("erreur " + std::to_string(Rang));
  Fenêtre->BtnImprimer_Click();
  const auto& Imprimé = Plateforme.LesFenêtres.Imprimé;
  EXPECT_EQ(Plateforme.LesFenêtres.DocumentsTerminés, 1);
  ASSERT_EQ(Imprimé.size(), 24U);
  EXPECT_EQ(Imprimé[1].Texte, "     22/09/2026 08:30:00 - Liste des erreurs survenues :");
  EXPECT_TRUE(Imprimé[1].Points == 14 && Imprimé[1].Gras && Imprimé[1].Souligné);
  EXPECT_EQ(Imprimé[2].Texte, "______________________________");
  EXPECT_EQ(Imprimé[4].Texte, "     08:30:00 : erreur 1");
  EXPECT_TRUE(Imprimé[4].Points == 10 && !Imprimé[4].Gras && !Imprimé[4].Souligné);
  // Twenty lines to a page: a line at position 18 still stands on it, one at 19 doesn't.
  EXPECT_EQ(Imprimé[18].Page, 1);
  EXPECT_EQ(Imprimé[19].Page, 2);
}

TEST_F(Suivi, ListsTodaysLoadsAndStaysAsItWasWhenTheDatabaseIsGone) {
  PetiteCoopérative Coopérative;
  Coopérative.Connexion->ExécuterTout(
      "INSERT INTO Coopérateur VALUES('1','Dupré','Élise'),('2','Martin',NULL);"
      "INSERT INTO Métayage VALUES('10','1','2',33.3333,'5','7');"
      "INSERT INTO Groupement VALUES('7','Coteaux');"
      "INSERT INTO Sélection VALUES('05','Aligoté',1);");
  const double Jour = NuméroDeJour({2026, 9, 22, 8, 5, 0});
  const auto Ajouter = [&](int Numéro, double Date, const char* Métayage, const char* Sélection) {
    Coopérative.Connexion->Exécuter("INSERT INTO Chargement VALUES('3',?1,?2,?3,?4,'9',12.5,1480,-1)",
                                    {std::int64_t{Numéro}, Date, std::string(Métayage), std::string(Sélection)});
  };
  Ajouter(1, Jour, "10", "05");
  Ajouter(2, Jour + 0.25, "10", "99");
  Ajouter(3, Jour - 1, "10", "05");
  Ajouter(4, Jour, "0", "05");
  const auto Hôte = std::make_shared<FausseBaseDeD>();
  Hôte->Base = Coopérative.Base;
  État.BaseDeD = Hôte;
  Réglages()["FSuiviChargnt/Colonne 2"] = "1200";
  Réglages()["FSuiviChargnt/Colonne 3"] = "0";
  Réglages()["FSuiviChargnt/Colonne 4"] = "large";

  Fenêtre->Rafraîchir();
  const std::vector<std::string> Entêtes = {"Chai",        "N°Pesée",          "Heure",        "Pesée",     "%Vol",
                                            "Appellation", "Classe sanitaire", "Propriétaire", "Récoltant", "Part",
                                            "Groupe",      "Synchro"};
  const std::vector<std::vector<std::string>> Attendues = {
      {"3", "2", "22/09 14:05", "1480", "12,5", "", "", "Dupré Élise", "Martin ", "33,3333", "7 Coteaux", "1"},
      {"3", "1", "22/09 08:05", "1480", "12,5", "Aligoté", "", "Dupré Élise", "Martin ", "33,3333", "7 Coteaux", "1"},
  };
  EXPECT_EQ(Vue().Entêtes, Entêtes);
  EXPECT_EQ(Vue().Grille, Attendues);
  EXPECT_EQ(Vue().Largeurs, (std::map<std::size_t, int>{{1, 1200}}));

  Coopérative.Connexion->ExécuterTout("ALTER TABLE Qualité RENAME TO Autre;");
  Fenêtre->Rafraîchir();
  État.BaseDeD.reset();
  Fenêtre->Rafraîchir();
  EXPECT_EQ(Vue().Grille, Attendues);
  EXPECT_FALSE(État.Erreur.EstPrésente());
}

TEST_F(Suivi, LaysItsControlsOutByTheMargins) {
  Vue().Fenêtre = {0, 0, 12000, 9000};
  Fenêtre->Form_Resize();
  EXPECT_EQ(Vue().Places[Grille], (Rectangle{60, 60, 11780, 5870}));
  EXPECT_EQ(Vue().Places[Onglets], (Rectangle{60, 5930, 11780, 2610}));
  EXPECT_EQ(Vue().Places[ListeSuivis], (Rectangle{360, 60, 11360, 2490}));
  EXPECT_EQ(Vue().Places[ListeErreurs], (Rectangle{360, 60, 11360, 2460}));
  EXPECT_EQ(Vue().Places[BtnInterroger], (Rectangle{10665, 2055, 795, 495}));
  EXPECT_EQ(Vue().Places[BtnForcerCumulsRG80], (Rectangle{8750, 2055, 1815, 495}));
  EXPECT_EQ(Vue().Places[BtnImprimer], (Rectangle{10245, 2055, 1215, 495}));
  EXPECT_EQ(Vue().Places[BtnMasquer].Gauche, -1215);

  Vue().Fenêtre = {0, 0, 620, 9000};  // too narrow for the lists
  Fenêtre->Form_Resize();
  EXPECT_EQ(Vue().Places[Onglets].Largeur, 400);
  EXPECT_EQ(Vue().Places[ListeSuivis].Largeur, 11360);
  EXPECT_EQ(Vue().Places[BtnInterroger].Gauche, -715);

  Vue().Fenêtre = {0, 0, 12000, 3000};  // too low for the grid, which keeps its size
  Fenêtre->Form_Resize();
  EXPECT_EQ(Vue().Places[Grille], (Rectangle{60, 60, 400, 5870}));
  EXPECT_EQ(Vue().Places[Onglets], (Rectangle{60, 5930, 400, 2610}));
}

TEST_F(Suivi, RemembersItsPlace) {
  struct Cas {
    std::map<std::string, std::string> Réglés;
    Rectangle Attendue;
  };
  const Cas Table[] = {
      {{}, {1000, 800, 11265, 9525}},
      {{{"Left", "0"}, {"Top", "0"}, {"Height", "0"}, {"Width", "0"}}, {0, 0, 11265, 9525}},
      {{{"Left", "-1"}, {"Top", "haut"}, {"Height", "7000"}, {"Width", "2000000000"}}, {1000, 800, 11265, 7000}},
      {{{"Left", "99999999999"}, {"Width", "5000"}}, {1000, 800, 5000, 9525}},
  };
  for (const auto& [Réglés, Attendue] : Table) {
    Réglages().clear();
    for (const auto& [Clé, Valeur] : Réglés) Réglages()["FSuiviChargnt/" + Clé] = Valeur;
    Vue().Fenêtre = Table[0].Attendue;
    Fenêtre->Form_Activate();
    EXPECT_EQ(Vue().Fenêtre, Attendue);
  }
  EXPECT_EQ(Vue().MisesDevant, 4);
}

TEST_F(Suivi, SavesWhenClosedOrUnloadedButNotWhenHidden) {
  const std::map<std::string, std::string> Place = {{"FSuiviChargnt/Left", "1000"},
                                                    {"FSuiviChargnt/Top", "800"},
                                                    {"FSuiviChargnt/Height", "9525"},
                                                    {"FSuiviChargnt/Width", "11265"}};
  Vue().Visible = true;
  Fenêtre->BtnMasquer_Click();
  EXPECT_FALSE(Vue().Visible);
  EXPECT_FALSE(Fenêtre->Form_QueryUnload(false));
  EXPECT_TRUE(Réglages().empty());
  Vue().Visible = true;
  EXPECT_TRUE(Fenêtre->Form_QueryUnload(true));
  EXPECT_FALSE(Vue().Visible);
  EXPECT_EQ(Réglages(), Place);
  Réglages().clear();
  Fenêtre.reset();
  EXPECT_EQ(Réglages(), Place);
}

TEST_F(Suivi, EndsInTheMidstOfEveryCall) {
  const auto Finir = [this] { Fenêtre.reset(); };
  const std::pair<const char*, std::function<void()>> Cas[] = {
      {"shown",
       [&] {
         Plateforme.LeSystème.Après(10ms, Finir);
         Fenêtre->Afficher();
       }},
      {"box",
       [&] {
         Plateforme.LesFenêtres.PendantBoîte = [&](const BoîteMontrée&) { Finir(); };
         Fenêtre->ListeMessages_DblClick(Onglet::Suivis);
       }},
      {"poll",
       [&] {
         Services.SurInterrogation = Finir;
         Fenêtre->BtnInterroger_Click();
       }},
      {"figures",
       [&] {
         Services.SurCumuls = [&] {
           Finir();
           throw ErreurExécution("trop tard");
         };
         Fenêtre->BtnForcerCumulsRG80_Click();
       }},
  };
  for (const auto& [Nom, Appel] : Cas) {
    Fenêtre.reset();
    Fenêtre = std::make_shared<FSuiviChargnt>(État, Services);
    Fenêtre->AjouterMessage("ligne", true);
    Appel();
    EXPECT_EQ(Fenêtre, nullptr) << Nom;
    EXPECT_FALSE(État.Ligne.EstPrise()) << Nom;
  }
}

TEST_F(Suivi, SendsTheFiguresOnceTheLineIsFree) {
  {
    const auto Prise = État.Ligne.PrendreOuReporter(DemandeLigne::Interrogation, [] {});
    Fenêtre->BtnForcerCumulsRG80_Click();
    Fenêtre->BtnForcerCumulsRG80_Click();
    Plateforme.LeSystème.Laisser(100ms);
    EXPECT_TRUE(Services.Cumuls.empty());
  }
  Services.SurCumuls = [this] {
    EXPECT_TRUE(État.Ligne.EstPrise());
    throw ErreurExécution("table absente");
  };
  Plateforme.LeSystème.Laisser(100ms);
  EXPECT_EQ(Services.Cumuls, std::vector<std::string>{""});
  EXPECT_EQ(Lignes(Onglet::Erreurs).at(0).Texte, "08:30:00 : table absente");

  const auto Prise = État.Ligne.PrendreOuReporter(DemandeLigne::Interrogation, [] {});
  Fenêtre->BtnForcerCumulsRG80_Click();
  Fenêtre.reset();
}

}  // namespace
}  // namespace Ombrey::Essais
