// The main window's view of the day.
#include "host/windows/qt_day_page.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QPainter>
#include <QStyle>
#include <QVBoxLayout>
#include <algorithm>
#include <ranges>
#include <utility>

#include "base/text_helpers.h"
#include "platform/qt/qt_load_grid.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// Of the lists' height to its own.
constexpr int PartListes = 4;
constexpr int PartHeures = 1;
constexpr int LignesLisibles = 4;
/// Hours that are shown even when they brought nothing.
constexpr int PremièreHeure = 7;
constexpr int DernièreHeure = 20;

/// What shows the list whole, without bars.
QSize Besoin(const QTableView& Liste) {
  const int Bords = 2 * Liste.frameWidth();
  return {Liste.horizontalHeader()->length() + Bords + Liste.style()->pixelMetric(QStyle::PM_ScrollBarExtent),
          Liste.horizontalHeader()->sizeHint().height() + Liste.verticalHeader()->length() + Bords};
}
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
      Tous_(new QCheckBox(Texte(AvecTouche("Tous les sites", 't')), this)),
      Total_(new QLabel(this)),
      Chargements_(new ListeQt(this, Contexte, QString::fromUtf8(ChargementsDuJour))),
      Sommes_(new ListeQt(this, Contexte, QStringLiteral("Sommes par appellation et classe"))),
      Quotas_(new ListeQt(this, Contexte, QStringLiteral("Quotas du jour par appellation"))),
      Heures_(new HistogrammeQt(this)),
      Milieu_(new QSplitter(this)),
      Droite_(new QSplitter(Qt::Vertical, this)) {
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
  Droite_->addWidget(Sommes_);
  Droite_->addWidget(Quotas_);
  Milieu_->addWidget(Chargements_);
  Milieu_->addWidget(Droite_);
  for (QSplitter* Un : {Milieu_, Droite_}) {
    Un->setChildrenCollapsible(false);
    connect(Un, &QSplitter::splitterMoved, this, [this, Un] { Tirés_.insert(Un); });
  }
  Quotas_->hide();  // until there are any
  auto* const Plan = new QVBoxLayout(this);
  Plan->addLayout(Haut);
  Plan->addWidget(Milieu_, PartListes);
  Plan->addWidget(Heures_, PartHeures);
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

void PageJournéeQt::resizeEvent(QResizeEvent* Événement) {
  QWidget::resizeEvent(Événement);
  Répartir();
}

/// Sums and quotas get the room that they need, half of the width at most, unless the operator has given them another.
void PageJournéeQt::Répartir() {
  const QSize Sommes = Besoin(*Sommes_);
  const QSize Quotas = Besoin(*Quotas_);
  const int Largeur = std::min(std::max(Sommes.width(), Quotas.width()), Milieu_->width() / 2);
  if (!Tirés_.contains(Milieu_)) Milieu_->setSizes({Milieu_->width() - Largeur, Largeur});
  if (!Tirés_.contains(Droite_)) Droite_->setSizes({Sommes.height(), Quotas.height()});
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
  Répartir();
  Heures_->Montrer(Jour);
  Total_->setText(Texte(TexteTotal(Jour)));
}

}  // namespace Ombrey
