// The main window's view of the line: what passes, a row a message.
#pragma once

#include <QAbstractTableModel>
#include <QSortFilterProxyModel>
#include <QTableView>
#include <QTimer>
#include <QWidget>
#include <cstdint>

#include "platform/qt/qt_window.h"
#include "platform/serial/line_journal.h"
#include "platform/serial/line_messages.h"

namespace Ombrey {

/// The messages that are kept, read where they stand.
class ModèleLigne : public QAbstractTableModel {
 public:
  explicit ModèleLigne(const JournalLiaison& Journal) : Journal_(Journal) {}
  /// Takes in what has come, and lets go of what isn't kept any more. True when something has come.
  bool Suivre();
  [[nodiscard]] const MessageLiaison* Message(int Rang) const;

  [[nodiscard]] int rowCount(const QModelIndex& Parent = {}) const override;
  [[nodiscard]] int columnCount(const QModelIndex& Parent = {}) const override;
  [[nodiscard]] QVariant data(const QModelIndex& Place, int Rôle) const override;
  [[nodiscard]] QVariant headerData(int Section, Qt::Orientation Sens, int Rôle) const override;

 private:
  const JournalLiaison& Journal_;
  std::uint64_t Premier_ = 0;  ///< number of the message in the first row, of all that there were
  std::uint64_t Fin_ = 0;      ///< behind the last
};

class FautesSeules : public QSortFilterProxyModel {
 public:
  void Montrer(bool Seules) {
    Seules_ = Seules;
    invalidateFilter();
  }

 protected:
  [[nodiscard]] bool filterAcceptsRow(int Rang, const QModelIndex& Parent) const override;

 private:
  bool Seules_ = false;
};

/// Follows its end as long as the operator looks at it.
class PageLigneQt : public QWidget {
 public:
  /// Both outlive the page.
  PageLigneQt(QWidget* Parent, const ContexteQt& Contexte, const JournalLiaison& Journal);

 protected:
  void showEvent(QShowEvent* Événement) override;
  void hideEvent(QHideEvent* Événement) override;

 private:
  void Suivre();

  ModèleLigne Modèle_;
  FautesSeules Filtre_;
  QTableView* Liste_;
  QTimer Montre_;
};

}  // namespace Ombrey
