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

TEST_F(SuiviQt, NothingRunsInsideQtsDispatchAndTheFirstErrorComesToTheFront) {
  LesVraies.SurÉchec([&](const std::string& Description) { Trace = Description; });
  Services.SurInterrogation = [] { throw ErreurExécution("ligne perdue"); };
  Montrer([&](QWidget& Fenêtre) {
    Clic("&RG80 ?")(Fenêtre);
    EXPECT_EQ(Services.Interrogations, 0);
    Vider();
    EXPECT_EQ(Trace, "ligne perdue") << "told, and nothing unwound";
    auto& Onglets = Le<QTabBar>(Fenêtre);
    EXPECT_FALSE(Onglets.isTabVisible(1));
    Suivi->AjouterErreur("panne\r\nde ligne");
    EXPECT_EQ(Onglets.tabText(Onglets.currentIndex()), "Erreurs");
    Vider();
    const auto* const Erreur = Le<QListWidget>(Fenêtre).currentItem();
    EXPECT_EQ(Erreur->text(), "08:30:00 : panne de ligne");
    QTest::mouseClick(&Onglets, Qt::LeftButton, {}, Onglets.tabRect(0).center());
    Vider();
    EXPECT_NE(Le<QListWidget>(Fenêtre).item(0), Erreur);
  });
}

TEST_F(SuiviQt, IsWorkedByKeysAloneAndNothingLiesUnderItsButtons) {
  for (int Rang = 0; Rang < 63; ++Rang) Suivi->AjouterMessage("ligne " + std::to_string(Rang), true);
  Suivi->AjouterMessage(std::string(400, 'W'), false);
  Montrer([&](QWidget& Fenêtre) {
    auto& Messages = Le<QListWidget>(Fenêtre);
    const auto& Bouton = Le<QPushButton>(Fenêtre, "&RG80 ?");
    EXPECT_LT(Messages.geometry().bottom(), Bouton.geometry().top());
    EXPECT_GT(Messages.horizontalScrollBar()->maximum(), 0) << "a long line can be seen to its end";
    Touche(Qt::Key_R, Qt::AltModifier)(Fenêtre);
    Laisser(300ms);  // the button goes down and up as under a finger
    EXPECT_EQ(Services.Interrogations, 1);
    Suivi->AjouterErreur("panne");  // its tab hides the messages
    Messages.verticalScrollBar()->setValue(30);
    Suivi->AjouterMessage("la plus récente", true);
    Le<QTabBar>(Fenêtre).setCurrentIndex(0);
    Vider();
    EXPECT_EQ(Messages.verticalScrollBar()->value(), 0);
    Dès(NomPlugIn, [&](QWidget& Boîte) {
      Trace = Le<QTextEdit>(Boîte).toPlainText().toStdString();
      Cadre(Boîte);
    });
    QTest::keyClick(&Messages, Qt::Key_Return);
    Vider();
    EXPECT_EQ(Trace, "08:30:00 : la plus récente");
    Fenêtre.setWindowState(Qt::WindowMaximized);
    Vider();
    const QRect Pleine = Fenêtre.geometry();
    LesRéglages.Contenu["FSuiviChargnt/Width"] = "6000";
    Suivi->Form_Activate();
    EXPECT_EQ(Fenêtre.geometry(), Pleine);
    Fenêtre.setWindowState(Qt::WindowNoState);
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
      Clic("&RG80 ?")(Fenêtre);
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
      const auto& Bouton = Le<QPushButton>(Fenêtre, "RG80 en attente des &quotas");
      EXPECT_TRUE(Fenêtre.rect().contains(QRect(Bouton.mapTo(&Fenêtre, QPoint()), Bouton.size())));
    }
    EXPECT_EQ(Liste.geometry(), Avant);
  });
}

TEST_F(SuiviQt, MayEndWithinAnyOfItsOwnEvents) {
  const auto Finir = [this] { Suivi.reset(); };
  Services.SurInterrogation = Finir;
  Services.SurCumuls = [&] {
    Finir();
    throw ErreurExécution("trop tard");
  };
  const Geste Cas[] = {Clic("RG80 en attente des &quotas"),
                       [&](QWidget& Fenêtre) {
                         for (const Geste& Un : {Clic("&RG80 ?"), Clic("&RG80 ?"), Geste(Cadre)}) Un(Fenêtre);
                       },
                       [&](QWidget&) {
                         Suivi->AjouterErreur("panne");
                         Dès(NomPlugIn, [&](QWidget&) { Finir(); });
                         Suivi->ListeMessages_DblClick(Onglet::Erreurs);
                       }};
  for (const Geste& Faire : Cas) {
    Suivi = std::make_unique<FSuiviChargnt>(État, Services);
    Montrer(Faire);
    EXPECT_FALSE(Suivi);
    EXPECT_TRUE(std::ranges::none_of(QApplication::topLevelWidgets(), &QWidget::isVisible));
  }
}

TEST_F(SuiviQt, TheGridFollowsItsLoadsAndKeepsTheirPlaceAndItsWidths) {
  GrilleChargements Grille(nullptr);
  Grille.resize(600, 300);
  Grille.show();
  const std::vector<std::string> Entêtes = {"Chai", "N°Pesée", "Heure", "Appellation", "Propriétaire"};
  const auto Jour = [&](int Dernier, bool Nouveautés = true) {  // the newest on top
    std::vector<std::vector<std::string>> Lignes;
    for (int No = Dernier; No > 0; --No)
      Lignes.push_back(
          {"1", std::to_string(No), "22/09 08:05", No % 2 ? "" : "Aligoté", No % 3 ? "Bost" : "7-Crée par le RG80 "});
    Grille.Remplir(Entêtes, Lignes, Nouveautés);
  };
  const auto Dit = [&](int Rang, int Colonne, int Rôle) { return Grille.model()->index(Rang, Colonne).data(Rôle); };
  Jour(1999);
  Grille.setColumnWidth(3, 77);
  EXPECT_FALSE(Dit(0, 1, Qt::FontRole).isValid()) << "nothing is new in the first list";
  Grille.selectRow(905);
  Grille.verticalScrollBar()->setValue(900);
  QSignalSpy Repeintes(Grille.model(), &QAbstractItemModel::dataChanged);
  for (const int Dernier : {2000, 2000}) Jour(Dernier);
  EXPECT_EQ(Grille.LargeurFixée(3), 77);
  EXPECT_EQ(Grille.LargeurFixée(2), 0) << "a width that contents gave isn't to be remembered";
  EXPECT_EQ(Grille.verticalScrollBar()->value(), 901);
  EXPECT_EQ(Grille.currentIndex().row(), 906);
  EXPECT_TRUE(Grille.selectionModel()->isRowSelected(906));
  EXPECT_EQ(Repeintes.count(), 1) << "each row may stand for another load now; the same list again changes nothing";
  EXPECT_TRUE(Dit(0, 1, Qt::FontRole).value<QFont>().bold());
  EXPECT_FALSE(Dit(1, 1, Qt::FontRole).isValid());
  EXPECT_EQ(Dit(0, 1, Qt::TextAlignmentRole).toInt() & Qt::AlignRight, Qt::AlignRight);
  EXPECT_EQ(Dit(0, 2, Qt::TextAlignmentRole).toInt() & Qt::AlignRight, 0);
  for (const auto& [Rang, Colonne, Marquée] : {std::tuple(0, 3, false), {1, 3, true}, {1, 4, false}, {2, 4, true}})
    EXPECT_EQ(Dit(Rang, Colonne, Qt::BackgroundRole).isValid(), Marquée) << Rang << Colonne;
  QTest::keyClick(&Grille, Qt::Key_C, Qt::ControlModifier);
  EXPECT_EQ(QApplication::clipboard()->text(), "1\t1094\t22/09 08:05\tAligoté\tBost");
  Grille.verticalScrollBar()->setValue(0);
  Jour(2001, false);
  EXPECT_FALSE(Dit(0, 1, Qt::FontRole).isValid()) << "what a search gives back hasn't just come";
  EXPECT_EQ(Grille.verticalScrollBar()->value(), 0) << "whoever looks at the newest wants the newest";
  Grille.Remplir({"Part"}, {{"a"}, {}});
  EXPECT_EQ(Grille.model()->headerData(0, Qt::Horizontal, Qt::DisplayRole), QString("Part"));
  EXPECT_FALSE(Grille.model()->index(1, 0).data().isValid()) << "a row that is too short";
}

TEST(Mesures, AWindowComesWholeOntoTheScreenThatHasMostOfIt) {
  const QRect Grand(0, 0, 1920, 1080), Petit(0, 0, 1366, 738), Droite(1920, 0, 1280, 1000);
  const std::tuple<QRect, std::vector<QRect>, QRect> Table[] = {
      {{218, 20, 939, 794}, {Petit}, {218, 0, 939, 738}},       // 120 dots to the inch: lower strip off the screen
      {{200, -90, 1502, 1270}, {Grand}, {200, 0, 1502, 1080}},  // 192
      {{1500, 20, 700, 600}, {Grand, Droite}, {1500, 20, 700, 600}},  // across two screens, all in sight
      {{2000, 500, 700, 600}, {Grand, Droite}, {2000, 400, 700, 600}},
      {{2000, 500, 700, 600}, {Grand}, {1220, 480, 700, 600}},
      {{10, 10, 20, 20}, {}, {10, 10, 20, 20}}};
  for (const auto& [Fenêtre, Écrans, Attendue] : Table) EXPECT_EQ(RamenéeSurÉcran(Fenêtre, Écrans), Attendue);
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
