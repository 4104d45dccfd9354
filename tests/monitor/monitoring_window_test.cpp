// The monitoring window: its lists, grid, printout and placement, and its end in the midst of a call.
#include "monitor/monitoring_window.h"

#include "tests/transfer/small_cooperative.h"

namespace Ombrey::Essais {
using enum ContrôleSuivi;
const std::string Heure = "08:30:00 : ";

struct Suivi : AvecCoopérative {
  std::map<std::string, std::string>& Réglages = Plateforme.LesRéglages.Contenu;
  std::unique_ptr<FSuiviChargnt> Fenêtre;

  Suivi() { Ouvrir(); }
  void Ouvrir() {
    Fenêtre.reset();
    Fenêtre = std::make_unique<FSuiviChargnt>(État, Services);
  }
  FausseVueSuivi& Vue() { return *Fenêtres.VueSuivi; }
  /// Those of the messages, and that of the errors.
  using Montrés = std::array<bool, 3>;
  Montrés Boutons() {
    return {Vue().Visibles[BtnInterroger], Vue().Visibles[BtnForcerCumulsRG80], Vue().Visibles[BtnImprimer]};
  }
};

TEST_F(Suivi, ReplacesATextAmongTheTwoNewestLines) {
  const std::pair<std::string, const char*> Table[] = {
      {"AABAB", "B5A4"}, {"ABCA", "A4C3B2A1"}, {"ABCACB", "B6C5A4B2A1"}};
  for (const auto& [Suite, Attendu] : Table) {
    Ouvrir();
    for (int& Seconde = Système.Mur.Seconde = 0; const char Texte : Suite) {
      ++Seconde;
      Fenêtre->AjouterMessage(std::string(1, Texte), true);
    }
    std::string Messages;  // each with the last digit of its time
    for (const auto& [Texte, Coché] : Vue().Lignes[Onglet::Suivis]) Messages += Texte.substr(Heure.size()) + Texte[7];
    EXPECT_EQ(Messages, Attendu);
  }
}

TEST_F(Suivi, KeepsSixtyFourMessages) {
  for (int Rang = 1; Rang <= 65; ++Rang) Fenêtre->AjouterMessage(std::to_string(Rang), Rang % 2 == 0);
  EXPECT_EQ(Vue().Lignes[Onglet::Suivis].front(), std::pair(Heure + "65", false));
  EXPECT_EQ(Vue().Lignes[Onglet::Suivis].back(), std::pair(Heure + "2", true));
}

TEST_F(Suivi, TurnsToTheErrorListAtAnErrorAndShowsItsLinesInFull) {
  Fenêtre->ListeMessages_DblClick(Onglet::Erreurs);  // nothing yet
  EXPECT_FALSE(Vue().Offert[Onglet::Erreurs]);
  Fenêtre->AjouterErreur("panne");
  EXPECT_TRUE(Vue().Offert[Onglet::Erreurs]);
  EXPECT_EQ(Vue().OngletChoisi, Onglet::Erreurs);
  EXPECT_EQ(Boutons(), (Montrés{false, false, true}));
  EXPECT_EQ(Vue().Lignes[Onglet::Suivis].at(0), std::pair(Heure + "panne", false));
  Vue().OngletChoisi = Onglet::Suivis;
  Fenêtre->Onglets_Click();
  EXPECT_EQ(Boutons(), (Montrés{true, true, false}));
  Fenêtre->AjouterMessage("seconde", true);
  Vue().Courante[Onglet::Suivis] = 1;
  Fenêtre->ListeMessages_DblClick(Onglet::Suivis);
  EXPECT_EQ(Fenêtres.Dites(), Mots{"RG80 Ombrey | " + Heure + "panne"});
}

TEST_F(Suivi, PrintsEveryErrorOldestFirstAndBreaksBehindNineTenthsOfAPage) {
  Fenêtre->BtnImprimer_Click();  // nothing to print
  for (int Rang = 2; Rang <= 21; ++Rang) Fenêtre->AjouterErreur("erreur " + std::to_string(Rang / 2));
  Fenêtre->BtnImprimer_Click();
  ASSERT_EQ(Fenêtres.Imprimé.size(), 25U);
  EXPECT_EQ(Fenêtres.Imprimé[24], "end");
  EXPECT_EQ(Fenêtres.Imprimé[1], "1 14gs      22/09/2026 08:30:00 - Liste des erreurs survenues :");
  EXPECT_EQ(Fenêtres.Imprimé[4], "1 10      08:30:00 : erreur 1");
  // Twenty lines to a page: a line at position 18 still stands on it, one at 19 doesn't.
  EXPECT_EQ(Fenêtres.Imprimé[18], "1 10      08:30:00 : erreur 8");
  EXPECT_EQ(Fenêtres.Imprimé[19], "2 10      08:30:00 : erreur 8");
  for (int Rang = 0; Rang < 20; ++Rang) Fenêtre->AjouterErreur("de trop");
  Fenêtre->BtnImprimer_Click();
  EXPECT_EQ(Fenêtres.Dites(), Mots{"RG80 Ombrey | plus de papier"});
}

TEST_F(Suivi, ListsTodaysLoadsAndStaysAsItWasWhenTheDatabaseIsGone) {
  Exécuter(
      "INSERT INTO Coopérateur VALUES('1','Dupré','Élise'),('2','Martin',NULL);"
      "INSERT INTO Métayage VALUES('10','1','2',33.3333,'5','7'),('11','2','1',100,'6','8'); INSERT INTO Groupement "
      "VALUES('7','Coteaux');"
      "INSERT INTO Sélection VALUES('05','Aligoté',1);"
      "INSERT INTO Chargement VALUES ('3', 1, 46287 + 485 / 1440.0, '10', '05', '9', 12.5, 1480, -1, 1),"
      " ('3', 2, 46287 + 845 / 1440.0, '11', '99', '9', 12.5, 1480, -1, 2),"  // 22 September 2026, minutes
      " ('3', 3, 46287 - 1 / 1440.0, '10', '05', '9', 1, 1, -1, 3), ('3', 4, 46287, '0', '05', '9', 1, 1, -1, 4),"
      " ('3', 5, 46288 + 1 / 1440.0, '10', '05', '9', 1, 1, -1, 5)");
  Réglages = {{"FSuiviChargnt/Colonne 2", "1200"}, {"FSuiviChargnt/Colonne 3", "0"}, {"FSuiviChargnt/Colonne 4", "x"}};
  Fenêtre->Rafraîchir();
  // clang-format off
  const std::vector<Mots> Attendues = {
      {"Chai", "N°Pesée", "Heure", "Pesée", "%Vol", "Appellation", "Classe sanitaire", "Propriétaire", "Récoltant",
       "Part", "Groupe", "Synchro"},
      {"3", "2", "22/09 14:05", "1480", "12,5", "", "", "Martin ", "Dupré Élise", "100", " ", "1"},
      {"3", "1", "22/09 08:05", "1480", "12,5", "Aligoté", "", "Dupré Élise", "Martin ", "33,3333", "7 Coteaux", "1"}};
  // clang-format on
  EXPECT_EQ(Vue().Grille, Attendues);
  EXPECT_EQ(Vue().Largeurs, (std::map<std::size_t, int>{{1, 1200}}));
  Exécuter("ALTER TABLE Qualité RENAME TO Autre;");
  Fenêtre->Rafraîchir();
  EXPECT_EQ(Vue().Grille, Attendues);
  EXPECT_FALSE(État.Erreur.EstPrésente());
  Exécuter("ALTER TABLE Autre RENAME TO Qualité; DELETE FROM Chargement;");
  const auto Ligne = État.Liaison.PrendreOuReporter(DemandeLiaison::Bouton, {});
  for (int Fois = 0; Fois < 2; ++Fois) Fenêtre->Rafraîchir();
  EXPECT_EQ(Vue().Grille, Attendues) << "whoever waits for an ACK doesn't wait for the list";
  EXPECT_TRUE(Système.Pomper({}));
  EXPECT_FALSE(Système.Pomper({})) << "once for both";
  EXPECT_EQ(Vue().Grille.size(), 1U);
}

TEST_F(Suivi, LaysItsControlsOutByTheMargins) {
  // Roomy; too low for the grid, which keeps its size; too narrow for the lists, which keep their width.
  // clang-format off
  const std::pair<Rectangle, int> Table[] = {{{0, 0, 12000, 9000}, 0}, {{0, 0, 9, 9}, 0}, {{0, 0, 620, 9000}, 11380}};
  std::map<ContrôleSuivi, Rectangle> Places = {
      {Grille, {60, 60, 11780, 5870}}, {Onglets, {60, 5930, 11780, 2610}}, {ListeSuivis, {360, 60, 11360, 2490}},
      {ListeErreurs, {360, 60, 11360, 2460}}, {BtnInterroger, {10665, 2055, 795, 495}},
      {BtnForcerCumulsRG80, {8750, 2055, 1815, 495}}, {BtnImprimer, {10245, 2055, 1215, 495}},
      {BtnMasquer, {-1215, 0, 1215, 495}}};
  // clang-format on
  for (const auto& [Place, Recul] : Table) {
    Vue().Fenêtre = Place;
    Fenêtre->Form_Resize();
    for (const auto Large : {Grille, Onglets}) Places[Large].Largeur -= Recul;
    for (const auto Bouton : {BtnInterroger, BtnForcerCumulsRG80, BtnImprimer}) Places[Bouton].Gauche -= Recul;
    EXPECT_EQ(Vue().Places, Places);
  }
}

std::map<std::string, std::string> Place(Mot Gauche, Mot Haut, Mot Hauteur, Mot Largeur) {
  return {{"FSuiviChargnt/Left", Gauche},
          {"FSuiviChargnt/Top", Haut},
          {"FSuiviChargnt/Height", Hauteur},
          {"FSuiviChargnt/Width", Largeur}};
}

TEST_F(Suivi, RemembersItsPlaceAndSavesItWhenClosedOrUnloadedButNotWhenHidden) {
  const Rectangle Usuelle{1000, 800, 11265, 9525};
  // clang-format off
  const std::pair<std::map<std::string, std::string>, Rectangle> Table[] = {
      {{}, Usuelle}, {Place("0", "0", "0", "0"), {0, 0, 11265, 9525}},
      {Place("-1", "haut", "7000", "2000000000"), {1000, 800, 11265, 7000}},
      {Place("99999999999", "", "", "5000"), {1000, 800, 5000, 9525}}};
  // clang-format on
  for (const auto& [Réglés, Attendue] : Table) {
    Réglages = Réglés;
    Vue().Fenêtre = Usuelle;
    Fenêtre->Form_Activate();
    EXPECT_EQ(Vue().Fenêtre, Attendue);
  }
  Fenêtre.reset();
  Réglages = Place("0", "45", "7000", "5000");
  Ouvrir();  // never shown: what is read is what is saved
  Fenêtre.reset();
  EXPECT_EQ(std::exchange(Réglages, {}), Place("0", "45", "7000", "5000"));
  Ouvrir();
  Vue().Visible = true;
  EXPECT_FALSE(Fenêtre->Form_QueryUnload(false));
  EXPECT_EQ(Réglages.size(), 0U);
  EXPECT_TRUE(Fenêtre->Form_QueryUnload(true));
  EXPECT_FALSE(Vue().Visible);
  EXPECT_EQ(std::exchange(Réglages, {}), Place("1000", "800", "9525", "11265"));
  Fenêtre.reset();
  EXPECT_EQ(Réglages, Place("1000", "800", "9525", "11265"));
}

TEST_F(Suivi, KeepsThePlaceOfAScreenThatIsMissingTodayUntilAHandMovesItOrItFillsTheScreen) {
  Fenêtre.reset();
  struct {
    int Écart;
    bool Agrandie;
    const char *Gauche, *Clé;
  } const Jours[] = {{300, false, "40000", ""}, {-3000, false, "27000", ""}, {-9000, true, "27000", "1"}};
  for (const auto& Jour : Jours) {
    if (!Jour.Agrandie) Réglages = Place("40000", "45", "7000", "5000");
    Ouvrir();
    Fenêtre->Form_Activate();
    Vue().Fenêtre.Gauche += Jour.Écart;
    Vue().Agrandie = Jour.Agrandie;
    Fenêtre.reset();
    EXPECT_EQ(Réglages["FSuiviChargnt/Left"], Jour.Gauche);
    EXPECT_EQ(Réglages["FSuiviChargnt/Agrandie"], Jour.Clé);
  }
  Ouvrir();
  EXPECT_TRUE(Vue().Agrandie);
  Vue().Agrandie = false;
  Fenêtre.reset();
  EXPECT_EQ(Réglages["FSuiviChargnt/Agrandie"], "0");
}

TEST_F(Suivi, SendsTheFiguresAndPrintsOnceTheLineIsFreeUnlessTheWindowHasGone) {
  Fenêtre->Rafraîchir();
  EXPECT_FALSE(Vue().Actifs[BtnForcerCumulsRG80]) << "no load yet";
  État.DernierNoChargement = "7";
  Fenêtre->AjouterMessage("reçu", true);
  EXPECT_TRUE(Vue().Actifs[BtnForcerCumulsRG80]);
  Services.SurCumuls = [this] {
    EXPECT_TRUE(État.Liaison.EstPrise());
    throw ErreurExécution("table absente");
  };
  for (const bool Partie : {true, false}) {
    Ouvrir();
    Fenêtre->AjouterErreur("panne");
    auto Prise = État.Liaison.PrendreOuReporter(DemandeLiaison::Interrogation, [] {});
    for (int Fois = 0; Fois < 2; ++Fois) {
      Fenêtre->BtnForcerCumulsRG80_Click();
      Fenêtre->BtnImprimer_Click();
    }
    if (Partie) Fenêtre.reset();
    Système.Laisser(milliseconds(100));
    EXPECT_EQ(Services.Cumuls.size() + Fenêtres.Imprimé.size(), 0U);
    Prise.reset();
    Système.Laisser(milliseconds(100));
    EXPECT_EQ(Services.Cumuls, Mots(!Partie));
    EXPECT_EQ(std::ranges::count(Fenêtres.Imprimé, "end"), !Partie);
  }
  EXPECT_EQ(Vue().Lignes[Onglet::Erreurs].at(0).first, Heure + "table absente");
}

}  // namespace Ombrey::Essais
