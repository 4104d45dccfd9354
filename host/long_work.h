// A long work of the command line: how far it is, and its end on Ctrl+C.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace Tarvel {

/// Stands in each line that says how far a work is, and in no other.
inline constexpr std::string_view EncoreTant = " %, encore ";

/// SIGINT and SIGTERM ask for the end of the work instead of killing the program in its midst. Behind the work comes
/// the program's end, and they change nothing any more: the exit code tells whether the work was done. One for each
/// program.
class LongTravail {
 public:
  /// Nom: what is under way, as the lines call it.
  explicit LongTravail(std::string Nom);
  LongTravail(const LongTravail&) = delete;
  LongTravail& operator=(const LongTravail&) = delete;

  /// A line on stderr now and then. Raises ErreurExécution once the end was asked for.
  void Avancer(std::size_t Faits, std::size_t Total);

 private:
  using Temps = std::chrono::steady_clock;
  std::string Nom_;
  Temps::time_point Début_ = Temps::now();
  Temps::time_point Dernière_ = Début_;
};

}  // namespace Tarvel
