// The station's main window.
#include "host/windows/qt_host_window.h"

#include <QCloseEvent>
#include <QMenuBar>
#include <QStatusBar>
#include <QTime>
#include <QToolBar>
#include <utility>

#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr QSize TailleAuDépart(640, 380);
constexpr int CôtéIcône = 24;
constexpr int LignesGardées = 1000;
}  // namespace

FenêtrePrincipaleQt::FenêtrePrincipaleQt(const ContexteQt& Contexte, const std::string& Sujet)
    : Contexte_(Contexte),
      Barre_(addToolBar(QStringLiteral("Greffons"))),
      Journal_(new QPlainTextEdit(this)),
      État_(new QLabel(this)) {
  setWindowTitle(QStringLiteral("Tarvel – réception – ") + Texte(Sujet));
  setContextMenuPolicy(Qt::NoContextMenu);
  setAttribute(Qt::WA_QuitOnClose, false);
  Barre_->setMovable(false);
  Barre_->setIconSize({CôtéIcône, CôtéIcône});
  Barre_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  Journal_->setReadOnly(true);
  Journal_->setMaximumBlockCount(LignesGardées);
  Journal_->setContextMenuPolicy(Qt::NoContextMenu);
  Journal_->setTabChangesFocus(true);
  Journal_->setPlaceholderText(QStringLiteral("Ce que le greffon signale s'inscrit ici."));
  setCentralWidget(Journal_);
  État_->setTextFormat(Qt::PlainText);
  État_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);  // a long text must not widen the window
  statusBar()->addWidget(État_, 1);
  resize(TailleAuDépart);
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
}

void FenêtrePrincipaleQt::OffrirBouton(const QIcon& Icône, const std::string& Infobulle) {
  QAction* const Bouton = Barre_->addAction(Icône, Texte(Infobulle));
  Bouton->setShortcut(Qt::Key_F5);
  MenuGreffons().addAction(Bouton);
  connect(Bouton, &QAction::triggered, this, Différé(Gestes_.Bouton));
}

void FenêtrePrincipaleQt::OffrirMenu(const std::string& Entrée) {
  connect(MenuGreffons().addAction(Texte(Entrée)), &QAction::triggered, this, Différé(Gestes_.Menu));
}

QMenu& FenêtrePrincipaleQt::MenuGreffons() {
  if (Greffons_ == nullptr) Greffons_ = menuBar()->addMenu(QStringLiteral("&Greffons"));
  return *Greffons_;
}

void FenêtrePrincipaleQt::Dire(const std::string& Message) {
  const QString Ligne = SurUneLigne(Message);
  État_->setText(Ligne);
  État_->setToolTip(Texte(Message).toHtmlEscaped());
  Journal_->appendPlainText(QTime::currentTime().toString(QStringLiteral("HH:mm:ss")) + QStringLiteral(" : ") + Ligne);
}

void FenêtrePrincipaleQt::closeEvent(QCloseEvent* Événement) {
  Événement->ignore();
  Différé(Gestes_.Quitter)();
}

}  // namespace Ombrey
