// The event loop of the one thread, as timers, port and console see it.
#pragma once

#include <chrono>
#include <functional>
#include <memory>

namespace Ombrey {

/// Watches file descriptors, calls after delays, and pumps. Actions run within Pomper only, may pump themselves, and
/// may drop any token, their own included. An action that raises leaves Pomper with its exception; the loop stays
/// usable.
class IBoucle {
 public:
  using Action = std::function<void()>;
  /// Keeps a watch or a delay alive: dropping it ends it at once, and its action runs no more.
  using Jeton = std::shared_ptr<void>;
  enum class Sens { Entrée, Sortie };

  virtual ~IBoucle() = default;
  /// Calls Faire each time that the descriptor can be read (or written), or is at its end or broken.
  [[nodiscard]] virtual Jeton Surveiller(int Descripteur, Sens Quoi, Action Faire) = 0;
  /// Calls Faire once after Délai, at the next pump at the soonest.
  [[nodiscard]] virtual Jeton Après(std::chrono::milliseconds Délai, Action Faire) = 0;
  /// Lets one event run, or waits until one comes or AttenteMax is over; costs no processor time meanwhile.
  /// True when an event ran. A negative AttenteMax counts as zero.
  virtual bool Pomper(std::chrono::nanoseconds AttenteMax) = 0;
  /// For whoever waits without pumping: windows paint themselves under an hourglass, which the next Pomper takes away;
  /// nothing else happens.
  virtual void Peindre() {}
};

}  // namespace Ombrey
