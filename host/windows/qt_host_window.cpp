// The station's main window.
#include "host/windows/qt_host_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QMenuBar>
#include <QScreen>
#include <QStatusBar>
#include <QToolBar>
#include <QVBoxLayout>
#include <chrono>
#include <cmath>
#include <sstream>
#include <utility>

#include "base/failures.h"
#include "base/text_helpers.h"
#include "base/visible_text.h"
#include "contracts/phrases.h"
#include "host/day_view.h"
#include "host/station_register.h"
#include "host/windows/qt_line_page.h"
#include "host/windows/qt_papers.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {
namespace {
using namespace std::chrono_literals;
/// In letters and lines: as much at every resolution.
constexpr int ColonnesAuDépart = 225;
constexpr int LignesAuDépart = 42;
constexpr int CôtéIcône = 24;
constexpr int LignesGardées = 1000;
/// Seconds between two readings of the database: another station's loads, and midnight.
constexpr int ToursParLecture = 30;
constexpr const char* Section = "FenêtrePrincipale";
constexpr const char* Application = "Tarvel";
constexpr const char* CléPlace = "Place";
const std::string TitreRefusés = "&Refusés";
const std::string TitreNonLues = AvecTouche("À lire", 'i');

/// A page that is one list alone, laid out like those of several parts.
QWidget* AvecMarge(QWidget* Liste) {
  auto* const Page = new QWidget;
  (new QVBoxLayout(Page))->addWidget(Liste);
  return Page;
}

}  // namespace

FenêtrePrincipaleQt::FenêtrePrincipaleQt(const ContexteQt& Contexte, const Sujet& LeSien, IRéglages& Réglages,
                                         Tarvel::Aperçu& Aperçu, const Régional& Formes)
    : Contexte_(Contexte),
      Sujet_(LeSien),
      Réglages_(Réglages),
      Aperçu_(Aperçu),
      Formes_(Formes),
      Fermeture_(*this, Différé([this] {
        Dire("Fermez d'abord la fenêtre qui est devant : la station ne se ferme pas derrière elle.");
        VenirDevant();
      })),
      Barre_(addToolBar(QStringLiteral("Greffons"))),
      Bandeau_(new BandeauQt(this)),
      Pages_(new QTabWidget(this)),
      Journée_(new PageJournéeQt(this, Contexte, Formes)),
      Refusés_(new PageRefusésQt(this, Contexte, Aperçu)),
      Archive_(new ListeQt(this, Contexte, QStringLiteral("Archive"))),
      Stations_(new ListeQt(this, Contexte, QStringLiteral("Stations"))),
      NonLues_(new PageNonLuesQt(this, Contexte, Aperçu)),
      Journal_(new QPlainTextEdit(this)),
      État_(new LigneÉlidée(this)) {
  setWindowTitle(QStringLiteral("Tarvel – réception – ") + Texte(Sujet_.Base));
  setContextMenuPolicy(Qt::NoContextMenu);
  setAttribute(Qt::WA_QuitOnClose, false);
  Barre_->setMovable(false);
  Barre_->setIconSize({CôtéIcône, CôtéIcône});
  Barre_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  auto* const Centre = new QWidget(this);
  auto* const Plan = new QVBoxLayout(Centre);
  Plan->setContentsMargins(0, 0, 0, 0);
  Plan->setSpacing(0);
  Plan->addWidget(Bandeau_);
  Plan->addWidget(Pages_, 1);
  setCentralWidget(Centre);
  CréerPages();
  Bandeau_->DireBase(QStringLiteral("Base : ") + Texte(Sujet_.Base), {});
  État_->setTextFormat(Qt::PlainText);
  statusBar()->addWidget(État_, 1);
  ReprendrePlace();
  SuivreLAperçu();
}

void FenêtrePrincipaleQt::SuivreLAperçu() {
  const auto Tout = [this] {
    ActualiserBandeau();
    ActualiserFaits();
  };
  Aperçu_.SurChangement(Tout);
  connect(&Montre_, &QTimer::timeout, this, [this] {
    // Through the loop: the base that lets the window be painted while it waits can't be asked meanwhile.
    if (++Tours_ % ToursParLecture == 0) Différé([this] { Actualiser(); })();
    ActualiserBandeau();
  });
  Montre_.start(1s);
  Tout();
}

FenêtrePrincipaleQt::~FenêtrePrincipaleQt() {
  Aperçu_.SurChangement({});
  SauverPlace();
}

void FenêtrePrincipaleQt::CréerPages() {
  Pages_->setDocumentMode(true);
  Journée_->SurSites = [this] { Actualiser(); };
  Ajouter(Journée_, Texte(AvecTouche("La journée", 'j')),
          QStringLiteral("Les chargements d'aujourd'hui et leurs sommes."));
  Ajouter(
      Refusés_, Texte(TitreRefusés),
      QStringLiteral("Ce que la station n'a pas pu prendre, et que faire. Une ligne s'en va quand son chargement est "
                     "reçu ; ce que le RG80 ne propose plus reste jusqu'à « Tout est lu »."));
  Ajouter(AvecMarge(Archive_), Texte(AvecTouche("Archive", 'c')),
          QStringLiteral("Les 1000 derniers chargements dont un autre a repris le numéro."));
  Archive_->IdentifierPar(3);  // numbers begin anew each season: the date is part of it
  CréerJournal();
  Ajouter(AvecMarge(Stations_), Texte(AvecTouche("Stations", 'n')),
          QStringLiteral("Les stations qui travaillent sur cette base."));
  Pages_->setTabVisible(Pages_->indexOf(Stations_->parentWidget()), false);  // until there are several
  connect(Pages_, &QTabWidget::currentChanged, this, Différé([this] { ActualiserPage(); }));
  Ajouter(NonLues_, Texte(TitreNonLues), QStringLiteral("Messages auxquels personne n'a répondu."));
}

void FenêtrePrincipaleQt::CréerJournal() {
  Journal_->setReadOnly(true);
  Journal_->setMaximumBlockCount(LignesGardées);
  Journal_->setContextMenuPolicy(Qt::NoContextMenu);
  Journal_->setTabChangesFocus(true);
  Journal_->setPlaceholderText(QStringLiteral("Ce que le greffon signale s'inscrit ici."));
  Journal_->setAccessibleName(QStringLiteral("Journal"));
  Ajouter(AvecMarge(Journal_), Texte(AvecTouche("Journal", 'u')),
          QStringLiteral("Ce que le greffon a dit, le plus récent en bas."));
}

void FenêtrePrincipaleQt::SuivreLiaison(const JournalLiaison& Journal) {
  Ajouter(new PageLigneQt(this, Contexte_, Journal), QStringLiteral("&Ligne"),
          QStringLiteral("Ce qui passe sur la ligne, le plus récent en bas."),
          Pages_->indexOf(Journal_->parentWidget()));
}

void FenêtrePrincipaleQt::Ajouter(QWidget* Page, const QString& Titre, const QString& Infobulle, int Place) {
  Pages_->setTabToolTip(Pages_->insertTab(Place, Page, Titre), Infobulle);
}

void FenêtrePrincipaleQt::ReprendrePlace() {
  const QSize Voulue(fontMetrics().averageCharWidth() * ColonnesAuDépart, fontMetrics().lineSpacing() * LignesAuDépart);
  // A frame and the desktop's panel want room as well.
  resize(Voulue.boundedTo(screen()->availableSize() * 9 / 10));
  Place_ = QRect(pos(), size());
  std::istringstream Gardée(Réglages_.Lire(Application, Section, CléPlace, ""));
  int X = 0, Y = 0, Largeur = 0, Hauteur = 0, Agrandie = 0;
  if (Gardée >> X >> Y >> Largeur >> Hauteur >> Agrandie) Place_ = {X, Y, Largeur, Hauteur};
  PlacerSurÉcran(*this, Place_);
  if (Agrandie != 0) setWindowState(Qt::WindowMaximized);
}

/// The place of a screen that is missing today is kept, unless the operator gave another one. Nobody is left to be told
/// of a failure.
void FenêtrePrincipaleQt::SauverPlace() {
  if (!isMaximized()) Place_ = PlaceVoulue(*this);
  std::ostringstream Gardée;
  for (const int Mesure : {Place_.x(), Place_.y(), Place_.width(), Place_.height(), isMaximized() ? 1 : 0})
    Gardée << Mesure << ' ';
  Ignorer([&] { Réglages_.Ecrire(Application, Section, CléPlace, Gardée.str()); });
}

std::function<void()> FenêtrePrincipaleQt::Différé(std::function<void()> Geste) const {
  return [this, Geste = std::move(Geste)] {
    if (Geste) Contexte_.Boucle.Poser(Geste);
  };
}

void FenêtrePrincipaleQt::Présenter(std::function<std::string()> ÀPropos, Tarvel::TravauxÀCôté& Travaux) {
  ÀPropos_ = std::move(ÀPropos);
  Travaux_ = &Travaux;
}

void FenêtrePrincipaleQt::SePrésenter() {
  Dire("Cette station est déjà ouverte : un second démarrage la ramène devant.");
  setWindowState(windowState() & ~Qt::WindowMinimized);
  raise();
  VenirDevant();
}

/// The window itself, or what holds it up.
void FenêtrePrincipaleQt::VenirDevant() {
  QWidget* const Modale = QApplication::activeModalWidget();
  QWidget* const Devant = Modale != nullptr ? Modale : this;
  Devant->raise();
  Devant->activateWindow();
  Appeler(*Devant);
}

void FenêtrePrincipaleQt::Suivre(std::shared_ptr<IBaseDeD> Base) {
  Base_ = std::move(Base);
  Actualiser();
}

void FenêtrePrincipaleQt::Dire(const std::string& Message) {
  // The plug-in's list is read in this turn of the loop: the day in another.
  if (Message.starts_with(Phrase::ChargementAjouté))
    return Différé([this, Numéro = Message.substr(std::string_view(Phrase::ChargementAjouté).size())] {
      Actualiser();
      Dire(DireReçu(Numéro));
    })();
  const QString Ligne = Texte(SurUneLigne(Message));
  État_->Dire(Ligne);
  Journal_->appendPlainText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" : ") + Ligne);
}

std::string FenêtrePrincipaleQt::DireReçu(const std::string& Numéro) const {
  const std::string Dit = "Chargement n° " + Numéro + " reçu";
  const auto Masse = Journée_->MasseDe(Site_, Numéro);
  return Masse ? Dit + ", " + std::to_string(std::llround(*Masse)) + " kg" : Dit;
}

void FenêtrePrincipaleQt::ActualiserFaits() {
  const auto Titrer = [this](QWidget* Page, const std::string& Titre, std::size_t Nombre) {
    const std::string Combien = Nombre == 0 ? "" : " (" + std::to_string(Nombre) + ")";
    const int Rang = Pages_->indexOf(Page);
    // Qt lays all tabs out anew, even for the text that they have.
    if (const QString Dit = Texte(Titre + Combien); Pages_->tabText(Rang) != Dit) Pages_->setTabText(Rang, Dit);
  };
  Titrer(Refusés_, TitreRefusés, Aperçu_.NombreRefusés());
  Titrer(NonLues_, TitreNonLues, Aperçu_.NombreNonLus());
  if (Refusés_->isVisible()) Refusés_->Montrer();
  if (NonLues_->isVisible()) NonLues_->Montrer();
}

/// A database that can't be read leaves what is shown as it was, and says why.
void FenêtrePrincipaleQt::Actualiser() {
  if (!Base_) return;
  ErreurEnAttente Erreur;
  std::string Laquelle = Tarvel::TexteBase(Sujet_.Base, Sujet_.EstSurServeur);
  const bool Lue = Garder(Erreur, [&] {
    const auto Base = Exiger(Base_->BaseDAO());
    Laquelle = Tarvel::TexteBase(Sujet_.Base, Sujet_.EstSurServeur, Base.get());
    Lire(*Base, Exiger(Base_->KVSynchro())->CodeSiteCourant());
  });
  Bandeau_->DireBase(Texte(Laquelle), Lue ? QString() : Texte(Erreur.Texte()));
  if (!Lue) État_->Dire(Texte(SurUneLigne(Tarvel::TexteBaseMuette(Erreur.Texte()))));
}

void FenêtrePrincipaleQt::Lire(IDatabase& Base, const std::string& Site) {
  Site_ = Site;
  Tarvel::Journée Jour = Tarvel::LireJournée(Base, Journée_->TousLesSites() ? "" : Site);
  Bandeau_->DireDernier(Texte(TexteDernier(Jour, Site)));
  Journée_->Montrer(std::move(Jour));
  DireNouveauté(*this);
  Pages_->setTabVisible(Pages_->indexOf(Stations_->parentWidget()), Tarvel::SontPlusieurs(Base));
  // In a turn of the loop of its own.
  Différé([this] { ActualiserPage(); })();
}

/// The page in sight reads what it alone shows; the others when they come in sight.
void FenêtrePrincipaleQt::ActualiserPage() {
  if (!Base_) return;
  // The strip tells it from the day's reading.
  Ignorer([this] {
    IDatabase& Base = *Exiger(Base_->BaseDAO());
    if (Archive_->isVisible()) Remplir(*Archive_, Tarvel::TableauArchive(Base, Formes_));
    if (Stations_->isVisible()) Remplir(*Stations_, Tarvel::TableauStations(Base, Formes_));
  });
}

void FenêtrePrincipaleQt::ActualiserBandeau() {
  Bandeau_->DireRelevé(Texte(Aperçu_.TexteRelevé()));
  Bandeau_->MontrerLiaison(Aperçu_.État(), Texte(Aperçu_.TexteLiaison()));
  const auto Depuis = Aperçu_.SuspendueDepuis();
  if (!Depuis || Rappelée_ == Depuis || std::chrono::system_clock::now() < *Depuis + Tarvel::RappelSuspension) return;
  Rappelée_ = Depuis;
  Appeler(*this);
}

void FenêtrePrincipaleQt::closeEvent(QCloseEvent* Événement) {
  Événement->ignore();
  Différé(Gestes_.Quitter)();
}

}  // namespace Ombrey
