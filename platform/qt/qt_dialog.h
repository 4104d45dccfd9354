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

/// Brings a dialog back that was minimised.
class RappelDialogue : public QObject {
 public:
  bool eventFilter(QObject* Cible, QEvent* Événement) override {
    auto* const Dialogue = static_cast<QWidget*>(Cible);
    if (Événement->type() == QEvent::WindowStateChange && Dialogue->isMinimized())
      Dialogue->setWindowState(Qt::WindowNoState);
    return false;
  }
};

/// Holds a dialog for as long as it is waited for. The window below may go meanwhile, and takes the dialog with it.
template <class Dialogue>
class DialogueTenu {
 public:
  explicit DialogueTenu(Dialogue* Tenu) : Dialogue_(Tenu) { Dialogue_->installEventFilter(&Rappel_); }
  DialogueTenu(const DialogueTenu&) = delete;
  DialogueTenu& operator=(const DialogueTenu&) = delete;
  ~DialogueTenu() {
    if (!Dialogue_) return;
    Dialogue_->hide();
    Dialogue_->deleteLater();
  }
  Dialogue* operator->() const { return Dialogue_; }
  [[nodiscard]] bool EstLà() const { return !Dialogue_.isNull(); }

  /// Shows the dialog and runs the loop until it is hidden or gone, or the station ends. It takes no keys from another
  /// program, and comes back when it was minimised: nothing else would bring a modal window back.
  void Attendre(const ContexteQt& Contexte) const {
    const bool ÀNous = QApplication::activeWindow() != nullptr;
    Dialogue_->setAttribute(Qt::WA_ShowWithoutActivating, !ÀNous);
    Dialogue_->show();
    if (ÀNous) Dialogue_->activateWindow();
    while (Dialogue_ && Dialogue_->isVisible() && !Contexte.EnFin) Contexte.Boucle.Pomper(PatienceParPompe);
  }

 private:
  RappelDialogue Rappel_;
  QPointer<Dialogue> Dialogue_;
};

}  // namespace Ombrey
