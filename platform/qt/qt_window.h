// What the plug-in's two windows have in common on Qt: their events, their gestures, the wait until they are hidden.
#pragma once

#include <QPushButton>
#include <QWidget>
#include <chrono>
#include <functional>
#include <memory>
#include <string>

#include "platform/loop/witnesses.h"
#include "platform/qt/qt_loop.h"

namespace Ombrey {

/// Nothing but an event ends a modal wait; the pump comes up for air at this pace.
inline constexpr std::chrono::hours PatienceParPompe(1);

/// A window that reports what happens to it and never closes by itself.
class FenêtreQt : public QWidget {
 public:
  std::function<void()> SurFermeture;  ///< by its frame
  std::function<void()> SurÉchap;      ///< the Esc key, wherever the focus is, and minimising
  /// It became the active window, but not by the end of a box of our own; or the screens' change moved it.
  std::function<void()> SurActivation;
  std::function<void()> SurTaille;  ///< shown for the first time, or resized

  explicit FenêtreQt(Qt::WindowFlags Drapeaux);

 protected:
  void closeEvent(QCloseEvent* Événement) override;
  void resizeEvent(QResizeEvent* Événement) override;
  bool event(QEvent* Événement) override;

 private:
  void RendreLesTouches();

  bool CédéeÀNous_ = false;  ///< a box of our own has taken over
  bool EstRéduite_ = false;  ///< it hides because it was minimised
};

/// A button whose text breaks into lines where it is too long for one.
class BoutonQt : public QPushButton {
 public:
  using QPushButton::QPushButton;

 protected:
  void paintEvent(QPaintEvent* Événement) override;
};

/// From now on, as long as Garde lives, a screen that goes or becomes smaller leaves each window whole in sight, and
/// one that comes back has its windows again.
void GarderFenêtresEnVue(QObject& Garde);

/// Calls for attention to a window that is shown: a sound, and the window manager's mark while another one is active.
void Appeler(QWidget& Fenêtre);

/// What all windows of the station share; outlives them.
struct ContexteQt {
  BoucleQt& Boucle;
  bool EnFin = false;  ///< the station is ending: no window or box holds anybody up any more
  /// A box with a lone OK steps aside after so long, as if answered: the queue goes on at night. 0: never.
  std::chrono::milliseconds Retrait = std::chrono::seconds(30);
  /// A new box takes no click or key for so long: what is typed elsewhere isn't meant for it.
  std::chrono::milliseconds Répit{500};
  TémoinsFenêtres Témoins = {};
  /// Told of a gesture that raised. Where nobody takes it, the failure leaves the pump.
  std::function<void(const std::string& Description)> SurÉchec = nullptr;
};

/// A window and its way to the loop. Dropping it cuts off every gesture at once; the widget itself goes when Qt has
/// let go of it.
class TenueFenêtre {
 public:
  TenueFenêtre(const ContexteQt& Contexte, Qt::WindowFlags Drapeaux);

  [[nodiscard]] FenêtreQt& operator*() const { return *Fenêtre_; }
  [[nodiscard]] FenêtreQt* operator->() const { return Fenêtre_.get(); }

  /// These make a handler that may be called as long as Qt likes. What the operator did runs in the pump, if the
  /// window then lives, is enabled and not behind a modal one.
  [[nodiscard]] std::function<void()> EnSaisie(std::function<void()> Faire) const;
  /// What happened to the window runs in the pump, if the window then lives.
  [[nodiscard]] std::function<void()> EnÉvénement(std::function<void()> Faire) const;
  /// Runs at once; what it raises leaves the next pump.
  [[nodiscard]] std::function<void()> SurPlace(std::function<void()> Faire) const;

  /// Shows the window modally and runs the loop until it is hidden or dropped, or the station ends. May outlive this
  /// object. On a window in sight: brings it to the front and returns.
  void MontrerModale() const;
  void MettreDevant() const;

 private:
  static void Exécuter(const ContexteQt& Contexte, const std::function<void()>& Faire);
  [[nodiscard]] static bool AccepteSaisie(const std::weak_ptr<FenêtreQt>& Fenêtre);

  const ContexteQt& Contexte_;
  std::shared_ptr<FenêtreQt> Fenêtre_;
};

}  // namespace Ombrey
