// The station's main window: the plug-in's toolbar button and menu entry, and what the host was told.
#pragma once

#include <QIcon>
#include <QLabel>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <functional>
#include <string>

#include "platform/qt/qt_window.h"

namespace Ombrey {

/// Stays open until it is dropped: its closing, like « Quitter », only asks for the end.
class FenêtrePrincipaleQt : public QMainWindow {
 public:
  /// Run in the pump.
  struct Gestes {
    std::function<void()> Bouton;
    std::function<void()> Menu;
    std::function<void()> Configurer;
    std::function<void()> Quitter;
  };

  /// Sujet says which database this station works on.
  FenêtrePrincipaleQt(const ContexteQt& Contexte, const std::string& Sujet);

  /// Called once, before the window is shown.
  void Raccorder(Gestes LesGestes);
  void OffrirBouton(const QIcon& Icône, const std::string& Infobulle);
  /// "&" stands ahead of the mnemonic letter.
  void OffrirMenu(const std::string& Entrée);
  /// The text stands in the status line until the next, and in the list of what was said.
  void Dire(const std::string& Texte);

 protected:
  void closeEvent(QCloseEvent* Événement) override;

 private:
  QMenu& MenuGreffons();
  [[nodiscard]] std::function<void()> Différé(std::function<void()> Geste) const;

  const ContexteQt& Contexte_;
  Gestes Gestes_;
  QToolBar* Barre_;
  QMenu* Greffons_ = nullptr;
  QPlainTextEdit* Journal_;
  QLabel* État_;
};

}  // namespace Ombrey
