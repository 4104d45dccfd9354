// The grid of today's loads.
#include "platform/qt/qt_load_grid.h"

#include <QHeaderView>
#include <algorithm>
#include <utility>

#include "platform/qt/qt_measures.h"

namespace Ombrey {

namespace {
/// So many rows are looked at to find a column's width: a long day must not slow the first refresh.
constexpr int LignesMesurées = 50;
constexpr int InterligneSupplémentaire = 6;
}  // namespace

void ModèleGrille::Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Lignes) {
  const auto Poser = [&] {
    Entêtes_ = std::move(Entêtes);
    Lignes_ = std::move(Lignes);
  };
  if (Entêtes.size() != Entêtes_.size()) {
    beginResetModel();
    Poser();
    endResetModel();
    return;
  }
  const int Avant = rowCount();
  const int Après = static_cast<int>(Lignes.size());
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
  return Parent.isValid() || Entêtes_.empty() ? 0 : static_cast<int>(Lignes_.size());
}

int ModèleGrille::columnCount(const QModelIndex& Parent) const {
  return Parent.isValid() ? 0 : static_cast<int>(Entêtes_.size());
}

QVariant ModèleGrille::data(const QModelIndex& Place, int Rôle) const {
  if (!Place.isValid() || (Rôle != Qt::DisplayRole && Rôle != Qt::ToolTipRole)) return {};
  const auto& Ligne = Lignes_.at(static_cast<std::size_t>(Place.row()));
  const auto Colonne = static_cast<std::size_t>(Place.column());
  if (Colonne >= Ligne.size()) return {};
  // A tool tip would take a text with angle brackets for a page of its own.
  return Rôle == Qt::ToolTipRole ? Texte(Ligne[Colonne]).toHtmlEscaped() : Texte(Ligne[Colonne]);
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

void GrilleChargements::Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Lignes) {
  if (static_cast<int>(Entêtes.size()) != NombreColonnes()) LargeursFixées_.clear();
  EnAjustement_ = true;
  Modèle_.Remplir(std::move(Entêtes), std::move(Lignes));
  Élargir();
  EnAjustement_ = false;
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
