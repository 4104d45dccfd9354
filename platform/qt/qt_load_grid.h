// The grid of today's loads: a table that takes new contents without losing its place.
#pragma once

#include <QAbstractTableModel>
#include <QTableView>
#include <cstddef>
#include <set>
#include <string>
#include <vector>

namespace Ombrey {

/// What a list of them is called, in every window.
inline constexpr const char* ChargementsDuJour = "Chargements du jour";

/// Texts in rows and columns, nothing to be edited.
class ModèleGrille : public QAbstractTableModel {
 public:
  using QAbstractTableModel::QAbstractTableModel;
  /// As long as the number of columns stays, views keep scroll position, widths and selection by their row. Without
  /// Nouveautés, what comes to be shown was there before: what is new stays what it was.
  void Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées, bool Nouveautés = true);

  [[nodiscard]] bool Contient(const std::vector<std::string>& Entêtes,
                              const std::vector<std::vector<std::string>>& Rangées) const {
    return Entêtes == Entêtes_ && Rangées == Rangées_;
  }
  /// The first Colonnes texts tell what a row stands for.
  void IdentifierPar(std::size_t Colonnes) { Identifiantes_ = Colonnes; }
  /// What a row stands for, whatever its place. Empty where there is no such row.
  [[nodiscard]] QString Identité(int Rang) const;
  /// The row that stands for this; -1 when it has gone.
  [[nodiscard]] int RangDe(const QString& Identité) const;

  [[nodiscard]] int rowCount(const QModelIndex& Parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& Parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& Place, int Rôle) const override;
  [[nodiscard]] QVariant headerData(int Section, Qt::Orientation Sens, int Rôle) const override;

 private:
  std::vector<std::string> Entêtes_;
  std::vector<std::vector<std::string>> Rangées_;
  std::size_t Identifiantes_ = 2;
  std::set<QString> Nouvelles_;  ///< rows that came with the latest contents that brought any
};

class GrilleChargements : public QTableView {
 public:
  explicit GrilleChargements(QWidget* Parent);
  /// A column widens to what comes to stand in it, until its width is given by FixerLargeur or by hand.
  void Remplir(std::vector<std::string> Entêtes, std::vector<std::vector<std::string>> Rangées, bool Nouveautés = true);
  /// As those of the model; site and number unless told otherwise.
  void IdentifierPar(std::size_t Colonnes) { Modèle_.IdentifierPar(Colonnes); }
  [[nodiscard]] int NombreColonnes() const { return Modèle_.columnCount(); }
  void FixerLargeur(int Colonne, int Pixels);
  /// The width that was given to the column; 0 as long as it follows its contents. To remember that of an empty list,
  /// or of a day of short names, would leave the column too narrow for good.
  [[nodiscard]] int LargeurFixée(int Colonne) const;

 protected:
  /// Copies the whole row, its texts separated by tabs.
  void keyPressEvent(QKeyEvent* Événement) override;

 private:
  void Élargir();

  ModèleGrille Modèle_;
  std::set<int> LargeursFixées_;
  bool EnAjustement_ = false;
};

}  // namespace Ombrey
