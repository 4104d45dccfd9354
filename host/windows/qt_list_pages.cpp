// The main window's lists beside the day.
#include "host/windows/qt_list_pages.h"

#include <QHeaderView>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "base/visible_text.h"
#include "platform/qt/qt_measures.h"
#include "platform/qt/qt_message_box.h"

namespace Ombrey {

namespace {
/// So many rows are looked at: a long list must not slow the station.
constexpr int LignesPliées = 50;

/// What the operator reads and copies, and doesn't write.
QPlainTextEdit* TexteÀLire(QWidget* Parent, const QString& Nom) {
  auto* const Zone = new QPlainTextEdit(Parent);
  Zone->setReadOnly(true);
  Zone->setTabChangesFocus(true);
  Zone->setAccessibleName(Nom);
  return Zone;
}

/// Behind the list that it is about.
QPushButton* BoutonLu(QWidget* Page, QVBoxLayout& Plan, const char* Infobulle, const std::function<void()>& Faire) {
  auto* const Lu = new QPushButton(QStringLiteral("&Tout est lu"), Page);
  Lu->setToolTip(QString::fromUtf8(Infobulle));
  QObject::connect(Lu, &QPushButton::clicked, Page, Faire);
  Plan.addWidget(Lu, 0, Qt::AlignRight);
  return Lu;
}

std::string RangéeEntière(const QAbstractItemModel& Modèle, int Rang) {
  QStringList Textes;
  for (int Colonne = 0; Colonne < Modèle.columnCount(); ++Colonne)
    Textes << Modèle.headerData(Colonne, Qt::Horizontal).toString() + QStringLiteral(" : ") +
                  Modèle.index(Rang, Colonne).data().toString();
  return Textes.join(QLatin1Char('\n')).toStdString();
}
}  // namespace

void Remplir(GrilleChargements& Grille, Tarvel::Rangées Rangées, bool Nouveautés) {
  std::vector<std::string> Entêtes = std::move(Rangées.front());
  Rangées.erase(Rangées.begin());
  for (auto& Rangée : Rangées)
    for (std::string& Texte : Rangée) Texte = SurUneLigne(Texte);
  Grille.Remplir(std::move(Entêtes), std::move(Rangées), Nouveautés);
}

ListeQt::ListeQt(QWidget* Parent, const ContexteQt& Contexte, const QString& Nom) : GrilleChargements(Parent) {
  setAccessibleName(Nom);
  connect(this, &QTableView::activated, this, [this, &Contexte, Nom](const QModelIndex& Place) {
    MontrerBoîte(Contexte, this, SigneBoîte::Information, RangéeEntière(*model(), Place.row()), Nom.toStdString());
  });
}

void ListeQt::Plier(const std::vector<int>& Colonnes) {
  setWordWrap(true);
  for (const int Colonne : Colonnes) horizontalHeader()->setSectionResizeMode(Colonne, QHeaderView::Stretch);
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this] { AjusterHauteurs(); });
  AjusterHauteurs();
}

void ListeQt::AjusterHauteurs() {
  for (int Rang = 0; wordWrap() && Rang < std::min(model()->rowCount(), LignesPliées); ++Rang)
    resizeRowToContents(Rang);
}

PageRefusésQt::PageRefusésQt(QWidget* Parent, const ContexteQt& Contexte, Tarvel::Aperçu& Aperçu)
    : QWidget(Parent),
      Aperçu_(Aperçu),
      Liste_(new ListeQt(this, Contexte, QStringLiteral("Chargements refusés"))),
      Détail_(TexteÀLire(this, QStringLiteral("Le chargement refusé"))) {
  auto* const Moitiés = new QSplitter(Qt::Vertical, this);
  Moitiés->addWidget(Liste_);
  Moitiés->addWidget(Détail_);
  Moitiés->setChildrenCollapsible(false);
  auto* const Plan = new QVBoxLayout(this);
  Plan->addWidget(Moitiés);
  Lu_ = BoutonLu(this, *Plan, "Retire ce que le RG80 ne propose plus ; ce qu'il propose encore reste.",
                 [this] { Aperçu_.RefusésLus(); });
  Montrer();
  Liste_->Plier({4, 5});
  connect(Liste_->selectionModel(), &QItemSelectionModel::currentRowChanged, this, [this] { MontrerDétail(); });
}

void PageRefusésQt::Montrer() {
  Remplir(*Liste_, Aperçu_.Refusés());
  Liste_->AjusterHauteurs();
  Lu_->setEnabled(static_cast<std::size_t>(Liste_->model()->rowCount()) > Aperçu_.NombreRefusés());
  MontrerDétail();
}

void PageRefusésQt::showEvent(QShowEvent* Événement) {
  Montrer();
  QWidget::showEvent(Événement);
}

void PageRefusésQt::MontrerDétail() {
  const int Rang = std::max(0, Liste_->currentIndex().row());
  const QString Texte =
      Ombrey::Texte(Liste_->model()->rowCount() == 0 ? "" : Aperçu_.Détail(static_cast<std::size_t>(Rang)));
  if (Détail_->toPlainText() != Texte) Détail_->setPlainText(Texte);
}

PageNonLuesQt::PageNonLuesQt(QWidget* Parent, const ContexteQt& Contexte, Tarvel::Aperçu& Aperçu)
    : QWidget(Parent),
      Aperçu_(Aperçu),
      Liste_(new ListeQt(this, Contexte, QStringLiteral("Messages que personne n'a lus"))) {
  auto* const Plan = new QVBoxLayout(this);
  Plan->addWidget(Liste_);
  BoutonLu(this, *Plan, "Vide cette liste.", [this] { Aperçu_.ToutEstLu(); });
  Montrer();
  Liste_->Plier({1});
}

void PageNonLuesQt::showEvent(QShowEvent* Événement) {
  Montrer();
  QWidget::showEvent(Événement);
}

void PageNonLuesQt::Montrer() {
  Remplir(*Liste_, Aperçu_.NonLus());
  Liste_->AjusterHauteurs();
}

}  // namespace Ombrey
