// The main window's lists beside the day: what is refused, what nobody has read.
#pragma once

#include <QPlainTextEdit>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <vector>

#include "host/overview.h"
#include "platform/qt/qt_load_grid.h"
#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Rows with their headings first, into a grid.
void Remplir(GrilleChargements& Grille, Tarvel::Rangées Rangées, bool Nouveautés = true);

/// A list whose rows can be read whole: Enter or a double click shows one in a box.
class ListeQt : public GrilleChargements {
 public:
  ListeQt(QWidget* Parent, const ContexteQt& Contexte, const QString& Nom);
  /// Once it has columns: these hold sentences, share the room that the others leave, and break into lines.
  void Plier(const std::vector<int>& Colonnes);
  /// Behind each new contents of such a list.
  void AjusterHauteurs();
};

/// Refused loads, one a row, and below them what is known of the chosen one.
class PageRefusésQt : public QWidget {
 public:
  PageRefusésQt(QWidget* Parent, const ContexteQt& Contexte, Tarvel::Aperçu& Aperçu);
  void Montrer();

 protected:
  void showEvent(QShowEvent* Événement) override;

 private:
  void MontrerDétail();

  Tarvel::Aperçu& Aperçu_;
  ListeQt* Liste_;
  QPlainTextEdit* Détail_;
  QPushButton* Lu_;
};

class PageNonLuesQt : public QWidget {
 public:
  PageNonLuesQt(QWidget* Parent, const ContexteQt& Contexte, Tarvel::Aperçu& Aperçu);
  void Montrer();

 protected:
  void showEvent(QShowEvent* Événement) override;

 private:
  Tarvel::Aperçu& Aperçu_;
  ListeQt* Liste_;
};

}  // namespace Ombrey
