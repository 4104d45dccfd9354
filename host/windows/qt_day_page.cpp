// The main window's view of the day.
#include "host/windows/qt_day_page.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <ranges>
#include <utility>

#include "platform/qt/qt_load_grid.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
constexpr int LignesHistogramme = 7;  ///< its height in lines of text
constexpr int LignesLisibles = 4;
/// Hours that are shown even when they brought nothing.
constexpr int PremièreHeure = 7;
constexpr int DernièreHeure = 20;
}  // namespace

HistogrammeQt::HistogrammeQt(QWidget* Parent) : QWidget(Parent) {
  // On a low screen the lists come first: it gives way, down to nothing.
  setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
  setAccessibleName(QStringLiteral("Tonnage par heure"));
}

void HistogrammeQt::Montrer(const Tarvel::Journée& Jour) {
  if (std::exchange(Masses_, Jour.MasseParHeure) == Jour.MasseParHeure) return;
  QStringList Dites;
  for (const auto& Rangée : TableauHeures(Jour) | std::views::drop(1)) Dites << Texte(Rangée[0] + " : " + Rangée[1]);
  setToolTip(Dites.join(QLatin1Char('\n')));
  setAccessibleDescription(Dites.join(QStringLiteral(", ")));
  update();
}

QSize HistogrammeQt::sizeHint() const {
  return {LignesHistogramme * fontMetrics().lineSpacing(), LignesHistogramme * fontMetrics().lineSpacing()};
}

void HistogrammeQt::paintEvent(QPaintEvent* /*Événement*/) {
  QPainter Peintre(this);
  const int Ligne = fontMetrics().lineSpacing();
  if (height() < LignesLisibles * Ligne) return;
  int Début = PremièreHeure;
  int Fin = DernièreHeure;
  for (int Heure = 0; Heure < static_cast<int>(Masses_.size()); ++Heure) {
    if (Masses_[static_cast<std::size_t>(Heure)] <= 0) continue;
    Début = std::min(Début, Heure);
    Fin = std::max(Fin, Heure);
  }
  const double Sommet = *std::ranges::max_element(Masses_);
  const int Pas = width() / (Fin - Début + 1);
  const int Bas = height() - Ligne;
  for (int Heure = Début; Heure <= Fin; ++Heure) {
    const double Masse = Masses_[static_cast<std::size_t>(Heure)];
    const int Gauche = (Heure - Début) * Pas;
    const int Haut = Sommet > 0 ? static_cast<int>((Bas - Ligne) * Masse / Sommet) : 0;
    const QRect Barre(Gauche + Pas / 6, Bas - Haut, Pas - Pas / 3, Haut);
    Peintre.fillRect(Barre, palette().highlight());
    Peintre.setPen(palette().color(QPalette::WindowText));
    Peintre.drawText(QRect(Gauche, Bas, Pas, Ligne), Qt::AlignCenter, QStringLiteral("%1 h").arg(Heure));
    if (Masse > 0)
      Peintre.drawText(QRect(Gauche, Bas - Haut - Ligne, Pas, Ligne), Qt::AlignCenter, Texte(Tarvel::Tonnes(Masse)));
  }
}

PageJournéeQt::PageJournéeQt(QWidget* Parent, const ContexteQt& Contexte, const Régional& Formes)
    : QWidget(Parent),
      Formes_(Formes),
      Filtre_(new QLineEdit(this)),
      Tous_(new QCheckBox(QStringLiteral("Tous les si&tes"), this)),
      Total_(new QLabel(this)),
      Chargements_(new ListeQt(this, Contexte, QString::fromUtf8(ChargementsDuJour))),
      Sommes_(new ListeQt(this, Contexte, QStringLiteral("Sommes par appellation et classe"))),
      Quotas_(new ListeQt(this, Contexte, QStringLiteral("Quotas du jour par appellation"))),
      Heures_(new HistogrammeQt(this)) {
  Filtre_->setPlaceholderText(QStringLiteral("Chercher : numéro, nom, appellation…"));
  Filtre_->setClearButtonEnabled(true);
  Filtre_->setToolTip(QStringLiteral("La liste et les sommes ne gardent que ce qui contient tous ces mots."));
  Filtre_->setAccessibleName(QStringLiteral("Chercher dans la journée"));
  Tous_->setToolTip(QStringLiteral("Montre aussi les chargements des autres stations."));
  Sommes_->setToolTip(QStringLiteral("Degré-hecto : kilos × % vol / 100, des chargements qui ont un degré."));
  auto* const Haut = new QHBoxLayout;
  Haut->addWidget(Filtre_, 1);
  Haut->addWidget(Tous_);
  Haut->addWidget(Total_);
  auto* const Droite = new QSplitter(Qt::Vertical, this);
  Droite->addWidget(Sommes_);
  Droite->addWidget(Quotas_);
  auto* const Milieu = new QSplitter(this);
  Milieu->addWidget(Chargements_);
  Milieu->addWidget(Droite);
  Milieu->setStretchFactor(0, 3);
  Milieu->setStretchFactor(1, 2);
  Milieu->setChildrenCollapsible(false);
  Quotas_->hide();  // until there are any
  auto* const Plan = new QVBoxLayout(this);
  Plan->addLayout(Haut);
  Plan->addWidget(Milieu, 1);
  Plan->addWidget(Heures_);
  connect(Filtre_, &QLineEdit::textChanged, this, [this] { Afficher(false); });
  connect(Tous_, &QCheckBox::toggled, this, [this] {
    if (SurSites) SurSites();
  });
  Chargements_->setFocus();
}

void PageJournéeQt::Montrer(Tarvel::Journée Toute) {
  Toute_ = std::move(Toute);
  const bool MêmesSites = std::exchange(TousLus_, TousLesSites()) == TousLesSites();
  if (isVisible()) Afficher(MêmesSites);
}

void PageJournéeQt::showEvent(QShowEvent* Événement) {
  // Behind an empty list, every load of the first day would be new.
  if (TousLus_) Afficher(true);
  QWidget::showEvent(Événement);
}

std::optional<double> PageJournéeQt::MasseDe(const std::string& Site, const std::string& Numéro) const {
  const auto Un = std::ranges::find_if(Toute_.Chargements, [&](const Tarvel::ChargementDuJour& Celui) {
    return Celui.Site == Site && Celui.Numéro == Numéro;
  });
  return Un == Toute_.Chargements.end() ? std::nullopt : std::optional(Un->Masse);
}

void PageJournéeQt::Afficher(bool Nouveautés) {
  const Tarvel::Journée Jour = Tarvel::Filtrer(Toute_, Filtre_->text().toStdString());
  Ombrey::Remplir(*Chargements_, TableauChargements(Jour, Formes_), Nouveautés);
  Ombrey::Remplir(*Sommes_, TableauSommes(Jour, Formes_), false);
  Ombrey::Remplir(*Quotas_, TableauQuotas(Jour), false);
  Quotas_->setVisible(!Jour.Quotas.empty());
  Heures_->Montrer(Jour);
  Total_->setText(Texte(std::to_string(Jour.Chargements.size()) + " chargements, " + Tarvel::Tonnes(Jour.Masse())));
}

}  // namespace Ombrey
