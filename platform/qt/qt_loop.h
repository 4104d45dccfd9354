// The event loop on Qt's: descriptors, delays and window events are served by one pump.
#pragma once

#include <chrono>
#include <deque>
#include <memory>
#include <optional>

#include "platform/loop/loop.h"
#include "platform/qt/qt_hourglass.h"

namespace Ombrey {

/// Qt only notes what happened; the actions themselves run in Pomper, outside Qt's dispatch. So an exception never
/// passes through Qt, and a window may be dropped in the course of what its own button set off.
/// Made after the QApplication, dropped ahead of it; outlives its tokens.
class BoucleQt : public IBoucle {
 public:
  [[nodiscard]] Jeton Surveiller(int Descripteur, Sens Quoi, Action Faire) override;
  [[nodiscard]] Jeton Après(std::chrono::milliseconds Délai, Action Faire) override;
  bool Pomper(std::chrono::nanoseconds AttenteMax) override;
  void Peindre() override;

  /// Has Faire run once by a coming Pomper, ahead of descriptors and delays: what the operator did counts first.
  void Poser(Action Faire);
  /// Runs Faire at once. For events that Qt wants answered on the spot: what Faire raises leaves the next Pomper.
  void Garder(const Action& Faire);

 private:
  struct Source;
  static Jeton FaireJeton(std::shared_ptr<Source> Origine);
  void Signaler(const std::shared_ptr<Source>& Origine);
  [[nodiscard]] bool RienEnFile() const { return Posées_.empty() && Prêtes_.empty(); }
  bool LaisserQt(std::chrono::milliseconds AttenteMax);
  bool ExécuterUne();

  std::deque<Action> Posées_;
  std::deque<std::shared_ptr<Source>> Prêtes_;
  SablierQt Sablier_;  ///< held from a painting to the next pump, when that takes long
  /// When the first painting was asked for since the last pump.
  std::optional<std::chrono::steady_clock::time_point> AttendDepuis_;
  int Imbrication_ = 0;  ///< how many times Qt's dispatch stands on the stack
};

}  // namespace Ombrey
