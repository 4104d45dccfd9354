// How far a transfer is.
#include "platform/qt/qt_progress.h"

#include <QGridLayout>
#include <QLocale>
#include <QPushButton>
#include <chrono>

#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
using namespace std::chrono_literals;

/// What is over sooner needs no window of its own.
constexpr auto Discrétion = 1s;
constexpr int ColonnesÉtat = 34;
constexpr int Pourcents = 100;

/// Nothing closes it but the end of the transfer, which Esc and the frame's X ask for like the button.
class FenêtreProgression : public QDialog {
 public:
  using QDialog::QDialog;
  void reject() override { findChild<QPushButton*>()->click(); }
};
}  // namespace

void ProgressionQt::Commencer(const QStringList& Jeux) {
  Fermer();
  Jeux_ = Jeux;
  Dits_.clear();
  Arrêtée_ = false;
  Depuis_.start();
}

void ProgressionQt::Créer() {
  Fenêtre_ = new FenêtreProgression(
      Parent_, Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
  Fenêtre_->setWindowTitle(QStringLiteral("Avancement de l'envoi"));
  auto* const Plan = new QGridLayout(Fenêtre_);
  for (const QString& Jeu : Jeux_) {
    auto* const État = new QLabel(Dits_.try_emplace(Jeu, QStringLiteral("à envoyer")).first->second, Fenêtre_);
    État->setTextFormat(Qt::PlainText);
    État->setMinimumWidth(État->fontMetrics().averageCharWidth() * ColonnesÉtat);
    const int Rang = Plan->rowCount();
    Plan->addWidget(new QLabel(Jeu, Fenêtre_), Rang, 0);
    Plan->addWidget(État, Rang, 1);
    États_[Jeu] = État;
  }
  Barre_ = new QProgressBar(Fenêtre_);
  Barre_->setRange(0, Pourcents);
  Barre_->setAccessibleName(QStringLiteral("Part envoyée de cette liste"));
  auto* const Arrêter = new QPushButton(QStringLiteral("&Arrêter l'envoi"), Fenêtre_);
  Arrêter->setToolTip(QStringLiteral("Ce qui reste coché pourra être envoyé plus tard."));
  Arrêter->setAutoDefault(false);  // Enter, typed for another window, stops nothing
  QObject::connect(Arrêter, &QPushButton::clicked, Fenêtre_, [this] { Arrêtée_ = true; });
  Plan->addWidget(Barre_, Plan->rowCount(), 0, 1, 2);
  Plan->addWidget(Arrêter, Plan->rowCount(), 0, 1, 2, Qt::AlignRight);
}

void ProgressionQt::Fermer() {
  États_.clear();
  if (!Fenêtre_) return;
  Fenêtre_->hide();
  Fenêtre_->deleteLater();
  Fenêtre_ = nullptr;
}

void ProgressionQt::Montrer() {
  if (Fenêtre_ || Jeux_.isEmpty() || std::chrono::milliseconds(Depuis_.elapsed()) < Discrétion) return;
  Créer();
  const bool ÀNous = Parent_ && Parent_->isActiveWindow();
  Fenêtre_->setAttribute(Qt::WA_ShowWithoutActivating, !ÀNous);
  Fenêtre_->show();
  if (Parent_) PlacerSurÉcran(*Fenêtre_, {Parent_->frameGeometry().bottomLeft(), Fenêtre_->size()});
}

void ProgressionQt::Entamer(const QString& Jeu) {
  EnCours_ = Jeu;
  if (Fenêtre_) Barre_->setValue(0);
}

void ProgressionQt::Dire(const QString& Jeu, const QString& État) {
  Dits_[Jeu] = État;
  Montrer();
  const auto Sien = États_.find(Jeu);
  if (Sien != États_.end()) Sien->second->setText(État);
}

bool ProgressionQt::Avancer(const Avancement& Où) {
  if (EnCours_.isEmpty()) return true;
  Dire(EnCours_, QStringLiteral("%1 octets restants, %2 s")
                     .arg(QLocale(QLocale::French).toString(static_cast<qulonglong>(Où.Restants)))
                     .arg(Où.Durée.count()));
  if (Fenêtre_ && Où.Total > 0) Barre_->setValue(static_cast<int>((Où.Total - Où.Restants) * Pourcents / Où.Total));
  return !Arrêtée_;
}

}  // namespace Ombrey
