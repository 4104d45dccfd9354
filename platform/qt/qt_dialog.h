// Modal dialogs without a loop of Qt's own: shown, waited for in the station's pump, and put away however it ends.
#pragma once

#include <QApplication>
#include <QDialog>
#include <QPointer>

#include "platform/qt/qt_window.h"

namespace Ombrey {

/// What a new dialog belongs above.
[[nodiscard]] inline QWidget* FenêtreDessous() {
  QWidget* const Modale = QApplication::activeModalWidget();
  return Modale != nullptr ? Modale : QApplication::activeWindow();
}

/// Holds a dialog for as long as it is waited for. The window below may go meanwhile, and takes the dialog with it.
template <class Dialogue>
class DialogueTenu {
 public:
  explicit DialogueTenu(Dialogue* Tenu) : Dialogue_(Tenu) {}
  DialogueTenu(const DialogueTenu&) = delete;
  DialogueTenu& operator=(const DialogueTenu&) = delete;
  ~DialogueTenu() {
    if (!Dialogue_) return;
    Dialogue_->hide();
    Dialogue_->deleteLater();
  }
  Dialogue* operator->() const { return Dialogue_; }
  [[nodiscard]] bool EstLà() const { return !Dialogue_.isNull(); }

  /// Shows the dialog and runs the loop until it is hidden or gone, or the station ends.
  void Attendre(const ContexteQt& Contexte) const {
    Dialogue_->show();
    Dialogue_->activateWindow();
    while (Dialogue_ && Dialogue_->isVisible() && !Contexte.EnFin) Contexte.Boucle.Pomper(PatienceParPompe);
  }

 private:
  QPointer<Dialogue> Dialogue_;
};

}  // namespace Ombrey
