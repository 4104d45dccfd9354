// The grid of today's loads.
#include "platform/qt/qt_load_grid.h"

#include <QBrush>
#include <QClipboard>
#include <QFont>
#include <QGuiApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QScrollBar>
#include <algorithm>
#include <utility>

#include "contracts/phrases.h"
#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// So many rows are looked at to find a column's width: a long day must not slow the first refresh.
constexpr int LignesMesurées = 50;
constexpr int InterligneSupplémentaire = 6;
constexpr QColor FondÀVoir(255, 236, 160);

/// What somebody has to look after: a heading, what stands under it, and what to say of it.
struct CasÀVoir {
  const char* Entête;
  const char* Contient;  ///< a part of the text; none: there is no text
  const char* Pourquoi;
};
constexpr const char* Créé = "Créé par le RG80 : nom et fiche à compléter au bureau.";
constexpr CasÀVoir CasÀVoirs[] = {
    {"Appellation", nullptr, "Appellation inconnue de la base : à créer, ou à corriger dans le chargement."},
    {Phrase::ClasseSanitaire, nullptr, "Classe inconnue de la base : à créer, ou à corriger dans le chargement."},
    {"Propriétaire", Phrase::CrééParRG80, Créé},
    {"Récoltant", Phrase::CrééParRG80, Créé},
};

const char* ÀVoir(const std::string& Entête, const std::string& Texte) {
  for (const CasÀVoir& Cas : CasÀVoirs) {
    if (Entête != Cas.Entête) continue;
    if (Cas.Contient == nullptr ? Texte.empty() : Texte.find(Cas.Contient) != std::string::npos) return Cas.Pourquoi;
  }
  return nullptr;
}

bool EstNombre(const std::string& Texte) {
  return !Texte.empty() && Texte.find_first_not_of("0123456789,.-") == std::string::npos;
}

QFont EnGras() {
  QFont Police;
  Police.setBold(true);
  return Police;
}
}  // namespace

void ModèleGrille::Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées,
                           bool Nouveautés) {
  const auto Poser = [&] {
    std::set<QString> Connues;
    for (int Rang = 0; Rang < rowCount(); ++Rang) Connues.insert(Identité(Rang));
    const bool Première = Entêtes.size() != Entêtes_.size();
    Entêtes_ = std::move(Entêtes);
    Rangées_ = std::move(Rangées);
    std::set<QString> Venues;
    for (int Rang = 0; !Première && Rang < rowCount(); ++Rang)
      if (!Connues.contains(Identité(Rang))) Venues.insert(Identité(Rang));
    if (Première || (Nouveautés && !Venues.empty())) Nouvelles_ = std::move(Venues);
  };
  if (Entêtes.size() != Entêtes_.size()) {
    beginResetModel();
    Poser();
    endResetModel();
    return;
  }
  const int Avant = rowCount();
  const int Après = static_cast<int>(Rangées.size());
  const bool Entêté = Entêtes != Entêtes_;
  if (Après > Avant) {
    beginInsertRows({}, Avant, Après - 1);
    Poser();
    endInsertRows();
  } else if (Après < Avant) {
    beginRemoveRows({}, Après, Avant - 1);
    Poser();
    endRemoveRows();
  } else {
    Poser();
  }
  const int Communes = std::min(Avant, Après);
  if (Communes > 0) Q_EMIT dataChanged(index(0, 0), index(Communes - 1, columnCount() - 1));
  if (Entêté) Q_EMIT headerDataChanged(Qt::Horizontal, 0, columnCount() - 1);
}

int ModèleGrille::rowCount(const QModelIndex& Parent) const {
  return Parent.isValid() || Entêtes_.empty() ? 0 : static_cast<int>(Rangées_.size());
}

int ModèleGrille::columnCount(const QModelIndex& Parent) const {
  return Parent.isValid() ? 0 : static_cast<int>(Entêtes_.size());
}

QString ModèleGrille::Identité(int Rang) const {
  if (Rang < 0 || Rang >= rowCount()) return {};
  const auto& Rangée = Rangées_[static_cast<std::size_t>(Rang)];
  if (Rangée.size() < Identifiantes_) return {};
  QString Une;
  for (std::size_t Colonne = 0; Colonne < Identifiantes_; ++Colonne) Une += Texte(Rangée[Colonne]) + QLatin1Char('\t');
  return Une;
}

int ModèleGrille::RangDe(const QString& Identité) const {
  if (Identité.isEmpty()) return -1;
  for (int Rang = 0; Rang < rowCount(); ++Rang)
    if (this->Identité(Rang) == Identité) return Rang;
  return -1;
}

QVariant ModèleGrille::data(const QModelIndex& Place, int Rôle) const {
  if (!Place.isValid()) return {};
  const auto& Rangée = Rangées_.at(static_cast<std::size_t>(Place.row()));
  const auto Colonne = static_cast<std::size_t>(Place.column());
  if (Colonne >= Rangée.size()) return {};
  const char* const Réserve = ÀVoir(Entêtes_[Colonne], Rangée[Colonne]);
  switch (Rôle) {
    case Qt::DisplayRole:
      return Texte(Rangée[Colonne]);
    case Qt::ToolTipRole:
      // A tool tip would take a text with angle brackets for a page of its own.
      return (Réserve == nullptr ? Texte(Rangée[Colonne]) : QString::fromUtf8(Réserve)).toHtmlEscaped();
    case Qt::TextAlignmentRole:
      return int(Qt::AlignVCenter | (EstNombre(Rangée[Colonne]) ? Qt::AlignRight : Qt::AlignLeft));
    case Qt::FontRole:
      return Nouvelles_.contains(Identité(Place.row())) ? QVariant(EnGras()) : QVariant();
    case Qt::BackgroundRole:
      return Réserve == nullptr ? QVariant() : QVariant(QBrush(FondÀVoir));
    case Qt::ForegroundRole:  // the paper is light whatever the screen's colours
      return Réserve == nullptr ? QVariant() : QVariant(QBrush(Qt::black));
    case Qt::AccessibleDescriptionRole:
      return Réserve == nullptr ? QVariant() : QVariant(QString::fromUtf8(Réserve));
    default:
      return {};
  }
}

QVariant ModèleGrille::headerData(int Section, Qt::Orientation Sens, int Rôle) const {
  const auto Colonne = static_cast<std::size_t>(Section);
  if (Sens != Qt::Horizontal || Rôle != Qt::DisplayRole || Colonne >= Entêtes_.size()) return {};
  return Texte(Entêtes_[Colonne]);
}

GrilleChargements::GrilleChargements(QWidget* Parent) : QTableView(Parent) {
  setModel(&Modèle_);
  setEditTriggers(NoEditTriggers);
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setHorizontalScrollMode(ScrollPerPixel);
  setAlternatingRowColors(true);
  setTabKeyNavigation(false);
  setWordWrap(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setDefaultSectionSize(fontMetrics().height() + InterligneSupplémentaire);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setResizeContentsPrecision(LignesMesurées);
  horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  horizontalHeader()->setDefaultSectionSize(horizontalHeader()->minimumSectionSize());
  connect(horizontalHeader(), &QHeaderView::sectionResized, this, [this](int Colonne) {
    if (!EnAjustement_) LargeursFixées_.insert(Colonne);
  });
}

void GrilleChargements::Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées,
                                bool Nouveautés) {
  if (Modèle_.Contient(Entêtes, Rangées)) return;
  if (static_cast<int>(Entêtes.size()) != NombreColonnes()) LargeursFixées_.clear();
  EnAjustement_ = true;
  const bool EstChoisie = selectionModel()->isRowSelected(currentIndex().row());
  const QString Choisie = EstChoisie ? Modèle_.Identité(currentIndex().row()) : QString();
  const int Colonne = currentIndex().column();
  // At the very top the newest load is what one wants to see; farther down one looks at a certain load.
  const int EnTête = verticalScrollBar()->value();
  const QString Regardée = EnTête > 0 ? Modèle_.Identité(EnTête) : QString();
  Modèle_.Remplir(std::move(Entêtes), std::move(Rangées), Nouveautés);
  if (const int Rang = Modèle_.RangDe(Choisie); EstChoisie && Rang != currentIndex().row()) {
    setAutoScroll(false);
    selectionModel()->setCurrentIndex(Modèle_.index(Rang, Colonne),
                                      QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    setAutoScroll(true);
  }
  if (const int Rang = Modèle_.RangDe(Regardée); Rang >= 0) {
    updateGeometries();  // the bar's range follows the rows
    verticalScrollBar()->setValue(Rang);
  }
  Élargir();
  EnAjustement_ = false;
}

void GrilleChargements::keyPressEvent(QKeyEvent* Événement) {
  if (!Événement->matches(QKeySequence::Copy) || !currentIndex().isValid()) return QTableView::keyPressEvent(Événement);
  QStringList Textes;
  for (int Colonne = 0; Colonne < NombreColonnes(); ++Colonne)
    Textes << Modèle_.index(currentIndex().row(), Colonne).data().toString();
  QGuiApplication::clipboard()->setText(Textes.join(QLatin1Char('\t')));
}

void GrilleChargements::FixerLargeur(int Colonne, int Pixels) {
  setColumnWidth(Colonne, Pixels);
  LargeursFixées_.insert(Colonne);
}

int GrilleChargements::LargeurFixée(int Colonne) const {
  return LargeursFixées_.contains(Colonne) ? columnWidth(Colonne) : 0;
}

void GrilleChargements::Élargir() {
  for (int Colonne = 0; Colonne < NombreColonnes(); ++Colonne) {
    if (LargeursFixées_.contains(Colonne)) continue;
    const int Voulue = std::max(sizeHintForColumn(Colonne), horizontalHeader()->sectionSizeHint(Colonne));
    if (Voulue > columnWidth(Colonne)) setColumnWidth(Colonne, Voulue);
  }
}

}  // namespace Ombrey
