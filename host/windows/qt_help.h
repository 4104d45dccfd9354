// The operator's guide, and texts in windows of their own, beside the station, which goes on.
#pragma once

#include <QPlainTextEdit>
#include <QTextBrowser>
#include <memory>

#include "host/side_work.h"

namespace Ombrey {

/// Shows the guide wherever F1 is pressed in this program, also above a window that holds the others up.
class AideQt : public QObject {
 public:
  AideQt();
  /// False when the guide isn't installed.
  bool Montrer();
  bool eventFilter(QObject* Cible, QEvent* Événement) override;

 private:
  std::unique_ptr<QTextBrowser> Guide_;  ///< once it was asked for
};

/// Shows the text until it is closed, with a button that copies it.
QPlainTextEdit* MontrerTexte(QWidget* Parent, const QString& Titre, const QString& Texte);
/// Shows a window at once, in which the findings come when they are there. Closing it gives the diagnosis up.
void MontrerDiagnostic(QWidget* Parent, Tarvel::TravauxÀCôté& Travaux);

}  // namespace Ombrey
