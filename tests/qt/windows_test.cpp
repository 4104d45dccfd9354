// Boxes, dialogs and windows on Qt and the ways out of them; pictures.
#include "host/windows/qt_host_window.h"
#include "monitor/monitoring_window.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_port_dialog.h"
#include "tests/qt/qt_fixture.h"
#include "transfer/transfer_window.h"

static int Sonneries = 0;
/// In place of the toolkit's own.
void QApplication::beep() { ++Sonneries; }

namespace Ombrey::Essais {

constexpr const char* TitreTransfert = "Chargement des données vers le RG80";
constexpr const char* TitreTransmission = "Transmission des données";
constexpr const char* TitrePort = "Port du RG80";
constexpr const char* TitreSuivi = "Liste des chargements";

struct FenêtresDeQt : BureauAvecBase {
  QuestionnairePortQt Questionnaire{LesVraies.Contexte(),
                                    [] {
                                      return std::vector<PortTrouvé>{{"COM1:", "ttyS0"}, {"COM2:", ""}};
                                    },
                                    ChoixUsuels()};
  RéglagesPort Ligne{"COM2:", "9600", "N", "1", "8"};
  std::function<std::string(const RéglagesPort&)> Essayer;
  std::function<bool()> DemanderPort = [this] { return Questionnaire.Demander(Ligne, Essayer); };
  FChargntDonnées Transfert{État};
  std::function<bool()> Transférer = [this] {
    Transfert.Afficher(Services);
    return false;
  };
};

bool EstLà(const QWidget& Fenêtre) { return Fenêtre.isVisible() && !Fenêtre.isMinimized(); }
void Réduire(QWidget& Fenêtre) { Fenêtre.setWindowState(Qt::WindowMinimized); }

TEST_F(FenêtresDeQt, ABoxTakesNothingAtFirstAndALoneOkStepsAsideUnread) {
  LesVraies.Observer(
      {{}, {}, [&](const std::string& Titre, const std::string& Message) { Trace += Titre + "/" + Message; }});
  // When a box steps aside and how long it takes nothing, its buttons, and what is told of it.
  using std::chrono::milliseconds;
  const std::tuple<milliseconds, milliseconds, BoutonsBoîte, const char*> Table[] = {
      {40ms, 0ms, BoutonsBoîte::Ok, "Boîte/texte"},
      {40ms, 400ms, BoutonsBoîte::RecommencerAnnuler, ""},
      {0ms, 400ms, BoutonsBoîte::Ok, ""}};
  for (const auto& [Retrait, Répit, Boutons, Retirée] : Table) {
    LesVraies.RéglerBoîtes(Retrait, Répit);
    if (Répit > 0ms) {
      Dès("Boîte", [&](QWidget& Boîte) {
        for (const Geste& Faire : {Touche(Qt::Key_Return), Touche(Qt::Key_Escape), Geste(Cadre)}) Faire(Boîte);
        EXPECT_TRUE(Boîte.isVisible());
        Réduire(Boîte);
        Laisser(500ms);
        EXPECT_TRUE(EstLà(Boîte));
        Touche(Qt::Key_Return)(Boîte);
      });
    }
    const RéponseBoîte Réponse = LesVraies.Boîte("texte", "Boîte", Boutons);
    EXPECT_EQ(Réponse, Boutons == BoutonsBoîte::Ok ? RéponseBoîte::Ok : RéponseBoîte::Recommencer);
    EXPECT_EQ(std::exchange(Trace, ""), Retirée);
    EXPECT_GT(std::exchange(Sonneries, 0), 0) << "it stood there in silence";
  }
}

TEST_F(FenêtresDeQt, EachWayOutOfEachWindow) {
  FSuiviChargnt Suivi(État, Services);
  const auto Ok = [&] { return LesVraies.Boîte("Lecture", "Boîte", BoutonsBoîte::Ok) == RéponseBoîte::Ok; };
  const auto Deux = [&] {
    const auto Réponse = LesVraies.Boîte("Coopérateurs\r\nNon (NACK).", "Boîte", BoutonsBoîte::RecommencerAnnuler);
    return Réponse == RéponseBoîte::Recommencer;
  };
  const auto Liste = [&] {
    Suivi.Afficher();
    return !LesRéglages.Contenu.empty();
  };
  // clang-format off
  const struct { const char* Titre; std::function<bool()> Montrer; Geste Faire; bool AcceptéOuSauvé; } Table[] = {
      {"Boîte", Ok, Clic("OK"), true}, {"Boîte", Ok, Cadre, true},
      {"Boîte", Deux, Touche(Qt::Key_Return), true}, {"Boîte", Deux, Touche(Qt::Key_A, Qt::AltModifier), false},
      {"Boîte", Deux, Touche(Qt::Key_Escape), false}, {"Boîte", Deux, Cadre, false},
      {TitrePort, DemanderPort, Cadre, false}, {TitreTransfert, Transférer, Touche(Qt::Key_Escape), false},
      {TitreTransfert, Transférer, Touche(Qt::Key_F, Qt::AltModifier), false}, {TitreTransfert, Transférer, Cadre, false},
      {TitreTransfert, Transférer, Réduire, false}, {TitreSuivi, Liste, Réduire, false},
      {TitreSuivi, Liste, Touche(Qt::Key_Escape), false}, {TitreSuivi, Liste, Cadre, true}};
  // clang-format on
  for (const auto& Cas : Table) {
    SCOPED_TRACE(std::string(Cas.Titre) + " " + std::to_string(&Cas - Table));
    Dès(Cas.Titre, [&](QWidget& Fenêtre) {
      if (std::string_view(Cas.Titre) != TitreTransfert) {  // whose size is laid down
        EXPECT_GE(Fenêtre.width(), LargeurDuTitre(Fenêtre)) << "a title cut off";
      }
      const auto* const Texte = Fenêtre.findChild<QTextEdit*>();
      if (Texte) {
        EXPECT_LE(Texte->document()->size().height(), Texte->viewport()->height()) << "cut off";
      }
      for (QComboBox* Saisie : Fenêtre.findChildren<QComboBox*>()) Saisie->setEditText("COM9:");
      Cas.Faire(Fenêtre);
    });
    EXPECT_EQ(Cas.Montrer(), Cas.AcceptéOuSauvé);
  }
  EXPECT_EQ(Ligne.Port, "COM2:");
}

TEST_F(FenêtresDeQt, ALongTextStaysOnTheScreenAndTheStationsEndClosesAllThatStandsOpen) {
  Services.SurTransmission = [](std::int32_t, std::vector<Octets>&) { return "Aucune réponse du RG80."; };
  Dès(TitreTransfert, Clic("&Transférer"));
  Dès(TitreTransmission, [&](QWidget&) { LesVraies.Boîte(std::string(5000, 'W'), "Longue", BoutonsBoîte::Ok); });
  Dès("Longue", [&](QWidget& Boîte) {
    EXPECT_EQ(Boîte.size().boundedTo(Boîte.screen()->availableSize()), Boîte.size());
    EXPECT_FALSE(DemanderPort());
  });
  Dès(TitrePort, [&](QWidget&) {
    État.Abandon = true;
    LesVraies.Finir();
  });
  Transférer();
  EXPECT_EQ(LesVraies.Boîte("trop tard", "t", BoutonsBoîte::RecommencerAnnuler), RéponseBoîte::Annuler);
}

TEST_F(FenêtresDeQt, TheTransferIsAFixedDialogThatTakesNothingMeanwhileAndRetriesFromTheFailedSet) {
  Dès(TitreTransfert, [&](QWidget& Vue) {
    EXPECT_EQ(Vue.minimumSize(), Vue.maximumSize());
    EXPECT_EQ(Vue.toolTip(), Vue.windowTitle()) << "which a frame cuts off";
    EXPECT_LE(Le<QLabel>(Vue).sizeHint().width(), Le<QLabel>(Vue).width());
    const auto Compter = [Cases = Vue.findChildren<QCheckBox*>()](auto Q) { return std::ranges::count_if(Cases, Q); };
    const auto EnGras = [](const QCheckBox* Case) { return Case->font().bold(); };
    EXPECT_EQ(Compter(&QCheckBox::isChecked), 5);
    Services.SurTransmission = [&](std::int32_t Numéro, std::vector<Octets>&) -> std::string {
      Trace += std::to_string(Numéro);
      EXPECT_NE(QApplication::overrideCursor(), nullptr);
      EXPECT_FALSE(Vue.isEnabled());
      EXPECT_EQ(Compter(EnGras), 1);
      Touche(Qt::Key_Escape)(Vue);
      Cadre(Vue);
      Réduire(Vue);
      Vider();
      EXPECT_TRUE(EstLà(Vue));
      EXPECT_EQ(Le<QLabel>(Vue).text(), Vue.windowTitle()) << "a title bar may cut it off";
      return Trace == "41" ? "Le RG80 n'est pas prêt (NACK)." : "";
    };
    // A double click counts once: the window is closed to the second.
    Clic("&Transférer")(Vue);
    Clic("&Transférer")(Vue);
    Dès(TitreTransmission, [](QWidget& Boîte) {
      EXPECT_EQ(QApplication::overrideCursor(), nullptr) << "a box shows the normal pointer";
      EXPECT_EQ(Le<QTextEdit>(Boîte).toPlainText(), "Coopérateurs\nLe RG80 n'est pas prêt (NACK).");
      Clic("&Recommencer")(Boîte);
    });
    Vider();
    EXPECT_EQ(Trace, "411526");
    EXPECT_EQ(QApplication::overrideCursor(), nullptr);
    EXPECT_EQ(Compter(&QCheckBox::isChecked) + Compter(EnGras), 0);
    EXPECT_TRUE(Le<QCheckBox>(Vue).text().startsWith("Appelations – ")) << "and when it went";
    EXPECT_EQ(Le<QLabel>(Vue).text(), "Le RG80 doit être en attente de fichiers (F6).");
    EXPECT_EQ(Le<QCheckBox>(Vue).font().families().first(), "MS Sans Serif");
    for (const auto LaTouche : {Qt::Key_Tab, Qt::Key_Return}) QTest::keyClick(Vue.focusWidget(), LaTouche);
  });
  Transférer();
}

TEST_F(FenêtresDeQt, AFilesTitlesCostNothingAndTheLastOneStays) {
  const DessinContrôle Dessin[] = {{"Label1", GenreContrôle::Libellé, "F6", {120, 120, 3975, 255}, 0}};
  const auto Vue = LesVraies.CréerVueChargntDonnées(Transfert, TitreTransfert, {0, 0, 4260, 2115}, Dessin);
  Dès(TitreTransfert, [&](QWidget& Fenêtre) {
    Vue->Activer(false);
    const QSignalSpy Titres(&Fenêtre, &QWidget::windowTitleChanged);
    QElapsedTimer Durée;
    Durée.start();
    for (int Rang = 0; Rang < 32015; ++Rang) {
      Vue->FixerTitre("Badge " + std::to_string(Rang));
      Vue->Repeindre();
    }
    EXPECT_LE(Titres.count(), Durée.elapsed() / 100 + 2) << "ten in a second can be read";
    Vider();
    EXPECT_EQ(Fenêtre.windowTitle(), "Badge 32014");
    Vue->Cacher();
  });
  Vue->MontrerModale();
}

TEST_F(FenêtresDeQt, ThePortIsTriedAndWhatWasChosenIsKept) {
  Dès(TitrePort, [&](QWidget& Dialogue) {
    auto& Saisie = Le<QComboBox>(Dialogue);
    EXPECT_EQ(Saisie.currentText() + Saisie.itemText(0), "COM2:COM1:  –  ttyS0");
    Saisie.setCurrentIndex(0);
    Q_EMIT Saisie.activated(0);
    for (const std::string Raison : {"Le port est pris.", "levée", ""}) {
      Essayer = [&](const RéglagesPort& Voulus) {
        EXPECT_EQ(Voulus.Port + Voulus.Bauds + Voulus.TailleMots, "COM1:96008");
        EXPECT_FALSE(Dialogue.isEnabled());
        return Raison == "levée" ? throw ErreurExécution(Raison) : Raison;
      };
      Clic("&Essayer")(Dialogue);
      Vider();
      Le<QLabel>(Dialogue, Raison.empty() ? "Essai réussi : le RG80 répond." : "Essai manqué. " + Raison);
      if (Raison.empty()) continue;
      Clic("E&nregistrer")(Dialogue);
      Vider();
      Le<QPushButton>(Dialogue, "E&nregistrer quand même");
      Saisie.setEditText("autre");
      Saisie.setEditText("COM1:");
    }
    auto& Vitesse = *Dialogue.findChildren<QComboBox*>()[1];
    Vitesse.setEditText("abc");
    EXPECT_FALSE(Le<QPushButton>(Dialogue, "E&nregistrer").isEnabled());
    Vitesse.setEditText("9600");
    Saisie.setEditText("  ");
    for (const char* Bouton : {"E&nregistrer", "&Essayer"}) EXPECT_FALSE(Le<QPushButton>(Dialogue, Bouton).isEnabled());
    Saisie.setEditText(" /dev/ttyUSB0 ");
    Saisie.setFocus();
    QTest::keyClick(Saisie.lineEdit(), Qt::Key_Return);
  });
  EXPECT_TRUE(DemanderPort());
  EXPECT_EQ(Ligne, (RéglagesPort{"/dev/ttyUSB0", "9600", "N", "1", "8"}));
}

TEST_F(FenêtresDeQt, EachWayIntoThePlugInAndTheEndRunInThePump) {
  Tarvel::Aperçu Aperçu;
  Aperçu.NoterRetrait("RG80 Ombrey", "Erreur de check-sum");
  FenêtrePrincipaleQt Fenêtre(LesVraies.Contexte(), {"cave.db"}, LesRéglages, Aperçu);
  ÉcrireProgramme("echo $1");
  Fenêtre.Présenter([] { return "version"; }, Travaux);
  Fenêtre.Raccorder({[&] { Trace += 'b'; }, [&] { Trace += 'm'; }, [&] { Trace += 'c'; }, [&] { Trace += 'q'; }});
  Fenêtre.OffrirBouton(QIcon(), "Comm. au RG80");
  Fenêtre.OffrirMenu("&Charger");
  Fenêtre.show();
  QTest::mouseClick(&Le<QToolButton>(Fenêtre), Qt::LeftButton);
  for (const QAction* Menu : Fenêtre.menuBar()->actions()) {
    for (QAction* Entrée : Menu->menu()->actions()) Entrée->trigger();
  }
  Cadre(Fenêtre);
  EXPECT_EQ(Trace, "") << "nothing runs inside Qt's dispatch";
  for (int Fois = 0; Fois < 200 && Trace.size() < 6; ++Fois) Laisser(50ms);
  EXPECT_EQ(Lire("À propos"), "version");
  QStringList Textes;
  for (int Reste = 1000; Reste > 0 && !Textes.contains("--diagnostic"); --Reste, Laisser(10ms))
    for (const auto* Zone : Fenêtre.findChildren<QPlainTextEdit*>()) Textes << Zone->toPlainText();
  EXPECT_TRUE(Textes.contains("--diagnostic")) << "the diagnosis isn't filled in";
  EXPECT_TRUE(Fenêtre.isVisible());
  EXPECT_EQ(Trace, "bcqbmq");
  for (auto* Liste : Fenêtre.findChildren<QTableView*>()) Q_EMIT Liste->activated(Liste->model()->index(0, 0));
  EXPECT_NE(Lire("Messages que personne n'a lus").find("Erreur de check-sum"), std::string::npos);
  EXPECT_NE(Lire("Guide de l'opérateur").find("RG80"), std::string::npos);
  for (const auto* Zone : QApplication::allWidgets())
    if (const auto* const Guide = qobject_cast<const QTextBrowser*>(Zone)) {
      EXPECT_EQ(Guide->horizontalScrollBar()->maximum(), 0);
    }
}

TEST_F(FenêtresDeQt, TheButtonsPictureStandsOnTheClipboardAndInTheToolbar) {
  Image Grande{24, std::vector<std::uint32_t>(576, 0xFF405060)};
  Grande.Pixels[24] = 0xFFABCDEF;  // second row, first column
  LesVraies.PoserImages({{16, std::vector<std::uint32_t>(256, 0xFF102030)}, Grande});
  EXPECT_EQ(QApplication::clipboard()->image().pixel(0, 1), 0xFFABCDEF);
  EXPECT_EQ(LesVraies.DernièreImage().pixmap(QSize(16, 16), 1.0).toImage().pixel(3, 3), 0xFF102030);
  Grande.Pixels.pop_back();
  EXPECT_THROW(LesVraies.PoserImages({Grande}), ErreurExécution);
}

}  // namespace Ombrey::Essais
