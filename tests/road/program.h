// A program that a test starts, talks to and ends.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ombrey::Essais {

/// Runs until it ends by itself or the object goes. Its standard output and error come in as one text.
class Programme {
 public:
  /// Nom: one of the programs of this build. Avant runs in the child, ahead of the program.
  Programme(const std::string& Nom, std::vector<std::string> Arguments, const std::function<void()>& Avant = {});
  Programme(const Programme&) = delete;
  Programme& operator=(const Programme&) = delete;
  ~Programme();

  void Taper(const std::string& Ligne) const;
  /// True once Extrait stands in what was said since the last call that found something; waits for it.
  bool Attendre(const std::string& Extrait, std::chrono::milliseconds Patience = std::chrono::seconds(15));
  void Signaler(int Signal) const;
  /// The exit code, or minus the signal that ended it; none when it is still running after Patience.
  std::optional<int> Fin(std::chrono::milliseconds Patience = std::chrono::seconds(15));
  /// The same while nobody reads what it says.
  std::optional<int> FinSansLire(std::chrono::milliseconds Patience);
  [[nodiscard]] const std::string& Dit() const { return Dit_; }

 private:
  bool Lire(std::chrono::milliseconds Patience);

  pid_t Enfant_ = 0;
  int Entrée_ = -1;
  int Sortie_ = -1;
  std::string Dit_;
  std::size_t Vu_ = 0;
};

}  // namespace Ombrey::Essais
