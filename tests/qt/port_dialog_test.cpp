// The port's dialog and the station's main window on Qt.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QStatusBar>
#include <QTest>
#include <QToolBar>
#include <QToolButton>

#include "platform/qt/qt_host_window.h"
#include "platform/qt/qt_port_dialog.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

class DialogueDuPort : public testing::Test {
 protected:
  MachineQt Machine;
  QuestionnairePortQt Questionnaire{Machine.LesVraies.Contexte(),
                                    [] {
                                      return std::vector<PortTrouvé>{{"COM1:", "ttyS0, 16550A"}, {"/dev/ttyUSB0", ""}};
                                    },
                                    {{"4800", "9600"}, {"aucune", "paire"}, {"1", "2"}, {"7", "8"}}};
  RéglagesPort Réglages{"COM2:", "9600", "N", "1", "8"};
  std::vector<RéglagesPort> Essayés;
  std::string Raison;

  bool Demander(const std::function<void(QWidget&)>& Faire) {
    const auto Jeton = Machine.Boucle.Après(20ms, [&] {
      QWidget* const Dialogue = FenêtreNommée("Port du RG80");
      ASSERT_NE(Dialogue, nullptr);
      Faire(*Dialogue);
    });
    return Questionnaire.Demander(Réglages, [this](const RéglagesPort& Voulus) -> std::string {
      Essayés.push_back(Voulus);
      if (Raison == "lève") throw ErreurExécution("levée");
      return Raison;
    });
  }
  static bool CompteRendu(QWidget& Dialogue, const std::string& Texte) {
    for (const QLabel* Libellé : Dialogue.findChildren<QLabel*>()) {
      if (Libellé->text().toStdString().find(Texte) != std::string::npos) return true;
    }
    return false;
  }
};

TEST_F(DialogueDuPort, ShowsTheSettingsAndKeepsThemWhenCancelled) {
  const RéglagesPort Avant = Réglages;
  const std::pair<const char*, std::function<void(QWidget&)>> Cas[] = {
      {"button", [](QWidget& D) { QTest::mouseClick(&LeBouton(D, "&Annuler"), Qt::LeftButton); }},
      {"escape", [](QWidget& D) { QTest::keyClick(&D, Qt::Key_Escape); }},
      {"frame", [](QWidget& D) { D.close(); }},
      {"end", [this](QWidget&) { Machine.LesVraies.Finir(); }},
  };
  for (const auto& Un : Cas) {
    SCOPED_TRACE(Un.first);
    EXPECT_FALSE(Demander([&](QWidget& Dialogue) {
      std::string Montrés;
      for (const QComboBox* Saisie : Dialogue.findChildren<QComboBox*>())
        Montrés += Saisie->currentText().toStdString() + '|';
      EXPECT_EQ(Montrés, "COM2:|9600|N|1|8|");
      Dialogue.findChild<QComboBox*>()->setEditText("COM9:");
      Un.second(Dialogue);
    }));
    EXPECT_EQ(Réglages, Avant);
  }
}

TEST_F(DialogueDuPort, TriesThePortAndKeepsWhatWasChosen) {
  EXPECT_TRUE(Demander([&](QWidget& Dialogue) {
    auto& Port = *Dialogue.findChild<QComboBox*>();
    EXPECT_EQ(Port.itemText(0), "COM1:  –  ttyS0, 16550A");
    Port.setCurrentIndex(0);
    Q_EMIT Port.activated(0);
    for (const auto& [Motif, Attendu] : {std::pair{"", "Essai réussi"},
                                         {"Le port est pris.", "Essai manqué. Le port est pris."},
                                         {"lève", "Essai manqué. levée"}}) {
      Raison = Motif;
      QTest::mouseClick(&LeBouton(Dialogue, "&Essayer"), Qt::LeftButton);
      Machine.Vider();
      EXPECT_TRUE(CompteRendu(Dialogue, Attendu)) << Attendu;
    }
    Port.setEditText("  ");
    EXPECT_FALSE(LeBouton(Dialogue, "E&nregistrer").isEnabled());
    EXPECT_FALSE(LeBouton(Dialogue, "&Essayer").isEnabled());
    Port.setEditText(" /dev/ttyUSB0 ");
    Port.lineEdit()->setFocus();
    QTest::keyClick(Port.lineEdit(), Qt::Key_Return);
  }));
  EXPECT_EQ(Réglages, (RéglagesPort{"/dev/ttyUSB0", "9600", "N", "1", "8"}));
  ASSERT_EQ(Essayés.size(), 3U);
  EXPECT_EQ(Essayés[0], (RéglagesPort{"COM1:", "9600", "N", "1", "8"}));
}

TEST(FenêtrePrincipale, EachWayIntoThePlugInAndTheEndRunInThePump) {
  MachineQt Machine;
  std::string Trace;
  FenêtrePrincipaleQt Fenêtre(Machine.LesVraies.Contexte(), "cave.db");
  Fenêtre.Raccorder({[&] { Trace += 'b'; }, [&] { Trace += 'm'; }, [&] { Trace += 'c'; }, [&] { Trace += 'q'; }});
  Fenêtre.OffrirBouton(QIcon(), "Comm. au RG80");
  Fenêtre.OffrirMenu("&Charger les données vers le RG80");
  Fenêtre.Dire("premier\r\ntexte");
  Fenêtre.Dire("<i>dernier</i>");
  Fenêtre.show();
  Fenêtre.activateWindow();
  Machine.Vider();
  EXPECT_EQ(Fenêtre.statusBar()->findChild<QLabel*>()->text(), "<i>dernier</i>");
  const auto* const Barre = Fenêtre.findChild<QToolBar*>();
  const QAction* const Bouton = Barre->actions().at(0);
  EXPECT_EQ(Bouton->toolTip(), "Comm. au RG80");
  QTest::mouseClick(Barre->widgetForAction(Barre->actions().at(0)), Qt::LeftButton);
  EXPECT_EQ(Trace, "") << "nothing runs inside Qt's dispatch";
  Machine.Vider();
  QTest::keyClick(&Fenêtre, Qt::Key_F5);
  for (const QAction* Menu : Fenêtre.menuBar()->actions()) {
    for (QAction* Entrée : Menu->menu()->actions()) {
      if (Entrée != Bouton) Entrée->trigger();
    }
  }
  Fenêtre.close();
  Machine.Vider();
  EXPECT_TRUE(Fenêtre.isVisible());
  EXPECT_EQ(Trace, "bbcqmq");
}

}  // namespace
}  // namespace Ombrey::Essais
