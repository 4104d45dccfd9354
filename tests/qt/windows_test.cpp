// Boxes, pictures and the printer on Qt.
#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QScreen>
#include <QTest>
#include <QTextEdit>
#include <array>
#include <deque>

#include "monitor/error_printout.h"
#include "platform/qt/qt_windows.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {
namespace {

using namespace std::chrono_literals;

class Bureau : public testing::Test {
 protected:
  MachineQt Machine;
};

TEST_F(Bureau, EachAnswerOfABox) {
  using enum RéponseBoîte;
  const struct {
    const char* Nom;
    std::function<void(QWidget&)> Geste;
    BoutonsBoîte Boutons;
    RéponseBoîte Réponse;
  } Table[] = {
      {"ok", [](QWidget& B) { QTest::mouseClick(&LeBouton(B, "OK"), Qt::LeftButton); }, BoutonsBoîte::Ok, Ok},
      {"return", [](QWidget& B) { QTest::keyClick(&B, Qt::Key_Return); }, BoutonsBoîte::RecommencerAnnuler,
       Recommencer},
      {"mnemonic", [](QWidget& B) { QTest::keyClick(&B, Qt::Key_A, Qt::AltModifier); },
       BoutonsBoîte::RecommencerAnnuler, Annuler},
      {"escape", [](QWidget& B) { QTest::keyClick(&B, Qt::Key_Escape); }, BoutonsBoîte::RecommencerAnnuler, Annuler},
      {"frame", [](QWidget& B) { B.close(); }, BoutonsBoîte::Ok, Ok},
      {"end", [&](QWidget&) { Machine.LesVraies.Finir(); }, BoutonsBoîte::RecommencerAnnuler, Annuler},
  };
  for (const auto& Cas : Table) {
    SCOPED_TRACE(Cas.Nom);
    const auto Jeton = Machine.Boucle.Après(20ms, [&] {
      QWidget* const Boîte = FenêtreNommée("Titre");
      ASSERT_NE(Boîte, nullptr);
      const auto& Zone = *Boîte->findChild<QTextEdit*>();
      EXPECT_LE(Zone.document()->size().height(), Zone.viewport()->height()) << "cut off";
      Cas.Geste(*Boîte);
    });
    EXPECT_EQ(Machine.LesVraies.Boîte("Coopérateurs\r\nLe RG80 n'est pas prêt (NACK).", "Titre", Cas.Boutons),
              Cas.Réponse);
  }
}

TEST_F(Bureau, ALongTextIsScrolledAndABoxMayStandAboveAnother) {
  const std::string Long(5000, 'W');
  std::vector<std::string> Ordre;
  const auto Jeton = Machine.Boucle.Après(20ms, [&] {
    QWidget* const Première = FenêtreNommée("longue");
    ASSERT_NE(Première, nullptr);
    const QSize Écran = QApplication::primaryScreen()->availableSize();
    EXPECT_LT(Première->width(), Écran.width());
    EXPECT_LT(Première->height(), Écran.height());
    const auto Autre = Machine.Boucle.Après(20ms, [&] { QTest::keyClick(FenêtreNommée("seconde"), Qt::Key_Return); });
    Machine.LesVraies.Boîte("texte", "seconde", BoutonsBoîte::Ok);
    Ordre.emplace_back("seconde");
    QTest::keyClick(Première, Qt::Key_Return);
  });
  Machine.LesVraies.Boîte(Long, "longue", BoutonsBoîte::Ok);
  Ordre.emplace_back("longue");
  EXPECT_EQ(Ordre, (std::vector<std::string>{"seconde", "longue"}));
}

TEST_F(Bureau, TheButtonsPictureStandsOnTheClipboardAndInTheToolbar) {
  const Image Petite{16, std::vector<std::uint32_t>(256, 0xFF102030)};
  Image Grande{24, std::vector<std::uint32_t>(576, 0xFF405060)};
  Grande.Pixels[24] = 0xFFABCDEF;  // second row, first column
  Machine.LesVraies.PoserImages({Petite, Grande});
  const QImage Posée = QApplication::clipboard()->image();
  EXPECT_EQ(Posée.size(), QSize(24, 24));
  EXPECT_EQ(Posée.pixel(0, 1), 0xFFABCDEF);
  const QIcon& Icône = Machine.LesVraies.DernièreImage();
  EXPECT_EQ(Icône.availableSizes(), (QList<QSize>{{16, 16}, {24, 24}}));
  EXPECT_EQ(Icône.pixmap(QSize(16, 16), 1.0).toImage().pixel(3, 3), 0xFF102030);
  Grande.Pixels.pop_back();
  EXPECT_THROW(Machine.LesVraies.PoserImages({Grande}), ErreurExécution);
}

TEST_F(Bureau, FiveHundredErrorsGoToAFileOfAsManyPagesAsTheyNeed) {
  std::deque<std::string> Lignes;
  for (int Rang = 0; Rang < 500; ++Rang) Lignes.push_front("08:30:00 : erreur " + std::to_string(Rang));
  {
    const auto Abandonnée = Machine.LesVraies.OuvrirImprimante();
    Abandonnée->Imprimer("jamais");
  }
  EXPECT_TRUE(std::filesystem::is_empty(Machine.Dossier.Chemin()));

  std::string Annonce;
  const auto Jeton = Machine.Boucle.Après(20ms, [&] {
    QWidget* const Boîte = FenêtreNommée("Liste des erreurs");
    ASSERT_NE(Boîte, nullptr);
    Annonce = Boîte->findChild<QTextEdit*>()->toPlainText().toStdString();
    QTest::keyClick(Boîte, Qt::Key_Return);
  });
  const auto Imprimante = Machine.LesVraies.OuvrirImprimante();
  const double Hauteur = Imprimante->HauteurPage();
  Imprimante->FixerPolice(10, false, false);
  const double Avant = Imprimante->PositionVerticale();
  Imprimante->Imprimer("");
  const double Interligne = Imprimante->PositionVerticale() - Avant;
  const auto Neuve = Machine.LesVraies.OuvrirImprimante();
  ImprimerErreurs(*Neuve, {2026, 9, 22, 8, 30, 0}, Lignes);

  const std::filesystem::path Fichier = std::filesystem::directory_iterator(Machine.Dossier.Chemin())->path();
  EXPECT_NE(Annonce.find(Fichier.string()), std::string::npos) << Annonce;
  EXPECT_EQ(Fichier.filename().string().substr(0, 13), "Erreurs RG80 ");
  EXPECT_EQ(Fichier.extension(), ".pdf");
  std::FILE* const Info = popen(("pdfinfo '" + Fichier.string() + "' | sed -n 's/^Pages: *//p'").c_str(), "r");
  ASSERT_NE(Info, nullptr);
  std::array<char, 32> Réponse{};
  const bool Lue = std::fgets(Réponse.data(), static_cast<int>(Réponse.size()), Info) != nullptr;
  pclose(Info);
  if (!Lue) GTEST_SKIP() << "pdfinfo isn't here";
  const int ParPage = static_cast<int>(0.9 * Hauteur / Interligne) + 1;
  const int Attendues = (500 + 5 + ParPage - 1) / ParPage;
  EXPECT_NEAR(std::stoi(Réponse.data()), Attendues, 1);
  EXPECT_GT(Attendues, 5);
}

TEST_F(Bureau, NoFileCanBeWritten) {
  std::filesystem::remove_all(Machine.Dossier.Chemin());
  const auto Imprimante = Machine.LesVraies.OuvrirImprimante();
  Imprimante->Imprimer("perdue");
  EXPECT_THROW(Imprimante->TerminerDocument(), ErreurExécution);
}

}  // namespace
}  // namespace Ombrey::Essais
