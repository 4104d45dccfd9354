// Another program, run beside this one.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/loop/descriptor.h"
#include "platform/loop/loop.h"

namespace Ombrey {

/// Runs while the loop goes on; its input is empty. The object's end waits for the program's.
class ProgrammeFils {
 public:
  /// Mots: the program's path and its arguments. Dire gets each line that it writes to either stream; then Achever is
  /// called, once, with whether it ended well (exit code 0); the object may go in it. Raises ErreurExécution when it
  /// can't be started.
  ProgrammeFils(IBoucle& Boucle, std::vector<std::string> Mots, std::function<void(const std::string&)> Dire,
                std::function<void(bool EstRéussi)> Achever);
  ProgrammeFils(const ProgrammeFils&) = delete;
  ProgrammeFils& operator=(const ProgrammeFils&) = delete;
  ~ProgrammeFils();

  /// Asks it to end, as Ctrl+C would.
  void Arrêter() const;

 private:
  void Lancer(std::vector<std::string>& Mots);
  /// False at the end of what it has to say.
  bool Recevoir();

  std::function<void(const std::string&)> Dire_;
  std::function<void(bool)> Achever_;
  Descripteur Lecture_;
  pid_t Fils_ = 0;  ///< 0: it has ended
  bool EstRéussi_ = false;
  std::string Reste_;
  IBoucle::Jeton Veille_;
};

}  // namespace Ombrey
