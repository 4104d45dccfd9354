// The day on paper and in files, from the main window's menu.
#pragma once

#include <QComboBox>
#include <QDateEdit>
#include <QDialog>
#include <QMenu>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "contracts/database.h"
#include "host/load_report.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// The cooperative's database, or none as long as there is none.
using DonneBase = std::function<std::shared_ptr<IDatabase>()>;

/// Entries for the slip of a day, the ticket of a load and the loads as a file. Contexte outlives the menu.
void OffrirPapiers(QMenu& Menu, QWidget* Fenêtre, const ContexteQt& Contexte, const DonneBase& Base);

/// Chooses a day, and all of it or one load. Shown beside the station, which goes on.
class DialoguePapier : public QDialog {
 public:
  /// UnSeul: one load is what is wanted, the latest to begin with.
  DialoguePapier(QWidget* Fenêtre, const ContexteQt& Contexte, DonneBase Base, bool UnSeul);

 private:
  void Lire();
  void Enregistrer();
  void Imprimer();
  [[nodiscard]] std::string Html() const;
  [[nodiscard]] bool EstTicket() const { return Quoi_->currentIndex() > 0; }

  const ContexteQt& Contexte_;
  DonneBase Base_;
  bool UnSeul_;
  std::vector<Tarvel::ChargementRelaté> Chargements_;
  std::string Coopérative_;
  QDateEdit* Jour_;
  QComboBox* Quoi_;
};

}  // namespace Ombrey
