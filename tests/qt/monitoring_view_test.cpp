// The monitoring window on Qt, with the program's own logic behind it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QListWidget>
#include <QScreen>
#include <QScrollBar>
#include <QTableView>
#include <QTest>
#include <QTextEdit>

#include "monitor/monitoring_window.h"
#include "monitor/window_placement.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_monitoring_view.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;
constexpr const char* Légende = "Liste des chargements";

class ServicesSuivi : public FauxServices {
 public:
  std::function<void()> SurInterrogation = [] {};
  void Retard_FinTempo(const std::string&) override {
    ++Interrogations;
    SurInterrogation();
  }
};

class SuiviQt : public testing::Test {
 protected:
  MachineQt Machine;
  FauxCanal Canal;
  ÉtatPlugIn État{Machine, Canal};
  ServicesSuivi Services;
  std::unique_ptr<FSuiviChargnt> Suivi = std::make_unique<FSuiviChargnt>(État, Services);
  bool Revenue = false;

  /// Shows the window, does Faire with it once it is active, and comes back when it is hidden. Hides it at the end.
  void Montrer(const std::function<void(QWidget&)>& Faire) {
    Revenue = false;
    const auto Jeton = Machine.Boucle.Après(20ms, [&] {
      QWidget* const Fenêtre = FenêtreNommée(Légende);
      ASSERT_NE(Fenêtre, nullptr);
      Faire(*Fenêtre);
      if (Suivi) Machine.Boucle.Poser([&] { Suivi->BtnMasquer_Click(); });
    });
    Suivi->Afficher();
    Revenue = true;
  }
  static QListWidget& Liste(QWidget& Fenêtre) {
    for (QListWidget* Une : Fenêtre.findChildren<QListWidget*>()) {
      if (Une->isVisible()) return *Une;
    }
    throw std::runtime_error("no list in sight");
  }
  std::map<std::string, std::string>& Réglages() { return Machine.LesRéglages.Contenu; }
};

TEST_F(SuiviQt, EachButtonAndKeyReachesTheProgram) {
  Suivi->AjouterMessage("bonjour", true);
  Montrer([&](QWidget& Fenêtre) {
    QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton);
    QTest::mouseClick(&LeBouton(Fenêtre, "RG80 en attente des quotas"), Qt::LeftButton);
    EXPECT_EQ(Services.Interrogations, 0) << "nothing runs inside Qt's dispatch";
    Machine.Vider();
    EXPECT_EQ(Services.Interrogations, 1);
    EXPECT_EQ(Services.Cumuls.size(), 1U);
    QTest::keyClick(&Fenêtre, Qt::Key_Escape);
    Machine.Vider();
    EXPECT_FALSE(Fenêtre.isVisible());
  });
  EXPECT_TRUE(Revenue);
  EXPECT_TRUE(Réglages().empty()) << "hiding saves nothing";
}

TEST_F(SuiviQt, TheTabsShowTheirOwnListAndButtons) {
  Montrer([&](QWidget& Fenêtre) {
    auto& Onglets = *Fenêtre.findChild<QTabBar*>();
    EXPECT_FALSE(Onglets.isTabVisible(1));
    Suivi->AjouterErreur("panne\r\nde ligne");
    Machine.Vider();
    EXPECT_TRUE(Onglets.isTabVisible(1));
    EXPECT_EQ(Onglets.currentIndex(), 1);
    EXPECT_EQ(Onglets.tabText(1), "Erreurs");
    EXPECT_EQ(Liste(Fenêtre).item(0)->text(), "08:30:00 : panne de ligne");
    EXPECT_TRUE(Liste(Fenêtre).item(0)->isSelected());
    EXPECT_EQ(LeBouton(Fenêtre, "&Imprimer").isVisible(), true);
    QTest::mouseClick(&Onglets, Qt::LeftButton, {}, Onglets.tabRect(0).center());
    Machine.Vider();
    EXPECT_EQ(Onglets.currentIndex(), 0);
    EXPECT_TRUE(LeBouton(Fenêtre, "RG80 ?").isVisible());
    EXPECT_EQ(Liste(Fenêtre).count(), 1);
  });
}

TEST_F(SuiviQt, ATickIsSeenAndNoClickChangesIt) {
  Suivi->AjouterMessage("refusée", false);
  Suivi->AjouterMessage("reçue", true);
  Montrer([&](QWidget& Fenêtre) {
    QListWidget& Messages = Liste(Fenêtre);
    for (int Rang = 0; Rang < 2; ++Rang) {
      const QRect Ligne = Messages.visualItemRect(Messages.item(Rang));
      QTest::mouseClick(Messages.viewport(), Qt::LeftButton, {}, QPoint(Ligne.left() + 8, Ligne.center().y()));
      QTest::keyClick(&Messages, Qt::Key_Space);
    }
    EXPECT_EQ(Messages.item(0)->checkState(), Qt::Checked);
    EXPECT_EQ(Messages.item(1)->checkState(), Qt::Unchecked);
  });
}

TEST_F(SuiviQt, ADoubleClickShowsTheLineAndTheLoopLivesBehindTheBox) {
  Suivi->AjouterMessage("première", true);
  Suivi->AjouterMessage("<b>seconde</b>", true);
  Montrer([&](QWidget& Fenêtre) {
    QListWidget& Messages = Liste(Fenêtre);
    const QPoint Point = Messages.visualItemRect(Messages.item(0)).center();
    QTest::mouseClick(Messages.viewport(), Qt::LeftButton, {}, Point);
    QTest::mouseDClick(Messages.viewport(), Qt::LeftButton, {}, Point);
    int Battements = 0;
    const auto Bat = Machine.Boucle.Après(10ms, [&] { ++Battements; });
    const auto Répond = Machine.Boucle.Après(40ms, [&] {
      QWidget* const Boîte = FenêtreNommée(NomPlugIn);
      ASSERT_NE(Boîte, nullptr);
      EXPECT_EQ(Boîte->findChild<QTextEdit*>()->toPlainText(), "08:30:00 : <b>seconde</b>");
      QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton);
      QTest::keyClick(Boîte, Qt::Key_Return);
    });
    EXPECT_TRUE(Machine.JusquÀ([&] { return FenêtreNommée(NomPlugIn) == nullptr && Battements == 1; }));
  });
}

TEST_F(SuiviQt, ClosingByTheFrameHidesAndSaves) {
  Suivi->Rafraîchir();
  Montrer([&](QWidget& Fenêtre) {
    Fenêtre.move(30, 40);
    Fenêtre.resize(600, 500);
    Fenêtre.close();
    Machine.Vider();
    EXPECT_FALSE(Fenêtre.isVisible());
  });
  const int PPP = QApplication::primaryScreen()->logicalDotsPerInchX() > 0
                      ? static_cast<int>(QApplication::primaryScreen()->logicalDotsPerInchX())
                      : 96;
  EXPECT_EQ(Réglages()["FSuiviChargnt/Left"], std::to_string(EnTwips(30, PPP)));
  EXPECT_EQ(Réglages()["FSuiviChargnt/Width"], std::to_string(EnTwips(600, PPP) + CadreNominal::Largeur));
  // The place comes back at the next activation, and a further saving writes the same.
  const auto Premiers = Réglages();
  Montrer([&](QWidget& Fenêtre) {
    Machine.Vider();
    EXPECT_EQ(Fenêtre.geometry(), QRect(30, 40, 600, 500));
    Fenêtre.close();
    Machine.Vider();
  });
  EXPECT_EQ(Réglages(), Premiers);
}

TEST_F(SuiviQt, APlaceOffEveryScreenIsBroughtBack) {
  Réglages()["FSuiviChargnt/Left"] = "200000";
  Réglages()["FSuiviChargnt/Top"] = "150000";
  Réglages()["FSuiviChargnt/Width"] = "240000";
  Montrer([&](QWidget& Fenêtre) {
    Machine.Vider();
    const QRect Écran = QApplication::primaryScreen()->availableGeometry();
    EXPECT_TRUE(Écran.contains(Fenêtre.geometry().topLeft()));
    EXPECT_LE(Fenêtre.width(), Écran.width());
  });
}

TEST_F(SuiviQt, ControlsFollowTheWindowToTinyAndBack) {
  Suivi->AjouterErreur("panne");
  Montrer([&](QWidget& Fenêtre) {
    const auto Disposition = [&] {
      std::vector<QRect> Places;
      for (const QWidget* Contrôle : Fenêtre.findChildren<QPushButton*>()) Places.push_back(Contrôle->geometry());
      for (const QWidget* Liste : Fenêtre.findChildren<QListWidget*>()) Places.push_back(Liste->geometry());
      Places.push_back(Fenêtre.findChild<QTableView*>()->geometry());
      return Places;
    };
    Machine.Vider();
    const QSize Grande = Fenêtre.size();
    const auto Avant = Disposition();
    const auto& Grille = *Fenêtre.findChild<QTableView*>();
    const auto& Bande = *Fenêtre.findChild<QListWidget*>()->parentWidget();
    EXPECT_TRUE(Fenêtre.rect().contains(Bande.geometry()));
    EXPECT_TRUE(Fenêtre.rect().contains(Grille.geometry()));
    EXPECT_LE(Grille.geometry().bottom(), Bande.geometry().top() + 1);
    for (const QSize Taille : {QSize(1, 1), QSize(300, 40), QSize(40, 700)}) {
      Fenêtre.resize(Taille);
      Machine.Vider();
    }
    Fenêtre.resize(Grande);
    Machine.Vider();
    EXPECT_EQ(Disposition(), Avant);
  });
}

TEST_F(SuiviQt, MayEndWithinAnyOfItsOwnEvents) {
  const auto Finir = [this] { Suivi.reset(); };
  Services.SurInterrogation = Finir;
  const std::pair<const char*, std::function<void(QWidget&)>> Cas[] = {
      {"button", [&](QWidget& Fenêtre) { QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton); }},
      {"twice",
       [&](QWidget& Fenêtre) {
         QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton);
         QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton);
         Fenêtre.close();
       }},
      {"box",
       [&](QWidget&) {
         Suivi->AjouterMessage("ligne", true);
         Machine.Boucle.Poser([&] { Suivi->ListeMessages_DblClick(Onglet::Suivis); });
         Machine.Boucle.Pomper(0ms);
       }},
      {"resize", [&](QWidget& Fenêtre) { Fenêtre.resize(400, 400), Finir(); }},
  };
  for (const auto& [Nom, Faire] : Cas) {
    SCOPED_TRACE(Nom);
    if (!Suivi) Suivi = std::make_unique<FSuiviChargnt>(État, Services);
    const auto Secours = Machine.Boucle.Après(300ms, Finir);  // ends the case of the box
    Montrer(Faire);
    EXPECT_TRUE(Revenue);
    EXPECT_TRUE(Machine.JusquÀ([] { return FenêtreNommée(Légende) == nullptr; }));
  }
}

TEST_F(SuiviQt, AFailureInAGestureIsReportedAndUnwindsNothing) {
  std::string Dite;
  Machine.LesVraies.SurÉchec([&](const std::string& Description) { Dite = Description; });
  Services.SurInterrogation = [] { throw ErreurExécution("ligne perdue"); };
  Montrer([&](QWidget& Fenêtre) {
    QTest::mouseClick(&LeBouton(Fenêtre, "RG80 ?"), Qt::LeftButton);
    Machine.Vider();
    EXPECT_TRUE(Fenêtre.isVisible());
  });
  EXPECT_EQ(Dite, "ligne perdue");
  EXPECT_TRUE(Revenue);
}

TEST(GrilleQt, TakesTwoThousandRowsFastAndKeepsItsPlace) {
  PréparerQt();
  GrilleChargements Grille(nullptr);
  Grille.resize(600, 300);
  Grille.show();
  std::vector<std::string> Entêtes(12, "Propriétaire");
  const auto Lignes = [](int Nombre) {
    std::vector<std::vector<std::string>> Toutes;
    Toutes.reserve(static_cast<std::size_t>(Nombre));
    for (int Rang = 0; Rang < Nombre; ++Rang) Toutes.emplace_back(12, "ligne " + std::to_string(Rang));
    return Toutes;
  };
  Grille.Remplir(Entêtes, Lignes(1999));
  Grille.setColumnWidth(3, 77);
  Grille.verticalScrollBar()->setValue(900);
  const auto Début = std::chrono::steady_clock::now();
  Grille.Remplir(Entêtes, Lignes(2000));
  EXPECT_LT(std::chrono::steady_clock::now() - Début, 50ms);
  EXPECT_EQ(Grille.columnWidth(3), 77);
  EXPECT_EQ(Grille.verticalScrollBar()->value(), 900);
  EXPECT_EQ(Grille.model()->rowCount(), 2000);
  Grille.Remplir(Entêtes, {});
  EXPECT_EQ(Grille.model()->rowCount(), 0);
  EXPECT_EQ(Grille.model()->headerData(11, Qt::Horizontal, Qt::DisplayRole), QString("Propriétaire"));
  Grille.Remplir({"Part"}, {{"a"}, {}});
  EXPECT_EQ(Grille.NombreColonnes(), 1);
  EXPECT_FALSE(Grille.model()->index(1, 0).data().isValid()) << "a row that is too short";
}

TEST(Mesures, TwipsBecomePixelsAtEachResolution) {
  const struct {
    int Twips;
    int PPP;
    int Pixels;
  } Table[] = {{11145, 96, 743}, {11145, 120, 929}, {11145, 192, 1486},    {360, 96, 24},           {360, 192, 48},
               {-1215, 96, -81}, {0, 120, 0},       {1 << 30, 192, 32767}, {-(1 << 30), 96, -32767}};
  for (const auto& Cas : Table) {
    EXPECT_EQ(EnPixels(Cas.Twips, Cas.PPP), Cas.Pixels);
    if (std::abs(Cas.Twips) < 20000) {
      EXPECT_EQ(EnPixels(EnTwips(Cas.Pixels, Cas.PPP), Cas.PPP), Cas.Pixels) << "a saved size must not drift";
    }
  }
}

}  // namespace
}  // namespace Ombrey::Essais
