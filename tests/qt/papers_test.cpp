// The day as PDF, read back by another program, and the page that shows the line.
#include <fcntl.h>

#include "host/day_slip.h"
#include "host/windows/qt_line_page.h"
#include "host/windows/qt_paper.h"
#include "host/windows/qt_papers.h"
#include "host/windows/qt_save_dialog.h"
#include "platform/loop/descriptor.h"
#include "tests/qt/qt_fixture.h"

namespace Ombrey::Essais {

static QString PagesDe(const std::filesystem::path& Fichier) {
  QProcess Lecteur;
  Lecteur.start("pdftotext", {"-layout", QString::fromStdString(Fichier), "-"});
  Lecteur.waitForFinished();
  return QString::fromUtf8(Lecteur.readAllStandardOutput());
}

TEST_F(Bureau, TheDaysSlipHasEachLoadOnceItsSumsAndTheNumbersOfItsPages) {
  if (QStandardPaths::findExecutable("pdftotext").isEmpty()) GTEST_SKIP() << "pdftotext isn't installed";
  std::vector<Tarvel::ChargementRelaté> Tous;
  // clang-format off
  for (int Rang = 0; Rang < 120; ++Rang)
    Tous.push_back({"1", std::to_string(1000 + Rang), 46287 + Rang / 150.0, 46288, Rang % 2 ? "4" : "10", {"123", "Delmas & <Fils>"},
                    {"456", "Maurin"}, {"7", "Garrigue"}, Rang % 3 ? Tarvel::Nommé{"05", "Côteaux rouges"} : Tarvel::Nommé{"99", ""},
                    "Syrah", {"01", "Saine"}, "12,5", "2", "1000", "7", Rang == 3});
  // clang-format on
  ÉcrirePdf(Tarvel::TexteBordereau(Tous, "Cave d'Oriel", 46287), QPageSize::A4, Dossier.Chemin() / "jour.pdf");
  const QString Texte = PagesDe(Dossier.Chemin() / "jour.pdf").simplified();
  const QStringList Pages = PagesDe(Dossier.Chemin() / "jour.pdf").split('\f', Qt::SkipEmptyParts);
  for (int Rang = 0; Rang < 120; ++Rang)
    EXPECT_EQ(Texte.count(QString::number(1000 + Rang) + (Rang == 3 ? "* 1 " : " 1 ")), 1);
  for (const char* Attendu : {"Cave d'Oriel Bordereau de la journée du 22/09/2026", "120 chargements, 120 000 kg",
                              "05 Côteaux rouges 80 80 000", "99 40 40 000", "4 Delmas & <Fils> / Maurin 60 60 000",
                              "7 Garrigue 120 120 000", "* Un autre chargement"})
    EXPECT_TRUE(Texte.contains(Attendu)) << Attendu << Texte.toStdString();
  EXPECT_LT(Texte.indexOf("4 Delmas & <Fils> / Maurin 60"), Texte.indexOf("10 Delmas & <Fils> / Maurin 60"));
  ASSERT_GT(Pages.size(), 2);
  for (int Rang = 0; Rang < Pages.size(); ++Rang)
    EXPECT_TRUE(Pages[Rang].contains(QString("Page %1 / %2").arg(Rang + 1).arg(Pages.size())));
  EXPECT_TRUE(Pages[1].contains("Exploitation")) << "the headings stand on each page";

  ÉcrirePdf(Tarvel::TexteTicket(Tous[5], ""), QPageSize::A6, Dossier.Chemin() / "ticket.pdf");
  const QString Ticket = PagesDe(Dossier.Chemin() / "ticket.pdf").simplified();
  for (const char* Dit : {"Chargement n° 1005", "1000 kg", "Page 1 / 1"}) EXPECT_TRUE(Ticket.contains(Dit)) << Dit;
  EXPECT_THROW(ÉcrirePdf("x", QPageSize::A4, Dossier.Chemin() / "absent/x.pdf"), ErreurExécution);
}

/// A program of this text does the work.
TEST_F(Bureau, ACopyOfTheBaseRunsBesideTheStationAndItsEndIsToldWhateverItIs) {
  const std::tuple<const char*, bool, const char*> Cas[] = {
      {"echo 'tarvel : sauvegarde : 9 %, encore 9 s' >&2; echo \"$1 faite dans $2\"", false,
       "--sauvegarder faite dans "},
      {"echo 'tarvel : disque plein' >&2; exit 1", false, "disque plein"},
      {"kill -9 $$", false, "Arrêté, rien n'est gardé."},
      {"case $1 in *diag*) echo vu; exit; esac; trap 'echo arrêtée; exit 1' INT; echo 'tarvel : à 9 %, encore 9 s'; "
       "while :; do sleep 0.02; done",
       true, "arrêtée"},
      {nullptr, false, "ne peut pas être lancé"}};
  for (const auto& [Texte, Abandonné, Dit] : Cas) {
    std::filesystem::remove(Programme);
    if (Texte != nullptr) ÉcrireProgramme(Texte);
    QWidget Page;
    QMenu Menu;
    OffrirPapiers(
        Menu, &Page, {LesVraies.Contexte(), Travaux}, [] { return nullptr; }, false);
    Menu.actions().back()->trigger();
    auto& Dialogue = *Page.findChild<DialogueTravail*>();
    Clic("&Choisir le fichier…")(Dialogue);
    Vider();
    Q_EMIT Dialogue.findChild<QFileDialog*>()->fileSelected(QString::fromStdString(Dossier.Chemin() / "copie.db"));
    if (Abandonné) {
      const auto Vue = [&] { return Dialogue.findChild<QLabel*>(QString(), Qt::FindDirectChildrenOnly)->text(); };
      for (int Reste = 1000; Reste > 0 && Vue() != "à 9 %, encore 9 s"; --Reste) Laisser(10ms);
      EXPECT_FALSE(Le<QPushButton>(Dialogue, "&Choisir le fichier…").isEnabled());
      Travaux.Diagnostiquer([&](const std::string& Ligne) { Trace += Ligne; }, [](bool) {});
      for (int Reste = 1000; Reste > 0 && Trace.empty(); --Reste) Laisser(10ms);
      EXPECT_EQ(Trace, "vu") << "a diagnosis doesn't wait for the copy";
      EXPECT_EQ(Dialogue.focusWidget(), &Le<QPushButton>(Dialogue, "A&bandonner"));
      Clic("A&bandonner")(Dialogue);
      Dialogue.close();
      EXPECT_TRUE(Dialogue.isVisible()) << "it stays until the work has ended";
    }
    const std::string Lu = Lire("Sauvegarder la base");
    EXPECT_NE(Lu.find(Dit), std::string::npos) << Lu;
    EXPECT_EQ(Lu.find("encore"), std::string::npos) << "how far it was is no news any more: " << Lu;
    EXPECT_TRUE(Le<QPushButton>(Dialogue, "&Choisir le fichier…").isEnabled());
  }
}

TEST_F(Bureau, TheLineIsShownARowAMessageFaultsMarkedAndSavedAsATrace) {
  JournalLiaison Journal;
  const auto Dire = [&](const char* Octets_, bool Faute) {
    Journal.Ajouter(
        {InstantLiaison::Présent(), MessageLiaison::Source::Terminal, Octets(std::string_view(Octets_)), "dit", Faute});
  };
  Dire("\6A", false);
  PageLigneQt Page(nullptr, LesVraies.Contexte(), Journal);
  Page.show();
  auto& Liste = *Page.findChild<QTableView*>();
  for (int Rang = 0; Rang < 20000; ++Rang) Dire(Rang % 4 ? "\25A" : "\6A", Rang % 4 == 0);
  Laisser(600ms);
  EXPECT_EQ(Liste.model()->rowCount(), static_cast<int>(Journal.Messages().size()));
  EXPECT_EQ(Liste.model()->index(1, 3).data().toString(), "<NAK>A");
  EXPECT_EQ(Liste.model()->index(0, 2).data().toString(), "⚠ dit");
  Page.findChild<QCheckBox*>()->click();
  EXPECT_EQ(Liste.model()->rowCount(), static_cast<int>(Journal.Messages().size() / 4));
  Page.findChild<QPushButton*>()->click();
  auto* const Choix = Page.findChild<QFileDialog*>();
  ASSERT_NE(Choix, nullptr);
  const QString Fichier = QDir(QString::fromStdString(Dossier.Chemin())).filePath("essai.trace");
  for (int Fois = 0; Fois < 2; ++Fois) {
    Q_EMIT Choix->fileSelected(Fichier);
    Trace = Lire("Enregistrer la trace");
  }
  EXPECT_NE(Trace.find("existe déjà"), std::string::npos) << Trace;
  EXPECT_GT(std::filesystem::file_size(Fichier.toStdString()), 15000U * 20);
}

// A lock of this process ends when the process closes the file, whoever of it had opened it.
TEST_F(Bureau, TheChoiceOfANameLooksIntoNoFile) {
  const auto Base = Dossier.Chemin() / "cave.db";
  const Descripteur Tenue(open(Base.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600));
  struct flock Verrou {};
  Verrou.l_type = F_WRLCK;
  ASSERT_EQ(fcntl(Tenue.Numéro(), F_SETLK, &Verrou), 0);
  QWidget Page;
  EnregistrerSous(&Page, LesVraies.Contexte(), {"Bordereau", "bordereau", "db"}, {});
  Page.findChild<QFileDialog*>()->setDirectory(QString::fromStdString(Dossier.Chemin()));
  auto& Fichiers = *Page.findChild<QFileSystemModel*>();
  const auto Genre = [&] { return Fichiers.type(Fichiers.index(QString::fromStdString(Base))); };
  for (int Reste = 1000; Reste > 0 && Genre().isEmpty(); --Reste) Laisser(10ms);
  EXPECT_EQ(Genre(), "db");
  ASSERT_EQ(fcntl(Tenue.Numéro(), F_OFD_GETLK, &Verrou), 0);
  EXPECT_EQ(Verrou.l_type, F_WRLCK) << "the lock has gone";
}

}  // namespace Ombrey::Essais
