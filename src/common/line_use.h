// One user of the line at a time: who holds it, and what waits for it.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>

#include "contracts/platform.h"
#include "contracts/system.h"

namespace Ombrey {

/// What can ask for the line while it is taken, in the order in which it is served afterwards. Configuration, printing
/// and reading don't use it, but would hold up whoever does for as long as the operator looks at their boxes. The poll
/// comes last: with a short period there is always one that wants the line.
enum class DemandeLiaison { Bouton, Menu, Cumuls, Configuration, Impression, LigneEntière, Interrogation };

/// Marks the line as taken for a poll, a test, a reply, a transfer or the port's configuration. A request that comes
/// meanwhile is kept, once for each kind, and runs from the loop when the line is free again: never within the holder's
/// own call, and ahead of the next poll.
class UsageLiaison {
 public:
  /// Holds the line until it is dropped.
  class Prise {
   public:
    explicit Prise(UsageLiaison& Usage) : Usage_(Usage) { Usage.Prise_ = true; }
    Prise(const Prise&) = delete;
    Prise& operator=(const Prise&) = delete;
    ~Prise() { Usage_.Rendre(); }

   private:
    UsageLiaison& Usage_;
  };

  explicit UsageLiaison(IPlateforme& Plateforme) : Plateforme_(Plateforme) {}
  UsageLiaison(const UsageLiaison&) = delete;
  UsageLiaison& operator=(const UsageLiaison&) = delete;

  [[nodiscard]] bool EstPrise() const { return Prise_; }
  /// The line, or nothing when it is taken: Reprise then runs once when it is free. Raises what the platform raises
  /// when it can't make a timer.
  [[nodiscard]] std::optional<Prise> PrendreOuReporter(DemandeLiaison Demande, std::function<void()> Reprise);
  /// Drops all that waits and lets nothing run any more; the plug-in has ended.
  void Terminer();

 private:
  void Rendre();
  void Reprendre();

  IPlateforme& Plateforme_;
  bool Prise_ = false;
  bool Terminée_ = false;
  std::map<DemandeLiaison, std::function<void()>> Reportées_;
  std::shared_ptr<IRetard> Relance_;
};

}  // namespace Ombrey
