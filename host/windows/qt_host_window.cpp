// The station's main window.
#include "host/windows/qt_host_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDateTime>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QPushButton>
#include <QStatusBar>
#include <QToolBar>
#include <QUrl>
#include <QVBoxLayout>
#include <chrono>
#include <cmath>
#include <utility>

#include "base/failures.h"
#include "base/regional_forms.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

namespace {
using namespace std::chrono_literals;

constexpr QSize TailleAuDépart(960, 540);
constexpr int CôtéIcône = 24;
constexpr int LignesGardées = 1000;
constexpr auto Pas = 1000ms;
/// Steps between two readings of the database: another station's loads, and midnight.
constexpr int ToursParLecture = 30;
constexpr qint64 RappelTransfert = 300;  ///< seconds
constexpr const char* Section = "FenêtrePrincipale";
constexpr const char* Application = "Tarvel";
constexpr const char* CléPlace = "Place";
const std::string SignalReçu = "ChargementAjouté:";
constexpr const char* TitreErreurPort = "Erreur du port";

/// A state's own shape and colour, so that neither is needed to read the other.
struct Enseigne {
  Tarvel::Liaison État;
  const char* Signe;
  const char* Couleur;
};
constexpr Enseigne Enseignes[] = {
    {Tarvel::Liaison::Répond, "●", "#1b7f3b"},      {Tarvel::Liaison::Muette, "▲", "#b45f00"},
    {Tarvel::Liaison::PortEnPanne, "■", "#b00020"}, {Tarvel::Liaison::SansPort, "■", "#b00020"},
    {Tarvel::Liaison::Inconnue, "○", "#606060"},
};
constexpr const char* SigneSuspendu = "❚❚";

DateHeure Maintenant() {
  const QDateTime Ici = QDateTime::currentDateTime();
  return {Ici.date().year(), Ici.date().month(),  Ici.date().day(),
          Ici.time().hour(), Ici.time().minute(), Ici.time().second()};
}

std::string HeureDe(const DateHeure& Moment) { return TexteHeure(Moment).substr(0, 5); }

/// The operator's guide, where the program is installed or was built.
QString Guide() {
  const QString Ici = QCoreApplication::applicationDirPath();
  for (const char* Chemin : {"/../share/doc/ombrey/docs/guide-operateur.md", "/../../../docs/guide-operateur.md"}) {
    const QFileInfo Fichier(Ici + QString::fromUtf8(Chemin));
    if (Fichier.exists()) return Fichier.canonicalFilePath();
  }
  return {};
}

constexpr QSize TailleGuide(760, 720);
}  // namespace

FenêtrePrincipaleQt::FenêtrePrincipaleQt(const ContexteQt& Contexte, const std::string& Sujet, IRéglages& Réglages,
                                         const Régional& Formes)
    : Contexte_(Contexte),
      Réglages_(Réglages),
      Formes_(Formes),
      Barre_(addToolBar(QStringLiteral("Greffons"))),
      État_(new QLabel(this)) {
  setWindowTitle(QStringLiteral("Tarvel – réception – ") + Texte(Sujet));
  setContextMenuPolicy(Qt::NoContextMenu);
  setAttribute(Qt::WA_QuitOnClose, false);
  Barre_->setMovable(false);
  Barre_->setIconSize({CôtéIcône, CôtéIcône});
  Barre_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  auto* const Centre = new QWidget(this);
  auto* const Plan = new QVBoxLayout(Centre);
  Plan->setContentsMargins(0, 0, 0, 0);
  setCentralWidget(Centre);
  CréerBandeau();
  CréerPages();
  ÉtatBase_->setText(QStringLiteral("Base : ") + Texte(Sujet));
  État_->setTextFormat(Qt::PlainText);
  État_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long text must not widen the window
  statusBar()->addWidget(État_, 1);
  ReprendrePlace();
  connect(&Montre_, &QTimer::timeout, this, [this] {
    // Through the loop: the base that lets the window be painted while it waits can't be asked meanwhile.
    if (++Tours_ % ToursParLecture == 0) Différé([this] { Actualiser(); })();
    ActualiserBandeau();
  });
  Montre_.start(Pas);
}

FenêtrePrincipaleQt::~FenêtrePrincipaleQt() { SauverPlace(); }

void FenêtrePrincipaleQt::CréerBandeau() {
  auto* const Bandeau = new QWidget(this);
  auto* const Rangée = new QHBoxLayout(Bandeau);
  for (QLabel** Un : {&Signe_, &TexteLiaison_, &Dernier_, &ÉtatBase_}) {
    *Un = new QLabel(Bandeau);
    (*Un)->setTextFormat(Qt::PlainText);
    Rangée->addWidget(*Un, Un == &TexteLiaison_ ? 1 : 0);
  }
  // A long reason must not widen the window; it is whole in the tool tip.
  TexteLiaison_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  QFont Police = TexteLiaison_->font();
  Police.setBold(true);
  TexteLiaison_->setFont(Police);
  Dernier_->setText(QStringLiteral("Aucun chargement aujourd'hui"));
  Rangée->setSpacing(fontMetrics().averageCharWidth() * 2);
  centralWidget()->layout()->addWidget(Bandeau);
  ActualiserBandeau();
}

void FenêtrePrincipaleQt::CréerPages() {
  Pages_ = new QTabWidget(this);
  Pages_->setDocumentMode(true);
  Journée_ = new PageJournéeQt(this, Formes_);
  Journée_->SurSites = [this] { Actualiser(); };
  Pages_->addTab(Journée_, QStringLiteral("La &journée"));
  GrilleRefus_ =
      AjouterListe(QStringLiteral("&Refusés"), QStringLiteral("Ce que la station n'a pas pu prendre, et que faire. "
                                                              "Une ligne s'en va quand le chargement est reçu."));
  GrilleArchive_ =
      AjouterListe(QStringLiteral("&Archive"), QStringLiteral("Chargements dont un autre a repris le numéro."));
  Journal_ = new QPlainTextEdit(this);
  Journal_->setReadOnly(true);
  Journal_->setMaximumBlockCount(LignesGardées);
  Journal_->setContextMenuPolicy(Qt::NoContextMenu);
  Journal_->setTabChangesFocus(true);
  Journal_->setPlaceholderText(QStringLiteral("Ce que le greffon signale s'inscrit ici."));
  Journal_->setAccessibleName(QStringLiteral("Journal"));
  Pages_->addTab(Journal_, QStringLiteral("&Ligne"));
  auto* const Page = new QWidget(this);
  auto* const Plan = new QVBoxLayout(Page);
  GrilleNonLues_ = new GrilleChargements(Page);
  GrilleNonLues_->setAccessibleName(QStringLiteral("Messages que personne n'a lus"));
  auto* const Lu = new QPushButton(QStringLiteral("&Tout est lu"), Page);
  connect(Lu, &QPushButton::clicked, this, [this] {
    NonLues_.Vider();
    ActualiserFaits();
  });
  Plan->addWidget(GrilleNonLues_);
  Plan->addWidget(Lu, 0, Qt::AlignRight);
  Pages_->addTab(Page, QString());
  Pages_->setTabToolTip(Pages_->indexOf(Page), QStringLiteral("Messages auxquels personne n'a répondu."));
  centralWidget()->layout()->addWidget(Pages_);
  ActualiserFaits();
}

GrilleChargements* FenêtrePrincipaleQt::AjouterListe(const QString& Titre, const QString& Infobulle) {
  auto* const Grille = new GrilleChargements(this);
  Grille->setAccessibleName(QString(Titre).remove(QLatin1Char('&')));
  Pages_->setTabToolTip(Pages_->addTab(Grille, Titre), Infobulle);
  return Grille;
}

void FenêtrePrincipaleQt::ReprendrePlace() {
  const QRect Libre = screen()->availableGeometry();
  resize(TailleAuDépart.boundedTo(Libre.size()));
  const std::string Gardée = Réglages_.Lire(Application, Section, CléPlace, "");
  restoreGeometry(QByteArray::fromBase64(QByteArray::fromStdString(Gardée)));
}

/// Nobody is left to be told of a failure.
void FenêtrePrincipaleQt::SauverPlace() {
  ErreurEnAttente Ignorée;
  Ignorer(Ignorée,
          [this] { Réglages_.Ecrire(Application, Section, CléPlace, saveGeometry().toBase64().toStdString()); });
}

std::function<void()> FenêtrePrincipaleQt::Différé(std::function<void()> Geste) const {
  return [this, Geste = std::move(Geste)] {
    if (Geste) Contexte_.Boucle.Poser(Geste);
  };
}

void FenêtrePrincipaleQt::Raccorder(Gestes LesGestes) {
  Gestes_ = std::move(LesGestes);
  QMenu* const Station = menuBar()->addMenu(QStringLiteral("&Station"));
  connect(Station->addAction(QStringLiteral("&Configurer le port…")), &QAction::triggered, this,
          Différé(Gestes_.Configurer));
  Station->addSeparator();
  QAction* const Quitter = Station->addAction(QStringLiteral("&Quitter"));
  Quitter->setShortcut(QKeySequence(QStringLiteral("Ctrl+Q")));
  connect(Quitter, &QAction::triggered, this, Différé(Gestes_.Quitter));
  MenuGreffons().menuAction()->setVisible(false);  // until there is one
  CréerAide();
}

void FenêtrePrincipaleQt::CréerAide() {
  QMenu* const Aide = menuBar()->addMenu(QStringLiteral("&Aide"));
  QAction* const Ouvrir = Aide->addAction(QStringLiteral("&Guide de l'opérateur"));
  Ouvrir->setShortcut(Qt::Key_F1);
  connect(Ouvrir, &QAction::triggered, this, Différé([this] { MontrerGuide(); }));
  connect(Aide->addAction(QStringLiteral("À &propos…")), &QAction::triggered, this,
          Différé([this] { DemanderParBoîte(Contexte_, ÀPropos_, "À propos", BoutonsBoîte::Ok); }));
}

/// Beside the station, which goes on.
void FenêtrePrincipaleQt::MontrerGuide() {
  const QString Fichier = Guide();
  if (Fichier.isEmpty()) return Dire("Le guide de l'opérateur n'est pas installé (paquet ombrey-doc).");
  if (!Guide_) {
    Guide_ = std::make_unique<QTextBrowser>();
    Guide_->setAttribute(Qt::WA_QuitOnClose, false);
    Guide_->setWindowTitle(QStringLiteral("Guide de l'opérateur"));
    Guide_->setSource(QUrl::fromLocalFile(Fichier), QTextDocument::MarkdownResource);
    Guide_->resize(TailleGuide.boundedTo(screen()->availableSize()));
  }
  Guide_->show();
  Guide_->raise();
  Guide_->activateWindow();
}

void FenêtrePrincipaleQt::OffrirBouton(const QIcon& Icône, const std::string& Infobulle) {
  QAction* const Bouton = Barre_->addAction(Icône, Texte(Infobulle));
  Bouton->setShortcut(Qt::Key_F5);
  Bouton->setToolTip(Texte(Infobulle) + QStringLiteral(" (F5) : essaie la liaison et montre les chargements"));
  MenuGreffons().addAction(Bouton);
  connect(Bouton, &QAction::triggered, this, Différé(Gestes_.Bouton));
}

void FenêtrePrincipaleQt::OffrirMenu(const std::string& Entrée) {
  connect(MenuGreffons().addAction(Texte(Entrée)), &QAction::triggered, this, Différé([this] { Transférer(); }));
}

/// The plug-in collects nothing while its transfer window is open.
void FenêtrePrincipaleQt::Transférer() {
  SuspendueDepuis_ = QDateTime::currentDateTime();
  Rappelée_ = false;
  ActualiserBandeau();
  if (Gestes_.Menu) Gestes_.Menu();
  SuspendueDepuis_.reset();
  ActualiserBandeau();
}

QMenu& FenêtrePrincipaleQt::MenuGreffons() {
  if (Greffons_ == nullptr) Greffons_ = menuBar()->addMenu(QStringLiteral("&Greffons"));
  Greffons_->menuAction()->setVisible(true);
  return *Greffons_;
}

void FenêtrePrincipaleQt::Suivre(std::shared_ptr<IBaseDeD> Base) {
  Base_ = std::move(Base);
  Actualiser();
}

void FenêtrePrincipaleQt::Dire(const std::string& Message) {
  if (Message.starts_with(SignalReçu)) {
    const std::string Numéro = Message.substr(SignalReçu.size());
    // What stood at the head of the terminal's queue was let in, or another load wouldn't have come.
    for (const std::string& Sujet : {Numéro, std::string(Tarvel::SansNuméro)}) Refus_.Retirer(Sujet);
    Actualiser();
    ActualiserFaits();
    return Dire(DireReçu(Numéro));
  }
  const QString Ligne = SurUneLigne(Message);
  État_->setText(Ligne);
  État_->setToolTip(Texte(Message).toHtmlEscaped());
  Journal_->appendPlainText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" : ") + Ligne);
}

std::string FenêtrePrincipaleQt::DireReçu(const std::string& Numéro) const {
  const std::string Dit = "Chargement n° " + Numéro + " reçu";
  const auto Masse = Journée_->MasseDe(Numéro);
  return Masse ? Dit + ", " + std::to_string(std::llround(*Masse)) + " kg" : Dit;
}

void FenêtrePrincipaleQt::NoterLigne(const std::string& Ligne) {
  Liaison_.Noter(QDateTime::currentSecsSinceEpoch(), Ligne);
  NoterRefus(Ligne);
  Journal_->appendPlainText(SurUneLigne(Ligne));
  ActualiserBandeau();
}

void FenêtrePrincipaleQt::NoterBoîte(const std::string& Titre, const std::string& Message) {
  if (Titre == TitreErreurPort) Liaison_.NoterPort(QDateTime::currentSecsSinceEpoch(), Message);
  NoterRefus(Message);
  ActualiserBandeau();
}

void FenêtrePrincipaleQt::NoterRetrait(const std::string& Titre, const std::string& Message) {
  NonLues_.Noter(Maintenant(), Titre, Message);
  ActualiserFaits();
}

void FenêtrePrincipaleQt::NoterRefus(const std::string& Texte) {
  const Tarvel::Refus Lu = Tarvel::LireRefus(Texte);
  if (Lu.Sujet.empty()) return;
  Refus_.Noter(Maintenant(), Lu.Sujet, Lu.Motif, Lu.ÀFaire);
  ActualiserFaits();
}

void FenêtrePrincipaleQt::ActualiserFaits() {
  Tarvel::Rangées Refusés{{"Chargement", "Motif", "Fois", "Depuis", "Dernière fois", "Que faire"}};
  for (const Tarvel::FaitRépété& Un : Refus_.Tous())
    Refusés.push_back(
        {Un.Sujet, Un.Texte, std::to_string(Un.Fois), HeureDe(Un.Premier), HeureDe(Un.Dernier), Un.ÀFaire});
  Tarvel::Rangées Lues{{"Titre", "Message", "Fois", "Première fois", "Dernière fois"}};
  for (const Tarvel::FaitRépété& Un : NonLues_.Tous())
    Lues.push_back({Un.Sujet, SurUneLigne(Un.Texte).toStdString(), std::to_string(Un.Fois), HeureDe(Un.Premier),
                    HeureDe(Un.Dernier)});
  const auto Titrer = [this](QWidget* Page, const QString& Titre, std::size_t Nombre) {
    Pages_->setTabText(Pages_->indexOf(Page), Nombre == 0 ? Titre : QStringLiteral("%1 (%2)").arg(Titre).arg(Nombre));
  };
  Titrer(GrilleRefus_, QStringLiteral("&Refusés"), Refus_.Tous().size());
  Titrer(GrilleNonLues_->parentWidget(), QStringLiteral("À lir&e"), NonLues_.Tous().size());
  Remplir(*GrilleRefus_, std::move(Refusés));
  Remplir(*GrilleNonLues_, std::move(Lues));
}

/// A database that can't be read leaves what is shown as it was, and says why.
void FenêtrePrincipaleQt::Actualiser() {
  if (!Base_) return;
  ErreurEnAttente Erreur;
  const bool Lue = Ignorer(Erreur, [this] {
    const auto Base = Exiger(Base_->BaseDAO());
    Tarvel::Journée Jour =
        Tarvel::LireJournée(*Base, Journée_->TousLesSites() ? "" : Exiger(Base_->KVSynchro())->CodeSiteCourant());
    if (!Jour.Chargements.empty()) {
      const Tarvel::ChargementDuJour& Un = Jour.Chargements.front();
      Dernier_->setText(QStringLiteral("Dernier : n° %1, %2 kg, %3")
                            .arg(Texte(Un.Numéro))
                            .arg(Un.Masse, 0, 'f', 0)
                            .arg(Texte(Un.Heure)));
    }
    Journée_->Montrer(std::move(Jour));
    Remplir(*GrilleArchive_, Tarvel::TableauArchive(*Base, Formes_));
  });
  ÉtatBase_->setToolTip(Lue ? QString() : Texte(Erreur.Texte()).toHtmlEscaped());
  ÉtatBase_->setStyleSheet(Lue ? QString() : QStringLiteral("color: #b00020"));
  if (!Lue) État_->setText(QStringLiteral("La base ne répond pas : ") + SurUneLigne(Erreur.Texte()));
}

void FenêtrePrincipaleQt::ActualiserBandeau() {
  QString Phrase = Texte(Liaison_.Texte(QDateTime::currentSecsSinceEpoch()));
  QString Signe;
  QString Couleur;
  for (const Enseigne& Une : Enseignes) {
    if (Une.État != Liaison_.État()) continue;
    Signe = QString::fromUtf8(Une.Signe);
    Couleur = QString::fromUtf8(Une.Couleur);
  }
  if (SuspendueDepuis_) {
    Signe = QString::fromUtf8(SigneSuspendu);
    Phrase = QStringLiteral("Collecte suspendue depuis %1 : la fenêtre de transfert est ouverte")
                 .arg(SuspendueDepuis_->toString(QStringLiteral("HH:mm")));
    if (!Rappelée_ && SuspendueDepuis_->secsTo(QDateTime::currentDateTime()) >= RappelTransfert) {
      Rappelée_ = true;
      QApplication::beep();
      QApplication::alert(this);
    }
  }
  if (TexteLiaison_->text() == Phrase && Signe_->text() == Signe) return;
  Signe_->setText(Signe);
  Signe_->setStyleSheet(QStringLiteral("color: ") + Couleur);
  TexteLiaison_->setText(Phrase);
  TexteLiaison_->setToolTip(Phrase.toHtmlEscaped());
  Signe_->setAccessibleName(Phrase);
}

void FenêtrePrincipaleQt::closeEvent(QCloseEvent* Événement) {
  Événement->ignore();
  Différé(Gestes_.Quitter)();
}

}  // namespace Ombrey
