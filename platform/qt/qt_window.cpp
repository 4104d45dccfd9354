// What the plug-in's two windows have in common on Qt.
#include "platform/qt/qt_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPointer>
#include <QScreen>
#include <QShortcut>
#include <QStyleOptionButton>
#include <QStylePainter>
#include <QTimer>
#include <chrono>
#include <exception>
#include <memory>
#include <utility>
#include <vector>

#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// Between a button's edge and its text, pixels.
constexpr int MargeTexte = 3;
}  // namespace

FenêtreQt::FenêtreQt(Qt::WindowFlags Drapeaux) : QWidget(nullptr, Drapeaux) {
  setAttribute(Qt::WA_QuitOnClose, false);
  auto* const Échap = new QShortcut(QKeySequence(Qt::Key_Escape), this);
  connect(Échap, &QShortcut::activated, this, [this] {
    if (SurÉchap) SurÉchap();
  });
}

void FenêtreQt::closeEvent(QCloseEvent* Événement) {
  Événement->ignore();
  if (SurFermeture) SurFermeture();
}

void FenêtreQt::resizeEvent(QResizeEvent* Événement) {
  QWidget::resizeEvent(Événement);
  if (SurTaille) SurTaille();
}

bool FenêtreQt::event(QEvent* Événement) {
  const bool Traité = QWidget::event(Événement);
  if (Événement->type() == QEvent::Show) CédéeÀNous_ = false;
  // A modal window out of sight would lock the whole station: it is hidden as by Esc, or stays.
  if (Événement->type() == QEvent::WindowStateChange && isMinimized()) {
    if (isEnabled() && QApplication::activeModalWidget() == this && SurÉchap) {
      EstRéduite_ = true;
      SurÉchap();
    } else {
      setWindowState(windowState() & ~Qt::WindowMinimized);
    }
  }
  if (Événement->type() == QEvent::Hide && std::exchange(EstRéduite_, false)) RendreLesTouches();
  if (Événement->type() == QEvent::WindowDeactivate) {
    const QWidget* const Modale = QApplication::activeModalWidget();
    CédéeÀNous_ = Modale != nullptr && Modale != this;
  }
  if (Événement->type() == QEvent::WindowActivate && !std::exchange(CédéeÀNous_, false) && SurActivation)
    SurActivation();
  return Traité;
}

/// The window manager has given the keys to the window behind while this one still barred it: Qt took no notice, and
/// nothing would tell it again.
void FenêtreQt::RendreLesTouches() {
  if (QApplication::activeWindow() != nullptr && QApplication::activeWindow() != this) return;
  for (QWidget* const Autre : QApplication::topLevelWidgets())
    if (Autre != this && Autre->isVisible() && Autre->windowType() == Qt::Window) {
      Autre->activateWindow();
      return QApplication::setActiveWindow(Autre);
    }
}

namespace {
/// By now Qt and the window manager have moved what they move when a screen goes.
constexpr std::chrono::milliseconds RépitÉcrans(300);

struct Placée {
  QPointer<QWidget> Fenêtre;
  QRect Voulue;
};

std::vector<Placée> FenêtresPlacées() {
  std::vector<Placée> Places;
  const Qt::WindowStates Grande = Qt::WindowMaximized | Qt::WindowFullScreen;
  for (QWidget* const Une : QApplication::topLevelWidgets())
    if ((Une->windowType() == Qt::Window || Une->windowType() == Qt::Dialog) && !(Une->windowState() & Grande))
      Places.push_back({Une, PlaceVoulue(*Une)});
  return Places;
}

void Ramener(QWidget& Une, const QRect& Voulue) {
  PlacerSurÉcran(Une, Voulue);
  const auto* const Nôtre = dynamic_cast<FenêtreQt*>(&Une);
  const bool Déplacée = Voulue != QRect(Une.pos(), Une.size());
  if (Déplacée && Nôtre != nullptr && Nôtre->isVisible() && Nôtre->SurActivation) Nôtre->SurActivation();
}
}  // namespace

/// Where the windows stood is noted ahead of everybody's moves: none of them is the operator's.
void GarderFenêtresEnVue(QObject& Garde) {
  auto* const Répit = new QTimer(&Garde);
  Répit->setSingleShot(true);
  Répit->setInterval(RépitÉcrans);
  const auto Places = std::make_shared<std::vector<Placée>>();
  const auto Changer = [Répit, Places] {
    if (!Répit->isActive()) *Places = FenêtresPlacées();
    Répit->start();
  };
  QObject::connect(Répit, &QTimer::timeout, &Garde, [Places] {
    for (const Placée& Une : *Places)
      if (Une.Fenêtre) Ramener(*Une.Fenêtre, Une.Voulue);
  });
  const auto Suivre = [&Garde, Changer](QScreen* Écran) {
    QObject::connect(Écran, &QScreen::availableGeometryChanged, &Garde, Changer);
  };
  for (QScreen* const Écran : QGuiApplication::screens()) Suivre(Écran);
  QObject::connect(qGuiApp, &QGuiApplication::screenAdded, &Garde, [Suivre, Changer](QScreen* Écran) {
    Suivre(Écran);
    Changer();
  });
  QObject::connect(qGuiApp, &QGuiApplication::screenRemoved, &Garde, Changer);
}

/// The ring also sends what the call alone would leave in Qt's buffer until something else is drawn.
void Appeler(QWidget& Fenêtre) {
  QApplication::alert(&Fenêtre);
  QApplication::beep();
}

void BoutonQt::paintEvent(QPaintEvent* /*Événement*/) {
  QStylePainter Peintre(this);
  QStyleOptionButton Option;
  initStyleOption(&Option);
  const QString Libellé = std::exchange(Option.text, QString());
  Peintre.drawControl(QStyle::CE_PushButton, Option);
  Peintre.drawItemText(rect().adjusted(MargeTexte, MargeTexte, -MargeTexte, -MargeTexte),
                       Qt::AlignCenter | Qt::TextWordWrap | Qt::TextShowMnemonic, Option.palette, isEnabled(), Libellé,
                       QPalette::ButtonText);
}

namespace {
void Enterrer(FenêtreQt* Fenêtre) {
  Fenêtre->SurFermeture = nullptr;
  Fenêtre->SurÉchap = nullptr;
  Fenêtre->SurActivation = nullptr;
  Fenêtre->SurTaille = nullptr;
  Fenêtre->hide();
  Fenêtre->deleteLater();
}

bool EnVue(const std::weak_ptr<FenêtreQt>& Fenêtre) {
  const auto Là = Fenêtre.lock();
  return Là && Là->isVisible();
}
}  // namespace

TenueFenêtre::TenueFenêtre(const ContexteQt& Contexte, Qt::WindowFlags Drapeaux)
    : Contexte_(Contexte), Fenêtre_(new FenêtreQt(Drapeaux), Enterrer) {
  Fenêtre_->setWindowModality(Qt::ApplicationModal);
}

/// Gestures come while something else waits: a failure of theirs must not unwind that.
void TenueFenêtre::Exécuter(const ContexteQt& Contexte, const std::function<void()>& Faire) {
  try {
    Faire();
  } catch (const std::exception& Erreur) {
    if (!Contexte.SurÉchec) throw;
    Contexte.SurÉchec(Erreur.what());
  }
}

std::function<void()> TenueFenêtre::EnSaisie(std::function<void()> Faire) const {
  return [&Contexte = Contexte_, Fenêtre = std::weak_ptr(Fenêtre_), Faire = std::move(Faire)] {
    Contexte.Boucle.Poser([&Contexte, Fenêtre, Faire] {
      if (AccepteSaisie(Fenêtre)) Exécuter(Contexte, Faire);
    });
  };
}

std::function<void()> TenueFenêtre::EnÉvénement(std::function<void()> Faire) const {
  return [&Contexte = Contexte_, Fenêtre = std::weak_ptr(Fenêtre_), Faire = std::move(Faire)] {
    Contexte.Boucle.Poser([&Contexte, Fenêtre, Faire] {
      if (!Fenêtre.expired()) Exécuter(Contexte, Faire);
    });
  };
}

std::function<void()> TenueFenêtre::SurPlace(std::function<void()> Faire) const {
  return [&Contexte = Contexte_, Fenêtre = std::weak_ptr(Fenêtre_), Faire = std::move(Faire)] {
    if (!Fenêtre.expired()) Contexte.Boucle.Garder([&] { Exécuter(Contexte, Faire); });
  };
}

void TenueFenêtre::MontrerModale() const {
  if (Fenêtre_->isVisible()) return MettreDevant();
  const std::weak_ptr<FenêtreQt> Fenêtre = Fenêtre_;
  const ContexteQt& Contexte = Contexte_;
  Fenêtre_->setWindowState(Fenêtre_->windowState() & ~Qt::WindowMinimized);
  Fenêtre_->show();
  MettreDevant();
  while (EnVue(Fenêtre) && !Contexte.EnFin) Contexte.Boucle.Pomper(PatienceParPompe);
}

void TenueFenêtre::MettreDevant() const {
  Fenêtre_->setWindowState(Fenêtre_->windowState() & ~Qt::WindowMinimized);
  Fenêtre_->raise();
  Fenêtre_->activateWindow();
}

bool TenueFenêtre::AccepteSaisie(const std::weak_ptr<FenêtreQt>& Fenêtre) {
  const auto Là = Fenêtre.lock();
  if (!Là || !Là->isEnabled() || !Là->isVisible()) return false;
  const QWidget* const Modale = QApplication::activeModalWidget();
  return Modale == nullptr || Modale == Là.get();
}

}  // namespace Ombrey
