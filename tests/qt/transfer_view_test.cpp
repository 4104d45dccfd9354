// The transfer window on Qt, with the program's own logic behind it.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QScreen>
#include <QTest>
#include <QTextEdit>

#include "tests/qt/qt_fixture.h"
#include "tests/transfer/small_cooperative.h"
#include "transfer/transfer_window.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;
constexpr const char* TitreOuverture = "Chargement des données vers le RG80";
constexpr const char* TitreTransmission = "Transmission des données";

class ChargntQt : public testing::Test {
 protected:
  MachineQt Machine;
  FauxCanal Canal;
  ÉtatPlugIn État{Machine, Canal};
  FauxServices Services;
  PetiteCoopérative Coopérative;
  FChargntDonnées Fenêtre{État};
  bool Revenue = false;

  ChargntQt() {
    const auto Hôte = std::make_shared<FausseBaseDeD>();
    Hôte->Base = Coopérative.Base;
    État.BaseDeD = Hôte;
  }
  void Ouvrir(const std::function<void(QWidget&)>& Faire) {
    const auto Jeton = Machine.Boucle.Après(20ms, [&] {
      QWidget* const Vue = FenêtreNommée(TitreOuverture);
      ASSERT_NE(Vue, nullptr);
      Faire(*Vue);
      if (Vue->isVisible()) Fenêtre.BtnFermer_Click();
    });
    Fenêtre.Afficher(Services, Machine.CréerRetard([](const std::string&) {}));
    Revenue = true;
  }
  static std::vector<QCheckBox*> Cases(QWidget& Vue) {
    auto Toutes = Vue.findChildren<QCheckBox*>();
    return {Toutes.begin(), Toutes.end()};
  }
};

TEST_F(ChargntQt, IsAFixedDialogWithItsTextsAndTabOrder) {
  Ouvrir([&](QWidget& Vue) {
    const double PPP = Vue.logicalDpiX();
    EXPECT_NEAR(Vue.width(), 4260 * PPP / 1440, 1);
    EXPECT_EQ(Vue.minimumSize(), Vue.maximumSize());
    EXPECT_EQ(Vue.windowFlags() & (Qt::WindowMinMaxButtonsHint), 0);
    EXPECT_LE(
        (Vue.frameGeometry().center() - QApplication::primaryScreen()->availableGeometry().center()).manhattanLength(),
        8);
    std::vector<std::string> Ordre;
    for (int Rang = 0; Rang < 7; ++Rang) {
      Ordre.push_back(dynamic_cast<QAbstractButton*>(QApplication::focusWidget())->text().toStdString());
      QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_EQ(Ordre, (std::vector<std::string>{"Appelations", "Coopérateurs", "Badges", "Groupements", "Observations",
                                               "&Transférer", "&Fermer"}));
    for (const QCheckBox* Case : Cases(Vue)) EXPECT_TRUE(Case->isChecked());
    const auto& Libellé = *Vue.findChild<QLabel*>();
    EXPECT_LE(Libellé.fontMetrics().horizontalAdvance(Libellé.text()), Libellé.width());
  });
}

TEST_F(ChargntQt, ClosesByButtonMnemonicEscAndFrame) {
  const std::pair<const char*, std::function<void(QWidget&)>> Cas[] = {
      {"button", [](QWidget& Vue) { QTest::mouseClick(&LeBouton(Vue, "&Fermer"), Qt::LeftButton); }},
      {"mnemonic", [](QWidget& Vue) { QTest::keyClick(&Vue, Qt::Key_F, Qt::AltModifier); }},
      {"enter",
       [](QWidget& Vue) {
         LeBouton(Vue, "&Fermer").setFocus();
         QTest::keyClick(&LeBouton(Vue, "&Fermer"), Qt::Key_Return);
       }},
      {"Esc", [](QWidget& Vue) { QTest::keyClick(&Vue, Qt::Key_Escape); }},
      {"frame", [](QWidget& Vue) { Vue.close(); }},
  };
  for (const auto& Un : Cas) {
    SCOPED_TRACE(Un.first);
    Ouvrir([&](QWidget& Vue) {
      Un.second(Vue);
      EXPECT_TRUE(Machine.JusquÀ([&] { return !Vue.isVisible(); }));
    });
  }
}

TEST_F(ChargntQt, TakesNothingWhileItTransfersAndRetriesFromTheFailedSet) {
  Coopérative.Connexion->ExécuterTout(
      "INSERT INTO Sélection VALUES('05','Aligoté',1);INSERT INTO Coopérateur VALUES('1','Dupré','Élise');");
  std::vector<int> Envoyés;
  bool Échoue = true;
  Ouvrir([&](QWidget& Vue) {
    Services.SurTransmission = [&](std::int32_t Numéro, std::vector<Octets>&) -> std::string {
      Envoyés.push_back(Numéro);
      EXPECT_NE(QApplication::overrideCursor(), nullptr);
      EXPECT_FALSE(Vue.isEnabled());
      const auto EnCours = Cases(Vue)[Numéro == 4 ? 0 : 1];
      EXPECT_EQ(EnCours->font().bold(), Numéro == 4 || Numéro == 1);
      QTest::keyClick(&Vue, Qt::Key_Escape);
      Vue.close();
      Machine.Vider();
      EXPECT_TRUE(Vue.isVisible());
      return Numéro == 1 && std::exchange(Échoue, false) ? "Le RG80 n'est pas prêt (NACK)." : "";
    };
    // A double click counts once: the window is closed to the second.
    QTest::mouseClick(&LeBouton(Vue, "&Transférer"), Qt::LeftButton);
    QTest::mouseClick(&LeBouton(Vue, "&Transférer"), Qt::LeftButton);
    const auto Répond = Machine.Boucle.Après(50ms, [&] {
      QWidget* const Boîte = FenêtreNommée(TitreTransmission);
      ASSERT_NE(Boîte, nullptr);
      EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "a box shows the normal pointer";
      EXPECT_EQ(Boîte->findChild<QTextEdit*>()->toPlainText(), "Coopérateurs\nLe RG80 n'est pas prêt (NACK).");
      QTest::mouseClick(&LeBouton(*Boîte, "&Recommencer"), Qt::LeftButton);
    });
    Machine.Boucle.Pomper(0ms);
    Machine.Vider();
    EXPECT_EQ(Envoyés, (std::vector<int>{4, 1, 1, 5, 2, 6}));
    for (const QCheckBox* Case : Cases(Vue)) {
      EXPECT_FALSE(Case->isChecked());
      EXPECT_FALSE(Case->font().bold());
    }
    EXPECT_TRUE(Vue.isEnabled());
    EXPECT_EQ(Vue.windowTitle(), TitreTransmission);
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    QTest::keyClick(&Vue, Qt::Key_Escape);
    Machine.Vider();
  });
  EXPECT_TRUE(Revenue);
}

TEST_F(ChargntQt, TheStationsEndClosesWindowAndBox) {
  Services.SurTransmission = [](std::int32_t, std::vector<Octets>&) { return "Aucune réponse du RG80."; };
  const auto Fin = Machine.Boucle.Après(100ms, [&] {
    État.Abandon = true;
    Machine.LesVraies.Finir();
    Fenêtre.Décharger();
  });
  Ouvrir([&](QWidget& Vue) {
    QTest::mouseClick(&LeBouton(Vue, "&Transférer"), Qt::LeftButton);
    Machine.Boucle.Pomper(0ms);
  });
  EXPECT_TRUE(Revenue);
  EXPECT_EQ(Machine.LesVraies.Boîte("trop tard", "t", BoutonsBoîte::RecommencerAnnuler), RéponseBoîte::Annuler);
}

}  // namespace
}  // namespace Ombrey::Essais
