// The station's main window: what it tells of the link, of the day and of what went wrong.
#include "base/files.h"
#include "host/windows/qt_host_window.h"
#include "tests/host/cooperative_fixture.h"
#include "tests/qt/qt_fixture.h"
#include "transfer/transfer_window.h"

namespace Ombrey::Essais {

struct Principale : BureauAvecBase {
  Principale() {
    Fenêtre->show();
    Fenêtre->Suivre(Hôte);
  }
  std::string Onglets() {
    std::string Tous;
    const auto& Pages = Le<QTabWidget>(*Fenêtre);
    for (int Rang = 0; Rang < Pages.count(); ++Rang) Tous += Pages.tabText(Rang).remove('&').toStdString() + "|";
    return Tous;
  }
  /// Those of the beginnings that stand in no label.
  QStringList Manquent(QStringList Débuts) {
    for (const QLabel* Un : Fenêtre->findChildren<QLabel*>())
      Débuts.removeIf([&](const QString& Début) { return Un->text().startsWith(Début); });
    return Débuts;
  }

  FChargntDonnées Transfert{État};
  Tarvel::Aperçu Aperçu;
  std::unique_ptr<FenêtrePrincipaleQt> Fenêtre = std::make_unique<FenêtrePrincipaleQt>(
      LesVraies.Contexte(), FenêtrePrincipaleQt::Sujet{"cave.db"}, LesRéglages, Aperçu);
};

TEST_F(Principale, TellsTheStateOfThings) {
  EXPECT_EQ(Manquent({"Le RG80 n'a pas encore", "○", "Base locale : cave.db"}), QStringList());
  EXPECT_EQ(Onglets(), "La journée|Refusés|Archive|Journal|Stations|À lire|");
  Aperçu.NoterLigne("08:30:00 : Aucune réponse du RG80.");
  EXPECT_EQ(Manquent({"Le RG80 est muet depuis moins d'une minute", "▲"}), QStringList());
  Aperçu.NoterBoîte("Erreur du port", "Le port COM1: est absent.");
  EXPECT_EQ(Manquent({"Le port COM1: est absent (depuis moins d'une minute)", "■"}), QStringList());
  for (int Fois = 0; Fois < 2; ++Fois)
    Aperçu.NoterBoîte("RG80 Ombrey", "TraiterDonnéesReçues : Incompatibilité de type : degré « x » du chargement n° 7");
  Aperçu.NoterRetrait("RG80 Ombrey", "Erreur de check-sum");
  EXPECT_EQ(Onglets(), "La journée|Refusés (1)|Archive|Journal|Stations|À lire (1)|");
  Coopérative.Connexion->ExécuterTout(
      "CREATE TABLE ChargementArchive AS SELECT * FROM Chargement;"
      "INSERT INTO Chargement VALUES ('1', 7, 46287 + 485 / 1440.0, '10', '05', '9', 12.5, 1310, -1, 1)");
  EXPECT_EQ(Aperçu.NoterReçu("7"), "");
  Fenêtre->Dire("ChargementAjouté:7");
  Vider();
  EXPECT_EQ(Manquent({"Chargement n° 7 reçu, 1310 kg", "Dernier : n° 7, 1310 kg, 08:05"}), QStringList());
  EXPECT_FALSE(Le<QTabWidget>(*Fenêtre).isTabVisible(4));
  Coopérative.Connexion->ExécuterTout(
      "CREATE TABLE Station AS SELECT '1' CodeSite, 'pc1' Machine, 1.0 Vue UNION SELECT '2', 'pc2', 2.0");
  Fenêtre->Suivre(Hôte);
  EXPECT_TRUE(Le<QTabWidget>(*Fenêtre).isTabVisible(4));
  EXPECT_EQ(Onglets(), "La journée|Refusés|Archive|Journal|Stations|À lire (1)|");
  const auto Archiver = [this](const std::string& Jours) {
    Coopérative.Connexion->ExécuterTout("INSERT INTO ChargementArchive SELECT CodeSite, NoChargement, DateCh - " +
                                        Jours + ", Métayage, Sélection, Qualité, Degré, Masse, 0, 0 FROM Chargement");
    Fenêtre->Suivre(Hôte);
    Vider();
  };
  Le<QTabWidget>(*Fenêtre).setCurrentIndex(2);
  Archiver("365");
  Le<ListeQt>(*Fenêtre).selectRow(0);
  Archiver("0");
  EXPECT_EQ(Le<ListeQt>(*Fenêtre).currentIndex().row(), 1) << "the last season's, of the same number";
  Coopérative.Connexion->ExécuterTout("DROP TABLE Qualité");
  Fenêtre->Dire("ChargementAjouté:8");
  Vider();
  EXPECT_EQ(Manquent({"Dernier : n° 7"}), QStringList()) << "what was read stays";
}

TEST_F(Principale, TellsOfALoadThatGoesToTheArchiveAndTheSlipThatIsBeingChosenFollows) {
  const std::string Cave = Dossier.Chemin() / "cave.db", Import = Dossier.Chemin() / "import";
  Tarvel::CréerBase(Cave, true);
  const auto Base = std::make_shared<Tarvel::BaseDeDTarvel>(Tarvel::OuvrirCoopérative(Cave, [] { return 46287.5; }),
                                                            LeSystème, "", [&](Mot Texte) { Fenêtre->Dire(Texte); });
  Fenêtre->Présenter({}, Travaux);
  Fenêtre->Raccorder({});
  Fenêtre->Suivre(Base);
  for (QAction* Entrée : Fenêtre->findChildren<QAction*>())
    if (Entrée->text() == "&Bordereau de la journée…") Entrée->trigger();
  auto& Dialogue = *Fenêtre->findChild<QDialog*>();
  Le<QDateEdit>(Dialogue).setDate(QDate(2026, 9, 22));
  Vider();
  auto& Quoi = Le<QComboBox>(Dialogue);
  EXPECT_EQ(Quoi.currentText(), "Bordereau : 0 chargement");
  for (const char* Masse : {"1234", "1235"}) {
    EcrireFichier(Import, Tarvel::Ligne("12", "22/09/26 08:30", "4", "05", Masse));
    bool Drapeau = false;
    EXPECT_TRUE(Base->EtatBdD()->TableImporter(TitreImport, Import, Drapeau));
    Fenêtre->Dire("ChargementAjouté:12");
    Vider();
    EXPECT_EQ(Quoi.count(), Masse[3] == '4' ? 2 : 3) << "the day's slip and a ticket for each load";
    Quoi.setCurrentIndex(1);
  }
  EXPECT_TRUE(Quoi.currentText().endsWith("1234 kg")) << "what was chosen stays so";
  Le<QTabWidget>(*Fenêtre).setCurrentIndex(3);
  const std::string Dit = Le<QPlainTextEdit>(*Fenêtre).toPlainText().toStdString();
  EXPECT_NE(Dit.find("Le chargement n° 12 du site 1, arrivé le 22/09/2026 08:30 (exploitation 4, 1234 kg), passe dans "
                     "ChargementArchive : son numéro sert à un autre. Il compte toujours dans les cumuls."),
            std::string::npos)
      << Dit;
}

TEST_F(Principale, SaysThatNothingIsCollectedInAPlugInsWindowAndKeepsItsPlace) {
  LesVraies.Observer(Aperçu.Témoins());
  Fenêtre->Raccorder({{}, [this] { Transfert.Afficher(Services); }, {}, {}});
  Dès("Chargement des données vers le RG80", [this](QWidget& Vue) {
    Trace =
        Manquent({"❚❚", "Collecte suspendue depuis ", "Aucun relevé d'ici là"}).join('/').toStdString() + "suspendue";
    Cadre(Vue);
  });
  Fenêtre->OffrirMenu("&Charger");
  for (const QAction* Menu : Fenêtre->menuBar()->actions())
    if (Menu->text() == "&Greffons") Menu->menu()->actions().front()->trigger();
  Vider();
  EXPECT_EQ(Trace, "suspendue");
  EXPECT_EQ(Manquent({"○"}), QStringList()) << "and it goes on";
  Fenêtre->setGeometry(60, 60, 700, 500);
  Vider();
  const QPoint Place = Fenêtre->pos();
  Fenêtre = nullptr;
  EXPECT_EQ(FenêtrePrincipaleQt(LesVraies.Contexte(), {"cave.db"}, LesRéglages, Aperçu).pos(), Place);
}

}  // namespace Ombrey::Essais
