// The monitoring window on Qt, with the program's own logic behind it.
#include "monitor/monitoring_window.h"
#include "platform/qt/qt_load_grid.h"
#include "platform/qt/qt_measures.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {

struct SuiviQt : Bureau {
  SuiviQt() { État.DernierNoChargement = "7"; }
  /// Shows the window, does Faire in it, and comes back when it is hidden. Hides it at the end.
  void Montrer(const Geste& Faire) {
    Dès("Liste des chargements", [&](QWidget& Fenêtre) {
      Faire(Fenêtre);
      Vider();
      if (Suivi) Suivi->BtnMasquer_Click();
    });
    Suivi->Afficher();
  }
  std::unique_ptr<FSuiviChargnt> Suivi = std::make_unique<FSuiviChargnt>(État, Services);
};

TEST_F(SuiviQt, TheTabsShowTheirListsAndButtonsAndEachButtonReachesTheProgram) {
  LesVraies.SurÉchec([&](const std::string& Description) { Trace = Description; });
  Services.SurInterrogation = [] { throw ErreurExécution("ligne perdue"); };
  Montrer([&](QWidget& Fenêtre) {
    Clic("RG80 ?")(Fenêtre);
    Clic("RG80 en attente des quotas")(Fenêtre);
    EXPECT_EQ(Services.Interrogations, 0) << "nothing runs inside Qt's dispatch";
    Vider();
    EXPECT_EQ(Services.Cumuls.size(), 1U);
    EXPECT_EQ(Trace, "ligne perdue") << "told, and nothing unwound";
    auto& Onglets = Le<QTabBar>(Fenêtre);
    EXPECT_FALSE(Onglets.isTabVisible(1));
    Suivi->AjouterErreur("panne\r\nde ligne");
    EXPECT_TRUE(Onglets.isTabVisible(1) && Onglets.tabText(Onglets.currentIndex()) == "Erreurs");
    Vider();
    const auto* const Erreur = Le<QListWidget>(Fenêtre).item(0);
    EXPECT_TRUE(Erreur->isSelected() && Erreur->text() == "08:30:00 : panne de ligne");
    Dès("Liste des erreurs", Cadre);
    Touche(Qt::Key_I, Qt::AltModifier)(Fenêtre);
    Vider();
    EXPECT_FALSE(std::filesystem::is_empty(Dossier.Chemin()));
    QTest::mouseClick(&Onglets, Qt::LeftButton, {}, Onglets.tabRect(0).center());
    Vider();
    EXPECT_NE(Le<QListWidget>(Fenêtre).item(0), Erreur);
    Le<QPushButton>(Fenêtre, "RG80 ?");
  });
}

TEST_F(SuiviQt, NoClickChangesATickAndADoubleClickShowsTheLine) {
  Suivi->AjouterMessage("refusée", false);
  Suivi->AjouterMessage("<b>reçue</b>", true);
  Montrer([&](QWidget& Fenêtre) {
    auto& Messages = Le<QListWidget>(Fenêtre);
    QPoint Coche;
    for (const int Rang : {1, 0}) {
      Coche = Messages.visualItemRect(Messages.item(Rang)).center();
      Coche.setX(8);
      QTest::mouseClick(Messages.viewport(), Qt::LeftButton, {}, Coche);
      QTest::keyClick(&Messages, Qt::Key_Space);
      EXPECT_EQ(Messages.item(Rang)->checkState(), Rang == 0 ? Qt::Checked : Qt::Unchecked);
    }
    Dès(NomPlugIn, [&](QWidget& Boîte) {
      Trace = Le<QTextEdit>(Boîte).toPlainText().toStdString();
      Clic("RG80 ?")(Fenêtre);
      Vider();
      Cadre(Boîte);
    });
    QTest::mouseDClick(Messages.viewport(), Qt::LeftButton, {}, Coche);
    Vider();
    LesRéglages.Contenu["FSuiviChargnt/Left"] = "300";
    for (const bool DUneBoîte : {true, false}) {
      Fenêtre.move(33, 33);
      QEvent Retour(QEvent::WindowActivate);
      QApplication::sendEvent(&Fenêtre, &Retour);
      Vider();
      EXPECT_EQ(Fenêtre.x(), DUneBoîte ? 33 : 20);
    }
  });
  EXPECT_EQ(Trace, "08:30:00 : <b>reçue</b>");
  EXPECT_EQ(Services.Interrogations, 0) << "the window stands behind the box";
}

TEST_F(SuiviQt, ComesBackFromOffTheScreenAndItsControlsFollowItToTinyAndBack) {
  for (const char* Place : {"Left", "Top", "Width"})
    LesRéglages.Contenu[std::string("FSuiviChargnt/") + Place] = "240000";
  Montrer([&](QWidget& Fenêtre) {
    EXPECT_TRUE(Fenêtre.screen()->availableGeometry().contains(Fenêtre.geometry().topLeft()));
    EXPECT_LE(Fenêtre.width(), Fenêtre.screen()->availableGeometry().width());
    const auto& Liste = Le<QTableView>(Fenêtre);
    const QRect Avant = Liste.geometry();
    const QSize Grande = Fenêtre.size();
    EXPECT_TRUE(Fenêtre.rect().contains(Avant));
    for (const QSize Taille : {QSize(1, 1), QSize(300, 40), QSize(40, 700), Grande - QSize(40, 40), Grande}) {
      Fenêtre.resize(Taille);
      Vider();
      const auto& Bouton = Le<QPushButton>(Fenêtre, "RG80 en attente des quotas");
      EXPECT_TRUE(Fenêtre.rect().contains(QRect(Bouton.mapTo(&Fenêtre, QPoint()), Bouton.size())));
    }
    EXPECT_EQ(Liste.geometry(), Avant);
  });
}

TEST_F(SuiviQt, MayEndWithinAnyOfItsOwnEvents) {
  const auto Finir = [this] { Suivi.reset(); };
  Services.SurInterrogation = Finir;
  Services.SurCumuls = [&] { Finir(), throw ErreurExécution("trop tard"); };
  const Geste Cas[] = {Clic("RG80 en attente des quotas"),
                       [&](QWidget& Fenêtre) { Clic("RG80 ?")(Fenêtre), Clic("RG80 ?")(Fenêtre), Cadre(Fenêtre); },
                       [&](QWidget& Fenêtre) { Fenêtre.resize(400, 400), Suivi->AjouterErreur("panne"), Finir(); },
                       [&](QWidget&) {
                         Suivi->AjouterMessage("ligne", true);
                         Dès(NomPlugIn, [&](QWidget&) { Finir(); });
                         Suivi->ListeMessages_DblClick(Onglet::Suivis);
                       }};
  for (const Geste& Faire : Cas) {
    Suivi = std::make_unique<FSuiviChargnt>(État, Services);
    Montrer(Faire);
    EXPECT_FALSE(Suivi);
    EXPECT_TRUE(std::ranges::none_of(QApplication::topLevelWidgets(), &QWidget::isVisible));
  }
}

TEST_F(SuiviQt, TheGridKeepsItsPlaceAndWidths) {
  GrilleChargements Grille(nullptr);
  Grille.resize(600, 300);
  Grille.show();
  const std::vector<std::string> Entêtes(12, "Propriétaire");
  Grille.Remplir(Entêtes, std::vector(1999, Entêtes));
  Grille.setColumnWidth(3, 77);
  Grille.verticalScrollBar()->setValue(900);
  Grille.Remplir(Entêtes, std::vector(2000, Entêtes));
  EXPECT_EQ(Grille.LargeurFixée(3), 77);
  EXPECT_EQ(Grille.LargeurFixée(2), 0) << "a width that contents gave isn't to be remembered";
  EXPECT_EQ(Grille.verticalScrollBar()->value(), 900);
  Grille.Remplir({"Part"}, {{"a"}, {}});
  EXPECT_EQ(Grille.model()->headerData(0, Qt::Horizontal, Qt::DisplayRole), QString("Part"));
  EXPECT_FALSE(Grille.model()->index(1, 0).data().isValid()) << "a row that is too short";
}

TEST(Mesures, AWindowComesWholeOntoTheScreenThatHasMostOfIt) {
  const QRect Grand(0, 0, 1920, 1080), Petit(0, 0, 1366, 738), Droite(1920, 0, 1280, 1000);
  const struct {
    QRect Fenêtre;
    std::vector<QRect> Écrans;
    QRect Attendue;
  } Table[] = {{{218, 20, 939, 794}, {Petit}, {218, 0, 939, 738}},  // 120 dots to the inch: lower strip off the screen
               {{200, -90, 1502, 1270}, {Grand}, {200, 0, 1502, 1080}},        // 192
               {{1500, 20, 700, 600}, {Grand, Droite}, {1500, 20, 700, 600}},  // across two screens, all in sight
               {{2000, 500, 700, 600}, {Grand, Droite}, {2000, 400, 700, 600}},
               {{2000, 500, 700, 600}, {Grand}, {1220, 480, 700, 600}},
               {{10, 10, 20, 20}, {}, {10, 10, 20, 20}}};
  for (const auto& Cas : Table) EXPECT_EQ(RamenéeSurÉcran(Cas.Fenêtre, Cas.Écrans), Cas.Attendue);
}

TEST(Mesures, TwipsBecomePixelsAtEachResolutionAndDoNotDrift) {
  const int Table[][3] = {{11145, 96, 743}, {11145, 120, 929}, {11145, 192, 1486}, {-1215, 96, -81}, {0, 120, 0}};
  for (const auto& [Twips, PPP, Pixels] : Table) {
    EXPECT_EQ(EnPixels(Twips, PPP), Pixels);
    EXPECT_EQ(EnPixels(EnTwips(Pixels, PPP), PPP), Pixels);
  }
  EXPECT_EQ(EnPixels(1 << 30, 192), 32767);
}

}  // namespace Ombrey::Essais
