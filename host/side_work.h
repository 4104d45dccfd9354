// What takes long: this program, started once more beside the station.
#pragma once

#include <array>
#include <cstddef>
#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/options.h"
#include "platform/loop/child_program.h"
#include "platform/loop/loop.h"

namespace Tarvel {

/// One after the other, but for the diagnosis: who asks what is wrong doesn't wait for a copy of the base. What is
/// written, printed or looked at so holds up no collection, and stays out of the station's memory.
class TravauxÀCôté {
 public:
  using Dire = std::function<void(const std::string& Ligne)>;
  using Achèvement = std::function<void(bool EstRéussi)>;

  /// Loop and options outlive the object. Programme: who does the work.
  TravauxÀCôté(Ombrey::IBoucle& Boucle, const Options& Choisies, std::string Programme = "/proc/self/exe")
      : Boucle_(Boucle), Options_(Choisies), Programme_(std::move(Programme)) {}
  TravauxÀCôté(const TravauxÀCôté&) = delete;
  TravauxÀCôté& operator=(const TravauxÀCôté&) = delete;
  /// Finishes what was asked for, unless a signal ends the station: nobody waits for it then.
  ~TravauxÀCôté();

  /// Mots: the task's option and all that goes with it but the base. Quoi gets each line that is said, Fin is told how
  /// it ended, once, unless this object ends first. The result names the work.
  std::size_t Confier(std::vector<std::string> Mots, Dire Quoi, Achèvement Fin) {
    return Confier(Papiers_, std::move(Mots), std::move(Quoi), std::move(Fin));
  }
  /// The diagnosis of this very station.
  std::size_t Diagnostiquer(Dire Quoi, Achèvement Fin);
  /// Asks a work to end, and drops one that hasn't begun. One that has ended is no matter.
  void Abandonner(std::size_t Lequel);
  /// All of them; false when there are none.
  bool Abandonner();

 private:
  struct Travail {
    std::size_t Numéro = 0;
    std::vector<std::string> Mots;
    Dire Quoi;
    Achèvement Fin;
  };
  /// What runs in it waits for one another.
  struct Voie {
    std::deque<Travail> File{};
    Travail EnCours{};  ///< while Fils runs
    std::unique_ptr<Ombrey::ProgrammeFils> Fils{};
    Ombrey::IBoucle::Jeton Départ{};  ///< a work begins in the loop's next turn: whoever asked has its number by then
  };
  std::size_t Confier(Voie& Sienne, std::vector<std::string> Mots, Dire Quoi, Achèvement Fin);
  void Lancer(Voie& Sienne);
  void Achever(Voie& Sienne, bool EstRéussi);

  Ombrey::IBoucle& Boucle_;
  const Options& Options_;
  std::string Programme_;
  std::size_t Dernier_ = 0;
  Voie Papiers_;
  Voie Diagnostics_;
  const std::array<Voie*, 2> Voies_{&Diagnostics_, &Papiers_};
};

}  // namespace Tarvel
